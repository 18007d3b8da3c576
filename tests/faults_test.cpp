// The system calls of the library go wrong, one by one; and files change while they are read. The linker puts the
// functions here (--wrap) between the library and the system.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <map>
#include <set>

#include "bulk_support.h"

using namespace testing_support;

namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

// A system call as it was made.
struct Made {
    std::string call;
    std::string file;    // name as it was opened
    bool atEnd = false;  // a read that found nothing more
};

// What happens to the calls, and what was made of them.
struct Scene {
    std::size_t failing = never;  // number of the call that fails
    int error = 0;
    bool onwards = false;      // so do all behind it
    std::size_t most = never;  // bytes that one read gives
    std::size_t ends = never;  // bytes that a file gives before reads give nothing, or fail if error is set
    std::function<void()> meanwhile = [] {};  // what others do before each read

    std::vector<Made> made = {};
    std::map<int, std::string> open = {};   // handles that are open
    std::map<int, std::size_t> given = {};  // bytes that were read of each
};
Scene* scene = nullptr;

// What is noted here takes heap memory that the library has not asked for.
struct Uncounted {
    std::size_t before = heapCalls;
    ~Uncounted() { heapCalls = before; }
};

// Notes a call; true if it is to fail.
bool fails(const char* call, const std::string& file) {
    scene->made.push_back({call, file});
    if (scene->made.size() > 100000) {
        std::fputs("system calls without end\n", stderr);
        std::abort();
    }
    const std::size_t number = scene->made.size() - 1;
    errno = scene->error;
    return number == scene->failing || (scene->onwards && number > scene->failing);
}

}  // namespace

extern "C" {
int __real_openat64(int directory, const char* path, int flags);
int __real_fstat64(int handle, struct stat64* about);
ssize_t __real_read(int handle, void* bytes, std::size_t count);
int __real_close(int handle);
off64_t __real_lseek64(int handle, off64_t offset, int whence);
ssize_t __real_getdents64(int handle, void* entries, std::size_t size);

int __wrap_openat64(int directory, const char* path, int flags) {
    const Uncounted here;
    if (scene == nullptr) {
        return __real_openat64(directory, path, flags);
    }
    const bool failed = fails("open", path);
    const int handle = failed ? -1 : __real_openat64(directory, path, flags);
    if (handle != -1) {
        scene->open[handle] = path;
        scene->given[handle] = 0;
    }
    return handle;
}
// What a C library that looks at buffers (_FORTIFY_SOURCE) makes of it.
int __wrap___openat64_2(int directory, const char* path, int flags) {
    return __wrap_openat64(directory, path, flags);
}
int __wrap_fstat64(int handle, struct stat64* about) {
    const Uncounted here;
    return scene != nullptr && fails("stat", scene->open[handle]) ? -1 : __real_fstat64(handle, about);
}
ssize_t __wrap_read(int handle, void* bytes, std::size_t count) {
    const Uncounted here;
    if (scene == nullptr) {
        return __real_read(handle, bytes, count);
    }
    scene->meanwhile();
    std::size_t& given = scene->given[handle];
    if (fails("read", scene->open[handle]) || (scene->error != 0 && given >= scene->ends)) {
        return -1;
    }
    const ssize_t got = __real_read(handle, bytes, std::min({count, scene->most, scene->ends - given}));
    given += static_cast<std::size_t>(std::max(got, ssize_t{0}));
    scene->made.back().atEnd = got == 0;
    return got;
}
int __wrap_close(int handle) {
    const Uncounted here;
    if (scene == nullptr) {
        return __real_close(handle);
    }
    EXPECT_TRUE(scene->open.contains(handle)) << "closed twice";
    const bool failed = fails("close", scene->open[handle]);
    scene->open.erase(handle);
    EXPECT_EQ(__real_close(handle), 0);
    errno = scene->error;
    return failed ? -1 : 0;  // Linux has closed it all the same
}
off64_t __wrap_lseek64(int handle, off64_t offset, int whence) {
    const Uncounted here;
    return scene != nullptr && fails("seek", scene->open[handle]) ? -1
                                                                  : __real_lseek64(handle, offset, whence);
}
ssize_t __wrap_getdents64(int handle, void* entries, std::size_t size) {
    const Uncounted here;
    return scene != nullptr && fails("list", scene->open[handle]) ? -1
                                                                  : __real_getdents64(handle, entries, size);
}
}

namespace {

// What a call gave.
struct Outcome {
    int status = 0;
    std::vector<double> numbers = {};
    Row texts = {};
    bool operator==(const Outcome& other) const {
        return status == other.status && same_bits(numbers, other.numbers) && texts == other.texts;
    }
};

using Action = std::function<Outcome()>;

// Runs an action in a scene; whatever happens, it leaves no handle open.
Outcome played(Scene& play, const Action& action) {
    scene = &play;
    Outcome outcome = action();
    scene = nullptr;
    EXPECT_TRUE(play.open.empty());
    return outcome;
}
Outcome played(Scene&& play, const Action& action) {
    return played(play, action);
}

// All that read files, in a directory of files that are good; "case": all names in capitals.
class Faults : public ::testing::Test {
  protected:
    Faults() {
        for (const DataDirectory* one : {&directory, &capitals}) {
            const bool upper = one == &capitals;
            auto lines = good_lines();
            lines[2] = "\"Bessel\"";
            one->write(upper ? "default" : "DEFAULT", "2 1\n17 4\n\"f\"\n18 -5\n\"g\"\n");
            one->write(upper ? "F.TRA" : "f.tra", join(lines));
            one->write(upper ? "F.TR0" : "f.tr0", scrambled(join(lines), 7));
            auto model = good_model();
            for (const std::ptrdiff_t line : {31, 20, 0}) {
                model.insert(model.begin() + line, "# comment");
            }
            one->write(upper ? "HOEHE.INI" : "hoehe.ini", "0\n" + join(model));
        }
    }

    static Action listing(const DataDirectory& in) {
        return [path = in.path(), good = list(in.path())] {
            const Listing l = list(path);
            const auto complete = std::ranges::count_if(l.codes, [](int c) { return c != -9; });
            EXPECT_TRUE(l.status == 0 ? complete == 2 : complete < 2);
            EXPECT_TRUE(l.count == 2 || (l.count == 0 && l.flag == 0 && complete == 0));
            Listing expected = good;
            std::fill(expected.codes.begin() + complete, expected.codes.end(), -9);
            std::fill(expected.auxiliary.begin() + complete, expected.auxiliary.end(), -9);
            std::fill(expected.slots.begin() + 100 * complete, expected.slots.end(), textFill);
            EXPECT_EQ(l.codes, expected.codes);
            EXPECT_EQ(l.auxiliary, expected.auxiliary);
            EXPECT_EQ(l.slots, expected.slots) << "nothing behind what is complete";
            return Outcome{l.status, {static_cast<double>(complete)}};
        };
    }
    static Action description(const DataDirectory& in, Role role, int flag) {
        return [path = in.path(), role, flag] {
            const Description d = describe(role, path, "f", flag, 17);
            EXPECT_EQ(d.parameters == std::vector<double>(36, untouched), d.status != 0);
            EXPECT_TRUE(d.zone == (role == Role::source ? -9 : 3) ||
                        (role == Role::target && d.status != 0 && d.zone == 0))
                << d.zone;
            return Outcome{d.status, d.parameters, d.row()};
        };
    }
    static Action transformation(const DataDirectory& in) {
        return [path = in.path()] {
            const Transformed t = transform(path, 17, 17, {51.3, 9.4, 100});
            const bool none = t.status > 0 && t.status < 1000;
            EXPECT_NEAR(t.result[0], none ? 0 : 51.3, 1e-12);
            EXPECT_EQ(t.result[2], none ? 0 : 100);
            EXPECT_TRUE(t.status < 1000 || t.result[3] == 100) << "no height anomaly";
            Row texts = t.source.row();
            std::ranges::copy(t.target.row(), std::back_inserter(texts));
            return Outcome{t.status, {t.result.begin(), t.result.end()}, texts};
        };
    }
    // As transformation(), by what a directory holds.
    static Action held(const DataDirectory& in) {
        return [path = in.path()] {
            const auto files = open_directory(path);
            if (files.status != 0) {
                return Outcome{files.status};
            }
            const auto way = open_way(files.handle, 17, 17, heights(0, LAGESTATUS_HEIGHT_BOTH));
            const Carried each =
                way.status == 0 ? carried(way.handle, {{51.3, 9.4, 100}})[0] : Carried{way.status};
            return Outcome{each.status, {each.at.begin(), each.at.end()}};
        };
    }
    static Action road(const DataDirectory& in, const char* ellipsoid, int sourceFlag) {
        return [path = in.path(), ellipsoid, sourceFlag] {
            Road road = {.directory = path,
                         .point = {51.3, 9.4, 100, 0},
                         .sourceEllipsoid = ellipsoid,
                         .targetEllipsoid = ellipsoid,
                         .sourceFlag = sourceFlag,
                         .targetFlag = -1};
            const int status = road.run();
            const auto& [phi, lam, h, normal] = road.point;
            const bool there =
                std::fabs(phi - 51.3) < 1e-9 && std::fabs(lam - 9.4) < 1e-9 && std::fabs(h - 100) < 50;
            EXPECT_TRUE(there ||
                        (status != 0 && same_bits(std::span(road.point).first(3), std::array{0.0, 0.0, 0.0})))
                << h;
            EXPECT_TRUE(normal == 100 || (status == 0 && sourceFlag == 0)) << "no height anomaly";
            return Outcome{status, {road.point.begin(), road.point.end()}};
        };
    }
    static Action iteration(const DataDirectory& in) { return road(in, "GRS80", -1); }
    static Action anomaly(const DataDirectory& in) { return road(in, "Bessel", 0); }

    [[nodiscard]] std::vector<Action> actions() const {
        std::vector<Action> all = {description(directory, Role::target, 1), anomaly(directory)};
        for (const DataDirectory* in : {&directory, &capitals}) {
            all.insert(all.end(), {listing(*in), description(*in, Role::source, 0), transformation(*in),
                                   iteration(*in), held(*in)});
        }
        return all;
    }

    // Of a file: an action that reads it, and its status when the file cannot be read to the end.
    struct Reading {
        std::string name;
        Action action;
        int unreadable;
        bool openedOnce = true;
    };
    [[nodiscard]] std::vector<Reading> readings() const {
        return {{"DEFAULT", listing(directory), 100},
                {"f.tra", description(directory, Role::source, 0), 100},
                {"f.tr0", description(directory, Role::target, 1), 100},
                {"hoehe.ini", iteration(directory), 1100, false},
                {"hoehe.ini", anomaly(directory), 1100}};
    }

    const DataDirectory directory, capitals;
};

// The status for a file that cannot be opened (-1 if no file of the library is meant), and for one that cannot be read.
int status_of(const Made& made, bool opening) {
    const std::string name = made.file.substr(made.file.rfind('/') + 1);
    const auto has = [&name](const char* part) { return name.find(part) != std::string::npos; };
    if (has("hoehe") || has("HOEHE")) {
        return opening ? 1110 : 1100;
    }
    return !opening ? 100 : has("DEFAULT") || has("default") ? 1 : 7;
}

// The status of an action that made these calls undisturbed, when the one at number at fails with error.
int status_struck(const std::vector<Made>& made, std::size_t at, int error, bool onwards) {
    const auto harmless =
        [error](const Made& one) {  // interrupted calls are made again, a file that is read is read
            return one.call == "close" || one.atEnd ||
                   (error == EINTR && one.call != "stat" && one.call != "seek");
        };
    while (at < made.size() && harmless(made[at])) {
        at = onwards ? at + 1 : made.size();
    }
    if (at == made.size()) {
        return 0;
    }
    const Made& hit = made[at];
    const bool ofDirectory = hit.file.ends_with('/');
    const bool fromList =
        hit.file.find('/') == std::string::npos;  // opened by the name that a directory gave
    // A file that is missing under its name is found again in the list of its directory.
    if (!onwards && hit.call == "open" && error == ENOENT && !fromList && !ofDirectory) {
        return 0;
    }
    while (made[at].call != "open" || made[at].file.ends_with('/')) {
        --at;  // to the file that the directory was listed for
    }
    return ofDirectory ? status_of(made[at], true) : status_of(hit, hit.call == "open" || hit.call == "stat");
}

TEST_F(Faults, GiveTheirStatusWhereverTheyStrike) {
    std::set<std::string> calls;
    for (std::size_t number = 0; const Action& action : actions()) {
        for (const std::size_t most : {never, std::size_t{600}}) {
            Scene undisturbed = {.most = most};
            const Outcome right = played(undisturbed, action);
            ASSERT_EQ(right.status, 0);
            for (std::size_t at = 0; at < undisturbed.made.size(); ++at) {
                const Made& made = undisturbed.made[at];
                calls.insert(made.call);
                for (const int error : {EIO, EACCES, EMFILE, ENOENT, EINTR}) {
                    for (const bool onwards : {false, true}) {
                        if (onwards && error == EINTR) {
                            continue;  // no more than a signal every time
                        }
                        SCOPED_TRACE(::testing::Message()
                                     << number << ' ' << made.call << ' ' << at << ' ' << made.file
                                     << " errno " << error << (onwards ? " onwards" : ""));
                        Scene play = {.failing = at, .error = error, .onwards = onwards, .most = most};
                        const Outcome outcome = played(play, action);
                        const int status = status_struck(undisturbed.made, at, error, onwards);
                        EXPECT_EQ(outcome.status, status);
                        EXPECT_TRUE(status != 0 || outcome == right);
                        for (std::size_t name = 0; name < right.texts.size(); ++name) {
                            EXPECT_TRUE(outcome.texts[name].empty() ||
                                        outcome.texts[name] == right.texts[name]);
                        }
                    }
                }
            }
        }
        ++number;
    }
    EXPECT_EQ(calls, (std::set<std::string>{"close", "list", "open", "read", "seek", "stat"}))
        << "not all go this way";
}

TEST_F(Faults, ReadsMayGiveAnyNumberOfBytes) {
    for (const Action& action : actions()) {
        const Outcome right = action();
        for (const std::size_t most : {1U, 2U, 7U, 1000U}) {
            EXPECT_EQ(played({.most = most}, action), right) << most;
        }
    }
}

TEST_F(Faults, AFileMayEndOrFailAtEveryByte) {
    for (const auto& [name, action, unreadable, openedOnce] : readings()) {
        SCOPED_TRACE(name);
        const Outcome right = action();
        ASSERT_EQ(right.status, 0);
        const std::string content = directory.read(name);
        std::size_t needed = never;
        for (std::size_t length = 0; length <= content.size(); ++length) {
            const Outcome failed = played({.error = EIO, .ends = length}, action);
            needed = failed == right ? std::min(needed, length) : needed;
            EXPECT_TRUE(length < needed ? failed.status == unreadable : failed == right)
                << length << ": " << failed.status;
            const Outcome ended = played({.ends = length}, action);
            directory.write(name, std::string_view(content).substr(0, length));
            EXPECT_EQ(action(), ended) << length;
            directory.write(name, content);
        }
        EXPECT_LE(needed, content.size());
        EXPECT_GE(needed, content.size() * 2 / 3) << "most of it is needed";
    }
}

TEST_F(Faults, AFileMayChangeWhileItIsRead) {
    namespace fs = std::filesystem;
    struct Change {
        const char* name;
        bool rightWhenOpen;    // the result is right if the file is opened once
        bool rightWhenOpened;  // and even if it is opened again
        std::function<void(const fs::path&)> make;
    };
    const Change changes[] = {
        {"grows", true, true,
         [](const fs::path& file) { std::ofstream(file, std::ios::app) << std::string(5000, 'x'); }},
        {"emptied", false, false, [](const fs::path& file) { fs::resize_file(file, 0); }},
        {"shrinks", false, false,
         [](const fs::path& file) { fs::resize_file(file, fs::file_size(file) / 2); }},
        {"overwritten", false, false,
         [](const fs::path& file) { std::ofstream(file) << std::string(5000, 'x'); }},
        {"removed", true, false, [](const fs::path& file) { fs::remove(file); }},
        {"replaced", true, false,
         [](const fs::path& file) {
             std::ofstream(file.string() + "new") << "\"another\"\n";
             fs::rename(file.string() + "new", file);
         }},
    };
    for (const auto& [name, action, unreadable, openedOnce] : readings()) {
        const Outcome right = action();
        const std::string content = directory.read(name);
        for (const Change& change : changes) {
            bool changed = true;
            for (std::size_t at = 0; changed; ++at) {
                SCOPED_TRACE(name + ' ' + change.name + " before read " + std::to_string(at));
                changed = false;
                std::size_t reads = 0;
                Scene play = {.most = 20};
                play.meanwhile = [&, file = directory.path() + '/' + name] {
                    if (reads++ == at) {
                        change.make(file);
                        changed = true;
                    }
                };
                const Outcome outcome = played(play, action);
                const int code = outcome.status;
                const bool ofTheFile = unreadable == 100
                                           ? (code >= 2 && code <= 100) || (code >= 600 && code < 800)
                                           : code >= 1027 && code <= 1128;
                const bool mustBeRight = change.rightWhenOpened || (openedOnce && change.rightWhenOpen);
                EXPECT_TRUE(outcome == right || (!mustBeRight && ofTheFile)) << code;
                directory.write(name, content);
            }
        }
    }
}

}  // namespace
