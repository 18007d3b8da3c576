// A data directory: its definition file, its systems, and what is said on stderr when one of them is broken.
#pragma once

#include <string>
#include <string_view>

#include "keeper/library.h"

namespace cli {

inline constexpr int codeNotListed = 93;
inline constexpr int heightModelFrom = 1000;  // statuses from here on concern the height model

// A file as messages name it: without a directory where that is the current one.
std::string in_directory(const std::string& directory, const std::string& name);

// "status 12: Lesefehler in ...", for a file as messages name it.
std::string status_text(int status, std::string_view fileName);

// The entry of a code; null if there is none. Of two the first counts.
const Entry* find_entry(const Definition& definition, int code);

// Reads DEFAULT; says on stderr what is wrong with it. Returned: whether it was read.
bool open_directory(const std::string& directory, Definition& definition);

// Reads one system of an open directory; says on stderr what is wrong with it. Returned: whether it was read.
bool open_system(const std::string& directory, const Definition& definition, int code, Role role,
                 System& system);

// Whether a system's file leaves out the second column: it then serves as a source only.
bool is_source_only(const System& source, const System& target);

}  // namespace cli
