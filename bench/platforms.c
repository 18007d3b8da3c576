/*
 * Prints the bits of many transformations, to be compared between platforms (scripts/compare_platforms): 1,500 places
 * over Germany (or as many as its argument says), up to 3 km high, from each system of the sample to each. To be run
 * from the root of the tree.
 *
 * A line: codes of source and target, status, the bits of the three coordinates given and of the three computed.
 */
#include <inttypes.h>
#include <lagestatus.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define PLACES 1500

typedef struct {
    lagestatus_char ellipsoid[LAGESTATUS_ELLIPSOID_SIZE], kind[LAGESTATUS_KIND_SIZE];
    double source[LAGESTATUS_PARAMETER_COUNT], target[LAGESTATUS_PARAMETER_COUNT];
    int zone;
} System;

static const lagestatus_char directory[] = u"data/sample";
static System systems[LAGESTATUS_MAX_ENTRIES];
static lagestatus_char files[LAGESTATUS_MAX_ENTRIES * LAGESTATUS_NAME_SIZE];

static int transform(const double* point, const System* from, const System* to, double* result) {
    return transr_dll(point, from->kind, to->kind, result, from->ellipsoid, from->source, to->ellipsoid,
                      to->target, to->zone, 0, 0, directory);
}

/* The next of numbers that are the same everywhere, from 0 to 1. */
static double next(uint64_t* state) {
    *state = *state * 6364136223846793005U + 1442695040888963407U;
    return (double)(*state >> 11) / 9007199254740992.0;
}

static void print_bits(const double* values) {
    uint64_t bits[3];
    int i;

    memcpy(bits, values, sizeof bits);
    for (i = 0; i < 3; ++i) {
        printf(" %016" PRIx64, bits[i]);
    }
}

int main(int argc, char** argv) {
    const int places = argc > 1 ? atoi(argv[1]) : PLACES;
    int codes[LAGESTATUS_MAX_ENTRIES], auxiliary[LAGESTATUS_MAX_ENTRIES], scrambled, count, place, from, to,
        i;
    lagestatus_char name[LAGESTATUS_NAME_SIZE];
    uint64_t state = 12345;

    if (translD_dll(directory, &scrambled, &count, codes, auxiliary, files) != 0) {
        return 1;
    }
    for (i = 0; i < count; ++i) {
        System* const s = &systems[i];
        const lagestatus_char* const file = files + i * LAGESTATUS_NAME_SIZE;
        if (transla_dll(directory, file, scrambled, codes[i], name, s->ellipsoid, s->kind, s->source) != 0 ||
            translz_dll(directory, file, scrambled, codes[i], name, s->ellipsoid, s->kind, &s->zone,
                        s->target) != 0) {
            return 1;
        }
    }
    for (place = 0; place < places; ++place) {
        double geographic[3];
        geographic[0] = 47 + 8 * next(&state);
        geographic[1] = 6 + 9 * next(&state);
        geographic[2] = 3000 * next(&state);
        for (from = 0; from < count; ++from) {
            double given[LAGESTATUS_RESULT_SIZE], result[LAGESTATUS_RESULT_SIZE];
            transform(geographic, &systems[0], &systems[from], given);
            for (i = 0; i < 3; ++i) { /* cut to decimals, so that all platforms start from the same numbers */
                given[i] = (double)(int64_t)(given[i] * 1e4) / 1e4;
            }
            for (to = 0; to < count; ++to) {
                const int status = transform(given, &systems[from], &systems[to], result);
                printf("%d %d %d", codes[from], codes[to], status);
                print_bits(given);
                print_bits(result);
                printf("\n");
            }
        }
    }
    return 0;
}
