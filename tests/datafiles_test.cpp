// Lines, fields, and the two kinds of files: one good file each, and one row a defect.
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

#include "datafiles/data_file.h"
#include "datafiles/field_scanner.h"
#include "datafiles/line_reader.h"
#include "support.h"

using namespace testing_support;
using namespace lagestatus;

namespace {

std::string repeated(std::size_t count, char character) {
    return std::string(count, character);
}

TEST(FieldScanner, ReadsNumbersWithoutALocale) {
    for (const Row& row : rows("fields.tsv")) {
        SCOPED_TRACE(row[1]);
        FieldScanner scanner(row[1]);
        double value = untouched;
        int integer = static_cast<int>(untouched);
        const bool read = row[0] == "number" ? scanner.number(value) : scanner.integer(integer);
        value = row[0] == "number" ? value : integer;
        const double expected = row[2] == "none" ? untouched : std::strtod(row[2].c_str(), nullptr);
        EXPECT_EQ(read, row[2] != "none");
        EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << value;
    }
}

// Lines as "kind:text", joined by "|"; comments have no text. The key is a number, 0 for plain lines, or "read" for
// the file's own. The same from the file and from its bytes.
std::string all_lines(const std::string& content, const std::string& keyText) {
    const std::string all = keyText == "read" ? content : keyText + "\n" + content;
    const DataDirectory directory;
    directory.write("file", all);
    std::array<std::string, 2> lines;
    LineReader held(all);
    LineReader streamed;
    EXPECT_TRUE(streamed.open(directory.path(), "file"));
    for (std::size_t at = 0; LineReader* const reader : {&held, &streamed}) {
        std::string& found = lines[at++];
        if (reader->read_key() != 0) {
            found = "no key";
            continue;
        }
        for (LineKind kind; (kind = reader->read()) != LineKind::end;) {
            found += found.empty() ? "" : "|";
            found += kind == LineKind::comment ? "#" : (kind == LineKind::quoted ? "q:" : "o:");
            found += kind == LineKind::comment ? "" : std::string(reader->text());
        }
    }
    EXPECT_EQ(lines[0], lines[1]);
    return lines[0];
}

TEST(LineReader, KnowsTheKindsOfLines) {
    constexpr std::size_t block = 16384;
    for (const Row& row : rows("lines.tsv")) {
        SCOPED_TRACE(row[0] + ' ' + row[1].substr(0, 40));
        EXPECT_EQ(all_lines(row[1], row[0]), row[2]);
        // Wherever a block of the file ends: with so many empty lines ahead.
        for (std::size_t at = 0; at < row[1].size() + 3 && row[1].size() < 100; ++at) {
            EXPECT_EQ(all_lines(repeated(block - at, '\n') + row[1], row[0]), row[2]) << at;
        }
    }
}

TEST(LineReader, SkipsWhatItWouldRead) {
    for (const Row& row : rows("lines.tsv")) {
        SCOPED_TRACE(row[0] + ' ' + row[1].substr(0, 40));
        const std::string file = row[0] == "read" ? row[1] : row[0] + "\n" + row[1];
        for (int count = 0, status = 0; count < 5; ++count, status = 0) {
            LineReader reading(file), skipping(file);
            ASSERT_EQ(skipping.read_key(), reading.read_key());
            for (int number = 0; number < count && status == 0; ++number) {
                status = reading.next();
            }
            EXPECT_EQ(skipping.skip(count), status);
            EXPECT_EQ(skipping.next(), reading.next());
            EXPECT_EQ(skipping.text(), reading.text());
            EXPECT_EQ(skipping.number(), reading.number());
            EXPECT_EQ(skipping.last_overlong(), reading.last_overlong());
        }
    }
}

// Where a keeper is told that something is wrong: the lines of the file, whatever is passed over on the way to them.
TEST(LineReader, CountsTheLinesOfTheFile) {
    const std::string longest = repeated(998, 'x') + "\n";
    const std::string file =
        "\n0\r\n\n  first\r\n# comment\r\n\n" + longest + repeated(999, 'x') + "y\n" + longest + "last";
    LineReader reader(file);
    const std::array<std::array<std::int64_t, 2>, 6> expected = {
        {{4, 0}, {7, 0}, {8, 0}, {8, 8}, {9, 8}, {10, 8}}};
    ASSERT_EQ(reader.read_key(), 0);
    for (const auto& [number, overlong] : expected) {
        ASSERT_EQ(reader.next(), 0);
        EXPECT_EQ(reader.number(), number);
        EXPECT_EQ(reader.last_overlong(), overlong);
    }
    EXPECT_EQ(reader.next(), 100);
    EXPECT_FALSE(reader.failed());
    LineReader cut("0\nfirst\n", true);
    EXPECT_EQ(cut.read_key() + cut.next(), 0);
    EXPECT_EQ(cut.next(), 100);
    EXPECT_TRUE(cut.failed());
}

TEST(DataFile, TakesDirectoriesInEveryForm) {
    namespace fs = std::filesystem;
    const DataDirectory directory;
    const fs::path root = directory.path();
    for (int count = 0; const std::string below : {"", "Sub/", "Sub/Deeper/", "\xE4/"}) {
        fs::create_directories(root / on_disk(below));
        directory.write(below + "DEFAULT", "# Verzeichnis\r\n" + std::to_string(--count) + "\r\n");
        directory.write(below + "\xD6rtlich.tra", join(good_lines(), "\r\n"));
    }
    const NoHandleLeft handles;
    const fs::path before = fs::current_path();
    for (const Row& row : rows("directories.tsv")) {
        SCOPED_TRACE(row[0] + " in " + row[1]);
        fs::current_path(root / row[1]);
        std::string asked = row[0];
        if (asked.starts_with("ROOT")) {
            asked.replace(0, 4, directory.path());
        }
        const bool found = row[2] != "none";
        const Listing listing = list(asked);
        EXPECT_EQ(listing.status, found ? 0 : 1);
        EXPECT_EQ(listing.count, found ? std::stoi(row[2]) : 0);
        const Description system = describe(Role::target, asked, "\xD6rtlich", 0, 17);
        EXPECT_EQ(system.status, found ? 0 : 7);
        EXPECT_EQ(system.kind, found ? "Geographisch" : "");
    }
    fs::current_path(before);
    const DataDirectory another;
    another.write("file", "");
    lagestatus::DataFile file;
    const int closed = open_file_handles();
    EXPECT_TRUE(file.open(another.path(), "file"));
    EXPECT_NE(open_file_handles(), closed) << "they are counted";
}

TEST(DefinitionFile, ReportsEveryDefectAndKeepsWhatItRead) {
    const DataDirectory directory;
    const NoHandleLeft handles;
    for (const Row& row : rows("definition_files.tsv")) {
        SCOPED_TRACE(row[0].substr(0, 30));
        directory.write("DEFAULT", row[0]);
        const std::size_t complete = std::stoul(row[4]);
        const Listing listing = list(directory.path(), complete);
        EXPECT_EQ(listing.status, std::stoi(row[1]));
        EXPECT_EQ(listing.count, std::stoi(row[2]));
        EXPECT_EQ(listing.flag, std::stoi(row[3]));
        if (complete == 2) {
            EXPECT_EQ(
                (std::array{listing.codes[0], listing.codes[1], listing.auxiliary[0], listing.auxiliary[1]}),
                (std::array{17, 18, 4, -5}));
            EXPECT_EQ(listing.names, (std::vector<std::string>{"a", " b c"}));
        }
    }
    // A hundred entries are read and no more.
    std::string hundred = "250\n";
    for (int entry = 0; entry < 100; ++entry) {
        hundred += std::to_string(entry) + "\n\"n" + std::to_string(entry) + "\"\n";
    }
    directory.write("DEFAULT", hundred + "x\n");
    const Listing full = list(directory.path(), 100);
    EXPECT_EQ(full.status, 0);
    EXPECT_EQ(full.count, 100);
    EXPECT_EQ(full.codes[99], 99);
    EXPECT_EQ(full.auxiliary[99], -1);
    EXPECT_EQ(full.names[99], "n99");
    directory.write("DEFAULT", hundred.substr(0, hundred.size() - 2));
    EXPECT_EQ(list(directory.path(), 99).status, 799);
}

TEST(ParameterFile, FillsEverySlot) {
    // Slots of the fields 5 to 40, in the order of the file.
    constexpr std::array<std::size_t, 36> slots = {0,  1,  9,  10, 4,  5,  6,  7,  8,  2,  3,  11,
                                                   12, 13, 24, 25, 15, 14, 16, 17, 18, 19, 20, 22,
                                                   21, 23, 27, 26, 28, 29, 30, 31, 32, 34, 33, 35};
    constexpr double degree = 0.0174532925199433;
    const DataDirectory directory;
    directory.write("plain.tra", join(good_lines()));
    directory.write("dos.tra", "# x\r\n\r\n" + join(good_lines(), "\r\n# between\r\n"));
    std::vector<std::pair<std::string, int>> files = {{"plain", 0}, {"dos", 7}};
    for (const int key : {1, 2, 7, 30, 100}) {
        files.emplace_back("key" + std::to_string(key), 1);
        directory.write(files.back().first + ".tr0", scrambled(join(good_lines()), key));
    }
    for (const auto& [base, flag] : files) {
        for (const Role role : {Role::source, Role::target}) {
            const Description system = describe(role, directory.path(), base, flag, 17);
            ASSERT_EQ(system.status, 0);
            for (std::size_t field = 5; field <= 40; ++field) {
                double expected = static_cast<double>(field) + 0.5;
                if (field > 20) {
                    expected = role == Role::source ? expected - 0.25 : -expected - 0.25;
                }
                expected = field == 5 ? 49.5 * degree : field == 6 ? 9.0 : expected;
                expected = field == 19 ? 6378137.0 : field == 20 ? 6356752.3 : expected;
                EXPECT_EQ(system.parameters[slots[field - 5]], expected) << field;
            }
        }
    }
}

TEST(ParameterFile, ReportsEveryDefectAndKeepsWhatItRead) {
    const DataDirectory directory;
    const NoHandleLeft handles;
    for (const Row& row : rows("parameter_files.tsv")) {
        auto lines = good_lines();
        lines[std::stoul(row[0]) - 1] = row[1];
        directory.write("f.tra", join(lines));
        directory.write("f.tr0", scrambled(join(lines), 5));
        for (const int flag : {0, 1}) {
            for (const Role role : {Role::source, Role::target}) {
                SCOPED_TRACE(row[0] + ": " + row[1].substr(0, 30) +
                             (role == Role::source ? " source" : " target"));
                const Description system = describe(role, directory.path(), "f", flag, 17);
                EXPECT_EQ(system.status, std::stoi(row[role == Role::source ? 2 : 3]));
                EXPECT_EQ(system.row(), (Row{row[4], row[5], row[6]}));
                EXPECT_EQ(system.zone, role == Role::target ? std::stoi(row[7]) : -9);
                EXPECT_EQ(system.parameters == std::vector<double>(36, untouched), system.status != 0);
            }
        }
    }
}

TEST(ParameterFile, EndsEarly) {
    const DataDirectory directory;
    for (std::size_t length = 0; length < 40; ++length) {
        auto lines = good_lines();
        lines.resize(length);
        directory.write("short.tra", join(lines));
        EXPECT_EQ(describe(Role::target, directory.path(), "short", 0, 17).status, 100) << length;
    }
    using Key = std::pair<const char*, int>;
    for (const auto& [content, status] :
         {Key{"", 100}, {"7", 100}, {"0x", 100}, {"7\n", 100}, {"-1\n17\n", 100}, {"3  \"Z\n", 8}}) {
        directory.write("key.tr0", content);
        EXPECT_EQ(describe(Role::source, directory.path(), "key", 1, 17).status, status) << content;
    }
    EXPECT_EQ(describe(Role::target, directory.path(), "none", 0, 17).status, 7);
    EXPECT_EQ(describe(Role::target, directory.path(), "none", 1, 17).zone, 0);
}

}  // namespace
