// Status codes: 0 is success, every other value names a failure. The texts are in base/messages.cpp.
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

// One code for each of the entries that a definition file can have.
inline constexpr Status definitionEntries = 100;

// Parameter files. The fields' own codes (8 to 48) stand in the table of datafiles/parameter_file.h; those that are
// needed elsewhere have names here. The two-column fields, 29 to 48, have theirs for the second column 41 above.
inline constexpr Status parameterFileNotOpened = 7;
inline constexpr Status codeUnreadable = 8;
inline constexpr Status codeDiffers = 9;
inline constexpr Status projectionKind = 12;
// Also of the pipeline: a zone layout that gives a target no zone.
inline constexpr Status longitudeOfOrigin = 14;
inline constexpr Status firstTwoColumns = 29;
inline constexpr Status lastTwoColumns = 48;
inline constexpr Status secondColumn = 41;

// A data file that ends, or fails to be read, before the line that is due.
inline constexpr Status fileEnds = 100;

// Driver and pipeline.
inline constexpr Status noGeographicCoordinates = 90;
inline constexpr Status heightIteration = 92;
inline constexpr Status codeNotListed = 93;

// Height model, as it is read; the pipeline adds heightModel to what the height anomaly returns. The codes of the other
// header lines stand in the table of heights/height_model_file.cpp.
inline constexpr Status longitudeRange = 106;
inline constexpr Status latitudeRange = 107;
inline constexpr Status outsideHeightModel = 108;
inline constexpr Status gridValue = 109;
inline constexpr Status heightModelNotOpened = 110;
inline constexpr Status heightModel = 1000;

// Projections, by routine. Beside the loop that does not settle, 206, 304, 403 and 501 stand for results that are not
// finite.
inline constexpr Status soldnerToGeoEccentricity = 201;
inline constexpr Status soldnerToGeoArc = 202;
inline constexpr Status soldnerToGeoFootpointArc = 203;
inline constexpr Status soldnerToGeoFootpoint = 204;
inline constexpr Status soldnerToGeoCircuit = 205;
inline constexpr Status soldnerToGeoSigma = 206;
inline constexpr Status soldnerToGeoLongitude = 207;
inline constexpr Status soldnerToGeoQuarter = 208;
inline constexpr Status kruegerToGeoEccentricity = 301;
inline constexpr Status kruegerToGeoArc = 302;
inline constexpr Status kruegerToGeoSeries = 303;
inline constexpr Status kruegerToGeoLatitude = 304;
inline constexpr Status kruegerToGeoPhi = 305;
inline constexpr Status geoToSoldnerEccentricity = 401;
inline constexpr Status geoToSoldnerArc = 402;
inline constexpr Status geoToSoldnerFootpoint = 403;
inline constexpr Status geoToSoldnerY = 404;
inline constexpr Status geoToSoldnerFootpointArc = 405;
inline constexpr Status geoToKruegerCoordinates = 501;
inline constexpr Status geoToKruegerEccentricity = 502;
inline constexpr Status geoToKruegerArc = 503;

// trans_dll empties its result for the statuses 1 to lastWithoutResult; after those above it stays as it is.
inline constexpr Status lastWithoutResult = 999;

}  // namespace status
}  // namespace lagestatus
