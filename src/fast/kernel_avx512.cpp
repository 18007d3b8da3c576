// For processors with AVX-512: eight doubles in a register.
#include "fast/carry_block.h"
#include "fast/kernel.h"

namespace lagestatus::fast {

CarryBlock carry_block_avx512() noexcept {
    return Kernel<Lanes<8, 2>>::carry;
}

}  // namespace lagestatus::fast
