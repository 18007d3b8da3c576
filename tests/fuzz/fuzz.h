// What the fuzz targets share. A target is called with one input after another; whatever of the library's promises it
// finds broken ends the program, by an assertion of GoogleTest's.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../support.h"

namespace fuzzing {

using namespace testing_support;

// The bytes of one input. Values are taken off its end, so that what is left in front can be a file that reads as one.
class Input {
  public:
    Input(const std::uint8_t* bytes, std::size_t size) : all(reinterpret_cast<const char*>(bytes), size) {}

    // The next value; zero bytes stand for those that are not there.
    template <typename T>
    T take() {
        T value = {};
        const std::size_t count = std::min(sizeof value, all.size());
        std::memcpy(&value, all.data() + all.size() - count, count);
        all.remove_suffix(count);
        return value;
    }
    // The next units of a text, any values.
    std::vector<char16_t> units(std::size_t count);
    [[nodiscard]] std::string_view rest() const { return all; }

  private:
    std::string_view all;
};

// The data directory that the input is written to, in memory.
const DataDirectory& memory();

// Whether a call may return the status: one of those named, and not without a message.
void expect_status(int status, bool allowed);
bool between(int status, int first, int last);
bool is_status_of_parameter_file(int status);
bool is_status_of_pipeline(int status);

// The same file otherwise: empty lines ahead, as many as it takes for a block of the reader to end in the midst of the
// content, and pairs of carriage return and line feed if there is no carriage return yet. Nothing for most numbers of
// lines: it costs as much as all the rest.
std::optional<std::string> rewritten(std::string_view content, std::uint16_t linesAhead);

// What is stored as a scrambled file. One half of the inputs are stored as they are. Of the other half the lines are
// scrambled here, and are to read as the plain ones do; not so if a character would become a line end, or if a line is
// longer than one that is read whole.
struct Stored {
    std::string content;
    bool scrambledHere = false;
};
Stored stored_file(Input& input);

// A road's result, gone twice.
struct Reached {
    int status;
    std::array<double, 4> result;
    bool operator==(const Reached& other) const {
        return status == other.status && same_bits(result, other.result);
    }
};
// Checks what the status promises of the result; heights tells whether a normal height may come in.
void check(const Reached& done, double heightGiven, bool heights);
// Runs the road twice, and checks it and that both times give the same bits.
Reached reached(const Road& road);

}  // namespace fuzzing
