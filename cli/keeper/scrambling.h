// The scrambled form of parameter files and height models, byte for byte.
//
// A scrambled file begins with its key, a positive integer in plain text, and the one character behind it (or carriage
// return and line feed). The characters of the lines after that are shifted (datafiles/scrambling.h); behind the "#" of
// a comment the count starts again. Line ends are stored as they are.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace cli {

enum class FileKind {
    parameters,   // has its key only when it is scrambled
    heightModel,  // always begins with its key; 0: plain
};

// A text that cannot be scrambled, or scrambled text that cannot be told.
class ScramblingError : public std::runtime_error {
  public:
    ScramblingError(const std::string& reason, bool dueToKey)
        : std::runtime_error(reason), causedByKey(dueToKey) {}

    // Whether another key may do.
    [[nodiscard]] bool due_to_key() const noexcept { return causedByKey; }

  private:
    bool causedByKey;
};

// A plain file, scrambled; the key is positive. What is returned has been restored to the same bytes once.
std::string scrambled(std::string_view plain, int key, FileKind form);

struct Unscrambled {
    int key = 0;
    std::string plain;
};

// A scrambled file, as a reader understands it.
Unscrambled unscrambled(std::string_view stored, FileKind form);

}  // namespace cli
