// Several doubles side by side: what the fast calculation is written over.
#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace lagestatus::fast {

// A register's worth of doubles, and of their bits.
template <int width>
struct Register;
#define LAGESTATUS_REGISTER(width)                                 \
    template <>                                                    \
    struct Register<width> {                                       \
        using Vector [[gnu::vector_size((width)*8)]] = double;     \
        using Bits [[gnu::vector_size((width)*8)]] = std::int64_t; \
    };
LAGESTATUS_REGISTER(2)
LAGESTATUS_REGISTER(4)
LAGESTATUS_REGISTER(8)
#undef LAGESTATUS_REGISTER

// count vectors of width doubles, each as wide as the instruction set's registers; several of them hide the latency of
// one another. Every operation is that of each double by itself: +, -, *, / and square root as IEEE 754 rounds them, so
// that the bits do not hang on the width. Everything is a template of width and count: each instruction set is compiled
// in a file of its own, and nothing compiled for one may be shared with another.
template <int width, int count>
struct Lanes {
    static constexpr int size = width * count;
    using Vector = typename Register<width>::Vector;
    using Bits = typename Register<width>::Bits;

    // All bits of a lane or none.
    struct Mask {
        Bits part[count];

        [[gnu::always_inline]] friend Mask operator&(Mask left, const Mask& right) noexcept {
            for (int i = 0; i < count; ++i) {
                left.part[i] &= right.part[i];
            }
            return left;
        }
        [[gnu::always_inline]] friend Mask operator|(Mask left, const Mask& right) noexcept {
            for (int i = 0; i < count; ++i) {
                left.part[i] |= right.part[i];
            }
            return left;
        }
        [[gnu::always_inline]] friend Mask operator~(Mask mask) noexcept {
            for (int i = 0; i < count; ++i) {
                mask.part[i] = ~mask.part[i];
            }
            return mask;
        }
        [[nodiscard, gnu::always_inline]] bool any() const noexcept {
            Bits all = part[0];
            for (int i = 1; i < count; ++i) {
                all |= part[i];
            }
#if defined(__AVX512F__)
            if constexpr (width == 8) {
                return _mm512_test_epi64_mask((__m512i)all, (__m512i)all) != 0;
            }
#endif
#if defined(__AVX__)
            if constexpr (width == 4) {
                return _mm256_movemask_pd((__m256d)all) != 0;
            }
#endif
#if defined(__SSE2__)
            if constexpr (width == 2) {
                return _mm_movemask_pd((__m128d)all) != 0;
            }
#endif
            std::int64_t found = 0;
            for (int lane = 0; lane < width; ++lane) {
                found |= all[lane];
            }
            return found != 0;
        }
    };

    Vector part[count];

    Lanes() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): a constant stands for itself in every lane
    [[gnu::always_inline]] Lanes(double value) noexcept {
        for (Vector& each : part) {
            each = value - Vector{};
        }
    }

    [[nodiscard, gnu::always_inline]] static Lanes load(const double* from) noexcept {
        Lanes lanes;
        for (Vector& each : lanes.part) {  // all at once GCC copies by halves, and then waits for them
            __builtin_memcpy(&each, from, sizeof each);
            from += width;
        }
        return lanes;
    }
    [[gnu::always_inline]] void store(double* to) const noexcept {
        for (const Vector& each : part) {
            __builtin_memcpy(to, &each, sizeof each);
            to += width;
        }
    }

#define LAGESTATUS_OPERATOR(sign)                                                                \
    [[gnu::always_inline]] friend Lanes operator sign(Lanes left, const Lanes& right) noexcept { \
        for (int i = 0; i < count; ++i) {                                                        \
            left.part[i] = left.part[i] sign right.part[i];                                      \
        }                                                                                        \
        return left;                                                                             \
    }
    LAGESTATUS_OPERATOR(+)
    LAGESTATUS_OPERATOR(-)
    LAGESTATUS_OPERATOR(*)
    LAGESTATUS_OPERATOR(/)
#undef LAGESTATUS_OPERATOR
#define LAGESTATUS_COMPARISON(sign)                                                                    \
    [[gnu::always_inline]] friend Mask operator sign(const Lanes& left, const Lanes& right) noexcept { \
        Mask mask;                                                                                     \
        for (int i = 0; i < count; ++i) {                                                              \
            mask.part[i] = (Bits)(left.part[i] sign right.part[i]);                                    \
        }                                                                                              \
        return mask;                                                                                   \
    }
    LAGESTATUS_COMPARISON(<)
    LAGESTATUS_COMPARISON(<=)
    LAGESTATUS_COMPARISON(>)
    LAGESTATUS_COMPARISON(>=)
#undef LAGESTATUS_COMPARISON
    [[gnu::always_inline]] Lanes operator-() const noexcept {
        Lanes negative;
        for (int i = 0; i < count; ++i) {
            negative.part[i] = -part[i];
        }
        return negative;
    }
};

// Where the mask is set the first, elsewhere the second.
template <int width, int count>
[[nodiscard, gnu::always_inline]] inline Lanes<width, count> select(
    const typename Lanes<width, count>::Mask& mask, Lanes<width, count> yes,
    const Lanes<width, count>& no) noexcept {
    for (int i = 0; i < count; ++i) {
        yes.part[i] = mask.part[i] ? yes.part[i] : no.part[i];
    }
    return yes;
}

template <int width, int count>
[[nodiscard, gnu::always_inline]] inline Lanes<width, count> square_root(Lanes<width, count> value) noexcept {
    for (int i = 0; i < count; ++i) {
#if defined(__AVX512F__)
        if constexpr (width == 8) {
            value.part[i] = _mm512_maskz_sqrt_pd(0xFF, value.part[i]);
            continue;
        }
#endif
#if defined(__AVX__)
        if constexpr (width == 4) {
            value.part[i] = _mm256_sqrt_pd(value.part[i]);
            continue;
        }
#endif
#if defined(__SSE2__)
        if constexpr (width == 2) {
            value.part[i] = _mm_sqrt_pd(value.part[i]);
            continue;
        }
#endif
        for (int lane = 0; lane < width; ++lane) {
            value.part[i][lane] = __builtin_sqrt(value.part[i][lane]);
        }
    }
    return value;
}

template <int width, int count>
[[nodiscard, gnu::always_inline]] inline Lanes<width, count> magnitude(Lanes<width, count> value) noexcept {
    using Bits = typename Lanes<width, count>::Bits;
    using Vector = typename Lanes<width, count>::Vector;
    for (int i = 0; i < count; ++i) {
        value.part[i] = (Vector)((Bits)value.part[i] & INT64_MAX);
    }
    return value;
}

// The first where the sign of the second is positive, else its negative.
template <int width, int count>
[[nodiscard, gnu::always_inline]] inline Lanes<width, count> signed_by(
    Lanes<width, count> value, const Lanes<width, count>& sign) noexcept {
    using Bits = typename Lanes<width, count>::Bits;
    using Vector = typename Lanes<width, count>::Vector;
    for (int i = 0; i < count; ++i) {
        value.part[i] = (Vector)((Bits)value.part[i] ^ ((Bits)sign.part[i] & INT64_MIN));
    }
    return value;
}

// The nearest integer, to even; for magnitudes below 2^51 in the environment of the library, which rounds to nearest.
template <int width, int count>
[[nodiscard, gnu::always_inline]] inline Lanes<width, count> nearest_integer(
    const Lanes<width, count>& value) noexcept {
    constexpr double shift = 6755399441055744.0;  // 1.5 * 2^52
    return (value + shift) - shift;
}

}  // namespace lagestatus::fast
