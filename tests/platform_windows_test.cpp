// What a file is, and what is found, on Windows.
#include <windows.h>

#include <cstdlib>
#include <filesystem>

#include "datafiles/data_file.h"
#include "support.h"

using namespace testing_support;

namespace {

TEST(DataFile, FindsFilesAsTheyLieOnDisk) {
    namespace fs = std::filesystem;
    // What the tests are run under, if they are to show that the code page does not matter.
    if (const char* const codePage = std::getenv("LAGESTATUS_CODE_PAGE")) {
        EXPECT_EQ(std::to_string(GetACP()), codePage);
    }
    const DataDirectory directory;
    const std::string root = directory.path();
    directory.write("dEFAULt", "-1\n");
    directory.write("\x96.tra", join(good_lines()));  // an en dash of code page 1252, as written below
    fs::rename(fs::path(root) / u"\u0096.tra", fs::path(root) / u"\u2013.tra");
    for (const char* below : {"/isdir/DEFAULT", "/locked"}) {
        fs::create_directories(root + below);
    }
    directory.write("locked/DEFAULT", "-2\n");
    const NoHandleLeft handles;
    DWORD errorMode = 0;
    ASSERT_NE(SetThreadErrorMode(0, &errorMode), 0);

    EXPECT_EQ(list(root).count, -1) << "whatever the case of letters";
    EXPECT_EQ(describe(Role::source, root, "\x96", 0, 17).status, 0);
    EXPECT_EQ(list(root + "/isdir").status, 1);
    for (const char* device : {"NUL", "CON", "C:NUL", "\\\\.\\pipe\\none"}) {
        EXPECT_EQ(list(device).status, 1) << device;
        EXPECT_EQ(describe(Role::source, ".", device, 0, 17).status, 7) << device;
        lagestatus::DataFile file;
        EXPECT_FALSE(file.open(".", device)) << device << " is no regular file";
    }
    EXPECT_EQ(list("\\\\none\\none").status, 1) << "a server that there is not";

    // The root of a drive, in all its forms (outside Wine this wants an administrator).
    const std::string drive = root.substr(0, 2);
    const struct Removed {
        fs::path file;
        ~Removed() { fs::remove(file); }
    } atRoot = {drive + "\\DEFAULT"};
    fs::copy_file(root + "/DEFAULT", atRoot.file);
    const fs::path before = fs::current_path();
    fs::current_path(drive + "\\");
    for (const std::string& rootOfDrive : {std::string(), std::string("\\"), std::string("/"),
                                           std::string("."), drive, drive + "\\", drive + "/"}) {
        EXPECT_EQ(list(rootOfDrive).count, -1) << rootOfDrive;
    }
    fs::current_path(before);

    for (const char* prefix : {"\\\\?\\", "\\\\.\\"}) {
        EXPECT_EQ(list(prefix + root).count, -1) << prefix;
    }

    // A file that another program writes and may delete is read; one that it keeps to itself is not there.
    for (const DWORD sharing : {DWORD{FILE_SHARE_READ}, DWORD{0}}) {
        HANDLE const other = CreateFileW(fs::path(root + "/locked/DEFAULT").c_str(), GENERIC_WRITE | DELETE,
                                         sharing, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(other, INVALID_HANDLE_VALUE);
        EXPECT_EQ(list(root + "/locked").status, sharing == 0 ? 1 : 0);
        CloseHandle(other);
    }
    EXPECT_EQ(GetThreadErrorMode(), 0U);
    ASSERT_NE(SetThreadErrorMode(errorMode, nullptr), 0);
}

}  // namespace
