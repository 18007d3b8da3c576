// The manual page: the commands as they describe themselves, between sections that stand here.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <sstream>

#include "help/description.h"

namespace cli {
namespace {

constexpr std::string_view introduction = R"(.SH DESCRIPTION
The program carries points from one coordinate system to another, and looks
after the data files that describe the systems. A system is named by its code,
its Lagestatus: a number such as 103.
.PP
What the systems are, and how each lies to the others, is told by plain text
files in a data directory (option \-\-dir, else the current directory). A sample
directory comes with the program.
.PP
A transformation leads from the source system to geocentric coordinates, into
the Bessel datum where the datum changes, and from there to the target system.
Heights are ellipsoidal heights or, where a height model is there, normal
heights.
.PP
Messages about data files are those of the library, which are in German and have
a status each.
)";

constexpr std::string_view filesAndDocuments = R"(.SH FILES
.TP
\fIDEFAULT\fR
The definition file of a data directory: how many systems it has, whether their
files are scrambled, and for each its code and the base name of its parameter
file.
.TP
\fI*.tra\fR
Parameter files, one for each system: name, ellipsoid, kind, zones and
parameters.
.TP
\fI*.tr0\fR
The same where DEFAULT says that the parameter files are scrambled.
.TP
\fIhoehe.ini\fR
The height model: a grid of height anomalies, needed for normal heights only.
.SH SEE ALSO
The documents that come with the program, usually in
.IR /usr/share/doc/lagestatus ,
describe the data files line by line; a sample of them lies in
.IR /usr/share/lagestatus .
)";

struct Glyph {
    char byte;
    std::string_view roff;
};

// What roff takes for something else; quotation marks and accents are those of ASCII.
constexpr std::array<Glyph, 7> glyphs = {{{'\\', "\\e"},
                                          {'-', "\\-"},
                                          {'\'', "\\(aq"},
                                          {'"', "\\(dq"},
                                          {'`', "\\(ga"},
                                          {'^', "\\(ha"},
                                          {'~', "\\(ti"}}};

std::string escaped(std::string_view text) {
    std::string roff;
    for (const char byte : text) {
        const auto* const glyph = std::find_if(glyphs.begin(), glyphs.end(),
                                               [byte](const Glyph& each) { return each.byte == byte; });
        roff += glyph != glyphs.end() ? glyph->roff : std::string_view(&byte, 1);
    }
    return roff;
}

// Text that may not be taken for a request.
std::string text_line(const std::string& roff) {
    return (roff.starts_with('.') ? "\\&" : "") + roff + '\n';
}

std::string text_lines(std::string_view text) {
    std::istringstream lines(wrapped(escaped(text), 0, 0));
    std::string roff;
    for (std::string line; std::getline(lines, line);) {
        roff += text_line(line);
    }
    return roff;
}

std::string bold(std::string_view text) {
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(std::string_view text) {
    return "\\fI" + escaped(text) + "\\fR";
}

std::string tagged(const std::string& tag, std::string_view text) {
    return ".TP\n" + tag + '\n' + text_lines(text);
}

// What a user types is bold, what stands for something else in capitals is italic.
std::string usage_line(const std::string& name, const Command& command) {
    std::string roff = bold(name);
    std::string part;
    for (const char byte : command.usage() + '\n') {
        if (std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '-') {
            part += byte;
            continue;
        }
        if (!part.empty()) {
            roff += std::isupper(static_cast<unsigned char>(part.front())) != 0 ? italic(part) : bold(part);
            part.clear();
        }
        roff += byte;
    }
    return roff;
}

std::string argument_list(const std::vector<Argument>& all) {
    std::string roff;
    std::string group;
    for (const Argument& argument : all) {
        if (argument.group != group) {
            group = argument.group;
            roff += ".PP\n" + text_lines(group + ":");
        }
        std::vector<std::string> names;
        for (const std::string& name : argument.names) {
            names.push_back(bold(name));
        }
        std::string tag = joined(names, ", ");
        if (!argument.value.empty()) {
            tag += (tag.empty() ? "" : " ") + italic(argument.value);
        }
        roff += tagged(tag, argument.description);
    }
    return roff;
}

std::string example_lines(const Command& command) {
    std::istringstream lines(command.examples);
    std::string roff = ".RS 4\n.nf\n";
    for (std::string line; std::getline(lines, line);) {
        roff += text_line(escaped(line));
    }
    return roff + ".fi\n.RE\n";
}

std::string command_section(const Command& program, const Command& command) {
    std::string text = command.summary + (command.summary.ends_with('.') ? " " : ". ");
    std::vector<Argument> options = command.options();
    options.pop_back();  // the help, which all have
    return ".SS " + escaped(command.name) + '\n' + usage_line(program.name + ' ' + command.name, command) +
           ".PP\n" + text_lines(text + command.details) + argument_list(command.positionals()) +
           argument_list(options) + ".PP\n" + examples_heading(command) + '\n' + example_lines(command);
}

}  // namespace

std::string manual_page(const Command& program) {
    std::string summary = program.summary.substr(0, program.summary.size() - 1);  // without its full stop
    summary.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(summary.front())));
    std::string page = ".\\\" Made by: lagestatus manual\n";
    page += ".TH LAGESTATUS 1 \"\" \"lagestatus " LAGESTATUS_VERSION "\" \"User Commands\"\n";
    page += ".SH NAME\n" + text_lines(program.name + " - " + summary);
    page += ".SH SYNOPSIS\n.nf\n";
    for (const Command& command : program.commands) {
        page += usage_line(program.name + ' ' + command.name, command);
    }
    page += bold(program.name) + " [" + bold("--help") + "] [" + bold("--version") + "]\n.fi\n";
    page += introduction;
    page += ".SH OPTIONS\n" + argument_list(program.options()) + ".PP\n" +
            text_lines("Every command has the option --help as well.");
    page += ".SH COMMANDS\n";
    for (const Command& command : program.commands) {
        page += command_section(program, command);
    }
    page += ".SH EXAMPLES\n" + example_lines(program) + ".SH EXIT STATUS\n";
    for (std::size_t status = 0; status < exitMeanings.size(); ++status) {
        page += tagged(bold(std::to_string(status)), exitMeanings[status]);
    }
    page += filesAndDocuments;
    return page;
}

}  // namespace cli
