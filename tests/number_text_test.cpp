// Numbers in rows of text are those of the standard library, to the last bit and the last digit.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <random>
#include <string>

#include "points/number_text.h"

namespace {

std::string by_standard_library(double value, std::chars_format format, int decimals) {
    std::string text(400, ' ');
    char* const end = format == std::chars_format::fixed
                          ? std::to_chars(text.data(), text.data() + text.size(), value, format, decimals).ptr
                          : std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    text.resize(static_cast<std::size_t>(end - text.data()));
    return text;
}

void expect_same_text(double value) {
    for (int decimals = 0; decimals <= cli::mostDecimals; ++decimals) {
        std::string text(cli::longestNumber, 'x');
        text.resize(cli::write_number(text.data(), value, decimals, '.'));
        std::string expected = by_standard_library(value, std::chars_format::fixed, decimals);
        if (expected[0] == '-' && expected.find_first_not_of("-0.") == std::string::npos) {
            expected.erase(0, 1);
        }
        ASSERT_EQ(text, expected);
    }
}

void expect_same_number(const std::string& text, double expected) {
    double value = 0;
    ASSERT_TRUE(cli::read_number(text, '.', value)) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
}

TEST(NumberText, IsThatOfTheStandardLibrary) {
    std::mt19937_64 random(5);
    for (int round = 0; round < 40000; ++round) {
        const auto whole = static_cast<double>(static_cast<std::int64_t>(random() >> (random() % 64)));
        const double any = std::bit_cast<double>(random());
        const double shares[] = {whole / std::pow(10.0, static_cast<double>(random() % 20)),
                                 std::ldexp(whole, -static_cast<int>(random() % 120)),  // ties among them
                                 std::isfinite(any) ? any : 0.0};
        for (const double share : shares) {
            const double value = (random() & 1U) != 0 ? -share : share;
            for (const double each : {value, std::nextafter(value, 0.0)}) {
                if (round % 8 == 0) {
                    expect_same_text(each);
                }
                const std::string shortest = by_standard_library(each, std::chars_format::general, 0);
                expect_same_number(shortest, each);
                std::string fixed =
                    by_standard_library(each, std::chars_format::fixed, static_cast<int>(random() % 22));
                double expected = 0;
                std::from_chars(fixed.data(), fixed.data() + fixed.size(), expected);
                expect_same_number(fixed, expected);
            }
        }
    }
}

TEST(NumberText, TellsWhatIsNone) {
    for (const char* text : {"", "-", "+", ".", "-.", "1.2.3", "1,5", "1e", "0x10", "nan", "inf", "1e999",
                             "12a", "1 ", " 1", "--1", "+-1", "123456789.12345678x", "\xB2"}) {
        double value = 4711;
        EXPECT_FALSE(cli::read_number(text, '.', value)) << text;
        EXPECT_EQ(value, 4711);
    }
    double value = 0;
    EXPECT_TRUE(cli::read_number("5812561,25", ',', value) && value == 5812561.25);
    EXPECT_FALSE(cli::read_number("5812561.25", ',', value));
}

}  // namespace
