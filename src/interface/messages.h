// The German message of a status code.
#pragma once

#include "base/status.h"

namespace lagestatus {

// Writes the message for a status code, with its terminator.
//
// Given:    code      any integer
//           fileName  inserted unchanged, whatever its length; not read for messages that hold no file name
// Returned: buffer    the message; empty when the catalogue has none for the code
void write_message(Status code, const char16_t* fileName, char16_t* buffer) noexcept;

}  // namespace lagestatus
