/*
 * Measures a few calls, to be compared between systems (bench/compare_with_windows). To be run from the root of the
 * tree.
 *
 * A line: what was called, a tab, nanoseconds a call: the fastest of some batches.
 */
#include <fcntl.h>
#include <lagestatus.h>
#include <stdio.h>
#include <time.h>
#include <unistd.h>

#ifndef O_BINARY
#define O_BINARY 0 /* what Windows calls a file whose bytes are taken as they are */
#endif
#define BATCHES 15

static const lagestatus_char directory[] = u"data/sample";

typedef struct {
    lagestatus_char ellipsoid[LAGESTATUS_ELLIPSOID_SIZE], kind[LAGESTATUS_KIND_SIZE];
    double parameters[LAGESTATUS_PARAMETER_COUNT];
    int zone;
} Side;

typedef struct {
    int from, to;
    double point[3];
    Side source, target;
} Road;

/* Opens, reads and closes what trans_dll has to for latitude and longitude in, X, Y and Z out. */
static int read_files(const Road* road) {
    static const char* const names[] = {"data/sample/DEFAULT", "data/sample/dhdn-geographisch.tra",
                                        "data/sample/etrs89-geozentrisch.tra"};
    char bytes[16384];
    int i;

    (void)road;
    for (i = 0; i < 3; ++i) {
        const int file = open(names[i], O_RDONLY | O_BINARY);
        if (file < 0) {
            return 1;
        }
        while (read(file, bytes, sizeof bytes) > 0) {
        }
        close(file);
    }
    return 0;
}

static int everything(const Road* road) {
    lagestatus_char names[2][LAGESTATUS_NAME_SIZE], ellipsoids[2][LAGESTATUS_ELLIPSOID_SIZE],
        kinds[2][LAGESTATUS_KIND_SIZE];
    double result[LAGESTATUS_RESULT_SIZE];
    int auxiliary[2];

    return trans_dll(road->point[0], road->point[1], road->point[2], road->from, road->to, directory, "e",
                     result, names[0], auxiliary, ellipsoids[0], kinds[0], names[1], ellipsoids[1], kinds[1]);
}

static int held(const Road* road) {
    double result[LAGESTATUS_RESULT_SIZE];

    return transr_dll(road->point, road->source.kind, road->target.kind, result, road->source.ellipsoid,
                      road->source.parameters, road->target.ellipsoid, road->target.parameters,
                      road->target.zone, 0, 0, directory);
}

static double now(void) {
    struct timespec time;

    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec * 1e9 + (double)time.tv_nsec;
}

static int measure(const char* what, int (*call)(const Road*), const Road* road, int calls) {
    double fastest = 1e300;
    int batch, i;

    for (batch = 0; batch < BATCHES; ++batch) {
        const double start = now();
        double time;
        for (i = 0; i < calls; ++i) {
            const int status = call(road);
            if (status != 0) {
                fprintf(stderr, "%s: status %d\n", what, status);
                return 1;
            }
        }
        time = (now() - start) / calls;
        fastest = time < fastest ? time : fastest;
    }
    printf("%s\t%.0f\n", what, fastest);
    return 0;
}

static int describe(Road* road, const lagestatus_char* source, const lagestatus_char* target) {
    lagestatus_char name[LAGESTATUS_NAME_SIZE];

    return transla_dll(directory, source, 0, road->from, name, road->source.ellipsoid, road->source.kind,
                       road->source.parameters) != 0 ||
           translz_dll(directory, target, 0, road->to, name, road->target.ellipsoid, road->target.kind,
                       &road->target.zone, road->target.parameters) != 0;
}

int main(void) {
    static Road toGeocentric = {.from = 101, .to = 202, .point = {53.55, 9.99, 20.0}};
    static Road toDegrees = {.from = 101, .to = 201, .point = {53.55, 9.99, 20.0}};
    static Road toUtm = {.from = 103, .to = 203, .point = {5935902.02, 3566003.66, 20.0}};

    return describe(&toDegrees, u"dhdn-geographisch", u"etrs89-geographisch") ||
           describe(&toUtm, u"dhdn-gauss-krueger", u"etrs89-utm") ||
           measure("three files by bare calls", read_files, &toGeocentric, 200) ||
           measure("trans_dll, no height model", everything, &toGeocentric, 200) ||
           measure("trans_dll, normal height in Hamburg", everything, &toUtm, 20) ||
           measure("transr_dll, latitude and longitude", held, &toDegrees, 20000) ||
           measure("transr_dll, Gauss-Krüger to UTM", held, &toUtm, 5000);
}
