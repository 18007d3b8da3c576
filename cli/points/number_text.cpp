#include "points/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "system/text.h"

namespace cli {
namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::array powersOfTen = [] {
    std::array<std::uint64_t, 20> powers = {};
    std::uint64_t power = 1;
    for (std::uint64_t& each : powers) {
        each = power;
        power *= 10;
    }
    return powers;
}();

constexpr std::array exactPowersOfTen = [] {
    std::array<double, powersOfTen.size()> powers = {};
    std::copy(powersOfTen.begin(), powersOfTen.end(), powers.begin());
    return powers;
}();

// Eight digits, the first of them in the lowest byte, are worked on at once in one integer.
constexpr std::uint64_t everyByte = 0x0101'0101'0101'0101;

std::uint64_t load_eight(const char* from) {
    std::array<unsigned char, 8> bytes;
    std::memcpy(bytes.data(), from, bytes.size());
    std::uint64_t eight = 0;
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        eight |= std::uint64_t{bytes[place]} << (8 * place);
    }
    return eight;
}

void store_eight(char* to, std::uint64_t eight) {
    std::array<unsigned char, 8> bytes;
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        bytes[place] = static_cast<unsigned char>(eight >> (8 * place));
    }
    std::memcpy(to, bytes.data(), bytes.size());
}

// The number that eight bytes with the values of digits are.
std::uint64_t number_of_digits(std::uint64_t digits) {
    // Two neighbours become one of a hundred, then of ten thousand, then all of them the number.
    const std::uint64_t pairs = ((digits * (10 * 0x100 + 1)) >> 8) & 0x00FF'00FF'00FF'00FF;
    const std::uint64_t fours = ((pairs * (100 * 0x1'0000 + 1)) >> 16) & 0x0000'FFFF'0000'FFFF;
    return (fours * (10'000 * 0x1'0000'0000 + 1)) >> 32;
}

// The eight characters of a number below 10^8, zeros ahead. The way back.
std::uint64_t digits_of_number(std::uint64_t number) {
    // Quotients by a product and a shift, exact up to the largest numerator: 10^4 - 1 and 99.
    const std::uint64_t fours = number / 10'000 | (number % 10'000) << 32;
    const std::uint64_t hundreds = ((fours * 10'486) >> 20) & 0x0000'007F'0000'007F;
    const std::uint64_t pairs = hundreds | (fours - hundreds * 100) << 16;
    const std::uint64_t tens = ((pairs * 103) >> 10) & 0x000F'000F'000F'000F;
    return (tens | (pairs - tens * 10) << 8) + everyByte * '0';
}

// Reads a number by the standard library.
bool read_any_number(std::string_view text, char decimalMark, double& value) {
    std::string withPoint;
    if (decimalMark != '.') {
        if (text.find('.') != std::string_view::npos) {
            return false;
        }
        withPoint = text;
        std::replace(withPoint.begin(), withPoint.end(), decimalMark, '.');
        text = withPoint;
    }
    const std::optional<double> read = number_of(text);
    value = read.value_or(value);
    return read.has_value();
}

// Takes digits one after the other from a text.
class Digits {
  public:
    Digits(const char* first, const char* last) : at(first), begin(first), end(last) {}

    // Digits up to what is none. Returned: how many.
    std::size_t take() {
        const char* const from = at;
        for (std::size_t taken = 8; taken == 8 && at != end; at += taken) {
            const std::uint64_t values = next_eight() ^ (everyByte * '0');
            // The highest bit of a byte is set where it is no digit.
            const std::uint64_t others = (values | (values + everyByte * (0x7F - 9))) & (everyByte * 0x80);
            taken = others == 0 ? 8 : static_cast<std::size_t>(std::countr_zero(others)) / 8;
            if (taken > 0) {
                number = number * powersOfTen[taken] + number_of_digits(values << (64 - 8 * taken));
            }
        }
        return static_cast<std::size_t>(at - from);
    }

    const char* at;
    std::uint64_t number = 0;  // that all digits are; without meaning if there are more than 19

  private:
    // The next characters; zeros, which are no digits, behind the end.
    [[nodiscard]] std::uint64_t next_eight() const {
        const auto left = static_cast<std::size_t>(end - at);
        if (left >= 8) {
            return load_eight(at);
        }
        if (end - begin >= 8) {
            return load_eight(end - 8) >> (64 - 8 * left);
        }
        std::uint64_t characters = 0;
        for (std::size_t place = 0; place < left; ++place) {
            characters |= std::uint64_t{static_cast<unsigned char>(at[place])} << (8 * place);
        }
        return characters;
    }

    const char* begin;
    const char* end;
};

// How many decimal digits a number below 10^19 has; 0 has one.
std::size_t count_digits(std::uint64_t number) {
    // 1233 / 4096 is the logarithm of 2, nearly enough for 64 bits.
    const auto digits = static_cast<std::size_t>(std::bit_width(number | 1)) * 1233 / 4096;
    return digits + ((number | 1) >= powersOfTen[digits] ? 1 : 0);
}

// A number without its sign, rounded to some decimals.
struct Rounded {
    std::uint64_t whole = 0;     // below 2^53
    std::uint64_t decimals = 0;  // as a whole number
};

// Rounds a number exactly, ties to even. count: of decimals, at most 16. Nothing where it has more than 53 bits ahead of
// the point, or is none.
bool round_decimals(double value, std::size_t count, Rounded& rounded) {
    constexpr int mantissaBits = 52;
    constexpr std::uint64_t hiddenBit = std::uint64_t{1} << mantissaBits;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto exponent = static_cast<int>((bits >> mantissaBits) & 0x7FFU);
    // The number is mantissa / 2^shift.
    const std::uint64_t mantissa = (bits & (hiddenBit - 1)) | (exponent > 0 ? hiddenBit : 0);
    const int shift = 1075 - std::max(exponent, 1);
    if (shift <= 0) {
        return false;
    }
    // The product of what is behind the point and the power of ten is below 2^53 * 10^16 < 2^107: a number that is
    // smaller by 2^108 vanishes.
    if (shift > 108) {
        rounded = {};
        return true;
    }
    rounded.whole = shift > mantissaBits ? 0 : mantissa >> shift;
    const std::uint64_t fraction =
        shift > mantissaBits ? mantissa : mantissa & ((std::uint64_t{1} << shift) - 1);
    const Wide product = static_cast<Wide>(fraction) * powersOfTen[count];
    const Wide half = static_cast<Wide>(1) << (shift - 1);
    const Wide rest = product & (2 * half - 1);
    rounded.decimals = static_cast<std::uint64_t>(product >> shift);
    const bool odd = ((count > 0 ? rounded.decimals : rounded.whole) & 1U) != 0;
    rounded.decimals += rest > half || (rest == half && odd) ? 1 : 0;
    if (rounded.decimals == powersOfTen[count]) {
        rounded.decimals = 0;
        ++rounded.whole;
    }
    return true;
}

// Writes a number by the standard library.
std::size_t write_any_number(char* to, double value, int decimals, char decimalMark) {
    const char* const end =
        std::to_chars(to, to + longestNumber, value, std::chars_format::fixed, decimals).ptr;
    auto size = static_cast<std::size_t>(end - to);
    std::replace(to, to + size, '.', decimalMark);
    if (*to == '-' && std::string_view(to, size).find_first_not_of("-0.,") == std::string_view::npos) {
        std::memmove(to, to + 1, --size);
    }
    return size;
}

}  // namespace

// Digits and power of ten are exact as doubles, so their quotient is the rounded number (Clinger 1990, "How to read
// floating point numbers accurately", section 3). All else goes to the standard library.
bool read_number(std::string_view text, char decimalMark, double& value) {
    const bool hasSign = !text.empty() && (text.front() == '-' || text.front() == '+');
    const char* const end = text.data() + text.size();
    Digits scanner(text.data() + (hasSign ? 1 : 0), end);
    std::size_t digits = scanner.take();
    std::size_t decimals = 0;
    if (scanner.at != end && *scanner.at == decimalMark) {
        ++scanner.at;
        decimals = scanner.take();
        digits += decimals;
    }
    constexpr std::size_t mostDigits = 19;  // of any number below 2^64
    constexpr std::uint64_t largestExact = std::uint64_t{1} << 53;
    if (scanner.at == end && digits > 0 && digits <= mostDigits && scanner.number <= largestExact) {
        const double magnitude =
            static_cast<double>(static_cast<std::int64_t>(scanner.number)) / exactPowersOfTen[decimals];
        value = text.front() == '-' ? -magnitude : magnitude;
        return true;
    }
    return read_any_number(text, decimalMark, value);
}

std::size_t write_number(char* to, double value, int decimals, char decimalMark) {
    constexpr std::size_t most = 16;
    constexpr std::uint64_t eightDigits = 100'000'000;
    const auto behind = static_cast<std::size_t>(decimals);
    Rounded number;
    if (behind > most || !round_decimals(value, behind, number)) {
        return write_any_number(to, value, decimals, decimalMark);
    }
    char* at = to;
    if (std::signbit(value) && (number.whole | number.decimals) != 0) {
        *at++ = '-';
    }
    const std::size_t ahead = count_digits(number.whole);
    if (ahead > 8) {
        store_eight(at, digits_of_number(number.whole / eightDigits) >> (8 * (most - ahead)));
        store_eight(at + ahead - 8, digits_of_number(number.whole % eightDigits));
    } else {
        store_eight(at, digits_of_number(number.whole) >> (8 * (8 - ahead)));
    }
    at += ahead;
    if (behind > 8) {
        const std::uint64_t padded = number.decimals * powersOfTen[most - behind];
        store_eight(at + 1, digits_of_number(padded / eightDigits));
        store_eight(at + 9, digits_of_number(padded % eightDigits));
    } else if (behind > 0) {
        store_eight(at + 1, digits_of_number(number.decimals * powersOfTen[8 - behind]));
    }
    if (behind > 0) {
        *at = decimalMark;
        at += 1 + behind;
    }
    return static_cast<std::size_t>(at - to);
}

}  // namespace cli
