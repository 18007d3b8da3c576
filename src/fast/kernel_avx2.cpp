// For processors with AVX2: four doubles in a register.
#include "fast/carry_block.h"
#include "fast/kernel.h"

namespace lagestatus::fast {

CarryBlock carry_block_avx2() noexcept {
    return Kernel<Lanes<4, 2>>::carry;
}

}  // namespace lagestatus::fast
