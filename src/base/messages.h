// The German message of a status code.
#pragma once

#include <string_view>

#include "base/status.h"

namespace lagestatus {

// A message in its parts, one behind the other, in characters that ISO 8859-1 has.
struct Message {
    std::u16string_view before = {};
    bool namesFile = false;  // the name of the file that the failure concerns stands here
    std::u16string_view behind = {};
    int number = 0;  // above 0: it stands here, in decimal
    std::u16string_view end = {};
};

// Given:    code  any integer
// Returned: its message; empty in all its parts when the catalogue has none
[[nodiscard]] Message message_of(Status code) noexcept;

}  // namespace lagestatus
