// FixedText<N>: a bounded 8-bit text that is always terminated.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace lagestatus {

// Holds at most N - 1 characters and a terminating zero, without heap memory. Longer texts are cut.
template <std::size_t N>
class FixedText {
    static_assert(N > 0);

  public:
    static constexpr std::size_t maxLength = N - 1;

    // Only the terminator is written: records hold a hundred of these, and most stay empty.
    FixedText() noexcept { chars[0] = '\0'; }
    explicit FixedText(std::string_view text) noexcept : FixedText() { append(text); }
    ~FixedText() = default;
    // Only what is set is copied.
    FixedText(const FixedText& other) noexcept : FixedText(other.view()) {}
    FixedText& operator=(const FixedText& other) noexcept {
        if (this != &other) {
            assign(other.view());
        }
        return *this;
    }

    void clear() noexcept { resize(0); }
    void assign(std::string_view text) noexcept {
        clear();
        append(text);
    }
    void append(std::string_view text) noexcept {
        const std::size_t count = std::min(text.size(), maxLength - length);
        std::copy_n(text.data(), count, chars.data() + length);
        resize(length + count);
    }
    void append(char character) noexcept { append(std::string_view(&character, 1)); }

    [[nodiscard]] std::string_view view() const noexcept { return {chars.data(), length}; }
    [[nodiscard]] const char* c_str() const noexcept { return chars.data(); }

  private:
    void resize(std::size_t newLength) noexcept {
        length = newLength;
        chars[length] = '\0';
    }

    std::array<char, N> chars;
    std::size_t length = 0;
};

}  // namespace lagestatus
