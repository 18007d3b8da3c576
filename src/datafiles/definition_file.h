// The definition file DEFAULT: which systems a data directory offers.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "base/fixed_text.h"
#include "base/status.h"
#include "datafiles/line_reader.h"

namespace lagestatus {

inline constexpr std::string_view definitionFileName = "DEFAULT";
inline constexpr std::size_t maxEntries = status::definitionEntries;
inline constexpr int noAuxiliary = -1;

// Longest directory and base name, with the terminator.
inline constexpr std::size_t nameSize = 100;

struct DefinitionEntry {
    int code = 0;
    int auxiliary = noAuxiliary;  // not interpreted; -1 when the entry gives none
    FixedText<nameSize> name;     // base name of the parameter file
};

struct DefinitionRecord {
    int announced = 0;         // entries, by the head line
    int flag = 0;              // the number behind that, 0 when there is none
    bool scrambled = false;    // flag 1: the parameter files are scrambled and end in .tr0
    int count = 0;             // entries announced, at most 100; 0 or less: none
    std::size_t complete = 0;  // entries read in full; equal to count on success when count is above 0
    std::array<DefinitionEntry, maxEntries> entries;

    // The entry of a code, of two the first; null if there is none.
    [[nodiscard]] const DefinitionEntry* find(int code) const noexcept;
};

// Reads the definition file.
//
// Given:    directory  at most 99 characters; "." for the current directory
// Returned: status     0; 1 not opened; 2 head line without an integer; 100 the file ends early; 600 + i and
//                      700 + i code or name of entry i (from 0) unreadable
//           record     on failure: what was read before it; after 1 and 2 only the starting values
[[nodiscard]] Status read_definition_file(std::string_view directory, DefinitionRecord& record) noexcept;

// The same from a reader of the open file, for callers that want to ask it where it stands.
[[nodiscard]] Status read_definition(LineReader& lines, DefinitionRecord& record) noexcept;

}  // namespace lagestatus
