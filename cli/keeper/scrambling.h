// The scrambled form of parameter files and height models, byte for byte.
//
// A scrambled file begins with its key, a positive integer in plain text, and the one character behind it (or carriage
// return and line feed). On the lines after that the character c at position j (from 0) is stored as
// (c + key - 1 - (j mod key)) mod 256; behind the "#" of a comment the count starts again. Line ends are stored as they
// are.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace cli {

enum class FileForm {
    parameters,   // has its key only when it is scrambled
    heightModel,  // always begins with its key; 0: plain
};

// What a line's characters are shifted by, position after position. The key is positive.
class LineShift {
  public:
    explicit LineShift(int positiveKey) : key(static_cast<std::uint32_t>(positiveKey)) {}

    char store(char plain) { return byte(static_cast<unsigned char>(plain) + next()); }
    char restore(char stored) { return byte(static_cast<unsigned char>(stored) - next()); }

  private:
    std::uint32_t next() {
        const std::uint32_t amount = key - 1 - place;
        place = place + 1 == key ? 0 : place + 1;
        return amount;
    }
    static char byte(std::uint32_t value) {
        return static_cast<char>(static_cast<unsigned char>(value & 0xFFU));
    }

    std::uint32_t key;
    std::uint32_t place = 0;
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
std::string scrambled(std::string_view plain, int key, FileForm form);

struct Unscrambled {
    int key = 0;
    std::string plain;
};

// A scrambled file, as a reader understands it.
Unscrambled unscrambled(std::string_view stored, FileForm form);

}  // namespace cli
