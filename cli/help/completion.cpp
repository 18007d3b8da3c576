// Completion scripts. A shell asks the program itself for the codes of the data directory on the line.
#include "help/description.h"

namespace cli {
namespace {

// Replaces each {{NAME}} of a script by its text.
struct Filling {
    std::string_view name;
    std::string text;
};

std::string filled(std::string script, const std::vector<Filling>& fillings) {
    for (const Filling& filling : fillings) {
        const std::string mark = "{{" + std::string(filling.name) + "}}\n";
        script.replace(script.find(mark), mark.size(), filling.text);
    }
    return script;
}

// A text as one word of any of the shells. Between single quotes fish alone knows the backslash, and only ahead of
// itself or a quote.
std::string shell_word(std::string_view text, bool isFish = false) {
    std::string word = "'";
    for (const char byte : text) {
        if (byte == '\'') {
            word += "'\\''";
        } else if (byte == '\\' && isFish) {
            word += "\\\\";
        } else {
            word += byte;
        }
    }
    return word + '\'';
}

struct Named {
    std::string name;  // empty for the program itself
    const CLI::App* command;
};

std::vector<Named> program_and_commands(const CLI::App& program) {
    std::vector<Named> all = {{"", &program}};
    for (const CLI::App* command : commands_of(program)) {
        all.push_back({command->get_name(), command});
    }
    return all;
}

std::vector<std::string> names_of_options(const CLI::App& command) {
    std::vector<std::string> names;
    for (const Argument& option : options_of(command)) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return names;
}

std::vector<std::string> names_of_commands(const CLI::App& program) {
    std::vector<std::string> names;
    for (const CLI::App* command : commands_of(program)) {
        names.push_back(command->get_name());
    }
    return names;
}

bool is_known(const Argument& argument) {
    return !argument.choices.empty() || argument.takes("DIR") || argument.takes("FILE") ||
           argument.takes("CODE");
}

constexpr std::string_view bashScript = R"sh(# Completion for bash, made by: lagestatus completion bash

# Sets takes to what an option of a command takes: words, or DIR, FILE, CODE or ANY; to nothing for a flag.
_lagestatus_option_takes() {
    case "$1 $2" in
{{OPTIONS}}
    *) takes= ;;
    esac
}

# The same for an argument of a command, counted from 1; there may be none.
_lagestatus_argument_takes() {
    case "$1 $2" in
{{ARGUMENTS}}
    *) takes= ;;
    esac
}

_lagestatus_names() {
    case $1 in
{{NAMES}}
    esac
}

_lagestatus_codes() {
    local code
    while read -r code _; do
        [[ $code == [0-9]* ]] && printf '%s\n' "$code"
    done < <("$1" list -d "$2" 2>/dev/null)
}

_lagestatus() {
    local program=${COMP_WORDS[0]/#~\//$HOME/} current=${COMP_WORDS[COMP_CWORD]}
    local word option command='' count=1 directory=. takes='' offered=''
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ -n $takes ]]; then
            [[ $word == '=' ]] && continue # a word of its own in --dir=data
            [[ $option == -d || $option == --dir ]] && directory=$word
            takes=
        elif [[ $word == -d?* ]]; then
            directory=${word#-d}
        elif [[ $word == -?* ]]; then
            option=$word
            _lagestatus_option_takes "$command" "$word"
        elif [[ -z $command ]]; then
            command=$word
        else
            ((++count))
        fi
    done
    [[ $current == '=' ]] && current=
    directory=${directory//[\\\"\']/}
    directory=${directory/#~\//$HOME/}
    if [[ -z $takes && $current != -* ]]; then
        _lagestatus_argument_takes "$command" "$count"
    fi
    COMPREPLY=()
    case $takes in
    '') offered=$(_lagestatus_names "$command") ;;
    DIR) compopt -o dirnames 2>/dev/null ;;
    FILE) compopt -o default 2>/dev/null ;;
    CODE) offered=$(_lagestatus_codes "$program" "$directory") ;;
    ANY) ;;
    *) offered=$takes ;;
    esac
    while read -r word; do
        [[ -n $word ]] && COMPREPLY+=("$word")
    done < <(compgen -W "$offered" -- "$current")
}

complete -F _lagestatus lagestatus
)sh";

std::string bash_takes(const Argument& argument) {
    if (!argument.choices.empty()) {
        return shell_word(joined(argument.choices, " "));
    }
    for (const char* kind : {"DIR", "FILE", "CODE"}) {
        if (argument.takes(kind)) {
            return kind;
        }
    }
    return "ANY";
}

std::string bash_case(const std::vector<std::string>& patterns, const std::string& takes) {
    return "    " + joined(patterns, " | ") + ") takes=" + takes + " ;;\n";
}

std::string bash_script(const CLI::App& program) {
    std::string options;
    std::string arguments =
        bash_case({shell_word(" 1")}, shell_word(joined(names_of_commands(program), " ")));
    std::string names;
    for (const auto& [name, command] : program_and_commands(program)) {
        for (const Argument& option : options_of(*command)) {
            std::vector<std::string> patterns;
            for (const std::string& each : option.names) {
                patterns.push_back(shell_word(joined({name, each}, " ")));
            }
            options += option.value.empty() ? "" : bash_case(patterns, bash_takes(option));
        }
        int number = 0;
        for (const Argument& argument : positionals_of(*command)) {
            const std::string pattern = argument.repeats ? shell_word(name + " ") + '*'
                                                         : shell_word(name + " " + std::to_string(++number));
            arguments += bash_case({pattern}, bash_takes(argument));
        }
        names += "    " + shell_word(name) + ") echo " + shell_word(joined(names_of_options(*command), " ")) +
                 " ;;\n";
    }
    return filled(std::string(bashScript),
                  {{"OPTIONS", options}, {"ARGUMENTS", arguments}, {"NAMES", names}});
}

constexpr std::string_view zshScript = R"sh(#compdef lagestatus
# Completion for zsh, made by: lagestatus completion zsh

_lagestatus_codes() {
    local directory=${(Q)${opt_args[-d]:-${opt_args[--dir]:-.}}}
    directory=${directory/#\~\//$HOME/}
    local -a codes
    codes=(${(f)"$($program list -d $directory 2>/dev/null |
        sed -nE 's/^([0-9]+)(  +[^ ]+( [^ ]+)*){4}  +/\1:/p')"})
    _describe -t codes code codes
}

_lagestatus() {
    local program=${${(Q)words[1]}/#\~\//$HOME/} curcontext=$curcontext state state_descr line ret=1
    local -A opt_args
    _arguments -C -S \
{{PROGRAM}}
        '1:command:->command' '*::argument:->argument' && ret=0
    case $state in
    command)
        local -a commands=(
{{COMMANDS}}
        )
        _describe -t commands command commands && ret=0
        ;;
    argument)
        curcontext=${curcontext%:*:*}:lagestatus-$words[1]:
        case $words[1] in
{{ARGUMENTS}}
        esac
        ;;
    esac
    return ret
}

# Called as a function of the search path, or read as a script.
if [[ $funcstack[1] == _lagestatus ]]; then
    _lagestatus "$@"
else
    compdef _lagestatus lagestatus
fi
)sh";

// A text inside what _arguments and _describe take apart.
std::string zsh_text(std::string_view text) {
    std::string escaped;
    for (const char byte : text) {
        if (byte == '\\' || byte == '[' || byte == ']' || byte == ':') {
            escaped += '\\';
        }
        escaped += byte;
    }
    return escaped;
}

std::string zsh_value(const Argument& argument) {
    const std::string action = !argument.choices.empty() ? "(" + joined(argument.choices, " ") + ")"
                               : argument.takes("DIR")   ? "_files -/"
                               : argument.takes("FILE")  ? "_files"
                               : argument.takes("CODE")  ? "_lagestatus_codes"
                                                         : " ";
    return ":" + zsh_text(argument.value) + ":" + action;
}

// The lines that describe the arguments of a command.
std::vector<std::string> zsh_arguments(const CLI::App& command) {
    std::vector<std::string> words;
    for (const Argument& option : options_of(command)) {
        for (const std::string& name : option.names) {
            const bool isLong = name.starts_with("--");
            const std::string separator = option.value.empty() ? "" : isLong ? "=" : "+";
            std::string word = "(" + joined(option.names, " ") + ")";
            word += name + separator + "[" + zsh_text(option.description) + "]" +
                    (option.value.empty() ? "" : zsh_value(option));
            words.push_back(shell_word(word));
        }
    }
    int number = 0;
    for (const Argument& argument : positionals_of(command)) {
        const std::string place = argument.repeats ? "*" : std::to_string(++number);
        words.push_back(
            shell_word(place + (argument.required || argument.repeats ? "" : ":") + zsh_value(argument)));
    }
    return words;
}

std::string zsh_script(const CLI::App& program) {
    std::string options;
    for (const std::string& word : zsh_arguments(program)) {
        options += "        " + word + " \\\n";
    }
    std::string commands;
    std::string arguments;
    for (const CLI::App* command : commands_of(program)) {
        commands += "            ";
        commands += shell_word(command->get_name() + ":" + zsh_text(summary_of(*command))) + '\n';
        arguments += "        " + command->get_name() + ")\n            _arguments -S";
        for (const std::string& word : zsh_arguments(*command)) {
            arguments += " \\\n                " + word;
        }
        arguments += " && ret=0\n            ;;\n";
    }
    return filled(std::string(zshScript),
                  {{"PROGRAM", options}, {"COMMANDS", commands}, {"ARGUMENTS", arguments}});
}

constexpr std::string_view fishScript = R"sh(# Completion for fish, made by: lagestatus completion fish

# Prints the command, the number of its arguments so far, and the data directory of the line.
function __lagestatus_line
    set -l command ''
    set -l count 0
    set -l directory .
    set -l option ''
    set -l words (commandline -opc)
    for word in $words[2..-1]
        if test -n "$option"
            contains -- $option -d --dir; and set directory $word
            set option ''
        else if string match -q -- '--dir=*' $word
            set directory (string sub -s 7 -- $word)
        else if contains -- "$command $word" $__lagestatus_valued
            set option $word
        else if string match -q -- '-d?*' $word
            set directory (string sub -s 3 -- $word)
        else if string match -qv -- '-?*' $word
            if test -z "$command"
                set command $word
            else
                set count (math $count + 1)
            end
        end
    end
    printf '%s\n' "$command" $count (string replace -r '^~/' "$HOME/" -- $directory)
end

# Whether a command is on the line, and an argument of a number from FIRST to LAST, counted from 0, comes next.
function __lagestatus_at -a command first last
    set -l line (__lagestatus_line)
    test "$line[1]" = "$command"; or return 1
    test -z "$first"; and return 0
    test $line[2] -ge $first -a $line[2] -le $last
end

function __lagestatus_codes
    set -l program (string replace -r '^~/' "$HOME/" -- (commandline -opc)[1])
    set -l line (__lagestatus_line)
    $program list -d $line[3] 2>/dev/null |
        string replace -rf '^([0-9]+)(?:  +[^ ]+(?: [^ ]+)*){4}  +' '$1\t'
end

# The options that a value follows.
set -g __lagestatus_valued \
{{VALUED}}

complete -c lagestatus -f
{{COMPLETIONS}}
)sh";

std::string fish_value(const Argument& argument) {
    if (!argument.choices.empty()) {
        return " -a " + shell_word(joined(argument.choices, " "), true);
    }
    return argument.takes("DIR")    ? " -a '(__fish_complete_directories)'"
           : argument.takes("FILE") ? " -F"
           : argument.takes("CODE") ? " -k -a '(__lagestatus_codes)'"
                                    : "";
}

std::string fish_line(const std::string& condition, const std::string& rest) {
    return "complete -c lagestatus -n " + shell_word("__lagestatus_at " + condition, true) + rest + '\n';
}

std::string fish_completions(const std::string& name, const CLI::App& command) {
    const std::string at = name.empty() ? "\"\"" : name;
    std::string lines;
    for (const Argument& option : options_of(command)) {
        std::string rest;
        for (const std::string& each : option.names) {
            rest += each.starts_with("--") ? " -l " + each.substr(2) : " -s " + each.substr(1);
        }
        if (!option.value.empty()) {
            rest += (option.takes("FILE") ? " -r" : " -x") + fish_value(option);
        }
        lines += fish_line(at, rest + " -d " + shell_word(option.description, true));
    }
    int number = 0;
    for (const Argument& argument : positionals_of(command)) {
        const std::string last = argument.repeats ? "9999" : std::to_string(number);
        const std::string condition = joined({at, std::to_string(number++), last}, " ");
        if (is_known(argument)) {
            lines += fish_line(condition, fish_value(argument));
        }
    }
    return lines;
}

std::string fish_script(const CLI::App& program) {
    std::vector<std::string> valued;
    std::string completions;
    for (const auto& [name, command] : program_and_commands(program)) {
        if (!name.empty()) {
            completions += fish_line(
                "\"\"", " -a " + shell_word(name, true) + " -d " + shell_word(summary_of(*command), true));
        }
        completions += fish_completions(name, *command);
        for (const Argument& option : options_of(*command)) {
            for (const std::string& each : option.names) {
                if (!option.value.empty()) {
                    valued.push_back("    " + shell_word(joined({name, each}, " "), true));
                }
            }
        }
    }
    return filled(std::string(fishScript),
                  {{"VALUED", joined(valued, " \\\n") + '\n'}, {"COMPLETIONS", completions}});
}

}  // namespace

std::string completion_script(const CLI::App& program, std::string_view shell) {
    return shell == "bash"  ? bash_script(program)
           : shell == "zsh" ? zsh_script(program)
                            : fish_script(program);
}

}  // namespace cli
