// For every processor: two doubles in a register, SSE2 on x86-64, NEON on ARM64.
#include "fast/carry_block.h"
#include "fast/kernel.h"

namespace lagestatus::fast {

CarryBlock carry_block_baseline() noexcept {
    return Kernel<Lanes<2, 2>>::carry;
}

}  // namespace lagestatus::fast
