// The kernel of each instruction set. Nothing else may be included where it is compiled: what was compiled for one
// instruction set must not be shared with the rest of the library.
#pragma once

namespace lagestatus::fast {

struct Block;
struct Plan;

// Carries count points of a block, whose columns go on with any numbers up to the next multiple of 16.
using CarryBlock = void (*)(const Plan&, Block&, int count);

[[nodiscard]] CarryBlock carry_block_baseline() noexcept;
[[nodiscard]] CarryBlock carry_block_avx2() noexcept;
[[nodiscard]] CarryBlock carry_block_avx512() noexcept;

}  // namespace lagestatus::fast
