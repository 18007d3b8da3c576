/*
 * lagestatus: carries points between the coordinate systems (Lagestatus) of the German state surveys.
 *
 * This header is the manual of the library's interface. It reads as C11 and as C++.
 *
 * What the library is
 *   Each coordinate system has an integer code, its Lagestatus. The library knows no system by itself: on every
 *   call it reads what it needs from the text files of a data directory: DEFAULT, which lists the systems, one
 *   parameter file a system (.tra, or .tr0 with scrambled lines), and hoehe.ini, the height model.
 *   docs/data-files.md describes the files.
 *
 * Points and units
 *   A point is three doubles, a result four; [0] and [1] depend on the kind of system:
 *
 *     kind             [0]                      [1]                       [2]
 *     Geographisch     latitude, degrees        longitude, degrees        height, metres
 *     Geozentrisch     X, metres                Y, metres                 Z, metres
 *     Gauss-Krueger    northing X, metres       easting Y, metres         height, metres
 *     Soldner          northing X, metres       easting Y, metres         height, metres
 *
 *   Heights are ellipsoidal, on the ellipsoid of their side, or normal heights (Normalhoehe). The two differ by the
 *   height anomaly, which is taken from the height model: ellipsoidal = normal + anomaly. trans_dll computes the normal
 *   height of every point whose target is not geocentric, and puts it into result[3]; where none is computed, that is
 *   the height given. Given a normal height (letter N), result[2] is the ellipsoidal one and result[3] the one given;
 *   outside the Bessel datum it is found by iteration to 0.001 m. Towards a geocentric target a normal height is
 *   corrected only if the source lies in the Bessel datum; from any other it is taken as it is.
 *   A point whose height anomaly cannot be found (status 1000 and above) is complete but for that: it counts as 0.
 *
 *   A longitude that comes out of a datum transformation lies between -90 and 90 degrees; points beyond come back
 *   mirrored (as 180 - longitude in the east, -180 - longitude in the west).
 *
 *   Plane coordinates are those that the system itself writes, with all its constants. A Gauss-Krueger easting has
 *   the number of its strip in the millions: 3566003.66 lies 66003.66 m east of the central meridian of strip 3, if
 *   the additive constant is 500000. A system may be a whole family of strips (a longitude of origin above 360): the
 *   strip of a source is read from the easting, that of a target is the one whose central meridian is nearest (west
 *   of strip 0 the next one east of it). A system with a decadic complement d writes a small negative value as
 *   d + value.
 *   How accurate the projections are, and how far from the central meridian: docs/accuracy.md.
 *
 * Texts
 *   lagestatus_char is a 16-bit code unit; every text ends with a zero unit. Inside, all text is 8-bit: a unit
 *   going in gives its low 8 bits (a unit whose low 8 bits are zero ends the text), a character coming out is the
 *   unit of the same value. The texts of data files are ISO 8859-1, so 0xE4 in a file comes out as U+00E4. Path
 *   names are handed to the system as these 8-bit characters.
 *   A directory or file name takes at most 99 characters (299 for transr_dll); a longer one is never cut into
 *   another name but counts as a file that cannot be opened.
 *   "." is the current directory (for hoehe.ini the empty text is, too); to any other directory a backslash and the
 *   file name are appended. On Windows the 8-bit characters are those of Windows-1252, whatever code page is set (so
 *   a name with the euro sign is given with U+0080, its code there). Off Windows they are the bytes of the name, the
 *   backslash is a separator, and a file is found even when the case of its letters differs.
 *
 * Buffers
 *   All buffers are the caller's and must have at least the length given; no pointer may be NULL. Text buffers
 *   are always terminated; what stands behind the terminator is not defined. Unless said otherwise, outputs may
 *   not overlap inputs or each other. They may lie at any address: packed records need no care.
 *
 *     LAGESTATUS_NAME_SIZE        units of a system name, a directory or file name
 *     LAGESTATUS_ELLIPSOID_SIZE   units of an ellipsoid name
 *     LAGESTATUS_KIND_SIZE        units of a projection kind
 *     LAGESTATUS_RESULT_SIZE      doubles of a result
 *     LAGESTATUS_PARAMETER_COUNT  doubles of a parameter array
 *     LAGESTATUS_MAX_ENTRIES      ints of a code list or auxiliary list; slots of a list of file names
 *
 * Status
 *   0 is success, every positive value a failure; transfm_dll turns it into a German message.
 *
 *     1, 2, 600 to 799       definition file DEFAULT
 *     7 to 48, 70 to 89      parameter file
 *     100                    one of these ends, or cannot be read, before the line that is due
 *     12                     from the pipeline: a kind of projection that there is not
 *     14                     from the pipeline: a Gauss-Krueger target whose longitude of origin gives it no strip
 *                            (0, or a layout of width 0), or none that 32 bits can number for this longitude
 *     201 to 208             Soldner to geographic: a loop does not settle; 206 also: no finite result
 *     301 to 305             Gauss-Krueger to geographic; likewise 304
 *     401 to 405             geographic to Soldner; likewise 403
 *     501 to 503             geographic to Gauss-Krueger; likewise 501
 *     90                     no finite coordinates (arguments that are not finite, parameters that lead nowhere;
 *                            on the way to latitude and longitude points on the earth's axis)
 *     92                     a normal height is not found within 20 passes
 *     93                     a code is not listed in DEFAULT
 *     1000 + k               height model hoehe.ini: 1110 not opened; 1100 the key or a line is missing; 1027, 1028,
 *                            1127, 1128 a semi-axis; 1029 to 1048 the datum transformation; 1101 to 1105 the
 *                            fundamental point; 1106, 1107 the extent of the grid; 1108 the point lies outside; 1109
 *                            no value there; 1090 no finite position or height anomaly.
 *                            The point is there all the same, with a height anomaly of 0. Only where that is taken
 *                            in the Bessel datum between the two systems, 1110, 1100, 1027 and 1028 leave 0.0, 0.0,
 *                            0.0: when both lie outside, when a normal height is given outside, and from a geocentric
 *                            system in it to one on another ellipsoid
 *
 * Threads
 *   Nothing survives a call and nothing is shared between calls: no state, no cache, no heap memory, no locale.
 *   So a height anomaly costs the reading of hoehe.ini from its start to the row of the point, southernmost first.
 *   Any number of threads may call at once, as long as they do not share output buffers. A call takes less than
 *   128 KiB of stack.
 *
 * Host programs
 *   Rounding mode, flush-to-zero, trapping of floating-point exceptions (Delphi's default), precision of the x87 and
 *   locale may be what they are: every call computes in an environment of its own, with the same bits in every host,
 *   and leaves the host's as it was, raised flags included.
 *   Windows: one calling convention, undecorated names, no structures, int of 32 bits; lagestatus.lib is the import
 *   library for Visual C++ and for MinGW. lagestatus.dll needs 64-bit Windows 7 or later and nothing beside it.
 *
 * Not promised
 *   The parameters passed to transr_dll are used unchanged and unchecked. A data file that is being written or
 *   replaced while a call reads it gives a status, with any of the outputs described for it, or the result of what
 *   was read.
 *   The same inputs give the same bits on the same machine with the same C library; the mathematical
 *   functions of another one may differ in the last bit.
 */
#ifndef LAGESTATUS_H
#define LAGESTATUS_H

/* Visual C++ and others on Windows: define LAGESTATUS_USE_WCHAR ahead of this header to pass L"..." and
 * std::wstring. */
#if defined(__cplusplus) && defined(_WIN32) && defined(LAGESTATUS_USE_WCHAR)
typedef wchar_t lagestatus_char;
#elif defined(__cplusplus)
typedef char16_t lagestatus_char;
#else
#include <uchar.h>
typedef char16_t lagestatus_char;
#endif

#define LAGESTATUS_NAME_SIZE 100
#define LAGESTATUS_ELLIPSOID_SIZE 11
#define LAGESTATUS_KIND_SIZE 14
#define LAGESTATUS_RESULT_SIZE 4
#define LAGESTATUS_PARAMETER_COUNT 36
#define LAGESTATUS_MAX_ENTRIES 100

#if defined(_WIN32) && defined(LAGESTATUS_BUILD)
#define LAGESTATUS_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(LAGESTATUS_STATIC)
#define LAGESTATUS_API __declspec(dllimport)
#elif defined(__GNUC__)
#define LAGESTATUS_API __attribute__((visibility("default")))
#else
#define LAGESTATUS_API
#endif

/* The calling convention, whatever the host is compiled with. */
#if defined(_WIN32)
#define LAGESTATUS_CALL __cdecl
#else
#define LAGESTATUS_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Checks that the library is bound and that doubles and pointers cross the boundary intact.
 *
 * Given:    a, b, c
 * Returned: out      4 doubles: a, b, c, c
 *           status   0, always
 */
LAGESTATUS_API int LAGESTATUS_CALL test_dll(double a, double b, double c, double* out);

/*
 * Transforms one point between two systems of a data directory.
 *
 * Given:    coord1, coord2, height
 *                        the point in the source system
 *           sourceCode, targetCode
 *                        codes listed in DEFAULT; of two entries with one code the first counts
 *           dataDir      data directory
 *           heightMode   one character: 'N' or 'n', the height is a normal height; any other, it is ellipsoidal.
 *                        A geocentric source has no height: the letter is then ignored
 * Returned: result       4 doubles; all 0.0 after the statuses 1 to 999; after those above as transr_dll leaves it
 *           sourceName, targetName, sourceEllipsoid, targetEllipsoid, sourceKind, targetKind
 *                        as far as they were read, empty before that
 *           auxiliary    2 ints: the auxiliary numbers of both entries in DEFAULT; -1 where there is none or the
 *                        entry was not reached
 *           status       0; of DEFAULT 1, 2, 100, 600 to 799; 93; of the source's file 7 to 48, 100; of the
 *                        target's 7 to 28, 70 to 89, 100; then those of transr_dll
 *
 * The files are read in the order DEFAULT, source, target, hoehe.ini; the first failure ends the call, but for 1000 + k
 * as above.
 */
LAGESTATUS_API int LAGESTATUS_CALL trans_dll(double coord1, double coord2, double height, int sourceCode,
                                             int targetCode, const lagestatus_char* dataDir,
                                             const char* heightMode, double* result,
                                             lagestatus_char* sourceName, int* auxiliary,
                                             lagestatus_char* sourceEllipsoid, lagestatus_char* sourceKind,
                                             lagestatus_char* targetName, lagestatus_char* targetEllipsoid,
                                             lagestatus_char* targetKind);

/*
 * Describes a system as the source of a transformation.
 *
 * Given:    dataDir      data directory
 *           fileBase     base name of the parameter file as translD_dll lists it, without extension
 *           scrambled    1: fileBase.tr0 with scrambled lines; any other value: fileBase.tra
 *           code         the code that the file must declare
 * Returned: systemName, ellipsoidName, projectionKind
 *                        as far as they were read, empty before that. Note their order
 *           parameters   36 doubles, written on success only
 *           status       0; 7 not opened; 100 too short; 8 to 48 a field unreadable or out of range (9: the file
 *                        declares another code)
 *
 * The parameter array, which a caller may keep and pass to transr_dll later; lengths in metres:
 *
 *     0            latitude of origin, radians
 *     1            longitude of origin, degrees; above 360 a layout of strips: 600 + offset, and the width in degrees
 *                  as the tenths digit; strip z has the central meridian width z + offset
 *     2, 3         second shift in Y, in X
 *     4            decadic complement (0: not used)
 *     5            scale of the meridian, a plain factor
 *     6, 7         shift in Y, in X
 *     8            rotation of the plane system, a dimensionless coefficient
 *     9, 10        additive constant in Y, in X
 *     11, 12       origin coordinate in Y, in X
 *     13           scale of the plane system, a plain factor (exactly 1.0: not used)
 *     14, 15, 16   translation in Y, X, Z (mind the order)
 *     17, 18, 19   rotation about X, Y, Z, radians; a positive angle turns the coordinate frame
 *     20           scale of the datum transformation, a plain factor
 *     21, 22, 23   reduction point in Y, X, Z (mind the order)
 *     24, 25       semi-major and semi-minor axis of the ellipsoid
 *     26 to 35     the same as 14 to 23 for the intermediate system
 *
 * Slots 14 to 23 and 26 to 35 lead from the system into the Bessel datum when read by transla_dll, and from the
 * Bessel datum into the system when read by translz_dll. All others are the same.
 */
LAGESTATUS_API int LAGESTATUS_CALL transla_dll(const lagestatus_char* dataDir,
                                               const lagestatus_char* fileBase, int scrambled, int code,
                                               lagestatus_char* systemName, lagestatus_char* ellipsoidName,
                                               lagestatus_char* projectionKind, double* parameters);

/*
 * Describes a system as the target of a transformation: as transla_dll, with the datum transformation out of the
 * Bessel datum.
 *
 * Returned: zoneNumber   the number written behind the longitude of origin; 0 when there is none or it was not
 *                        reached
 *           status       0; 7, 100, 8 to 28 as for transla_dll; 70 to 89 for the datum transformation
 */
LAGESTATUS_API int LAGESTATUS_CALL translz_dll(const lagestatus_char* dataDir,
                                               const lagestatus_char* fileBase, int scrambled, int code,
                                               lagestatus_char* systemName, lagestatus_char* ellipsoidName,
                                               lagestatus_char* projectionKind, int* zoneNumber,
                                               double* parameters);

/*
 * Lists the systems of a data directory.
 *
 * Given:    dataDir      data directory
 * Returned: scrambled    1: the parameter files are scrambled (.tr0); else 0
 *           count        number of entries that DEFAULT announces, at most 100; 0 or less: none
 *           codes        100 ints: code of each entry
 *           auxiliary    100 ints: auxiliary number of each entry, -1 where it gives none
 *           fileNames    100 slots of 100 units: base name of each entry's parameter file
 *           status       0; 1 DEFAULT cannot be opened; 2 its head line holds no number; 100 it ends early;
 *                        600 + i, 700 + i: code or file name of entry i (from 0) unreadable
 *
 * After a failure at entry i the entries 0 to i - 1 are complete; after 1 and 2 count and scrambled are 0.
 */
LAGESTATUS_API int LAGESTATUS_CALL translD_dll(const lagestatus_char* dataDir, int* scrambled, int* count,
                                               int* codes, int* auxiliary, lagestatus_char* fileNames);

/*
 * Transforms one point between two systems that the caller holds the descriptions of. Reads no parameter file, and
 * hoehe.ini only where a normal height is given or wanted, or the target lies in the Bessel datum and the source
 * outside it or is geocentric.
 *
 * Given:    point        3 doubles, in the source system
 *           sourceKind, targetKind
 *                        begin with Geographisch, Geozentrisch, Gauss-Krueger or Soldner; 14 units are read
 *           sourceEllipsoid, targetEllipsoid
 *                        11 units are read. A name that begins with "Bessel" marks a system in the Bessel datum,
 *                        which needs no datum transformation; neither do two systems with equal names
 *           sourceParameters
 *                        36 doubles as from transla_dll
 *           targetParameters
 *                        36 doubles as from translz_dll
 *           zoneNumber   of the target, as from translz_dll; written before the easting of a Gauss-Krueger target
 *                        with one meridian, not used for any other
 *           sourceHeightFlag
 *                        -1: point[2] is a normal height; any other value: ellipsoidal
 *           targetHeightFlag
 *                        -1: a normal height is wanted in result[3], and one given outside the Bessel datum is
 *                        corrected; any other value: neither. trans_dll sets it for targets that are not geocentric
 *           dataDir      where the height model lies; at most 299 characters
 * Returned: result       4 doubles; may be the same memory as point. After a failure 0.0, 0.0, 0.0 and point[2], or
 *                        the normal height if it was found before; with 1000 + k the point (see above)
 *           status       0; 12, 14, 90, 92, 201 to 208, 301 to 305, 401 to 405, 501 to 503; 1000 + k (see above)
 */
LAGESTATUS_API int LAGESTATUS_CALL
transr_dll(const double* point, const lagestatus_char* sourceKind, const lagestatus_char* targetKind,
           double* result, const lagestatus_char* sourceEllipsoid, const double* sourceParameters,
           const lagestatus_char* targetEllipsoid, const double* targetParameters, int zoneNumber,
           int sourceHeightFlag, int targetHeightFlag, const lagestatus_char* dataDir);

/*
 * Writes the German message for a status code.
 *
 * Given:    code         any status
 *           fileName     the file that the failure concerns, as it is to be shown: DEFAULT for 1, 2, 600 to 799;
 *                        the parameter file for 7 to 48 and 70 to 89; the file that ended for 100; hoehe.ini from
 *                        1000. Inserted unchanged; not read for messages that name no file
 * Returned: buffer       129 units for messages without a file name, 91 plus the length of fileName for those
 *                        with one; the empty text for a code without a message
 */
LAGESTATUS_API void LAGESTATUS_CALL transfm_dll(int code, const lagestatus_char* fileName,
                                                lagestatus_char* buffer);

#ifdef __cplusplus
}
#endif

#endif
