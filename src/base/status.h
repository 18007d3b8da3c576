// Status codes: 0 is success, every other value names a failure. The texts are in interface/messages.cpp.
#pragma once

namespace lagestatus {

using Status = int;

namespace status {

inline constexpr Status ok = 0;

// Definition file DEFAULT. The two bases take the 0-based number of the entry whose line failed.
inline constexpr Status definitionFileNotOpened = 1;
inline constexpr Status definitionHead = 2;
inline constexpr Status definitionEntryCode = 600;
inline constexpr Status definitionEntryName = 700;

// Parameter files. The fields' own codes (8 to 48, and 70 to 89 for the second column) stand in the table of
// datafiles/parameter_file.cpp; those that are needed elsewhere have names here.
inline constexpr Status parameterFileNotOpened = 7;
inline constexpr Status codeUnreadable = 8;
inline constexpr Status codeDiffers = 9;
inline constexpr Status projectionKind = 12;

// A definition or parameter file that ends, or fails to be read, before the line that is due.
inline constexpr Status fileEnds = 100;

// Driver and pipeline.
inline constexpr Status noGeographicCoordinates = 90;
inline constexpr Status codeNotListed = 93;
inline constexpr Status heightModelNotOpened = 1110;

// trans_dll empties its result for the statuses 1 to lastWithoutResult; after those above it stays as it is.
inline constexpr Status lastWithoutResult = 999;

}  // namespace status
}  // namespace lagestatus
