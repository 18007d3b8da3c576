// The floating-point environment of a call: the host's is put aside, and comes back with all its flags.
#pragma once

#if defined(__SSE2__)
#include <xmmintrin.h>

#include <array>
#include <cstdint>
#else
#include <cfenv>
#endif

namespace lagestatus {

// As long as it lives, arithmetic is that of a fresh program: rounding to nearest, no trapping, subnormal numbers
// kept, x87 results in full precision (the mathematical functions of the Windows runtime are x87 code). A host may have
// set any of these otherwise: Delphi traps, others round or flush to zero, Visual C++ cuts x87 results to 53 bits.
// The calls made meanwhile must not be inlined: arithmetic may otherwise be moved out of its reach.
#if defined(__SSE2__)
class DefaultFloatEnvironment {
  public:
    // <cfenv> leaves flush-to-zero alone in some runtimes and the whole of MXCSR in others. It also always stores and
    // loads the environment of the x87, which takes as long as a third of a small transformation: here only if one of
    // its flags is raised, for they can be put back in no other way.
    DefaultFloatEnvironment() noexcept : hostMxcsr(_mm_getcsr()), hostFlags(x87_flags()) {
        asm volatile("fnstcw %0" : "=m"(hostControl) : : "memory");
        if (hostFlags != 0) {
            asm volatile("fnstenv %0\n\tfninit" : "=m"(hostX87) : : "memory");
        } else if (hostControl != defaultControl) {
            asm volatile("fldcw %0" : : "m"(defaultControl) : "memory");
        }
        _mm_setcsr(defaultMxcsr);
    }
    ~DefaultFloatEnvironment() {
        _mm_setcsr(hostMxcsr);
        if (hostFlags != 0) {
            asm volatile("fldenv %0" : : "m"(hostX87) : "memory");
            return;
        }
        if (x87_flags() != 0) {
            asm volatile("fnclex" : : : "memory");
        }
        if (hostControl != defaultControl) {
            asm volatile("fldcw %0" : : "m"(hostControl) : "memory");
        }
    }
    DefaultFloatEnvironment(const DefaultFloatEnvironment&) = delete;
    DefaultFloatEnvironment& operator=(const DefaultFloatEnvironment&) = delete;

  private:
    // As the processor starts: all exceptions masked, rounding to nearest, the x87 with its full 64 bits.
    static constexpr unsigned defaultMxcsr = 0x1F80;
    static constexpr std::uint16_t defaultControl = 0x37F;
    static constexpr std::uint16_t allFlags = 0xFF;

    static std::uint16_t x87_flags() noexcept {
        std::uint16_t status = 0;
        asm volatile("fnstsw %0" : "=a"(status) : : "memory");
        return status & allFlags;
    }

    unsigned hostMxcsr;
    std::uint16_t hostFlags;
    std::uint16_t hostControl = 0;
    std::array<std::uint32_t, 7> hostX87;  // the 28 bytes of FNSTENV, if a flag is raised
};
#else
class DefaultFloatEnvironment {
  public:
    DefaultFloatEnvironment() noexcept {
        std::fegetenv(&host);
        std::fesetenv(FE_DFL_ENV);
    }
    ~DefaultFloatEnvironment() { std::fesetenv(&host); }
    DefaultFloatEnvironment(const DefaultFloatEnvironment&) = delete;
    DefaultFloatEnvironment& operator=(const DefaultFloatEnvironment&) = delete;

  private:
    std::fenv_t host = {};
};
#endif

}  // namespace lagestatus
