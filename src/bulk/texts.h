// Texts for people, in UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "base/status.h"

namespace lagestatus {

// Text of a data file (ISO 8859-1). Its control characters, which must not reach a terminal, are replaced.
[[nodiscard]] std::string utf8_of(std::string_view latin1, std::string_view replacement = "\uFFFD");

// The German message for a status, fileName inserted where it names a file; empty if it has none.
[[nodiscard]] std::string message_text(Status status, std::string_view fileName);

}  // namespace lagestatus
