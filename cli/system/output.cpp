#include "system/output.h"

#include <algorithm>
#include <cstdio>

namespace cli {

void put(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void complain(std::string_view text) {
    const std::string line = "lagestatus: " + std::string(text) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

std::size_t display_width(std::string_view utf8) {
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string padded(std::string text, std::size_t width) {
    text.append(width - std::min(width, display_width(text)), ' ');
    return text;
}

void print_table(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column + 1 < row.size(); ++column) {
            widths[column] = std::max(widths[column], display_width(row[column]));
        }
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += column + 1 < row.size() ? padded(row[column], widths[column] + 2) : row[column];
        }
        line.erase(line.find_last_not_of(' ') + 1);
        put(line + '\n');
    }
}

}  // namespace cli
