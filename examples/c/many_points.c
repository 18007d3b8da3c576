/*
 * Carries the places of the sample from DHDN Gauss-Krueger to ETRS89 UTM: the directory is read once, the
 * transformation prepared once, and all points go through it in one call.
 *
 *   cc -std=c11 many_points.c $(pkg-config --cflags --libs lagestatus_bulk) && ./a.out data/sample
 */
#include <lagestatus_bulk.h>
#include <math.h>
#include <stdio.h>

#define COUNT 4

static int fail(const lagestatus_failure* failure) {
    printf("status %d, line %lld: %s\n", failure->status, (long long)failure->line, failure->message);
    return 1;
}

int main(int argc, char** argv) {
    /* Berlin, Hamburg, Muenchen, Koeln, whose height is not known. */
    double northing[COUNT] = {5814068.9341, 5935902.0197, 5333426.0852, 5645602.2320};
    double easting[COUNT] = {4592988.2976, 3566003.6568, 4468447.8071, 2567322.8781};
    double height[COUNT] = {62.0, 6.0, 515.0, NAN};
    const double* input[3] = {northing, easting, height};
    double* output[4] = {northing, easting, height, NULL}; /* in the same places; no normal heights */
    int statuses[COUNT];
    lagestatus_directory* directory;
    lagestatus_transformation* transformation;
    lagestatus_failure failure;
    size_t index;
    long long failures;

    if (argc != 2) {
        printf("usage: many_points DIRECTORY\n");
        return 1;
    }
    if (lagestatus_directory_open(argv[1], 0, &directory, &failure) != 0) {
        return fail(&failure);
    }
    for (index = 0; index < lagestatus_directory_count(directory); ++index) {
        lagestatus_system system = {.size = sizeof(system)};

        if (lagestatus_directory_system(directory, index, &system) == 0) {
            printf("%d %s\n", system.code, system.name);
        }
    }
    if (lagestatus_transformation_open(directory, 103, 203, NULL, &transformation, &failure) != 0) {
        lagestatus_directory_close(directory);
        return fail(&failure);
    }
    lagestatus_directory_close(directory); /* the transformation has what it needs */

    failures =
        (long long)lagestatus_transform(transformation, COUNT, input, NULL, output, NULL, statuses, NULL);
    for (index = 0; index < COUNT; ++index) {
        char message[200];

        if (statuses[index] == 0) {
            printf("%.4f %.4f %.4f\n", northing[index], easting[index], height[index]);
        } else {
            lagestatus_message(statuses[index], statuses[index] >= 1000 ? "hoehe.ini" : "etrs89-utm.tra",
                               message, sizeof(message));
            printf("%d: %s\n", statuses[index], message);
        }
    }
    printf("%lld of %d failed\n", failures, COUNT);
    lagestatus_transformation_close(transformation);
    return 0;
}
