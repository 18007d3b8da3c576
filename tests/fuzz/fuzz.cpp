#include "fuzz.h"

#include <unistd.h>

#include <cstdlib>

namespace fuzzing {
std::vector<char16_t> Input::units(std::size_t count) {
    std::vector<char16_t> text(count);
    for (char16_t& unit : text) {
        unit = take<char16_t>();
    }
    return text;
}

const DataDirectory& memory() {
    static const DataDirectory directory;
    return directory;
}

bool between(int status, int first, int last) {
    return status >= first && status <= last;
}

bool is_status_of_parameter_file(int status) {
    return between(status, 8, 48) || between(status, 70, 89) || status == 100;
}

bool is_status_of_pipeline(int status) {
    const int ofHeights = status - 1000;
    return status == 12 || status == 14 || status == 90 || status == 92 || between(status, 201, 208) ||
           between(status, 301, 305) || between(status, 401, 405) || between(status, 501, 503) ||
           between(ofHeights, 27, 48) || ofHeights == 90 || between(ofHeights, 100, 110) ||
           between(ofHeights, 127, 128);
}

void expect_status(int status, bool allowed) {
    EXPECT_TRUE(status == 0 || allowed) << status;
    EXPECT_EQ(message(status, u"NAME").empty(), status == 0) << status;
}

std::optional<std::string> rewritten(std::string_view content, std::uint16_t linesAhead) {
    constexpr std::uint16_t blockSize = 16384;
    if (linesAhead >= blockSize) {
        return std::nullopt;
    }
    const bool mayHavePairs = content.find('\r') == std::string_view::npos;
    std::string text(linesAhead, '\n');
    for (const char character : content) {
        text += character == '\n' && mayHavePairs ? "\r\n" : std::string_view(&character, 1);
    }
    return text;
}

Stored stored_file(Input& input) {
    const int key = input.take<std::uint8_t>() - 127;
    const std::string plain(input.rest());
    const std::string text = scrambled(plain, std::max(key, 1));
    const std::size_t head = text.find('\n') + 1;
    bool same = key > 0 && plain.find('\r') == std::string::npos && text.find('\r') == std::string::npos;
    for (std::size_t at = 0, length = 0; same && at < plain.size(); ++at) {
        length = plain[at] == '\n' ? 0 : length + 1;
        same = (text[head + at] == '\n') == (length == 0) && length < 999;
    }
    return same ? Stored{text, true} : Stored{plain};
}

void check(const Reached& done, double heightGiven, bool heights) {
    const auto& [status, result] = done;
    expect_status(status, is_status_of_pipeline(status));
    // With 1110, 1100, 1027 and 1028 there may be no point.
    const bool mayBeNone = status == 1110 || status == 1100 || status == 1027 || status == 1028;
    const bool none = same_bits({result.data(), 3}, std::array{0.0, 0.0, 0.0});
    const bool finite = std::ranges::all_of(result, [](double value) { return std::isfinite(value); });
    EXPECT_TRUE(between(status, 1, 999) ? none : finite || (mayBeNone && none)) << status;
    EXPECT_TRUE(heights || (status < 1000 && same_bits({&heightGiven, 1}, {&result[3], 1}))) << status;
}

Reached reached(const Road& road) {
    Reached both[2];
    for (Reached& done : both) {
        Road once = road;
        done.status = once.run();
        done.result = once.point;
    }
    EXPECT_TRUE(both[0] == both[1]);
    check(both[0], road.point[2],
          road.sourceFlag == -1 || road.targetFlag == -1 || road.targetEllipsoid.starts_with("Bessel"));
    return both[0];
}

}  // namespace fuzzing

// Called by libFuzzer and by the replay before the first input.
extern "C" int LLVMFuzzerInitialize(int* /*argumentCount*/, char*** /*arguments*/) {
    testing::GTEST_FLAG(throw_on_failure) = true;  // and nothing catches
    if (access("/dev/shm", W_OK | X_OK) == 0) {
        setenv("TMPDIR", "/dev/shm", 1);
    }
    return 0;
}
