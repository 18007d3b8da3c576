// The header and the import library by the rules of Visual C++, without its runtime: exit status 0 if all is well.
#define LAGESTATUS_USE_WCHAR
#include "lagestatus.h"

static_assert(sizeof(lagestatus_char) == 2 && sizeof(int) == 4 && sizeof(double) == 8);

extern "C" int _fltused = 0;  // the runtime's mark of a program that computes

extern "C" int start() {
    double out[LAGESTATUS_RESULT_SIZE];
    lagestatus_char message[129];
    transfm_dll(93, L"", message);
    return test_dll(1.0, 2.0, 3.0, out) == 0 && out[0] == 1.0 && out[3] == 3.0 && message[0] == L'Z' ? 0 : 1;
}
