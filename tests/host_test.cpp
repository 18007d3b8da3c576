// Host programs as they are: their arithmetic, their locale, their stacks. (Their memory: Buffer in support.h.)
#include <bit>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "base/float_environment.h"
#include "bulk_support.h"

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

using namespace testing_support;

namespace {

// The Rauenberg in every system of the sample, and a call of transr_dll: what of them is computed is computed before.
// The directory has read nothing but what the transformation needs, which is all that normal heights need.
struct Calls {
    std::vector<std::pair<int, std::array<double, 3>>> places;
    Road road;
    Opened<HeldDirectory> directory = open_directory(SAMPLE_DIR);
    Opened<HeldWay> way =
        open_way(directory.handle, 303, 203, heights(LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_BOTH));
};

Calls calls() {
    Calls all;
    for (const int code : {101, 103, 201, 105, 203, 102, 301, 104, 202, 303}) {
        const Transformed place = transform(SAMPLE_DIR, 101, code, {52.4533391667, 13.3680355556, 62});
        EXPECT_EQ(place.status, 0);
        all.places.push_back({code, {place.result[0], place.result[1], place.result[2]}});
    }
    all.road.point = {52.5, 13.4, 100.0};
    all.road.targetKind = "Soldner";
    all.road.targetFlag = -1;
    all.road.target[lagestatus::slot::longitudeOfOrigin] = 13.0;
    return all;
}

// What all calls that compute return, bit for bit: each system to the next one and there from a normal height, both
// descriptions of each, and numbers that trap. Computes nothing itself.
std::vector<std::uint64_t> everything(const Calls& calls) {
    const auto& places = calls.places;
    std::vector<std::uint64_t> all;
    const auto keep = [&all](int status, const auto& values) {
        all.push_back(static_cast<std::uint64_t>(status));
        for (const auto item : values) {
            const auto value = static_cast<double>(item);
            all.push_back(std::bit_cast<std::uint64_t>(value));
        }
    };
    const auto keep_transformed = [&](int from, int to, const std::array<double, 3>& point, char mode) {
        const Transformed done = transform(from % 2 == 0 ? SCRAMBLED_DIR : SAMPLE_DIR, from, to, point, mode);
        keep(done.status, done.result);
        keep(0, ::testing::PrintToString(done.source.row()) + ::testing::PrintToString(done.target.row()));
    };
    for (std::size_t number = 0; number < places.size(); ++number) {
        const auto& [code, place] = places[number];
        const int next = places[(number + 1) % places.size()].first;
        keep_transformed(code, next, place, 'e');
        keep_transformed(code, next, place, 'n');
        const Points points = {place, {notANumber, place[1], infinity}};
        keep_transformed(code, next, points[1], 'n');
        auto options = heights(0, LAGESTATUS_HEIGHT_BOTH);
        const auto own = open_way(calls.directory.handle, code, next, options);
        options.calculation = LAGESTATUS_FAST;
        const auto fast = open_way(calls.directory.handle, code, next, options);
        for (const HeldWay* way : {&own.handle, &fast.handle, &calls.way.handle}) {
            for (const Carried& each : carried(*way, points)) {
                keep(each.status, each.at);
            }
        }
    }
    for (const char* directory : {SAMPLE_DIR, SCRAMBLED_DIR}) {
        const Listing listing = list(directory, 10);
        keep(listing.status, listing.codes);
        for (const std::string& name : listing.names) {
            keep(0, name);
        }
        for (const Role role : {Role::source, Role::target}) {
            const Description system =
                describe(role, directory, "system-42-83-gauss-krueger", listing.flag, 303);
            keep(system.status, system.parameters);
            keep(system.zone, system.name + system.ellipsoid + system.kind);
        }
    }
    keep(0, message(1027, u"file"));
    Buffer<double> out(4);
    keep(guarded([&] { return test_dll(1.5, -2.5, 3.5, out.get()); }), out.values());
    Road road = calls.road;
    keep(road.run(), road.point);
    road = calls.road;
    road.sourceKind = road.targetKind = "Geozentrisch";
    road.point = {6378137.0, 3e-310, 1e-310, 0};
    keep(road.run(), road.point);
    return all;
}

#if defined(__x86_64__)
struct FloatState {
    unsigned mxcsr;
    std::uint16_t x87Control;
    std::uint16_t x87Flags;
    bool operator==(const FloatState&) const = default;
};

constexpr std::uint16_t inexact = 0x20;
constexpr std::uint16_t stackFault = 0x41;

FloatState float_state() {
    FloatState state = {_mm_getcsr(), 0, 0};
    asm volatile("fnstcw %0" : "=m"(state.x87Control));
    asm volatile("fnstsw %0" : "=m"(state.x87Flags));
    state.x87Flags &= 0x7F;  // the rest belongs to no one
    return state;
}

void set_float_state(const FloatState& state) {
    asm volatile("fninit");
    if (state.x87Flags == inexact) {
        asm volatile("fldl2e\n\tfldpi\n\tfmulp\n\tfstp %%st(0)" : : : "st", "st(1)");
    } else if (state.x87Flags == stackFault) {
        asm volatile("fstp %%st(0)\n\tffree %%st(7)\n\tfdecstp" : : : "st");
    }
    asm volatile("fldcw %0" : : "m"(state.x87Control));
    _mm_setcsr(state.mxcsr);
}

constexpr unsigned masked = 0x1F80;
constexpr std::uint16_t full = 0x37F;
constexpr FloatState fresh = {masked, full, 0};
constexpr std::pair<const char*, FloatState> hosts[] = {
    {"as it comes, no flag raised", fresh},
    {"rounding down", {masked | 0x2000, full | 0x400, 0}},
    {"rounding up", {masked | 0x4000, full | 0x800, 0}},
    {"rounding towards zero", {masked | 0x6000, full | 0xC00, 0}},
    {"subnormal numbers flushed and taken as zero", {masked | 0x8040, full, 0}},
    {"all flags raised, and inexact of the x87", {masked | 0x3F, full, inexact}},
    {"x87 inexact, rounding down", {masked, full | 0x400, inexact}},
    {"x87 stack fault", {masked, full, stackFault}},
    {"everything traps", {0, 0x340, 0}},
    // One bit of 0x1332 cannot be cleared.
    {"Delphi: division by zero, overflow and invalid operations trap", {0x1900, 0x1372, 0}},
    {"Visual C++: x87 results cut to 53 bits", {masked, 0x27F, 0}},
    {"x87 results cut to 24 bits, rounding up", {masked, 0x87F, 0}},
};
#elif defined(__aarch64__)
struct FloatState {
    std::uint64_t control;
    std::uint64_t flags;
    bool operator==(const FloatState&) const = default;
};

FloatState float_state() {
    FloatState state = {};
    asm volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(state.control), "=r"(state.flags));
    return state;
}

void set_float_state(const FloatState& state) {
    asm volatile("msr fpcr, %0\n\tmsr fpsr, %1" : : "r"(state.control), "r"(state.flags));
}

// Those of IEEE 754; glibc leaves a sixth alone, which tells of flushed operands and has no effect.
constexpr std::uint64_t allFlags = 0x1F;
constexpr FloatState fresh = {0, 0};
constexpr std::pair<const char*, FloatState> hosts[] = {
    {"as it comes, no flag raised", fresh},
    {"rounding up", {1U << 22U, 0}},
    {"rounding down", {2U << 22U, 0}},
    {"rounding towards zero", {3U << 22U, 0}},
    {"subnormal numbers flushed", {1U << 24U, 0}},
    {"all flags raised", {0, allFlags}},
};
#endif

#if defined(__x86_64__) || defined(__aarch64__)
TEST(Host, KeepsItsArithmeticAndGetsTheSameBits) {
    const Calls work = calls();
    const auto expected = everything(work);
    ASSERT_GT(expected.size(), 200U);
    const FloatState before = float_state();
    for (const auto& [name, host] : hosts) {
        set_float_state(host);
        const FloatState set = float_state();
        const auto got = everything(work);
        const FloatState after = float_state();
        FloatState inside;
        {
            const lagestatus::DefaultFloatEnvironment environment;
            inside = float_state();
        }
        set_float_state(before);
        EXPECT_EQ(inside, fresh) << name;
        EXPECT_EQ(got, expected) << name;
        EXPECT_EQ(set, host) << name;
        EXPECT_EQ(after, set) << name;  // its bytes are shown
    }
}
#endif

TEST(Host, MayCountInGerman) {
    const Calls work = calls();
    const auto expected = everything(work);
#ifdef _WIN32
    ASSERT_NE(std::setlocale(LC_ALL, "German_Germany.1252"), nullptr);
#else
    ASSERT_EQ(setenv("LOCPATH", TEST_LOCALES, 1), 0);
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
#endif
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(everything(work), expected);
    std::setlocale(LC_ALL, "C");
}

TEST(Host, MayHaveSmallStacks) {
    constexpr std::size_t promised = 128 * 1024;  // the test's own frames, a few hundred bytes, count with it
    const Calls work = calls();
    const auto expected = everything(work);
    std::vector<std::uint64_t> got;
#ifdef TEST_SANITIZED
    on_small_stack(8 * promised, [&] { got = everything(work); });  // red zones around every array
#else
    on_small_stack(promised, [&] { got = everything(work); });
#endif
    EXPECT_EQ(got, expected);
}

// The memory that the process holds; 0 where it cannot be told, or is also a sanitizer's.
std::size_t resident_bytes() {
    std::size_t pages = 0;
#if defined(__linux__) && !defined(TEST_SANITIZED)
    std::ifstream("/proc/self/statm").ignore(100, ' ') >> pages;
#endif
    return pages * 4096;
}

// LAGESTATUS_CALLS asks for more calls than a daily test makes: so many that a leak of some bytes would show, too.
TEST(Host, MayCallFromManyThreads) {
    constexpr int threads = 8;
    constexpr std::size_t tolMemory = 1 << 20;  // what the pages of eight stacks and heaps vary by
    const char* const asked = std::getenv("LAGESTATUS_CALLS");
    const std::size_t calls = asked != nullptr ? std::stoul(asked) : 4000;
    const auto expected = everything(::calls());
    const Calls work = ::calls();  // anew: what is read, many need at the same time
    std::atomic<int> different = 0;
    const auto run = [&](std::size_t untilMade) {
        std::vector<std::thread> all;
        for (int number = 0; number < threads; ++number) {
            all.emplace_back([&, untilMade] {
                while (callsMade < untilMade) {
                    different += everything(work) == expected ? 0 : 1;
                }
            });
        }
        std::ranges::for_each(all, &std::thread::join);
    };
    const std::size_t before = callsMade;
    run(before + calls / 4);
    const NoHandleLeft handles;
    const std::size_t memory = resident_bytes();
    run(before + calls);
    EXPECT_EQ(different, 0);
    if (asked != nullptr) {
        EXPECT_LT(resident_bytes(), memory + tolMemory);
    }
}

}  // namespace
