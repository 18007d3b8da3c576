// scramble and unscramble: the two forms of parameter files and height models.
#include <memory>
#include <optional>
#include <string>

#include "commands/commands.h"
#include "datafiles/parameter_file.h"
#include "keeper/scrambling.h"
#include "system/files.h"
#include "system/output.h"
#include "system/platform.h"
#include "system/text.h"

namespace cli {

using lagestatus::plainExtension;
using lagestatus::scrambledExtension;

namespace {

constexpr std::string_view heightModelExtension = ".ini";

struct Options {
    std::string file;
    std::string key;  // to scramble
    std::string output;
    bool force = false;
};

std::string extension_of(const std::string& path) {
    return lower_case(path_text(file_path(path).extension()));
}

// What a file is by its name, and where its other form goes; the form is as it has to be for this direction.
struct Place {
    FileKind form;
    std::string output;
};

Place place_of(const Options& options, std::string_view from, std::string_view into,
               const std::string& alreadyDone) {
    const std::string extension = extension_of(options.file);
    const std::string fromText(from);
    const std::string intoText(into);
    if (extension == into) {
        throw FileError(options.file + ": is " + alreadyDone + " already, by its name");
    }
    if (extension == heightModelExtension) {
        if (options.output.empty()) {
            throw FileError(options.file +
                            ": both forms have this name; say with -o where the other one goes");
        }
        return {FileKind::heightModel, options.output};
    }
    if (extension != from) {
        throw FileError(options.file + ": is no " + fromText + " or " + std::string(heightModelExtension) +
                        " file: only parameter files and height models are scrambled");
    }
    if (options.output.empty()) {
        return {FileKind::parameters, path_text(file_path(options.file).replace_extension(into))};
    }
    if (extension_of(options.output) == from) {
        throw FileError(options.output + ": would be taken for the other form; name it " + intoText);
    }
    return {FileKind::parameters, options.output};
}

void write(const Options& options, const std::string& path, const std::string& bytes) {
    if (path == "-") {
        OutputFile standard;
        standard.write(bytes);
        standard.complete();
        return;
    }
    write_file(path, bytes, options.force ? Existing::replace : Existing::refuse);
}

// A few keys that a text can be scrambled with, in words.
std::string keys_that_do(const std::string& plain, FileKind form) {
    constexpr int smallest = 2;
    constexpr int largest = 99;
    constexpr int enough = 3;
    std::string keys;
    int count = 0;
    for (int key = smallest; key <= largest && count < enough; ++key) {
        try {
            scrambled(plain, key, form);
            keys += (count++ == 0 ? "key " : ", ") + std::to_string(key);
        } catch (const ScramblingError&) {
            continue;
        }
    }
    return count == 0
               ? "no key from " + std::to_string(smallest) + " to " + std::to_string(largest) + " would do"
               : keys + " would do";
}

int scramble_file(const Options& options) {
    const std::optional<int> key = integer_of(options.key);
    if (!key || *key < 1) {
        complain("--key " + options.key + ": must be a whole number from 1 to 2147483647");
        return nothingDone;
    }
    const Place place = place_of(options, plainExtension, scrambledExtension, "scrambled");
    const std::string plain = read_file(options.file);
    try {
        write(options, place.output, scrambled(plain, *key, place.form));
    } catch (const ScramblingError& error) {
        complain(options.file + ": " + error.what() +
                 (error.due_to_key() ? "; " + keys_that_do(plain, place.form) : ""));
        return nothingDone;
    }
    if (*key == 1) {
        complain("note: key 1 changes nothing");
    }
    return allGood;
}

int unscramble_file(const Options& options) {
    const Place place = place_of(options, scrambledExtension, plainExtension, "plain");
    const std::string stored = read_file(options.file);
    Unscrambled file;
    try {
        file = unscrambled(stored, place.form);
    } catch (const ScramblingError& error) {
        complain(options.file + ": " + error.what());
        return nothingDone;
    }
    write(options, place.output, file.plain);
    const std::string keyText = "key " + std::to_string(file.key);
    complain(options.file + ": it was scrambled with " + keyText);
    try {
        if (scrambled(file.plain, file.key, place.form) != stored) {
            complain("note: scrambled with " + keyText + " again it would not be the same bytes");
        }
    } catch (const ScramblingError& error) {
        complain("note: it cannot be scrambled with " + keyText + " again: " + error.what());
    }
    return allGood;
}

Command common_command(const char* name, const char* summary, Options& options) {
    Command command{name, summary};
    command.add("FILE", &options.file, "Parameter file or height model (.ini)", {.required = true});
    command.add("-o, --output FILE", &options.output, "File to write; - is standard output");
    command.add("--force", &options.force, "Replace an existing file");
    return command;
}

}  // namespace

Command scramble_command() {
    const auto options = std::make_shared<Options>();
    Command command =
        common_command("scramble", "Scramble a parameter file (.tra to .tr0) or a height model", *options);
    command.add("--key KEY", &options->key, "Scrambling key, 1 or more", {.required = true});
    command.examples = "lagestatus scramble data/my-system.tra --key 7";
    command.run = [options] { return scramble_file(*options); };
    return command;
}

Command unscramble_command() {
    const auto options = std::make_shared<Options>();
    Command command = common_command(
        "unscramble", "Restore a scrambled parameter file (.tr0 to .tra) or height model", *options);
    command.examples = "lagestatus unscramble data/my-system.tr0";
    command.run = [options] { return unscramble_file(*options); };
    return command;
}

}  // namespace cli
