// Any code and any file name for transfm_dll.
#include <map>

#include "fuzz.h"

using namespace fuzzing;

namespace {

std::map<int, std::u16string> catalogue() {
    std::map<int, std::u16string> texts;
    for (const Row& row : rows("messages.tsv")) {
        texts[std::stoi(row[0])] = wide(row[1]);
    }
    return texts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const auto messages = catalogue();
    Input input(bytes, size);
    const int code =
        input.take<std::int16_t>() < 2000 ? input.take<std::int16_t>() : input.take<std::int32_t>();
    std::vector<char16_t> name = input.units(input.rest().size() / 2);
    name.push_back(u'\0');
    name.resize(static_cast<std::size_t>(std::ranges::find(name, u'\0') - name.begin()) + 1);

    const auto found = messages.find(code);
    std::u16string expected = found == messages.end() ? std::u16string() : found->second;
    const std::size_t place = expected.find(u"NAME");
    if (place != std::u16string::npos) {
        expected.replace(place, 4, name.data());
    }
    expected += u'\0';
    EXPECT_LE(expected.size(), place == std::u16string::npos ? 129 : 91 + name.size() - 1);
    const NoHandleLeft handles;
    for (const char16_t before : {u'x', u'y'}) {
        Buffer<char16_t> buffer(expected.size(), before);  // not a unit more
        transfm_dll(code, Buffer<char16_t>(name).get(), buffer.get());
        EXPECT_TRUE(std::ranges::equal(buffer.values(), expected)) << code;
    }
    return 0;
}
