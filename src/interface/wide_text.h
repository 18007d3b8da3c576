// Texts across the boundary: 16-bit code units outside, 8-bit characters inside.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "base/caller_memory.h"
#include "base/fixed_text.h"
#include "interface/lagestatus.h"

namespace lagestatus {

// Narrows a wide text: each code unit gives its low 8 bits, the first whose low 8 bits are zero ends it
// (U+0100 does too). At most N - 1 units are taken, what follows is not read.
template <std::size_t N>
[[nodiscard]] FixedText<N> narrow_cut(const lagestatus_char* wide) noexcept {
    std::array<char, N> characters;
    std::size_t size = 0;
    for (; size + 1 < N; ++size) {
        characters[size] = static_cast<char>(static_cast<unsigned char>(load<lagestatus_char>(wide, size)));
        if (characters[size] == '\0') {
            break;
        }
    }
    return FixedText<N>({characters.data(), size});
}

// The same for a name that must not be cut into another one: nothing when it has N characters or more.
template <std::size_t N>
[[nodiscard]] std::optional<FixedText<N>> narrow_whole(const lagestatus_char* wide) noexcept {
    const auto text = narrow_cut<N + 1>(wide);
    if (text.view().size() >= N) {
        return std::nullopt;
    }
    return FixedText<N>(text.view());
}

// Widens a text into the caller's buffer of N units or more, with its terminator: each character becomes the
// code unit of the same value.
template <std::size_t N>
void widen(const FixedText<N>& text, lagestatus_char* wide) noexcept {
    std::size_t unit = 0;
    for (const char character : text.view()) {
        store<lagestatus_char>(wide, unit++, static_cast<unsigned char>(character));
    }
    store<lagestatus_char>(wide, unit, 0);
}

}  // namespace lagestatus
