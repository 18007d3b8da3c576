/*
 * Carries points from DHDN to ETRS89 in the two ways that the library offers.
 *
 *   cc -std=c11 example.c $(pkg-config --cflags --libs lagestatus) && ./a.out data/sample
 */
#include <lagestatus.h>
#include <stdio.h>
#include <string.h>

/* Prints a text of the library; its units of 128 and more are ISO 8859-1, printed as UTF-8. */
static void print_text(const lagestatus_char* text) {
    for (; *text != 0; ++text) {
        if (*text < 0x80) {
            putchar(*text);
        } else {
            putchar(0xC0 | (*text >> 6));
            putchar(0x80 | (*text & 0x3F));
        }
    }
}

static int fail(int status, const lagestatus_char* fileName) {
    lagestatus_char message[91 + LAGESTATUS_NAME_SIZE + 129];

    transfm_dll(status, fileName, message);
    printf("status %d: ", status);
    print_text(message);
    printf("\n");
    return 1;
}

int main(int argc, char** argv) {
    lagestatus_char dir[LAGESTATUS_NAME_SIZE] = {0};
    lagestatus_char name[LAGESTATUS_NAME_SIZE], name2[LAGESTATUS_NAME_SIZE];
    lagestatus_char ellipsoid[LAGESTATUS_ELLIPSOID_SIZE], ellipsoid2[LAGESTATUS_ELLIPSOID_SIZE];
    lagestatus_char kind[LAGESTATUS_KIND_SIZE], kind2[LAGESTATUS_KIND_SIZE];
    double source[LAGESTATUS_PARAMETER_COUNT], target[LAGESTATUS_PARAMETER_COUNT],
        result[LAGESTATUS_RESULT_SIZE];
    double point[3] = {52.5, 13.4, 100.0};
    int auxiliary[2], zone, status, i;

    if (argc != 2 || strlen(argv[1]) >= LAGESTATUS_NAME_SIZE) {
        printf("usage: example DIRECTORY, at most %d characters\n", LAGESTATUS_NAME_SIZE - 1);
        return 1;
    }
    for (i = 0; argv[1][i] != '\0'; ++i) {
        dir[i] = (unsigned char)argv[1][i];
    }
    if (test_dll(1.0, 2.0, 3.0, result) != 0 || result[3] != 3.0) {
        printf("the library is not bound as it should be\n");
        return 1;
    }

    /* One call that reads everything it needs. */
    status = trans_dll(point[0], point[1], point[2], 101, 201, dir, "e", result, name, auxiliary, ellipsoid,
                       kind, name2, ellipsoid2, kind2);
    if (status != 0) {
        return fail(status, dir);
    }
    print_text(name);
    printf(" -> ");
    print_text(name2);
    printf(": %.9f %.9f %.4f\n", result[0], result[1], result[2]);

    /* Many points between two systems: their descriptions are read once and kept. */
    status = transla_dll(dir, u"dhdn-geographisch", 0, 101, name, ellipsoid, kind, source);
    if (status != 0) {
        return fail(status, u"dhdn-geographisch.tra");
    }
    status = translz_dll(dir, u"etrs89-geozentrisch", 0, 202, name2, ellipsoid2, kind2, &zone, target);
    if (status != 0) {
        return fail(status, u"etrs89-geozentrisch.tra");
    }
    for (i = 0; i < 3; ++i) {
        status =
            transr_dll(point, kind, kind2, result, ellipsoid, source, ellipsoid2, target, zone, 0, 0, dir);
        if (status != 0) {
            return fail(status, u"hoehe.ini");
        }
        printf("%.1f %.1f -> %.4f %.4f %.4f\n", point[0], point[1], result[0], result[1], result[2]);
        point[0] -= 1.0;
    }

    /* What a failure looks like. */
    fail(12, u"mein-system.tra");
    return 0;
}
