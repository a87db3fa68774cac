#include "tool/completion/scripts.h"

#include <string_view>

#include "tool/format.h"

namespace nCompletion {
namespace {

using tTexts = std::vector<std::string>;

constexpr std::string_view bashTemplate = R"script(# Completion of %name% for bash: source <(%name% completion bash)
_%name%() {
    local current="${COMP_WORDS[COMP_CWORD]}" previous="${COMP_WORDS[COMP_CWORD-1]}"
    local command='' options='%options%' words='%commands%' value='' word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case " %commands% " in
            *" $word "*) command="$word"; break ;;
        esac
    done
    case "$command" in
%words%    esac
    case "$command $previous" in
%values%    esac
    [[ -z $value && $current == -* ]] && words="$options"
    COMPREPLY=($(compgen -W "$words" -- "$current"))
}
complete -o default -F _%name% %name%
)script";

// Each row: the command ("*" for any, "" for none), the option before the word or "", the word, its purpose.
constexpr std::string_view powershellTemplate =
    R"script(# Completion of %name% for PowerShell: %name% completion powershell | Out-String | Invoke-Expression
Register-ArgumentCompleter -Native -CommandName '%name%' -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)
    $rows = @'
%rows%'@ | ConvertFrom-Csv -Header Command, After, Word, Purpose
    $before = @($commandAst.CommandElements | Where-Object { $_.Extent.EndOffset -lt $cursorPosition } |
        Select-Object -Skip 1 | ForEach-Object { "$_" })
    $commands = @($rows | Where-Object { $_.Command -eq '' } | ForEach-Object { $_.Word })
    $command = "$($before | Where-Object { $commands -contains $_ } | Select-Object -First 1)"
    $previous = if ($before.Count -gt 0) { $before[-1] } else { '' }
    $known = @($rows | Where-Object { $_.Command -eq $command -or $_.Command -eq '*' })
    $candidates = @($known | Where-Object { $previous -ne '' -and $_.After -eq $previous })
    if ($candidates.Count -eq 0) {
        $candidates = @($known | Where-Object {
            $_.After -eq '' -and $_.Word.StartsWith('-') -eq $wordToComplete.StartsWith('-') })
    }
    $candidates | Where-Object { $_.Word -ne '' -and $_.Word.StartsWith($wordToComplete) } | ForEach-Object {
        [System.Management.Automation.CompletionResult]::new($_.Word, $_.Word, 'ParameterValue', $_.Purpose)
    }
}
)script";

void fillIn(std::string& script, std::string_view placeholder, const std::string& value) {
    for (std::size_t at = 0; (at = script.find(placeholder, at)) != std::string::npos; at += value.size()) {
        script.replace(at, placeholder.size(), value);
    }
}

std::string joined(const tTexts& texts, std::string_view separator) {
    std::string result;
    for (const std::string& text : texts) result.append(result.empty() ? "" : separator).append(text);
    return result;
}

void append(tTexts& texts, const tTexts& more) { texts.insert(texts.end(), more.begin(), more.end()); }

tTexts namesOf(const std::vector<tOption>& options) {
    tTexts names;
    for (const tOption& option : options) append(names, option.names);
    return names;
}

tTexts namesOf(const std::vector<tCommand>& commands) {
    tTexts names;
    for (const tCommand& command : commands) names.push_back(command.name);
    return names;
}

/// Returns the branches for the word after an option that takes a value. The command is a pattern.
std::string bashValues(const std::string& command, const std::vector<tOption>& options) {
    std::string cases;
    for (const tOption& option : options) {
        if (!option.takesValue) continue;
        for (const std::string& name : option.names) {
            cases +=
                fmt::format("        {}' {}') words='{}'; value=1 ;;\n", command, name, joined(option.choices, " "));
        }
    }
    return cases;
}

std::string quotedForCsv(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) quoted.append(character == '"' ? 2 : 1, character);
    return quoted + "\"";
}

std::string powershellRow(const std::string& command, const std::string& after, const std::string& word,
                          const std::string& purpose) {
    return fmt::format("{},{},{},{}\n", quotedForCsv(command), quotedForCsv(after), quotedForCsv(word),
                       quotedForCsv(purpose));
}

/// Returns a row for each option and each of its values, or for its value if there is nothing to choose.
std::string powershellOptions(const std::string& command, const std::vector<tOption>& options) {
    std::string rows;
    for (const tOption& option : options) {
        for (const std::string& name : option.names) {
            rows += powershellRow(command, "", name, option.purpose);
            if (option.takesValue && option.choices.empty()) rows += powershellRow(command, name, "", option.purpose);
            for (const std::string& choice : option.choices) {
                rows += powershellRow(command, name, choice, option.purpose);
            }
        }
    }
    return rows;
}

}  // namespace

std::string bashScript(const tProgram& program) {
    const std::string common = joined(namesOf(program.options), " ");
    std::string values = bashValues("*", program.options);
    std::string words;
    for (const tCommand& command : program.commands) {
        values += bashValues(command.name, command.options);
        words += fmt::format("        {}) options='{} {}'; words='{}' ;;\n", command.name,
                             joined(namesOf(command.options), " "), common, joined(command.choices, " "));
    }
    std::string script(bashTemplate);
    fillIn(script, "%name%", program.name);
    fillIn(script, "%options%", common);
    fillIn(script, "%commands%", joined(namesOf(program.commands), " "));
    fillIn(script, "%words%", words);
    fillIn(script, "%values%", values);
    return script;
}

std::string powershellScript(const tProgram& program) {
    std::string rows;
    for (const tCommand& command : program.commands) {
        rows += powershellRow("", "", command.name, command.purpose);
        rows += powershellOptions(command.name, command.options);
        for (const std::string& choice : command.choices) rows += powershellRow(command.name, "", choice, choice);
    }
    rows += powershellOptions("*", program.options);
    std::string script(powershellTemplate);
    fillIn(script, "%name%", program.name);
    fillIn(script, "%rows%", rows);
    return script;
}

}  // namespace nCompletion
