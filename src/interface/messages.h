// The German message of a status code.
#pragma once

#include "base/status.h"
#include "interface/lagestatus.h"

namespace lagestatus {

// Writes the message for a status code, with its terminator.
//
// Given:    code      any integer
//           fileName  inserted unchanged, whatever its length; not read for messages that hold no file name
// Returned: buffer    the message; empty when the catalogue has none for the code
void write_message(Status code, const lagestatus_char* fileName, lagestatus_char* buffer) noexcept;

}  // namespace lagestatus
