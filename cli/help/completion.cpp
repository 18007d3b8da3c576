// Completions: what may stand in a place of the command line, and the scripts of the shells, which ask for it.
#include <algorithm>
#include <cstddef>
#include <utility>

#include "bulk/directory.h"
#include "help/description.h"
#include "system/output.h"
#include "system/platform.h"

namespace cli {
namespace {

void offer(const std::string& word, const std::string& description) {
    put(word + (description.empty() ? "" : "\t") + description + '\n');
}

// The systems of a data directory and their names; none if it cannot be read.
std::vector<std::pair<std::string, std::string>> codes_of(const std::string& name) {
    std::vector<std::pair<std::string, std::string>> codes;
    const lagestatus::Directory directory(name);
    for (const lagestatus::DefinitionEntry& entry : directory.entries()) {
        codes.emplace_back(std::to_string(entry.code),
                           directory.system(entry, lagestatus::Column::intoBessel).name);
    }
    return codes;
}

// Offers what an argument takes, behind the part of the word that is no value.
void offer_values(const Argument& argument, const std::string& before, const std::string& directory) {
    const std::string kind = argument.value.substr(0, argument.value.find('.'));  // FILE.tra is a FILE
    for (const std::string& choice : argument.rules.choices) {
        offer(before + choice, "");
    }
    if (kind == "DIR") {
        offer(":directories", "");
    } else if (kind == "FILE") {
        offer(":files", "");
    } else if (kind == "CODE") {
        for (const auto& [code, name] : codes_of(directory)) {
            offer(before + code, name);
        }
    }
}

// A word as an option that takes a value.
struct OptionWord {
    const Argument* option;  // null if it is none
    std::size_t valueBegin;  // where it is part of the word, as in --dir=DIR or -dDIR; else 0
};

OptionWord option_word(const std::vector<Argument>& options, const std::string& word) {
    const bool isLong = word.starts_with("--");
    const std::size_t nameEnd = isLong ? word.find('=') : 2;
    const std::string name = word.substr(0, nameEnd);
    const auto option = std::find_if(options.begin(), options.end(), [&name](const Argument& each) {
        return std::find(each.names.begin(), each.names.end(), name) != each.names.end();
    });
    return {option != options.end() && !option->value.empty() ? &*option : nullptr,
            nameEnd >= word.size() ? 0 : nameEnd + (isLong ? 1 : 0)};
}

constexpr std::string_view bashScript = R"sh(# Completion for bash, made by: lagestatus completion bash

_lagestatus() {
    local word words=("${COMP_WORDS[@]:0:COMP_CWORD+1}")
    words=("${words[@]//[\\\"\']/}")
    words=("${words[@]/#~\//$HOME/}")
    local current=${words[COMP_CWORD]#=} # --dir=data is three words
    COMPREPLY=()
    while IFS=$'\t' read -r word _; do
        case $word in
        :directories) compopt -o dirnames 2>/dev/null ;;
        :files) compopt -o default 2>/dev/null ;;
        "$current"*) COMPREPLY+=("$word") ;;
        esac
    done < <("${words[0]}" complete "${words[@]:1}" 2>/dev/null)
}

complete -F _lagestatus lagestatus
)sh";

constexpr std::string_view zshScript = R"sh(#compdef lagestatus
# Completion for zsh, made by: lagestatus completion zsh

_lagestatus() {
    local -a line=("${(@Q)words[1,CURRENT-1]}" "$PREFIX") offered
    local each ret=1
    line=("${(@)line/#\~\//$HOME/}")
    for each in ${(f)"$("${(@)line[1]}" complete "${(@)line[2,-1]}" 2>/dev/null)"}; do
        case $each in
        :directories) compset -P '(--[^=]#=|-[^-])'; _files -/ && ret=0 ;;
        :files) compset -P '(--[^=]#=|-[^-])'; _files && ret=0 ;;
        *) offered+=("${each/$'\t'/:}") ;;
        esac
    done
    _describe -t words word offered && ret=0
    return ret
}

# Called as a function of the search path, or read as a script.
if [[ $funcstack[1] == _lagestatus ]]; then
    _lagestatus "$@"
else
    compdef _lagestatus lagestatus
fi
)sh";

constexpr std::string_view fishScript = R"sh(# Completion for fish, made by: lagestatus completion fish

function __lagestatus_complete
    set -l line (string replace -r '^~/' "$HOME/" -- (commandline -opc))
    set -l current (commandline -ct)
    set -l before (string match -r -- '^--[^=]*=|^-[^-]' $current)
    set -l value (string sub -s (math 1 + (string length -- "$before")) -- "$current")
    for each in ($line[1] complete $line[2..-1] "$current" 2>/dev/null)
        switch $each
            case :directories
                printf '%s\n' "$before"(__fish_complete_directories $value)
            case :files
                printf '%s\n' "$before"(complete -C "'' $value")
            case '*'
                printf '%s\n' $each
        end
    end
end

complete -c lagestatus -f -k -a '(__lagestatus_complete)'
)sh";

}  // namespace

std::string_view completion_script(std::string_view shell) {
    return shell == "bash" ? bashScript : shell == "zsh" ? zshScript : fishScript;
}

void complete(const Command& program, std::vector<std::string> words) {
    if (words.empty()) {
        return;
    }
    const std::string current = words.back();
    words.pop_back();
    const Command* command = &program;
    std::vector<Argument> options = program.options();
    const Argument* awaiting = nullptr;  // the option whose value comes next
    std::size_t place = 0;               // of the next argument without a name
    std::string directory = ".";
    const auto take = [&directory](const Argument& option, const std::string& value) {
        directory = option.value == "DIR" ? value : directory;
    };
    for (const std::string& word : words) {
        if (awaiting != nullptr && word == "=") {
            continue;  // for bash --dir=DIR is three words
        }
        if (awaiting != nullptr) {
            take(*std::exchange(awaiting, nullptr), word);
        } else if (word.size() > 1 && word.starts_with('-')) {
            const auto [option, valueBegin] = option_word(options, word);
            if (option != nullptr && valueBegin != 0) {
                take(*option, word.substr(valueBegin));
            } else {
                awaiting = option;
            }
        } else if (command != &program) {
            ++place;
        } else if (command = program.find(word); command != nullptr) {
            options = command->options();
        } else {
            return;
        }
    }
    std::string before;
    if (const auto [option, valueBegin] = option_word(options, current);
        awaiting == nullptr && valueBegin != 0) {
        awaiting = option;
        before = current.substr(0, valueBegin);
    }
    const std::vector<Argument> positionals = command->positionals();
    if (!positionals.empty() && positionals.back().repeats()) {
        place = std::min(place, positionals.size() - 1);
    }
    if (awaiting != nullptr) {
        offer_values(*awaiting, before, directory);
    } else if (current.starts_with('-') || (command != &program && place >= positionals.size())) {
        for (const Argument& option : options) {
            for (const std::string& name : option.names) {
                offer(name, option.description);
            }
        }
    } else if (command == &program) {
        for (const Command& each : program.commands) {
            offer(each.name, each.summary);
        }
    } else {
        offer_values(positionals[place], "", directory);
    }
}

}  // namespace cli
