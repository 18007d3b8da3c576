// What a file is, and what is found, off Windows.
#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>

#include "datafiles/data_file.h"
#include "support.h"

using namespace testing_support;
using lagestatus::DataFile;

namespace {

TEST(DataFile, FindsFilesAsTheyLieOnDisk) {
    namespace fs = std::filesystem;
    const DataDirectory directory;
    const std::string root = directory.path();
    directory.write("other\\DEFAULT", "0\n");
    for (const char* below : {"/Sub", "/unreadable", "/isdir/DEFAULT", "/fifo", "/DEFAULt"}) {
        fs::create_directories(root + below);
    }
    directory.write("dEFAULt", "-1\n");
    directory.write("default", "-2\n");
    directory.write("Sub/DEFAULT", "-3\n");
    fs::create_symlink("nowhere", root + "/DEFAUlt");
    fs::create_symlink("/proc/self/mem", root + "/unreadable/DEFAULT");
    ASSERT_EQ(mkfifo((root + "/fifo/DEFAULT").c_str(), 0600), 0);
    const NoHandleLeft handles;

    EXPECT_EQ(list(root).count, -1) << "of the regular files in whatever case the first in byte order";
    EXPECT_EQ(list(root + "/other").status, 0) << "the backslash as a character";
    EXPECT_EQ(list(root + "/isdir").status, 1);
    directory.write("isdir/default", "0\n");
    EXPECT_EQ(list(root + "/isdir").status, 1) << "the name itself is there, and is no file";
    directory.write("plain", "");
    directory.write("plain\\DEFAULT", "-4\n");
    EXPECT_EQ(list(root + "/plain").count, -4) << "a file where the directory should be";
    EXPECT_EQ(list(root + "/fifo").status, 1) << "and it does not block";
    EXPECT_EQ(list(root + "/unreadable").status, 100) << "a read error, not an end that looks like one";
    DataFile none, unreadable;
    EXPECT_TRUE(none.available().empty() && !none.failed());
    ASSERT_TRUE(unreadable.open(root + "/unreadable", "DEFAULT"));
    EXPECT_TRUE(unreadable.available().empty() && unreadable.failed());
    EXPECT_TRUE(unreadable.available().empty()) << "nor is it tried again";
    EXPECT_EQ(list("").status, 1) << "a file in the root directory";

    // No child process inherits the handle.
    DataFile file;
    ASSERT_TRUE(file.open(root + "/Sub", "DEFAULT"));
    for (const auto& handle : fs::directory_iterator("/proc/self/fd")) {
        if (fs::exists(handle) && fs::equivalent(handle, root + "/Sub/DEFAULT")) {
            EXPECT_NE(fcntl(std::stoi(handle.path().filename()), F_GETFD) & FD_CLOEXEC, 0);
        }
    }
}

}  // namespace
