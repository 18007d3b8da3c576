// The boundary, the driver and the messages.
#include <limits>

#include "support.h"

using namespace testing_support;

namespace {

TEST(Messages, AreThoseOfTheCatalogue) {
    ASSERT_EQ(rows("messages.tsv").size(), 342U);
    for (int code = -1000; code < 3000; ++code) {
        for (const std::u16string& name :
             {std::u16string(u"NAME"), std::u16string(), std::u16string(700, u'\u0416')}) {
            message(code, name);  // compares it
        }
    }
    for (const int extreme : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(message(extreme, u"NAME"), u"");
    }
}

TEST(Boundary, NarrowsNamesAndNeverCutsThem) {
    const DataDirectory directory;
    const std::string root = directory.path() + "/";
    const std::string longest(99 - root.size(), 'd');
    for (const std::string& name : {longest, longest + "d", std::string("A\xE4")}) {
        std::filesystem::create_directory(on_disk(root + name));
        directory.write(name + "/DEFAULT", "-1\n");
    }
    EXPECT_EQ(list(root + longest).status, 0);
    EXPECT_EQ(list(root + longest + "d").status, 1) << "not the directory of the first 99 characters";
    EXPECT_EQ(describe(Role::source, root + longest + "d", "f", 0, 17).status, 7);
    const Transformed refused = transform(root + longest + "d", 1, 2, {1, 2, 3});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.auxiliary, (std::array<int, 2>{-1, -1}));

    directory.write(std::string(99, 'b') + ".tra", join(good_lines()));
    EXPECT_EQ(describe(Role::source, directory.path(), std::string(99, 'b'), 0, 17).status, 0);
    EXPECT_EQ(describe(Role::target, directory.path(), std::string(100, 'b'), 0, 17).status, 7);

    // U+0141 enters as 0x41, U+0100 ends the text.
    const std::u16string odd = wide(root) + u"\u0141\u00E4\u0100never";
    std::array<int, 100> numbers = {};
    std::vector<char16_t> names(100 * 100);
    const int status = guarded([&] {
        return translD_dll(odd.c_str(), numbers.data(), &numbers[1], numbers.data(), numbers.data(),
                           names.data());
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(numbers[1], -1);
}

TEST(Driver, StopsAtTheFirstFailureAndTellsHowFarItCame) {
    const DataDirectory directory;
    // Makes a file for a system with one line of its own; each has its own code in it.
    const auto system = [&directory](const std::string& code, std::size_t field, const std::string& line,
                                     std::size_t length = 40) {
        auto lines = good_lines();
        lines[0] = code;
        lines[field - 1] = line;
        lines.resize(length);
        directory.write(code + ".tra", join(lines));
    };
    system("17", 3, "\"Bessel\"");
    system("20", 3, "\"Bessel\"", 30);
    system("21", 4, "\"Gauss-Krueger\"");
    system("22", 3, "\"GRS80\"");
    directory.write("hoehe.ini", "0\n");  // no height anomaly anywhere
    directory.write("DEFAULT",
                    "7 0\n17 1\n\"17\"\n18 2\n\"17\"\n19\n\"missing\"\n20 4\n\"20\"\n17 5\n"
                    "\"missing\"\n21 6\n\"21\"\n22 7\n\"22\"\n");
    const NoHandleLeft handles;
    for (const Row& row : rows("driver.tsv")) {
        SCOPED_TRACE(row[0] + " to " + row[1]);
        const Transformed done =
            transform(directory.path(), std::stoi(row[0]), std::stoi(row[1]), {51, 10, 1});
        EXPECT_EQ(done.status, std::stoi(row[2]));
        EXPECT_EQ(done.auxiliary, (std::array{std::stoi(row[3]), std::stoi(row[4])}));
        EXPECT_EQ((Row{done.source.name, done.target.name}), (Row{row[5], row[6]}));
        EXPECT_EQ(done.result == (std::array<double, 4>{}), done.status != 0);
    }

    // Everything read, then the road itself fails: the result is empty and the names are there.
    const Transformed infinite =
        transform(directory.path(), 17, 17, {51, std::numeric_limits<double>::infinity(), 1});
    EXPECT_EQ(infinite.status, 90);
    EXPECT_EQ(infinite.result, (std::array<double, 4>{}));
    EXPECT_EQ(infinite.target.ellipsoid, "Bessel");

    const Transformed names = transform(directory.path(), 21, 17, {51, 10, 1});
    EXPECT_EQ(names.source.row(), (Row{"System", "GRS80", "Gauss-Krueger"}));
    EXPECT_EQ(names.target.row(), (Row{"System", "Bessel", "Geographisch"}));
    directory.write("DEFAULT", "-3 0\n");
    EXPECT_EQ(transform(directory.path(), 17, 17, {51, 10, 1}).status, 93);
}

}  // namespace
