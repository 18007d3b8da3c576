// The manual page: the commands as they describe themselves, between sections that stand here.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <sstream>

#include "help/description.h"

namespace cli {
namespace {

struct NamedText {
    std::string_view name;
    std::string_view text;
};

constexpr std::array<std::string_view, 4> introduction = {
    "The program carries points from one coordinate system to another, and looks after the data files that "
    "describe "
    "the systems. A system is named by its code, its Lagestatus: a number such as 103.",
    "What the systems are, and how each lies to the others, is told by plain text files in a data directory "
    "(option --dir, else the current directory). A sample directory comes with the program.",
    "A transformation leads from the source system to geocentric coordinates, into the Bessel datum where "
    "the datum "
    "changes, and from there to the target system. Heights are ellipsoidal heights or, where a height model "
    "is there, "
    "normal heights.",
    "Messages about data files are those of the library, which are in German and have a status each."};

constexpr std::array<NamedText, 4> files = {{
    {"DEFAULT",
     "The definition file of a data directory: how many systems it has, whether their files are scrambled, "
     "and for each "
     "its code and the base name of its parameter file."},
    {"*.tra", "Parameter files, one for each system: name, ellipsoid, kind, zones and parameters."},
    {"*.tr0", "The same where DEFAULT says that the parameter files are scrambled."},
    {"hoehe.ini", "The height model: a grid of height anomalies, needed for normal heights only."},
}};

constexpr std::size_t exampleIndent = 2;  // of the help's examples

// As text for roff: a hyphen is one to be copied, a quotation mark or accent is that of ASCII.
std::string escaped(std::string_view text) {
    std::string roff;
    for (const char byte : text) {
        switch (byte) {
            case '\\':
                roff += "\\e";
                break;
            case '-':
                roff += "\\-";
                break;
            case '\'':
                roff += "\\(aq";
                break;
            case '"':
                roff += "\\(dq";
                break;
            case '`':
                roff += "\\(ga";
                break;
            case '^':
                roff += "\\(ha";
                break;
            case '~':
                roff += "\\(ti";
                break;
            default:
                roff += byte;
        }
    }
    return roff;
}

// Text that may not be taken for a request.
std::string text_line(const std::string& roff) {
    return (roff.starts_with('.') || roff.starts_with('\'') ? "\\&" : "") + roff + '\n';
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
std::string usage_word(const std::string& word) {
    std::string roff;
    std::string part;
    const auto finish = [&roff, &part] {
        if (!part.empty()) {
            const bool capital = std::isupper(static_cast<unsigned char>(part.front())) != 0;
            roff += capital ? italic(part) : bold(part);
            part.clear();
        }
    };
    for (const char byte : word) {
        if (std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '-') {
            part += byte;
        } else {
            finish();
            roff += escaped(std::string_view(&byte, 1));
        }
    }
    finish();
    return roff;
}

std::string usage(const std::string& name, const CLI::App& command) {
    std::string roff = bold(name);
    for (const std::string& word : usage_of(command)) {
        roff += ' ' + usage_word(word);
    }
    return roff + '\n';
}

std::string option_tag(const Argument& argument) {
    std::string roff;
    for (const std::string& name : argument.names) {
        roff += (roff.empty() ? "" : ", ") + bold(name);
    }
    if (!argument.value.empty()) {
        roff += (roff.empty() ? "" : " ") + italic(argument.value);
    }
    return roff;
}

std::string arguments(const std::vector<Argument>& all) {
    std::string roff;
    std::string group;
    for (const Argument& argument : all) {
        if (argument.group != group) {
            group = argument.group;
            roff += ".PP\n" + text_lines(group + ":");
        }
        roff += tagged(option_tag(argument), argument.description);
    }
    return roff;
}

// Paragraphs; indented lines are shown as they are.
std::string footer(const std::string& text) {
    std::istringstream lines(text);
    std::string roff;
    bool verbatim = false;
    bool begins = true;
    for (std::string line; std::getline(lines, line);) {
        const bool indented = line.starts_with(' ');
        if (indented != verbatim) {
            roff += indented ? ".RS 4\n.nf\n" : ".fi\n.RE\n";
            verbatim = indented;
        }
        if (indented) {
            roff += text_line(escaped(line.substr(std::min(exampleIndent, line.size()))));
        } else if (!line.empty()) {
            roff += (begins ? ".PP\n" : "") + text_lines(line);
        }
        begins = line.empty();
    }
    return roff + (verbatim ? ".fi\n.RE\n" : "");
}

// Those of a command, without the help that all have.
std::vector<Argument> own_arguments_of(const CLI::App& command) {
    std::vector<Argument> all = positionals_of(command);
    for (const Argument& option : options_of(command)) {
        if (!option.isHelp) {
            all.push_back(option);
        }
    }
    return all;
}

std::string command_section(const std::string& name, const CLI::App& command) {
    std::string description = summary_of(command) + (summary_of(command).ends_with('.') ? "" : ".");
    if (const std::string details = details_of(command); !details.empty()) {
        description += ' ' + details;
    }
    std::string roff = ".SS " + escaped(command.get_name()) + '\n' + usage(name, command);
    roff += ".PP\n" + text_lines(description) + arguments(own_arguments_of(command));
    return roff + footer(command.get_footer());
}

}  // namespace

std::string manual_page(const CLI::App& program, std::string_view version) {
    const std::string& name = program.get_name();
    std::string summary = summary_of(program);
    if (summary.ends_with('.')) {
        summary.pop_back();
    }
    summary.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(summary.front())));
    std::string title = name;
    for (char& letter : title) {
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    }

    std::string page = ".\\\" Made by: " + name + " manual\n";
    page +=
        ".TH " + title + " 1 \"\" \"" + escaped(name + " " + std::string(version)) + "\" \"User Commands\"\n";
    page += ".SH NAME\n" + text_lines(name + " - " + summary);
    page += ".SH SYNOPSIS\n.nf\n";
    for (const CLI::App* command : commands_of(program)) {
        page += usage(name + " " + command->get_name(), *command);
    }
    page += bold(name) + " [" + bold("--help") + "] [" + bold("--version") + "]\n.fi\n";
    page += ".SH DESCRIPTION\n";
    for (std::size_t i = 0; i < introduction.size(); ++i) {
        page += (i == 0 ? "" : ".PP\n") + text_lines(introduction[i]);
    }
    page += ".SH OPTIONS\n" + arguments(options_of(program)) + ".PP\n" +
            text_lines("Every command has the option --help as well.");
    page += ".SH COMMANDS\n";
    for (const CLI::App* command : commands_of(program)) {
        page += command_section(name + " " + command->get_name(), *command);
    }
    const std::string examples = program.get_footer();
    page += ".SH EXAMPLES\n" + footer(examples.substr(examples.find('\n') + 1));
    page += ".SH EXIT STATUS\n";
    for (const auto& [status, meaning] : exitStatuses) {
        page += tagged(bold(std::to_string(status)), meaning);
    }
    page += ".SH FILES\n";
    for (const auto& [file, text] : files) {
        page += tagged(italic(file), text);
    }
    page +=
        ".SH SEE ALSO\n"
        "The documents that come with the program, usually in\n"
        ".IR /usr/share/doc/" +
        escaped(name) +
        " ,\n"
        "describe the data files line by line; a sample of them lies in\n"
        ".IR /usr/share/" +
        escaped(name) + " .\n";
    return page;
}

}  // namespace cli
