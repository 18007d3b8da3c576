// A text that grows at its end, row by row.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace cli {

// Copies few bytes without a call: in two parts that may overlap. More than 32 by std::memcpy.
inline void copy_bytes(char* to, const char* from, std::size_t size) {
    const auto inHalves = [&]<std::size_t half>(std::integral_constant<std::size_t, half>) {
        std::memcpy(to, from, half);
        std::memcpy(to + size - half, from + size - half, half);
    };
    if (size > 32) {
        std::memcpy(to, from, size);
    } else if (size >= 16) {
        inHalves(std::integral_constant<std::size_t, 16>());
    } else if (size >= 8) {
        inHalves(std::integral_constant<std::size_t, 8>());
    } else if (size >= 4) {
        inHalves(std::integral_constant<std::size_t, 4>());
    } else if (size > 0) {
        to[0] = from[0];
        to[size / 2] = from[size / 2];
        to[size - 1] = from[size - 1];
    }
}

// Like a std::string, but room that is made is not filled, and short texts are appended without a call.
class TextBuffer {
  public:
    [[nodiscard]] std::string_view view() const { return {bytes.get(), used}; }
    [[nodiscard]] std::size_t size() const { return used; }
    [[nodiscard]] bool empty() const { return used == 0; }
    [[nodiscard]] std::size_t capacity() const { return reserved; }

    // Where at least size bytes can be written behind the text; add() makes them part of it.
    char* room(std::size_t size) {
        if (reserved - used < size) {
            grow(size);
        }
        return bytes.get() + used;
    }
    void add(std::size_t size) { used += size; }

    void append(std::string_view text) {
        copy_bytes(room(text.size()), text.data(), text.size());
        used += text.size();
    }
    void append(char character) {
        *room(1) = character;
        ++used;
    }
    void append(std::size_t count, char character) {
        std::fill_n(room(count), count, character);
        used += count;
    }

    // Keeps the first bytes alone, keeping the memory.
    void cut(std::size_t size) { used = size; }
    void clear() { used = 0; }

    void remove_prefix(std::size_t size) {
        if (size > 0) {
            std::memmove(bytes.get(), bytes.get() + size, used - size);
            used -= size;
        }
    }

    void release() { *this = TextBuffer(); }

  private:
    void grow(std::size_t size) {
        const std::size_t wanted = std::max(used + size, reserved + reserved / 2);
        auto more = std::make_unique_for_overwrite<char[]>(wanted);
        if (used > 0) {
            std::memcpy(more.get(), bytes.get(), used);
        }
        bytes = std::move(more);
        reserved = wanted;
    }

    std::unique_ptr<char[]> bytes;
    std::size_t used = 0;
    std::size_t reserved = 0;
};

}  // namespace cli
