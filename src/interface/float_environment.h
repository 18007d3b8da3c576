// The floating-point environment of a call: the host's is put aside, and comes back with all its flags.
#pragma once

#if defined(__x86_64__) || defined(__i386__)
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
#if defined(__x86_64__) || defined(__i386__)
class DefaultFloatEnvironment {
  public:
    // <cfenv> leaves flush-to-zero alone in some runtimes and the whole of MXCSR in others.
    DefaultFloatEnvironment() noexcept : hostMxcsr(_mm_getcsr()) {
        asm volatile("fnstenv %0\n\tfninit" : "=m"(hostX87) : : "memory");
        _mm_setcsr(defaultMxcsr);
    }
    ~DefaultFloatEnvironment() {
        _mm_setcsr(hostMxcsr);
        asm volatile("fldenv %0" : : "m"(hostX87) : "memory");
    }
    DefaultFloatEnvironment(const DefaultFloatEnvironment&) = delete;
    DefaultFloatEnvironment& operator=(const DefaultFloatEnvironment&) = delete;

  private:
    static constexpr unsigned defaultMxcsr = 0x1F80;  // as the processor starts: all exceptions masked

    unsigned hostMxcsr;
    std::array<std::uint32_t, 7> hostX87 = {};  // the 28 bytes of FNSTENV
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
