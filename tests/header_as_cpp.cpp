#include "lagestatus.h"

static_assert(sizeof(lagestatus_char) == 2);
