// A bar on a terminal's standard error.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace cli {

class Progress {
  public:
    // wanted: whether there is a bar at all. total: bytes to read; 0 where that is not known.
    Progress(bool wanted, std::uint64_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    // What has been done until now; drawn a few times a second.
    void show(std::uint64_t bytes, std::uint64_t rows);

    // Takes the bar away, for what is to be written in its place.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    std::size_t drawnWidth = 0;  // of the bar on the terminal; 0: there is none
    bool enabled;
    std::uint64_t totalBytes;
    Clock::time_point begin;
    Clock::time_point next;
};

}  // namespace cli
