// How a scrambled file stores its lines, both ways.
#pragma once

#include <algorithm>
#include <cstdint>

namespace lagestatus {

// What the characters of one line are shifted by, position after position: with the key k the character c at position
// j (from 0) is stored as (c + k - 1 - j mod k) mod 256. A key of 0, plain lines, shifts as little as a key of 1. Line
// feeds are stored as they are: they are the caller's to leave out.
class LineShift {
  public:
    // Given: the scrambling key, 0 or above.
    explicit LineShift(int scramblingKey) noexcept
        : key(static_cast<std::uint32_t>(std::max(scramblingKey, 1))) {}

    // The character that is stored for one at the current position, or that a stored one stands for there; both move
    // on to the next position.
    char store(char plain) noexcept { return byte(static_cast<unsigned char>(plain) + next()); }
    char restore(char stored) noexcept { return byte(static_cast<unsigned char>(stored) - next()); }

  private:
    static char byte(std::uint32_t value) noexcept {
        return static_cast<char>(static_cast<unsigned char>(value));  // mod 256
    }
    std::uint32_t next() noexcept {
        const std::uint32_t shift = key - 1U - place;
        place = place + 1U == key ? 0U : place + 1U;
        return shift;
    }

    std::uint32_t key;
    std::uint32_t place = 0;  // position mod key
};

}  // namespace lagestatus
