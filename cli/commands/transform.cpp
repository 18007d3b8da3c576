// transform: carries points from one system into another.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "keeper/directory.h"
#include "points/ordered_work.h"
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
    std::size_t jobs = 0;  // 0: as many as there are cores
    bool quiet = false;
    std::vector<std::string> files;
};

constexpr std::size_t longestLine = std::size_t{1} << 17;  // bytes
constexpr std::size_t largestPiece = std::size_t{1} << 17;
constexpr std::size_t smallestPiece = std::size_t{1} << 12;
// All pieces together, their input; their output takes up to forty times as much, if every line fails.
constexpr std::size_t piecesTogether = std::size_t{1} << 20;
constexpr std::size_t keptMemory = std::size_t{1} << 18;  // what a piece may keep for the next lines
// A point with a height costs as much as hundreds without: a piece then is a hundred points or so.
constexpr std::size_t pieceWithHeights = std::size_t{1} << 12;
constexpr std::size_t mostJobs = 256;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Some lines of a file on their way through the program.
struct Piece {
    std::string bytes;
    std::size_t begin = 0;        // what is written before the lines is cut off here
    std::string before;           // written as it is, ahead of the lines
    std::uint64_t firstLine = 1;  // of the lines behind begin
    bool overlong = false;        // there is a single line, and it was skipped
    std::size_t read = 0;         // bytes of the file
    std::shared_ptr<const LineForm> form;
    const std::string* fileName = nullptr;
    Written written;
};

using Work = OrderedWork<Piece>;

// Cuts files into pieces of whole lines and finds out how their lines are made.
class PieceReader {
  public:
    PieceReader(const TransformOptions& transformOptions, LineForm lineForm, const PointWriter& pointWriter,
                std::size_t piece, Work& pieces)
        : options(transformOptions),
          form(std::move(lineForm)),
          writer(pointWriter),
          pieceSize(piece),
          work(pieces) {}

    // Reads a file to its end; fileName, for messages, is there as long as the work.
    void read(InputFile& file, const std::string& fileName) {
        fileForm = options.delimiter.empty() ? nullptr : std::make_shared<const LineForm>(form);
        name = &fileName;
        line = 1;
        carry.clear();
        bool first = true;
        std::size_t size = pieceSize;
        for (bool ended = false; !ended;) {
            Piece& piece = work.next();
            piece.bytes.resize(size);
            std::copy(carry.begin(), carry.end(), piece.bytes.begin());
            const std::size_t count = file.read(piece.bytes.data() + carry.size(), size - carry.size());
            piece.bytes.resize(carry.size() + count);
            fresh += count;
            ended = count == 0;
            const std::size_t feed = ended ? std::string::npos : piece.bytes.rfind('\n');
            if (!ended && (feed == std::string::npos || (first && is_too_little(piece.bytes, feed + 1)))) {
                carry = piece.bytes;
                if (carry.size() < size) {
                    continue;
                }
                if (size < longestLine) {
                    size = std::min(size * 2, longestLine);
                    continue;
                }
            }
            if (!ended && feed == std::string::npos) {
                ended = skip_line(file);
                piece.overlong = true;
                piece.bytes.clear();
                submit(piece, first, 1);
                continue;
            }
            const std::size_t whole = ended ? piece.bytes.size() : feed + 1;
            carry.assign(piece.bytes, whole);
            piece.bytes.resize(whole);
            size = std::max(pieceSize, carry.size() + 1);
            if (!piece.bytes.empty()) {
                submit(piece, first,
                       static_cast<std::uint64_t>(std::count(piece.bytes.begin(), piece.bytes.end(), '\n')));
            }
        }
    }

  private:
    void submit(Piece& piece, bool& first, std::uint64_t lines) {
        piece.begin = 0;
        piece.before.clear();
        piece.firstLine = line;
        piece.fileName = name;
        piece.read = std::exchange(fresh, 0);
        line += lines;
        if (std::exchange(first, false)) {
            begin_file(piece);
        }
        recognise(piece);
        piece.form = fileForm ? fileForm : std::make_shared<const LineForm>(form);
        work.submit();
    }

    // Whether label and heading cannot be written yet: they hang on the first point.
    [[nodiscard]] bool is_too_little(std::string_view bytes, std::size_t whole) const {
        const std::string_view lines = bytes.substr(0, whole);
        return (options.header || options.label) && !first_point(lines.substr(head_size(lines)));
    }

    // The byte order mark and the names of the columns; bytes are not empty.
    [[nodiscard]] std::size_t head_size(std::string_view bytes) const {
        const std::size_t mark = bytes.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
        return options.header ? std::min(bytes.find('\n', mark), bytes.size() - 1) + 1 : mark;
    }

    // The end of a line that is too long. Returned: whether the file ended.
    bool skip_line(InputFile& file) {
        for (;;) {
            carry.resize(longestLine);
            const std::size_t count = file.read(carry.data(), carry.size());
            fresh += count;
            const std::size_t feed = std::string_view(carry).substr(0, count).find('\n');
            if (count == 0) {
                carry.clear();
                return true;
            }
            if (feed != std::string_view::npos) {
                carry.resize(count);
                carry.erase(0, feed + 1);
                return false;
            }
        }
    }

    // The first line of a piece that holds a point; behind the heading, if there is one.
    [[nodiscard]] static std::optional<std::string_view> first_point(std::string_view lines) {
        while (!lines.empty()) {
            const std::string_view text = lines.substr(0, lines.find('\n'));
            if (!is_passed_through(text.ends_with('\r') ? text.substr(0, text.size() - 1) : text)) {
                return text.ends_with('\r') ? text.substr(0, text.size() - 1) : text;
            }
            lines.remove_prefix(std::min(text.size() + 1, lines.size()));
        }
        return std::nullopt;
    }

    void recognise(const Piece& piece) {
        if (fileForm != nullptr) {
            return;
        }
        if (const auto text = first_point(std::string_view(piece.bytes).substr(piece.begin))) {
            LineForm found = form;
            found.delimiter = recognised_delimiter(*text, form);
            fileForm = std::make_shared<const LineForm>(found);
        }
    }

    // What stands at the head of a file: a byte order mark, the label, the names of the columns.
    void begin_file(Piece& piece) {
        const std::string_view bytes = piece.bytes;
        const bool firstFile = std::exchange(noFileYet, false);
        const std::size_t mark = bytes.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
        piece.before = bytes.substr(0, firstFile ? mark : 0);
        if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
            throw FileError(*name + ": is UTF-16; UTF-8, ISO 8859-1 and Windows-1252 can be read");
        }
        piece.begin = bytes.empty() ? 0 : head_size(bytes);
        std::string_view head = bytes.substr(mark, piece.begin - mark);
        piece.firstLine += head.ends_with('\n') ? 1 : 0;
        const std::string_view lineEnd = bytes.find("\r\n") < bytes.find('\n') ? "\r\n" : "\n";
        recognise(piece);
        const LineForm& lineForm = fileForm ? *fileForm : form;
        bool hasHeight = !lineForm.looksForHeight && lineForm.columns.size() > 2;
        if (const auto text = first_point(bytes.substr(piece.begin))) {
            PointLine read;
            LineReader(lineForm).read(*text, read);
            hasHeight = read.hasHeight;
        }
        if (!firstFile) {
            return;
        }
        if (options.label) {
            piece.before.append(writer.label(lineForm, hasHeight)).append(lineEnd);
        }
        if (!head.empty()) {
            head = head.substr(0, head.find_last_not_of("\r\n") + 1);
            piece.before.append(writer.heading(head, lineForm, hasHeight)).append(lineEnd);
        }
    }

    const TransformOptions& options;
    LineForm form;
    const PointWriter& writer;
    std::size_t pieceSize;
    Work& work;

    bool noFileYet = true;
    std::shared_ptr<const LineForm> fileForm;  // null until the delimiter is known
    const std::string* name = nullptr;
    std::uint64_t line = 1;  // of what comes next
    std::size_t fresh = 0;   // bytes read and not yet in a piece
    std::string carry;       // the beginning of a line whose end is not yet read
};

// Takes the pieces in their order: writes their rows, counts, and says what is to be said.
class Outcome {
  public:
    Outcome(OutputFile& outputFile, Progress& progressBar, bool silent)
        : output(outputFile), progress(progressBar), quiet(silent) {}

    void take(Piece& piece) {
        output.write(piece.before);
        output.write(piece.written.text);
        tally.add(piece.written.tally);
        bytes += piece.read;
        for (const Report& report : piece.written.errors) {
            constexpr int mostErrors = 20;
            if (++errors <= mostErrors) {
                say(piece, report, "");
            } else if (errors == mostErrors + 1) {
                progress.clear();
                complain("further lines that cannot be read are told in their rows alone");
            }
        }
        if (!piece.written.warning.text.empty() && !std::exchange(warned, true) && !quiet) {
            say(piece, piece.written.warning, "warning: ");
        }
        progress.show(bytes, tally.rows);
        for (std::string* const memory : {&piece.bytes, &piece.written.text}) {
            if (memory->capacity() > keptMemory) {
                std::string().swap(*memory);
            }
        }
    }

    Tally tally;

  private:
    void say(const Piece& piece, const Report& report, const std::string& what) {
        progress.clear();
        complain(*piece.fileName + ":" + std::to_string(report.line) + ": " + what + report.text);
    }

    OutputFile& output;
    Progress& progress;
    bool quiet;
    std::uint64_t bytes = 0;
    int errors = 0;
    bool warned = false;
};

constexpr int mostSecondDecimals = 10;

// How lines are made, as far as the options say. Nothing, and a message, for options that contradict each other.
std::optional<LineForm> line_form(const TransformOptions& options, const System& source) {
    LineForm form;
    if (!options.delimiter.empty()) {
        form.delimiter = options.delimiter.front();
    }
    form.decimalComma = options.decimalComma;
    if (form.decimalComma && form.delimiter == ',') {
        complain("--decimal-comma: the delimiter cannot be a comma as well");
        return std::nullopt;
    }
    form.angles = source.is(Kind::geographic);

    if (options.columns.size() == 1 || options.columns.size() > 3) {
        complain("--columns: two or three columns hold a point");
        return std::nullopt;
    }
    if (options.precision.size() > 2) {
        complain("--precision: decimals of metres, and of degrees");
        return std::nullopt;
    }
    if (options.withSeconds && options.precision.size() == 2 && options.precision[1] > mostSecondDecimals) {
        complain("--precision: seconds have at most " + std::to_string(mostSecondDecimals) + " decimals");
        return std::nullopt;
    }
    if (!options.columns.empty()) {
        form.looksForHeight = false;
        form.columns.clear();
        for (const std::size_t column : options.columns) {
            if (std::find(form.columns.begin(), form.columns.end(), column - 1) != form.columns.end()) {
                complain("--columns: column " + std::to_string(column) + " is named twice");
                return std::nullopt;
            }
            form.columns.push_back(column - 1);
        }
    }
    if (source.is(Kind::geocentric)) {
        form.looksForHeight = false;
        if (form.columns.size() < 3) {
            complain("--columns: a geocentric point has three columns");
            return std::nullopt;
        }
    } else if (options.swap || options.swapInput) {
        std::swap(form.columns[0], form.columns[1]);
    }
    return form;
}

bool is_normal(const std::string& height) {
    return height == "n" || height == "N";
}

RunOptions run_options(const TransformOptions& options, const System& source, const System& target) {
    RunOptions run;
    run.normalGiven = is_normal(options.height);
    run.normalWanted = options.heights;
    run.latin1 = options.latin1;
    WrittenForm& how = run.written;
    if (!options.precision.empty()) {
        how.metreDecimals = options.precision[0];
    }
    // A degree has 111 km, a second 31 m.
    how.withSeconds = options.withSeconds;
    how.degreeDecimals = options.precision.size() > 1 ? options.precision[1]
                         : options.withSeconds        ? std::min(how.metreDecimals + 1, mostSecondDecimals)
                                                      : how.metreDecimals + 5;
    const bool eastingFirstIn = (options.swap || options.swapInput) && !source.is(Kind::geocentric);
    const bool eastingFirstOut = (options.swap || options.swapOutput) && !target.is(Kind::geocentric);
    how.exchanged = eastingFirstIn != eastingFirstOut;
    return run;
}

// A file in its turn. Regular files are opened again then: there may be more of them than can be open at once.
struct Input {
    std::string name;                   // for messages
    std::optional<std::uint64_t> size;  // of a regular file
    std::optional<InputFile> file;      // open, if it is none
};

// All files are opened before the first row: a wrong name must not be found out half way.
std::vector<Input> open_inputs(const std::vector<std::string>& names) {
    std::vector<Input> inputs;
    const auto add = [&inputs](InputFile file) {
        inputs.push_back({file.name(), file.size(), std::nullopt});
        if (!inputs.back().size || file.is_standard_input()) {
            inputs.back().file.emplace(std::move(file));
        }
    };
    for (const std::string& name : names) {
        add(name == "-" ? InputFile() : InputFile(name));
    }
    if (names.empty()) {
        add(InputFile());
    }
    return inputs;
}

std::optional<std::uint64_t> total_size(const std::vector<Input>& inputs) {
    std::uint64_t total = 0;
    for (const Input& input : inputs) {
        if (!input.size) {
            return std::nullopt;
        }
        total += *input.size;
    }
    return total;
}

std::size_t piece_size(std::size_t jobs, bool withHeights) {
    return withHeights ? pieceWithHeights
                       : std::clamp(piecesTogether / (jobs + 2), smallestPiece, largestPiece);
}

int transform_points(const TransformOptions& options) {
    Definition definition;
    System source;
    System target;
    if (!open_directory(options.directory, definition) ||
        !open_system(options.directory, definition, options.from, Role::source, source) ||
        !open_system(options.directory, definition, options.to, Role::target, target)) {
        return nothingDone;
    }
    // What stands in front of the eastings of the source; a file that serves as a source only may not tell.
    source.zoneNumber =
        read_system(options.directory, definition, *find_entry(definition, options.from), Role::target)
            .zoneNumber;
    const std::optional<LineForm> form = line_form(options, source);
    if (!form) {
        return nothingDone;
    }
    std::vector<Input> files = open_inputs(options.files);
    const PointWriter writer(
        run_options(options, source, target), options.directory, source, target,
        in_directory(options.directory, parameter_file_name(definition, *find_entry(definition, options.to))),
        in_directory(options.directory, "hoehe.ini"));
    const auto output = options.output.empty() ? std::make_unique<OutputFile>()
                                               : std::make_unique<OutputFile>(options.output);
    const bool besideTheRows = options.output.empty() && is_terminal(standardOutput);
    Progress progress(!options.quiet && !besideTheRows && is_terminal(standardError), total_size(files));
    Outcome outcome(*output, progress, options.quiet);

    const std::size_t cores = std::max<std::size_t>(std::thread::hardware_concurrency(), 1);
    const std::size_t jobs = options.jobs != 0 ? options.jobs : std::min(cores, mostJobs);
    const bool withHeights = options.heights || is_normal(options.height);
    const auto transformPiece = [&writer](Piece& piece) {
        piece.written.clear();
        if (std::exchange(piece.overlong, false)) {
            writer.overlong_line(*piece.form, piece.firstLine, longestLine, piece.written);
        } else {
            const std::string_view lines = piece.bytes;
            writer.lines(lines.substr(piece.begin), *piece.form, piece.firstLine, piece.written);
        }
    };
    bool readable = true;
    {
        Work work(jobs, transformPiece, [&outcome](Piece& piece) { outcome.take(piece); });
        PieceReader reader(options, *form, writer, piece_size(jobs, withHeights), work);
        for (Input& input : files) {
            try {
                InputFile file = input.file ? std::move(*input.file) : InputFile(input.name);
                reader.read(file, input.name);
            } catch (const ReadError& error) {
                work.finish();
                progress.clear();
                complain(error.what());
                readable = false;
            }
        }
        work.finish();
    }
    progress.clear();
    if (readable) {
        output->complete();
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
