// transform: carries points from one system into another.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "keeper/data_directory.h"
#include "points/ordered_work.h"
#include "points/piece_reader.h"
#include "points/point_writer.h"
#include "system/files.h"
#include "system/output.h"
#include "system/platform.h"
#include "system/progress.h"

namespace cli {
namespace {

struct TransformOptions {
    std::string directory = ".";
    int from = 0;
    int to = 0;
    std::string height = "e";
    bool heights = false;
    std::string delimiter;
    bool decimalComma = false;
    std::vector<std::size_t> columns;  // from 1; none: the first ones
    bool header = false;
    bool label = false;
    bool latin1 = false;
    bool swap = false;
    bool swapInput = false;
    bool swapOutput = false;
    bool withSeconds = false;
    std::vector<int> precision;  // metres, degrees or seconds
    std::string output;
    bool fast = false;
    std::size_t jobs = 0;  // 0: as many as there are cores
    bool quiet = false;
    std::vector<std::string> files;
};

constexpr std::size_t mostJobs = 256;
constexpr int mostSecondDecimals = 10;

// How files are made, as far as the options say. Throws std::invalid_argument for options that contradict each other.
FileForm file_form(const TransformOptions& options, const SystemDescription& source) {
    FileForm file = {{}, !options.delimiter.empty(), options.header, options.label};
    LineForm& form = file.lines;
    if (file.delimiterKnown) {
        form.delimiter = options.delimiter.front();
    }
    form.decimalComma = options.decimalComma;
    form.angles = is(ProjectionKind::geographic, source);
    if (form.decimalComma && form.delimiter == ',') {
        throw std::invalid_argument("--decimal-comma: the delimiter cannot be a comma as well");
    }
    if (options.columns.size() == 1 || options.columns.size() > 3) {
        throw std::invalid_argument("--columns: two or three columns hold a point");
    }
    if (options.precision.size() > 2) {
        throw std::invalid_argument("--precision: decimals of metres, and of degrees");
    }
    if (options.withSeconds && options.precision.size() == 2 && options.precision[1] > mostSecondDecimals) {
        throw std::invalid_argument("--precision: seconds have at most " +
                                    std::to_string(mostSecondDecimals) + " decimals");
    }
    if (!options.columns.empty()) {
        form.columns.clear();
        for (const std::size_t column : options.columns) {
            if (std::find(form.columns.begin(), form.columns.end(), column - 1) != form.columns.end()) {
                throw std::invalid_argument("--columns: column " + std::to_string(column) +
                                            " is named twice");
            }
            form.columns.push_back(column - 1);
        }
    }
    const bool geocentric = is(ProjectionKind::geocentric, source);
    form.looksForHeight = options.columns.empty() && !geocentric;
    if (geocentric && form.columns.size() < 3) {
        throw std::invalid_argument("--columns: a geocentric point has three columns");
    }
    if (!geocentric && (options.swap || options.swapInput)) {
        std::swap(form.columns[0], form.columns[1]);
    }
    return file;
}

RunOptions run_options(const TransformOptions& options, const SystemDescription& source,
                       const SystemDescription& target) {
    RunOptions run;
    run.normalGiven = options.height == "n" || options.height == "N";
    run.normalWanted = options.heights;
    run.fast = options.fast;
    run.latin1 = options.latin1;
    run.withSeconds = options.withSeconds;
    if (!options.precision.empty()) {
        run.metreDecimals = options.precision[0];
    }
    // A degree has 111 km, a second 31 m.
    run.degreeDecimals = options.precision.size() > 1 ? options.precision[1]
                         : options.withSeconds        ? std::min(run.metreDecimals + 1, mostSecondDecimals)
                                                      : run.metreDecimals + 5;
    const bool eastingFirstIn =
        (options.swap || options.swapInput) && !is(ProjectionKind::geocentric, source);
    const bool eastingFirstOut =
        (options.swap || options.swapOutput) && !is(ProjectionKind::geocentric, target);
    run.exchanged = eastingFirstIn != eastingFirstOut;
    return run;
}

// A file in its turn. Regular files are opened again then: there may be more of them than can be open at once.
struct Input {
    std::string name;                   // "-" for standard input
    std::optional<std::uint64_t> size;  // of a regular file
    std::optional<InputFile> file;      // open, if it is none
};

InputFile open_input(const std::string& name) {
    return name == "-" ? InputFile() : InputFile(name);
}

// All files are opened before the first row: a wrong name must not be found out half way.
std::vector<Input> open_inputs(std::vector<std::string> names) {
    if (names.empty()) {
        names = {"-"};
    }
    std::vector<Input> inputs;
    for (const std::string& name : names) {
        InputFile file = open_input(name);
        Input& input = inputs.emplace_back(Input{name, file.size(), std::nullopt});
        if (!input.size) {
            input.file.emplace(std::move(file));
        }
    }
    return inputs;
}

// 0: not known.
std::uint64_t total_size(const std::vector<Input>& inputs) {
    std::uint64_t total = 0;
    for (const Input& input : inputs) {
        if (!input.size) {
            return 0;
        }
        total += *input.size;
    }
    return total;
}

std::size_t block_size(std::size_t jobs) {
    constexpr std::size_t smallest = std::size_t{1} << 12;
    constexpr std::size_t largest = std::size_t{1} << 17;
    // All pieces together, their input; their output takes up to forty times as much, if every line fails.
    constexpr std::size_t together = std::size_t{1} << 20;
    return std::clamp(together / (jobs + 2), smallest, largest);
}

// Takes the pieces in their order: writes their rows, counts, and says what is to be said.
class Outcome {
  public:
    Outcome(OutputFile& outputFile, Progress& progressBar, bool silent)
        : output(outputFile), progress(progressBar), quiet(silent) {}

    void take(Piece& piece) {
        Written& written = piece.written;
        output.write(piece.before);
        output.write(written.text.view());
        tally.add(written.tally);
        bytes += piece.read;
        for (const Report& report : written.errors) {
            if (++errors <= mostErrors) {
                say(piece.fileName, report, "");
            } else if (errors == mostErrors + 1) {
                say("further lines that cannot be read are told in their rows alone");
            }
        }
        if (!written.warning.text.empty() && !std::exchange(warned, true) && !quiet) {
            say(piece.fileName, written.warning, "warning: ");
        }
        progress.show(bytes, tally.rows);
        constexpr std::size_t kept = std::size_t{1} << 18;  // for the next lines
        if (written.text.capacity() > kept) {
            written.text.release();
        }
    }

    void say(const std::string& text) {
        progress.clear();
        complain(text);
    }

    Tally tally;

  private:
    void say(const std::string& fileName, const Report& report, const char* what) {
        say(fileName + ":" + std::to_string(report.line) + ": " + what + report.text);
    }

    OutputFile& output;
    Progress& progress;
    bool quiet;
    std::uint64_t bytes = 0;
    std::size_t errors = 0;
    bool warned = false;
};

int transform_points(const TransformOptions& options) {
    std::optional<Directory> directory;
    if (!open_directory(options.directory, directory)) {
        return nothingDone;
    }
    const ReadSystem* const source = open_system(*directory, options.from, Column::intoBessel);
    const ReadSystem* const target =
        source == nullptr ? nullptr : open_system(*directory, options.to, Column::outOfBessel);
    if (target == nullptr) {
        return nothingDone;
    }
    const FileForm form = file_form(options, source->description);
    const RunOptions run = run_options(options, source->description, target->description);
    std::vector<Input> inputs = open_inputs(options.files);

    const PointWriter writer(run, *directory, *source, *target);
    if (options.fast && !writer.is_fast() && !options.quiet) {
        complain(
            "warning: --fast does not serve these systems: all results are those of the ordinary "
            "calculation");
    }
    OutputFile output = options.output.empty() ? OutputFile() : OutputFile(options.output);
    const bool besideTheRows = options.output.empty() && is_terminal(standardOutput);
    Progress progress(!options.quiet && !besideTheRows && is_terminal(standardError), total_size(inputs));
    Outcome outcome(output, progress, options.quiet);

    const std::size_t cores = std::max<std::size_t>(std::thread::hardware_concurrency(), 1);
    const std::size_t jobs = options.jobs != 0 ? options.jobs : std::min(cores, mostJobs);
    bool readable = true;
    {
        OrderedWork<Piece> work(
            jobs,
            [&writer](Piece& piece) {
                piece.written.clear();
                if (piece.overlong) {
                    writer.overlong_line(piece.form, piece.firstLine, longestLine, piece.written);
                }
                writer.lines(piece.lines.view(), piece.form, piece.firstLine, piece.written);
            },
            [&outcome](Piece& piece) { outcome.take(piece); });
        PieceReader reader(form, writer, block_size(jobs), work);
        for (Input& input : inputs) {
            try {
                InputFile file = input.file ? std::move(*input.file) : open_input(input.name);
                reader.read(file);
            } catch (const ReadError& error) {
                work.finish();
                outcome.say(error.what());
                readable = false;
            }
        }
        work.finish();
    }
    progress.clear();
    if (readable) {
        output.complete();
    } else if (!options.output.empty()) {
        complain(options.output + ": not written, as not everything could be read");
    }
    const Tally& tally = outcome.tally;
    if (!tally.all_good()) {
        complain(tally.summary());
    }
    if (!readable) {
        return tally.rows == 0 || !options.output.empty() ? nothingDone : someFailed;
    }
    return tally.all_good() ? allGood : someFailed;
}

}  // namespace

Command transform_command() {
    const auto options = std::make_shared<TransformOptions>();
    Command command{
        "transform",
        "Transform points, one a line: two coordinates, an optional height, and any other columns."};
    command.details =
        "Plane coordinates are northing and easting in metres, geographic ones latitude and longitude in "
        "degrees, geocentric ones X, Y, Z. The results stand in place of the coordinates, all else is passed "
        "through; so are empty lines and lines that begin with #. A line that fails keeps its row: its "
        "coordinates become *, status and message follow in a last column.";
    command.add("--from CODE", &options->from, "Lagestatus of the source", {.required = true});
    command.add("--to CODE", &options->to, "Lagestatus of the target", {.required = true});
    command.add_directory(&options->directory);
    command.add("FILE", &options->files, "Files of points; standard input when there is none, or for -");

    command.group = "Heights";
    command.add("--height e|n", &options->height, "Heights given: e ellipsoidal, n normal heights",
                {.choices = {"e", "n"}, .meanings = {"E", "N"}});
    command.add("--heights", &options->heights,
                "One column more: the normal height (not for geocentric targets)");

    command.group = "Form of the lines";
    command.add("--delimiter NAME", &options->delimiter,
                "Between columns: blank (any number of blanks and tabs), tab, semicolon or comma. Without it "
                "each file's first point tells",
                {.choices = {"blank", "tab", "semicolon", "comma"}, .meanings = {" ", "\t", ";", ","}});
    command.add("--columns N,N[,N]", &options->columns,
                "Columns of northing, easting and height, or of the first two alone, from 1 (1,2,3, the "
                "third if it looks like a number)",
                {.smallest = 1, .largest = 10000});
    command.add("--decimal-comma", &options->decimalComma, "Numbers have a decimal comma");
    command.add(
        "--header", &options->header,
        "The first line of a file names its columns; the names of the coordinates become the new ones");
    command.add("--label", &options->label, "Begin with a comment that names the columns");
    command.add(
        "--latin1", &options->latin1,
        "Names and messages are added in ISO 8859-1, for files in it or in Windows-1252; else in UTF-8");
    command.add("--swap", &options->swap, "Easting before northing, longitude before latitude: in and out");
    command.add("--swap-input", &options->swapInput, "The same for the input alone");
    command.add("--swap-output", &options->swapOutput, "The same for the output alone");
    command.add("--dms", &options->withSeconds,
                "Write degrees, minutes and seconds; they are read in any case");
    command.add("--precision M[,D]", &options->precision,
                "Decimals of metres, and of degrees (or seconds with --dms) if five (one) more do not suit",
                {.largest = 15});

    command.group = "The run";
    command.add("-o, --output FILE", &options->output,
                "Write to a file, which appears under its name when it is complete");
    command.add(
        "--fast", &options->fast,
        "The fast calculation: some micrometres beside the results of the reference, nearer the truth");
    command.add("-j, --jobs N", &options->jobs, "Threads (all cores)", {.smallest = 1, .largest = mostJobs});
    command.add("-q, --quiet", &options->quiet, "No progress bar and no warnings");
    command.examples =
        "lagestatus transform --from 103 --to 203 -d data points.txt\n"
        "lagestatus transform --from 103 --to 201 -d data --columns 2,3,4 --header -o new.csv points.csv\n"
        "lagestatus transform --from 103 --to 203 -d data --height n --heights --label < points.txt";
    command.run = [options] { return transform_points(*options); };
    return command;
}

}  // namespace cli
