// Any code and any file name for transfm_dll.
#include "fuzz.h"

using namespace fuzzing;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const int code =
        input.take<std::int16_t>() < 2000 ? input.take<std::int16_t>() : input.take<std::int32_t>();
    const std::vector<char16_t> units = input.units(input.rest().size() / 2);
    const std::u16string name(units.begin(), std::ranges::find(units, u'\0'));
    const NoHandleLeft handles;
    for (const char16_t before : {u'x', u'y'}) {
        textFill = before;
        message(code, name);
    }
    return 0;
}
