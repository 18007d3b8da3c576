/*
 * lagestatus_bulk: many points between the coordinate systems (Lagestatus) of the German state surveys.
 *
 * This header is the manual of the interface. It reads as C11 and as C++; lagestatus.hpp has classes on it.
 *
 * What it adds to lagestatus.h
 *   The seven functions there read their files at every call. Here a data directory is read once, a transformation is
 *   prepared once, and arrays of points go through it, at a few microseconds a point, with normal heights too. Systems,
 *   kinds, units, plane coordinates, longitudes and statuses are those that lagestatus.h describes, and so are the
 *   results, bit for bit, but for what "The same as trans_dll" says below.
 *
 *     lagestatus_directory_open        a data directory
 *     lagestatus_directory_...         its systems, its height model, what is wrong with them
 *     lagestatus_transformation_open   from one of its systems to another, by options
 *     lagestatus_transform             any number of points, as often as needed
 *     ..._close                        both
 *
 * A whole program
 *     lagestatus_directory* directory;
 *     lagestatus_transformation* transformation;
 *     lagestatus_failure failure;
 *     double northing[2] = {5808000.0, 5812000.0}, easting[2] = {4590000.0, 4595000.0}, height[2] = {80.0, 90.0};
 *     const double* input[3] = {northing, easting, height};
 *     double* output[4] = {northing, easting, height, NULL};
 *     int status[2];
 *
 *     if (lagestatus_directory_open("data/sample", 0, &directory, &failure) != 0 ||
 *         lagestatus_transformation_open(directory, 103, 203, NULL, &transformation, &failure) != 0) {
 *         printf("%s (%s, line %lld)\n", failure.message, failure.file, (long long)failure.line);
 *         return 1;
 *     }
 *     lagestatus_transform(transformation, 2, input, NULL, output, NULL, status, NULL);
 *     lagestatus_transformation_close(transformation);
 *     lagestatus_directory_close(directory);
 *
 * Texts
 *   Every text is UTF-8, on Windows too, with a zero byte at its end. Names in data files are read as ISO 8859-1, and
 *   are shown so.
 *
 * Status
 *   0 is success, positive values are those of lagestatus.h. Of this interface's own:
 *
 *     LAGESTATUS_ARGUMENT      a pointer that may not be null, a size, option or combination that there is not
 *     LAGESTATUS_MEMORY        no memory; nothing was changed or kept
 *     LAGESTATUS_UNAVAILABLE   an option that this version has not
 *
 * Ownership
 *   A directory and a transformation belong to whoever opened them, and are closed once. They may be closed in any
 *   order, at any time when no call uses them: a transformation keeps what it needs of its directory. Closing null
 *   does nothing. Texts that a function points to belong to the directory.
 *
 * Files
 *   lagestatus_directory_open reads DEFAULT. A parameter file is read when its system is first listed or used, once as
 *   a source and once as a target; the height model when a transformation first needs normal heights, or is asked for;
 *   all of it at once with LAGESTATUS_READ_NOW. Nothing is read a second time: what changes on the disk is not seen by
 *   a directory that has read it. The height model takes 8 bytes of memory a value, about as much as its file has.
 *   lagestatus_transform opens no file and allocates nothing.
 *
 * Threads
 *   Any number of threads may use one directory or one transformation at once, as long as their outputs are apart.
 *
 * Host programs
 *   No exception leaves a function, nothing is printed, the locale plays no part. Calls that compute do so in a
 *   floating-point environment of their own and leave the host's as it was. Memory may lie at any address.
 *
 * The same as trans_dll
 *   With heights wanted BOTH, a point's status and results are those of trans_dll with the letter e or N, bit for bit,
 *   for every pair of systems. By design these differ:
 *     - The files are those of the time when they were read, not of the call.
 *     - What cannot be read (DEFAULT, a code, a parameter file) is told when the directory or the transformation is
 *       opened, by the status that trans_dll would give. Parameters that can be read but lead nowhere fail the points.
 *     - Where trans_dll leaves zeros or a height without its height anomaly, there is NaN here. A status of 1000 and
 *       above leaves the place whole, also where trans_dll gives none: only heights are lost (see below).
 *     - Heights wanted ELLIPSOIDAL or NONE: a normal height that nobody gave or wants is not computed and cannot fail.
 *     - Normal heights towards a geocentric system, with other than BOTH: they are made ellipsoidal from every source;
 *       trans_dll, and BOTH, take them as they are where the source lies outside the Bessel datum.
 */
#ifndef LAGESTATUS_BULK_H
#define LAGESTATUS_BULK_H

#include <stddef.h> /* NOLINT(modernize-deprecated-headers): C reads this, too */
#include <stdint.h> /* NOLINT(modernize-deprecated-headers) */

#if defined(_WIN32) && defined(LAGESTATUS_BULK_BUILD)
#define LAGESTATUS_BULK_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(LAGESTATUS_STATIC)
#define LAGESTATUS_BULK_API __declspec(dllimport)
#elif defined(__GNUC__)
#define LAGESTATUS_BULK_API __attribute__((visibility("default")))
#else
#define LAGESTATUS_BULK_API
#endif

/* The calling convention, whatever the host is compiled with. */
#ifndef LAGESTATUS_CALL
#if defined(_WIN32)
#define LAGESTATUS_CALL __cdecl
#else
#define LAGESTATUS_CALL
#endif
#endif

#define LAGESTATUS_PATH_MAX 299

#define LAGESTATUS_ARGUMENT (-1)
#define LAGESTATUS_MEMORY (-2)
#define LAGESTATUS_UNAVAILABLE (-3)

#ifdef __cplusplus
extern "C" {
#endif

typedef struct lagestatus_directory lagestatus_directory;
typedef struct lagestatus_transformation lagestatus_transformation;

/* Why a call failed. Filled by every function that takes one, on success with zeros and empty texts. */
typedef struct lagestatus_failure {
    int status;         /* the one returned */
    int reserved;       /* 0 */
    int64_t line;       /* of the file, from 1; 0 where the failure concerns no line */
    char file[640];     /* path of the file concerned, as it is shown; empty where there is none */
    char text[320];     /* of that line, as it was read, cut to what fits; empty where there is none */
    char message[1280]; /* a German sentence, with the file where it concerns one */
} lagestatus_failure;

/* Flags of lagestatus_directory_open. */
#define LAGESTATUS_READ_NOW 1

/*
 * Opens a data directory and reads its DEFAULT.
 *
 * Given:    path       1 to LAGESTATUS_PATH_MAX bytes; "." is the current directory
 *           flags      0, or LAGESTATUS_READ_NOW: parameter files and height model are read at once; what is wrong with
 *                      them is told when it is asked for, as it is without
 *           failure    may be null
 * Returned: status     0; 1, 2, 100, 600 to 799 DEFAULT; LAGESTATUS_ARGUMENT, LAGESTATUS_MEMORY
 *           directory  null after a failure
 */
LAGESTATUS_BULK_API int LAGESTATUS_CALL lagestatus_directory_open(const char* path, int flags,
                                                                  lagestatus_directory** directory,
                                                                  lagestatus_failure* failure);

LAGESTATUS_BULK_API void LAGESTATUS_CALL lagestatus_directory_close(lagestatus_directory* directory);

/* Kinds of systems. */
#define LAGESTATUS_KIND_UNKNOWN 0
#define LAGESTATUS_KIND_SOLDNER 1
#define LAGESTATUS_KIND_GAUSS_KRUEGER 2
#define LAGESTATUS_KIND_GEOGRAPHIC 3
#define LAGESTATUS_KIND_GEOCENTRIC 4

/* One system of a directory. Later versions may add members at its end. */
typedef struct lagestatus_system {
    size_t size;            /* set by the caller: sizeof(lagestatus_system) */
    int code;               /* its Lagestatus */
    int auxiliary;          /* number behind the code in DEFAULT; -1 where there is none */
    int sourceStatus;       /* what its parameter file gives when it is read for a source, 0 if it serves, */
    int targetStatus;       /* and for a target; see lagestatus_directory_read */
    int kind;               /* LAGESTATUS_KIND_... */
    int inBesselDatum;      /* 1: it needs no datum transformation into the hub; else 0 */
    int hasStrips;          /* 1: a family of strips, whose number leads the easting; else 0 */
    int zoneNumber;         /* of one meridian: the number in front of its eastings; 0: none */
    int64_t stripWidth;     /* degrees; the central meridian of strip z is stripWidth * z + stripOffset */
    int64_t stripOffset;    /* degrees */
    double centralMeridian; /* degrees, where there are no strips; else 0 */
    double semiMajor;       /* of the ellipsoid, metres */
    double semiMinor;
    const char* name;     /* texts as far as they were read, else empty; */
    const char* kindName; /* they belong to the directory */
    const char* ellipsoid;
    const char* file; /* path of the parameter file, as it is shown */
} lagestatus_system;

/* How many systems DEFAULT lists; 0 for null. */
LAGESTATUS_BULK_API size_t LAGESTATUS_CALL lagestatus_directory_count(const lagestatus_directory* directory);

/*
 * Tells of one system.
 *
 * Given:    index   below lagestatus_directory_count, in the order of DEFAULT
 *           system  with its size
 * Returned: status  0, also where the system's own statuses are not; LAGESTATUS_ARGUMENT, LAGESTATUS_MEMORY
 *           system  unchanged after a failure
 */
LAGESTATUS_BULK_API int LAGESTATUS_CALL lagestatus_directory_system(const lagestatus_directory* directory,
                                                                    size_t index, lagestatus_system* system);

/* Roles of a system. */
#define LAGESTATUS_SOURCE 0
#define LAGESTATUS_TARGET 1

/*
 * Reads a system's parameter file for a role, if that was not done before, and says what is wrong with it.
 *
 * Returned: status   0; 93 the code is not listed; 7 to 48, 70 to 89, 100 the parameter file; LAGESTATUS_ARGUMENT,
 *                    LAGESTATUS_MEMORY
 *           failure  may be null
 */
LAGESTATUS_BULK_API int LAGESTATUS_CALL lagestatus_directory_read(const lagestatus_directory* directory,
                                                                  int code, int role,
                                                                  lagestatus_failure* failure);

/* The height model of a directory. Later versions may add members at its end. */
typedef struct lagestatus_height_model {
    size_t size;          /* set by the caller: sizeof(lagestatus_height_model) */
    int64_t columns;      /* of the grid, from west to east */
    int64_t rows;         /* from south to north */
    int64_t values;       /* that the file has a place for in its lines: seven each */
    int64_t memory;       /* bytes that it takes */
    double west, east;    /* degrees: longitudes of the first column and the end of the grid, */
    double south, north;  /* latitudes of the first row and the end of the grid */
    double columnSpacing; /* degrees */
    double rowSpacing;
} lagestatus_height_model;

/*
 * Reads the height model, if that was not done before, and says what is wrong with its head, or that it cannot be read
 * to its end.
 *
 * Given:    model    with its size; may be null
 *           failure  may be null
 * Returned: status   0, also for a file without a data line (height anomalies are 0 in the Bessel datum, 1100 between
 *                    systems outside); 1110, 1100, 1027 to 1048,
 *                    1101 to 1107, 1127, 1128; LAGESTATUS_ARGUMENT, LAGESTATUS_MEMORY. A grid that ends early or lacks
 *                    values fails the points that need them, not this function
 *           model    unchanged after a failure
 */
LAGESTATUS_BULK_API int LAGESTATUS_CALL lagestatus_directory_height_model(
    const lagestatus_directory* directory, lagestatus_height_model* model, lagestatus_failure* failure);

/* Heights given: ELLIPSOIDAL, NONE, NORMAL; wanted: all four. */
#define LAGESTATUS_HEIGHT_ELLIPSOIDAL 0
#define LAGESTATUS_HEIGHT_NONE 1
#define LAGESTATUS_HEIGHT_NORMAL 2
#define LAGESTATUS_HEIGHT_BOTH 3

/* Order of the first two coordinates of a system that is not geocentric. */
#define LAGESTATUS_AXES_AS_SYSTEM 0     /* northing, easting; latitude, longitude */
#define LAGESTATUS_AXES_EASTING_FIRST 1 /* easting, northing; longitude, latitude */

#define LAGESTATUS_REFERENCE 0
#define LAGESTATUS_FAST 1

/*
 * How points are to be carried. All members but size may be 0. Later versions may add members at its end.
 *
 *   heightGiven     what the third column of the input holds. NONE: it is not read, no point has a height, and without
 *                   a default one it counts as 0. The Z of a geocentric source is no height: this is nothing to it
 *   heightWanted    ELLIPSOIDAL: in the third column of the output; NORMAL: in the fourth; BOTH: in both; NONE: in
 *                   neither. The Z of a geocentric target is always written; it has no NORMAL height alone, and with
 *                   BOTH the fourth column is the third one given, as trans_dll has it. Elsewhere a height that is
 *                   wanted must be given
 *   calculation     LAGESTATUS_REFERENCE: the bits of the seven functions. LAGESTATUS_FAST: the same statuses, and
 *                   results within 10 nm of the truth (Soldner 20 nm; within 20 degrees of the meridian and up to 85
 *                   degrees of latitude), which the others are not: some micrometres from those, at most 0.3 mm where
 *                   Soldner coordinates play a part. The same bits on every machine; but points and systems that it
 *                   cannot serve get the results of the reference calculation. The environment variable
 *                   LAGESTATUS_INSTRUCTIONS (baseline, avx2, avx512; all else is ignored), read when the library is
 *                   loaded, keeps it from wider instructions
 *   defaultHeight   for points without a height, which are counted: those whose height is NaN (without a default one
 *                   they fail with 90), or all where none is given. Normal if heightGiven is NORMAL, else ellipsoidal
 */
typedef struct lagestatus_options {
    size_t size;          /* set by the caller: sizeof(lagestatus_options) */
    int heightGiven;      /* LAGESTATUS_HEIGHT_... */
    int heightWanted;     /* LAGESTATUS_HEIGHT_... */
    int sourceAxes;       /* LAGESTATUS_AXES_... */
    int targetAxes;       /* LAGESTATUS_AXES_... */
    int calculation;      /* LAGESTATUS_REFERENCE, LAGESTATUS_FAST */
    int hasDefaultHeight; /* 0 or 1 */
    double defaultHeight; /* metres; finite */
} lagestatus_options;

/*
 * Prepares the way from one system of a directory to another.
 *
 * Given:    source, target   codes of the directory
 *           options          null: all as if 0
 *           failure          may be null
 * Returned: status           0; 93 a code is not listed; those of lagestatus_directory_read, of the source first;
 *                            LAGESTATUS_ARGUMENT, LAGESTATUS_MEMORY, LAGESTATUS_UNAVAILABLE. A height model that is
 *                            missing or broken fails points, not this function
 *           transformation   null after a failure
 */
LAGESTATUS_BULK_API int LAGESTATUS_CALL lagestatus_transformation_open(
    const lagestatus_directory* directory, int source, int target, const lagestatus_options* options,
    lagestatus_transformation** transformation, lagestatus_failure* failure);

LAGESTATUS_BULK_API void LAGESTATUS_CALL
lagestatus_transformation_close(lagestatus_transformation* transformation);

/*
 * Carries points from the source system to the target system.
 *
 * Given:    count          of points
 *           input          three columns: the first two coordinates, and the height or Z. The third may be null where
 *                          no height is given; not that of a geocentric source
 *           inputStrides   bytes from a point's value to that of the next, one a column; may be negative, or 0 for one
 *                          value that all points share. Null: sizeof(double) throughout
 *           output         four columns: the first two coordinates, ellipsoidal height or Z, normal height. One that is
 *                          not wanted may be null; if it is not, it is filled with NaN
 *           outputStrides  likewise, but none is 0 where there are several points
 *           status         one a point, or null
 *           defaulted      how many points took the default height; may be null
 * Returned: how many points have a status other than 0; LAGESTATUS_ARGUMENT, with no point written, for a null
 *           pointer that may not be null or an output stride of 0. Without points the columns may be null
 *           output         a point with status 0 has all that is wanted. With 1 to 999 all of it is NaN. From 1000 its
 *                          place is there, unless that cannot be computed either, and heights that hang on the height
 *                          anomaly are NaN: given ELLIPSOIDAL the normal one, given NORMAL both. Of a geocentric target
 *                          all hangs on the height
 *
 * An output column may be an input column, with the same stride; otherwise outputs overlap neither inputs nor each
 * other.
 */
LAGESTATUS_BULK_API int64_t LAGESTATUS_CALL
lagestatus_transform(const lagestatus_transformation* transformation, size_t count,
                     const double* const* input, const ptrdiff_t* inputStrides, double* const* output,
                     const ptrdiff_t* outputStrides, int* status, size_t* defaulted);

/*
 * Writes the German message for a status.
 *
 * Given:    status   of a point or of a function
 *           file     the file that it concerns, as it is to be shown: for a point's status from 1000 the height model;
 *                    null: none, and its place in the sentence stays empty
 *           size     of the buffer, in bytes
 * Returned: the length of the whole message, without its end; empty for a status without a message
 *           buffer   the message, cut between characters to what fits with its end; may be null if size is 0
 */
LAGESTATUS_BULK_API size_t LAGESTATUS_CALL lagestatus_message(int status, const char* file, char* buffer,
                                                              size_t size);

/* The version of the library, "0.1.0". */
LAGESTATUS_BULK_API const char* LAGESTATUS_CALL lagestatus_version(void);

#ifdef __cplusplus
}
#endif

#endif
