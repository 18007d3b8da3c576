/* Both libraries in one program, which gives 0 if each of them answers. */
#include <lagestatus.h>
#include <lagestatus_bulk.h>

int main(int argc, char** argv) {
    double result[LAGESTATUS_RESULT_SIZE] = {0};
    lagestatus_directory* directory;

    if (argc != 2 || test_dll(1.0, 2.0, 3.0, result) != 0 || result[3] != 3.0) {
        return 1;
    }
    if (lagestatus_directory_open(argv[1], 0, &directory, NULL) != 0) {
        return 2;
    }
    lagestatus_directory_close(directory);
    return 0;
}
