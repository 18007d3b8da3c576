// What is wrong with a data directory, and what a data keeper may want to know besides.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Findings of one section, grouped by their kind. Of each kind only the first are kept, the others counted.
class Findings {
  public:
    void defect(std::string_view kind, const std::string& text) { add(true, kind, text); }
    void note(std::string_view kind, const std::string& text) { add(false, kind, text); }

    [[nodiscard]] std::size_t defects() const;
    void print() const;

  private:
    struct Group {
        bool isDefect;
        std::string kind;
        std::vector<std::string> texts;
        std::size_t count;
    };
    void add(bool isDefect, std::string_view kind, const std::string& text);

    std::vector<Group> groups;
};

}  // namespace cli
