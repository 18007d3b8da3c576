// Values in the caller's memory. It may lie at any address: packed records of the host know no alignment.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace lagestatus {

// The element of an array of T at index.
template <typename T>
[[nodiscard]] T load(const void* array, std::size_t index = 0) noexcept {
    T value;
    std::memcpy(&value, static_cast<const char*>(array) + index * sizeof(T), sizeof(T));
    return value;
}

template <typename T, std::size_t N>
[[nodiscard]] std::array<T, N> load_array(const void* array) noexcept {
    return load<std::array<T, N>>(array);
}

// Sets the element of an array of T at index. T is named by the caller, so that no conversion goes unseen.
template <typename T>
void store(void* array, std::size_t index, std::type_identity_t<T> value) noexcept {
    constexpr std::size_t size = sizeof(T);  // NOLINT(bugprone-sizeof-expression): also of pointers
    std::memcpy(static_cast<char*>(array) + index * size, &value, size);
}

template <typename T, std::size_t N>
void store_array(void* array, const std::array<T, N>& values) noexcept {
    std::memcpy(array, values.data(), sizeof(values));
}

}  // namespace lagestatus
