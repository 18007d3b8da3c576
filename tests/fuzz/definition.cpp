// Any bytes as the definition file: translD_dll, and trans_dll behind it.
#include "fuzz.h"

using namespace fuzzing;

namespace {

Listing listing(std::string_view content) {
    memory().write("DEFAULT", content);
    const NoHandleLeft handles;
    textFill = u'x';
    const Listing first = list(memory().path());
    textFill = u'y';
    const Listing second = list(memory().path());
    Listing likewise = second;
    likewise.slots = first.slots;
    EXPECT_TRUE(likewise == first);
    std::size_t written = 0;
    while (written < 100 && first.slots[100 * written] == second.slots[100 * written]) {
        ++written;
    }
    return list(memory().path(), written);
}

void check(const Listing& l) {
    const std::size_t complete = l.names.size();
    expect_status(l.status, l.status == 2 || l.status == 100 || between(l.status, 600, 799));
    EXPECT_TRUE(l.flag == 0 || l.flag == 1);
    EXPECT_TRUE(l.status != 2 || (l.count == 0 && l.flag == 0));
    EXPECT_LE(l.count, 100);
    EXPECT_EQ(l.status == 0,
              static_cast<int>(complete) == std::max(l.count, 0) && l.status != 2 && l.status != 100);
    EXPECT_TRUE(l.status < 600 || l.status % 100 == static_cast<int>(complete));
    for (std::size_t entry = 0; entry < 100; ++entry) {
        EXPECT_TRUE(entry < complete
                        ? !l.names[entry].empty() && l.names[entry].find('"') == std::string::npos
                        : l.codes[entry] == -9 && l.auxiliary[entry] == -9);
    }
    EXPECT_TRUE(std::all_of(l.slots.begin() + static_cast<std::ptrdiff_t>(100 * complete), l.slots.end(),
                            [](char16_t unit) { return unit == textFill; }));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const auto linesAhead = input.take<std::uint16_t>();
    const Listing l = listing(input.rest());
    check(l);
    const auto otherwise = rewritten(input.rest(), linesAhead);
    EXPECT_TRUE(!otherwise || listing(*otherwise) == l);
    const NoHandleLeft handles;
    const int code = l.codes[0];
    const Transformed done = transform(memory().path(), code, code, {1, 2, 3});
    const Transformed again = transform(memory().path(), code, code, {1, 2, 3});
    EXPECT_EQ(again.status, done.status);
    EXPECT_TRUE(same_bits(again.result, done.result));
    if (l.status != 0 || l.names.empty()) {
        EXPECT_EQ(done.status, l.status == 0 ? 93 : l.status);
        EXPECT_EQ(done.auxiliary, (std::array{-1, -1}));
        EXPECT_EQ(done.source.row(), Texts().row());
        EXPECT_EQ(done.target.row(), Texts().row());
    } else {
        // A name may lead to a file somewhere else.
        expect_status(done.status, done.status == 7 || is_status_of_parameter_file(done.status) ||
                                       is_status_of_pipeline(done.status));
        EXPECT_EQ(done.auxiliary[0], l.auxiliary[0]);
    }
    EXPECT_TRUE(done.status >= 1000 || done.status == 0 || same_bits(done.result, std::array<double, 4>{}));
    return 0;
}
