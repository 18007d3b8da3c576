// Any bytes as a parameter file, plain or (SCRAMBLED) scrambled: transla_dll, translz_dll, and trans_dll and
// transr_dll with what they read.
#include "fuzz.h"

#include "base/projection_kind.h"

using namespace fuzzing;

namespace {

constexpr int code = 17;

struct Both {
    Description source, target;
    bool operator==(const Both&) const = default;
};

Both both(int scrambledFlag, std::string_view content) {
    memory().write(scrambledFlag == 1 ? "f.tr0" : "f.tra", content);
    const NoHandleLeft handles;
    Both twice[2];
    for (Both& once : twice) {
        textFill = textFill == u'x' ? u'y' : u'x';
        once = {describe(Role::source, memory().path(), "f", scrambledFlag, code),
                describe(Role::target, memory().path(), "f", scrambledFlag, code)};
    }
    EXPECT_TRUE(twice[0] == twice[1]);
    return twice[0];
}

void check(const Both& d) {
    const int source = d.source.status;
    const int target = d.target.status;
    expect_status(source, between(source, 8, 48) || source == 100);
    expect_status(target, between(target, 8, 28) || between(target, 70, 89) || target == 100);
    // The target's file is the source's but for the second column, which may be unreadable before the first one is.
    const bool secondColumn = between(target, 70, 89);
    EXPECT_TRUE(between(source, 29, 48)
                    ? secondColumn && target <= source + 41
                    : target == source || (secondColumn && (source == 0 || source == 100)));
    EXPECT_EQ(d.source.row(), d.target.row());
    for (const Description* one : {&d.source, &d.target}) {
        const std::vector<double>& p = one->parameters;
        EXPECT_EQ(p == std::vector<double>(36, untouched), one->status != 0);
        if (one->status == 0) {
            EXPECT_TRUE(std::all_of(p.begin(), p.end(), [](double value) { return std::isfinite(value); }));
            EXPECT_TRUE(std::fabs(p[0]) <= 90 * 0.0174532925199433 && p[1] >= 0 && p[24] > 0 && p[25] > 0);
            EXPECT_TRUE(!one->name.empty() && !one->ellipsoid.empty());
            EXPECT_NE(lagestatus::projection_kind(one->kind), lagestatus::ProjectionKind::unknown);
        }
        for (std::size_t slot = 0; source == 0 && target == 0 && slot < 36; ++slot) {
            const bool datum = (slot >= 14 && slot <= 23) || slot >= 26;
            EXPECT_TRUE(datum || p[slot] == d.source.parameters[slot]);
        }
    }
}

// By the codes and, once read, by the descriptions: the same.
void go(const Both& d, std::array<double, 3> point) {
    memory().write("DEFAULT", SCRAMBLED ? "1 1\n17 4\n\"f\"\n" : "1 0\n17 4\n\"f\"\n");
    const NoHandleLeft handles;
    for (const char mode : {'e', 'n'}) {
        const Transformed done = transform(memory().path(), code, code, point, mode);
        EXPECT_EQ(done.auxiliary, (std::array{4, d.source.status == 0 ? 4 : -1}));
        EXPECT_EQ(done.source.row(), d.source.row());
        EXPECT_EQ(done.target.row(), d.source.status != 0 ? Texts().row() : d.target.row());
        if (d.source.status != 0 || d.target.status != 0) {
            EXPECT_EQ(done.status, d.source.status != 0 ? d.source.status : d.target.status);
            EXPECT_TRUE(same_bits(done.result, std::array<double, 4>{}));
            continue;
        }
        Road road = {.directory = memory().path(),
                     .sourceKind = d.source.kind,
                     .sourceEllipsoid = d.source.ellipsoid,
                     .targetKind = d.target.kind,
                     .targetEllipsoid = d.target.ellipsoid};
        std::ranges::copy(point, road.point.begin());
        std::ranges::copy(d.source.parameters, road.source.begin());
        std::ranges::copy(d.target.parameters, road.target.begin());
        const bool geocentric = road.targetKind.starts_with("Geozentrisch");
        road.zone = d.target.zone;
        road.sourceFlag = mode == 'n' && !geocentric ? -1 : 0;
        road.targetFlag = geocentric ? 0 : -1;
        const Reached byDescription = reached(road);
        EXPECT_EQ(done.status, byDescription.status);
        EXPECT_TRUE(same_bits(done.result, done.status > 0 && done.status < 1000 ? std::array<double, 4>{}
                                                                                 : byDescription.result));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const auto linesAhead = input.take<std::uint16_t>();
    const auto place = input.take<std::uint8_t>();
    const auto [stored, scrambledHere] = SCRAMBLED ? stored_file(input) : Stored{std::string(input.rest())};
    const Both d = both(SCRAMBLED, stored);
    const auto otherwise = rewritten(stored, linesAhead);
    EXPECT_TRUE(!otherwise || both(SCRAMBLED, *otherwise) == d);
    EXPECT_TRUE(!scrambledHere || both(0, input.rest()) == d);
    check(d);
    const bool plane = d.source.kind.starts_with("Gauss") || d.source.kind.starts_with("Soldner");
    const double step = place / 256.0;
    go(d, plane ? std::array{5.5e6 + 5e5 * step, 3.3e6 + 4e5 * step, 40.0}
                : std::array{52 - 4 * step, 13 + 2 * step, 40.0});
    return 0;
}
