#include "system/progress.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "system/output.h"
#include "system/text.h"

namespace cli {
namespace {

constexpr std::chrono::milliseconds firstDelay{500};  // what is done sooner needs no bar
constexpr std::chrono::milliseconds interval{200};

std::string duration_text(double seconds) {
    constexpr double longest = 360000.0;  // 100 hours
    const auto whole = static_cast<int>(std::clamp(seconds, 0.0, longest));
    const auto two = [](int part) { return (part < 10 ? "0" : "") + std::to_string(part); };
    const std::string minutes =
        whole < 3600 ? std::to_string(whole / 60) : std::to_string(whole / 3600) + ":" + two(whole / 60 % 60);
    return minutes + ":" + two(whole % 60);
}

}  // namespace

Progress::Progress(bool wanted, std::uint64_t total)
    : enabled(wanted), totalBytes(total), begin(Clock::now()), next(begin + firstDelay) {}

Progress::~Progress() {
    clear();
}

void Progress::clear() {
    if (drawnWidth > 0) {
        const std::string wiped = '\r' + std::string(drawnWidth, ' ') + '\r';
        std::fputs(wiped.c_str(), stderr);
        drawnWidth = 0;
    }
}

void Progress::show(std::uint64_t bytes, std::uint64_t rows) {
    if (!enabled || Clock::now() < next) {
        return;
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    std::string text;
    if (totalBytes > 0) {
        constexpr int barWidth = 30;
        const double part = std::min(static_cast<double>(bytes) / static_cast<double>(totalBytes), 1.0);
        const auto full = static_cast<std::size_t>(part * barWidth);
        text += '[' + std::string(full, '#') + std::string(barWidth - full, '.') + "] " +
                fixed_text(part * 100.0, 0) + " %  ";
        if (part > 0.0) {
            text += duration_text(seconds / part - seconds) + " left  ";
        }
    }
    text +=
        std::to_string(rows) + " points, " + fixed_text(static_cast<double>(rows) / seconds, 0) + " a second";
    const std::size_t width = text.size();
    std::fputs(('\r' + padded(text, drawnWidth)).c_str(), stderr);
    drawnWidth = width;
    next = Clock::now() + interval;
}

}  // namespace cli
