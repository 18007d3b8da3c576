#include "support.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <sstream>

#include "datafiles/field_scanner.h"
#include "datafiles/scrambling.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#include <unistd.h>
#endif

namespace testing_support {

namespace {

std::string unescaped(const std::string& text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\') {
            const char kind = text[++at];
            plain += kind == 'x' ? static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16))
                                 : std::string_view("\n\r\t\v\f\\")[std::string_view("nrtvf\\").find(kind)];
            at += kind == 'x' ? 2 : 0;
        } else if (text[at] == '{') {
            plain.append(std::stoul(text.substr(at + 3)), text[at + 1]);
            at = text.find('}', at);
        } else {
            plain += text[at];
        }
    }
    return plain;
}

}  // namespace

std::vector<Row> rows(const std::string& file) {
    std::vector<Row> all;
    std::ifstream lines(TEST_DATA_DIR "/" + file);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('#')) {
            Row& row = all.emplace_back();
            for (std::size_t tab = 0, from = 0; tab != std::string::npos; from = tab + 1) {
                tab = line.find('\t', from);
                row.push_back(unescaped(line.substr(from, tab - from)));
            }
        }
    }
    EXPECT_FALSE(all.empty()) << file;
    return all;
}

std::u16string wide(std::string_view text) {
    std::u16string units;
    for (const char byte : text) {
        units.push_back(static_cast<unsigned char>(byte));
    }
    return units;
}

Buffer<char16_t> text(std::string_view text) {
    return Buffer<char16_t>(wide(text) + u'\0');
}

std::string narrow(const std::vector<char16_t>& units) {
    std::string text;
    for (const char16_t unit : units) {
        if (unit == u'\0') {
            return text;
        }
        EXPECT_LT(unit, 256);
        text.push_back(static_cast<char>(static_cast<unsigned char>(unit)));
    }
    ADD_FAILURE() << "no terminator behind \"" << text << '"';
    return text;
}

std::u16string message(int code, const std::u16string& fileName) {
    static const auto catalogue = [] {
        std::map<int, std::u16string> texts;
        for (const Row& row : rows("messages.tsv")) {
            texts[std::stoi(row[0])] = wide(row[1]);
        }
        return texts;
    }();
    const auto found = catalogue.find(code);
    std::u16string expected = found == catalogue.end() ? std::u16string() : found->second;
    const std::size_t place = expected.find(u"NAME");
    const bool namesFile = place != std::u16string::npos;
    expected = namesFile ? expected.replace(place, 4, fileName) : expected;
    EXPECT_LT(expected.size(), namesFile ? 91 + fileName.size() : 129);
    Buffer<char16_t> name(fileName + u'\0'), buffer(expected.size() + 1, textFill);
    guarded([&] { return transfm_dll(code, name.get(), buffer.get()), 0; });
    EXPECT_TRUE(std::ranges::equal(buffer.values(), expected + u'\0')) << code;
    return expected;
}

#ifdef _WIN32
int open_file_handles() {
    int handles = 0;
    // One by one: the system's own count is always 0 under Wine.
    for (std::uintptr_t handle = 4; handle < 16384; handle += 4) {
        handles += GetFileType(reinterpret_cast<HANDLE>(handle)) != FILE_TYPE_UNKNOWN ? 1 : 0;
    }
    return handles;
}

std::filesystem::path on_disk(const std::string& name) {
    return wide(name);
}

void on_small_stack(std::size_t size, const std::function<void()>& work) {
    const auto run = [](void* function) -> DWORD {
        (*static_cast<const std::function<void()>*>(function))();
        return 0;
    };
    HANDLE const thread = CreateThread(nullptr, size, run, const_cast<std::function<void()>*>(&work),
                                       STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    CloseHandle(thread);
}
#else
int open_file_handles() {
    const int next = dup(STDERR_FILENO);
    close(next);
    return next;
}

std::filesystem::path on_disk(const std::string& name) {
    return name;
}

void on_small_stack(std::size_t size, const std::function<void()>& work) {
    const auto run = [](void* function) -> void* {
        (*static_cast<const std::function<void()>*>(function))();
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_t thread = {};
    EXPECT_EQ(pthread_attr_init(&attributes), 0);
    EXPECT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
    EXPECT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_EQ(pthread_attr_destroy(&attributes), 0);
}
#endif

DataDirectory::DataDirectory() {
    do {
        root =
            std::filesystem::temp_directory_path() / ("lagestatus-" + std::to_string(std::random_device()()));
    } while (!std::filesystem::create_directory(root));
}

DataDirectory::~DataDirectory() {
    std::filesystem::remove_all(root);
}

void DataDirectory::write(const std::string& name, std::string_view content) const {
    std::ofstream(root / on_disk(name), std::ios::binary) << content;
}

std::string DataDirectory::read(const std::string& name) const {
    std::ifstream file(root / on_disk(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> good_lines() {
    std::vector<std::string> lines = {"17 code",          "\"System\"", "\"GRS80\"",
                                      "\"Geographisch\"", "49.5 deg",   "9 3"};
    for (int field = 7; field <= 18; ++field) {
        lines.push_back(std::to_string(field) + ".5 m");
    }
    lines.insert(lines.end(), {"6378137.0", "6356752.3"});
    for (int field = 21; field <= 40; ++field) {
        lines.push_back(std::to_string(field) + ".25 -" + std::to_string(field) + ".75");
    }
    return lines;
}

std::vector<std::string> good_model() {
    std::vector<std::string> lines(29, "0.0");
    lines[0] = lines[2] = "6378137.0";
    lines[1] = lines[3] = "6356752.314140356";
    lines[10] = "1.0";
    lines.insert(lines.end(), {"9.0 10.0 0.125", "51.0 52.0 0.25"});
    for (int value = 0; value < 45; ++value) {
        std::string& line = value % 7 == 0 ? lines.emplace_back() : lines.back() += ' ';
        line += std::to_string(40 + value % 9 + 2 * (value / 9));
    }
    return lines;
}

lagestatus::ParameterArray parameters(const std::string& settings) {
    namespace slot = lagestatus::slot;
    lagestatus::ParameterArray p = {};
    p[slot::semiMajorAxis] = ellipsoids[1].axes().a;
    p[slot::semiMinorAxis] = ellipsoids[1].axes().b;
    p[slot::meridianScale] = p[slot::planeScale] = p[slot::datumScale] = 1.0;
    p[slot::longitudeOfOrigin] = 600.3;
    std::istringstream text(settings);
    for (std::string setting; text >> setting;) {
        p[std::stoul(setting)] = std::stod(setting.substr(setting.find('=') + 1));
    }
    return p;
}

int Road::run() {
    Buffer<double> place(point), from(source), to(target);
    Buffer<char16_t> sKind = text(sourceKind), tKind = text(targetKind), sEllipsoid = text(sourceEllipsoid),
                     tEllipsoid = text(targetEllipsoid), dir = text(directory);
    const int status = guarded([&] {
        return transr_dll(place.get(), sKind.get(), tKind.get(), place.get(), sEllipsoid.get(), from.get(),
                          tEllipsoid.get(), to.get(), zone, sourceFlag, targetFlag, dir.get());
    });
    std::ranges::copy(place.values(), point.begin());
    return status;
}

std::string join(const std::vector<std::string>& lines, std::string_view lineEnd) {
    std::string text;
    for (const std::string& line : lines) {
        text += line;
        text += lineEnd;
    }
    return text;
}

std::string scrambled(std::string_view plain, int key) {
    std::string text = std::to_string(key) + "\n";
    lagestatus::LineShift shift(key);
    bool begun = false;  // the line, with a character that is no blank
    for (const char character : plain) {
        shift = begun ? shift : lagestatus::LineShift(key);
        begun = character != '\n' && (begun || !lagestatus::is_blank(character));
        text += character == '\n' ? character : shift.store(character);
    }
    return text;
}

Listing list(const std::string& directory, std::size_t names) {
    Buffer<int> flag(1, -9), count(1, -9), codes(100, -9), auxiliary(100, -9);
    Buffer<char16_t> slots(100 * 100, textFill);
    Buffer<char16_t> dir = text(directory);
    Listing listing;
    listing.status = guarded([&] {
        return translD_dll(dir.get(), flag.get(), count.get(), codes.get(), auxiliary.get(), slots.get());
    });
    listing.flag = flag.values()[0];
    listing.count = count.values()[0];
    std::ranges::copy(codes.values(), listing.codes.begin());
    std::ranges::copy(auxiliary.values(), listing.auxiliary.begin());
    listing.slots = slots.values();
    for (std::size_t slot = 0; slot < names; ++slot) {
        const auto begin = listing.slots.begin() + static_cast<std::ptrdiff_t>(slot * 100);
        listing.names.push_back(narrow({begin, begin + 100}));
    }
    return listing;
}

namespace {

struct TextBuffers {
    Buffer<char16_t> name{100, textFill}, ellipsoid{11, textFill}, kind{14, textFill};
    void copy_to(Texts& texts) const {
        texts = {narrow(name.values()), narrow(ellipsoid.values()), narrow(kind.values())};
    }
};

}  // namespace

Description describe(Role role, const std::string& directory, const std::string& base, int scrambledFlag,
                     int code) {
    TextBuffers texts;
    Buffer<char16_t> dir = text(directory), file = text(base);
    Buffer<double> parameters(36, untouched);
    Buffer<int> zone(1, -9);
    Description system;
    system.status = guarded([&] {
        return role == Role::source
                   ? transla_dll(dir.get(), file.get(), scrambledFlag, code, texts.name.get(),
                                 texts.ellipsoid.get(), texts.kind.get(), parameters.get())
                   : translz_dll(dir.get(), file.get(), scrambledFlag, code, texts.name.get(),
                                 texts.ellipsoid.get(), texts.kind.get(), zone.get(), parameters.get());
    });
    texts.copy_to(system);
    system.zone = zone.values()[0];
    system.parameters = parameters.values();
    return system;
}

Transformed transform(const std::string& directory, int from, int to, const std::array<double, 3>& point,
                      char heightMode) {
    TextBuffers source, target;
    Buffer<double> result(4, untouched);
    Buffer<int> auxiliary(2);
    Buffer<char16_t> dir = text(directory);
    Transformed done;
    done.status = guarded([&] {
        return trans_dll(point[0], point[1], point[2], from, to, dir.get(), &heightMode, result.get(),
                         source.name.get(), auxiliary.get(), source.ellipsoid.get(), source.kind.get(),
                         target.name.get(), target.ellipsoid.get(), target.kind.get());
    });
    std::ranges::copy(result.values(), done.result.begin());
    std::ranges::copy(auxiliary.values(), done.auxiliary.begin());
    source.copy_to(done.source);
    target.copy_to(done.target);
    return done;
}

}  // namespace testing_support
