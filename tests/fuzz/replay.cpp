// Calls a fuzz target with every file of some directories: the corpus as a test, with any compiler.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
extern "C" int LLVMFuzzerInitialize(int* argumentCount, char*** arguments);

int main(int argumentCount, char** arguments) {
    LLVMFuzzerInitialize(&argumentCount, &arguments);
    int inputs = 0;
    for (int number = 1; number < argumentCount; ++number) {
        for (const auto& entry : std::filesystem::directory_iterator(arguments[number])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string content(std::istreambuf_iterator<char>(file), {});
            std::fprintf(stderr, "%s\n", entry.path().c_str());  // the last one named is the one that fails
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
