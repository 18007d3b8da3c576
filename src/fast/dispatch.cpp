// Chooses among the instruction sets, once.
#include <cstdlib>
#include <string_view>

#include "fast/carry_block.h"
#include "fast/fast_road.h"

namespace lagestatus::fast {
namespace {

struct Choice {
    const char* name;
    CarryBlock carry;
};

Choice choose() noexcept {
    Choice choice = {"baseline", carry_block_baseline()};
#ifdef LAGESTATUS_WIDE_LANES
    // Before anybody can call the library. NOLINTNEXTLINE(concurrency-mt-unsafe)
    const char* const asked = std::getenv("LAGESTATUS_INSTRUCTIONS");
    const std::string_view most = asked != nullptr ? asked : "";
    __builtin_cpu_init();
    if (most != "baseline" && __builtin_cpu_supports("avx2") != 0) {
        choice = {"avx2", carry_block_avx2()};
        if (most != "avx2" && __builtin_cpu_supports("avx512f") != 0) {
            choice = {"avx512", carry_block_avx512()};
        }
    }
#endif
    return choice;
}

const Choice chosen = choose();

}  // namespace

const char* instructions() noexcept {
    return chosen.name;
}

void FastRoad::carry(Block& block, int count) const noexcept {
    // What is carried along behind the last point up to the lanes' size is the last one once more.
    for (int at = count; at < blockSize && at % 16 != 0; ++at) {
        for (double* column : {block.given.first, block.given.second, block.given.third}) {
            column[at] = column[count - 1];
        }
    }
    chosen.carry(*plan, block, count);
}

}  // namespace lagestatus::fast
