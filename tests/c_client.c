/* Plain C against the shared library: the calls that a first program makes. Exit status 0 when all is right.
 */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "lagestatus.h"

static void widen(const char* text, lagestatus_char* wide) {
    do {
        *wide++ = (unsigned char)*text;
    } while (*text++ != '\0');
}

static int check(int good, const char* what) {
    if (!good) {
        fprintf(stderr, "c_client: %s\n", what);
    }
    return good ? 0 : 1;
}

int main(int argc, char** argv) {
    static lagestatus_char names[LAGESTATUS_MAX_ENTRIES * LAGESTATUS_NAME_SIZE];
    lagestatus_char dir[LAGESTATUS_NAME_SIZE], name[LAGESTATUS_NAME_SIZE], name2[LAGESTATUS_NAME_SIZE];
    lagestatus_char ellipsoid[LAGESTATUS_ELLIPSOID_SIZE], ellipsoid2[LAGESTATUS_ELLIPSOID_SIZE];
    lagestatus_char kind[LAGESTATUS_KIND_SIZE], kind2[LAGESTATUS_KIND_SIZE], text[129];
    double source[LAGESTATUS_PARAMETER_COUNT], target[LAGESTATUS_PARAMETER_COUNT];
    double result[LAGESTATUS_RESULT_SIZE], point[LAGESTATUS_RESULT_SIZE] = {52.5, 13.4, 100.0, 0.0};
    int codes[LAGESTATUS_MAX_ENTRIES], auxiliary[LAGESTATUS_MAX_ENTRIES];
    int scrambled, count, zone, failures = 0;

    if (argc != 2) {
        return EXIT_FAILURE;
    }
    widen(argv[1], dir);
    failures += check(test_dll(1.0, 2.0, 3.0, result) == 0, "test_dll");
    failures +=
        check(result[0] == 1.0 && result[1] == 2.0 && result[2] == 3.0 && result[3] == 3.0, "test_dll out");
    failures +=
        check(translD_dll(dir, &scrambled, &count, codes, auxiliary, names) == 0 && count > 2, "translD_dll");
    failures += check(trans_dll(point[0], point[1], point[2], codes[0], codes[2], dir, "e", result, name,
                                auxiliary, ellipsoid, kind, name2, ellipsoid2, kind2) == 0,
                      "trans_dll");
    failures +=
        check(fabs(result[0] - 52.4986) < 1e-4 && fabs(result[1] - 13.3983) < 1e-4, "trans_dll result");
    /* The same by hand, in place. */
    failures += check(transla_dll(dir, names, scrambled, codes[0], name, ellipsoid, kind, source) == 0,
                      "transla_dll");
    failures += check(translz_dll(dir, names + 2 * LAGESTATUS_NAME_SIZE, scrambled, codes[2], name2,
                                  ellipsoid2, kind2, &zone, target) == 0,
                      "translz_dll");
    failures += check(
        transr_dll(point, kind, kind2, point, ellipsoid, source, ellipsoid2, target, zone, 0, -1, dir) == 0,
        "transr_dll");
    failures +=
        check(point[0] == result[0] && point[1] == result[1] && point[2] == result[2], "transr_dll result");
    transfm_dll(93, dir, text);
    failures += check(text[0] == u'Z' && text[4] == u'L', "transfm_dll");
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
