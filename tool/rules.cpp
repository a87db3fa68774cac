#include "tool/rules.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nRules {
namespace {

constexpr auto error = tSeverity::error;
constexpr auto warning = tSeverity::warning;
constexpr auto note = tSeverity::note;

constexpr std::array files{
    tRule{"plugins-directory", error, "the plug-in directory cannot be opened", "The host starts no plug-in and stops.",
          "Create ZiptraRemoteService\\plugins in the shared directory, which the registry value ZUSHAREDDIR64 names."},
    tRule{"unseen-file", error, "a file that the host does not see",
          "The host reads only regular files with the extension .ini in lower case.",
          "Rename the file so that its name ends in .ini, in lower case."},
    tRule{"unseen-folder", warning, "a folder named like a description", "The host reads only files.",
          "Move the descriptions in it to the plug-in directory itself."},
    tRule{"unreadable-file", error, "a description that cannot be read",
          "The host skips the file and names it in the status file.",
          "Make sure that the file is there and that the service may read it."},
};

constexpr std::array lines{
    tRule{"utf-16", error, "a description that is not UTF-8", "The host rejects files in UTF-16 and UTF-32.",
          "Save the file as UTF-8."},
    tRule{"byte-order-mark", note, "a UTF-8 byte-order mark", "The host accepts the file as if it had none.",
          "Nothing needs to be done."},
    tRule{"zero-byte", warning, "a zero byte", "The host treats a zero byte as the end of a line.",
          "Remove the zero byte."},
    tRule{"not-utf-8", warning, "text that is not valid UTF-8",
          "The host reads texts as UTF-8: a path then names another file, and the status file is garbled.",
          "Save the file as UTF-8."},
    tRule{"blank-line", error, "a blank line", "The host rejects the whole file.", "Remove the line."},
    tRule{"malformed-line", error, "a line that is neither a header, a key nor a comment",
          "The host rejects the whole file.", "Write the line as key=value, [section] or ; comment."},
    tRule{"no-service-section", error, "a description without the section [Service]",
          "The host reads keys in this section only, so it sees neither a name nor a library.",
          "Put a line [Service] before the keys."},
    tRule{"misspelt-section", error, "a section that is almost named Service", "The host ignores the keys in it.",
          "Correct the name."},
    tRule{"unknown-section", warning, "a section other than Service", "The host ignores the keys in it.",
          "Remove the section if nothing else reads it."},
    tRule{"key-before-section", error, "a key before the first section", "The host ignores the key.",
          "Move the line below [Service]."},
    tRule{"misspelt-key", error, "a key that is almost one of the host's", "The host ignores the key.",
          "Correct the name."},
    tRule{"unknown-key", warning, "a key that the host does not know", "The host ignores the key.",
          "Remove the line if nothing else reads it."},
    tRule{"repeated-key", warning, "a key that occurs more than once", "The host uses only one of the values.",
          "Remove the line that does not count."},
};

constexpr std::array values{
    tRule{"blanks-in-value", warning, "blanks at the beginning or end of a value",
          "The host uses the value with its blanks.", "Remove the blanks."},
    tRule{"quote-in-value", warning, "quotes that belong to the value",
          "The host removes only double quotes, and only a pair that encloses the whole value.",
          "Remove the quotes, or put double quotes around the whole value."},
    tRule{"comment-in-value", warning, "a comment after a value", "The host uses the comment as part of the value.",
          "Move the comment to a line of its own."},
    tRule{"requires-not-a-number", error, "Requires is not a number",
          "The host reads it as 0, and a plug-in that requires no feature never starts (-52002).",
          "Write the sum of the features' values as a decimal number, for example 3."},
    tRule{"requires-hexadecimal", error, "Requires is hexadecimal",
          "The host reads decimal numbers only: 0x is 0, and the plug-in never starts (-52002).",
          "Write the number in decimal."},
    tRule{"requires-signed", warning, "Requires has a sign", "The host accepts it; a negative number wraps around.",
          "Write the number without a sign."},
    tRule{"requires-trailing-text", warning, "Requires has text after the number", "The host ignores the text.",
          "Write one decimal number: the sum of the features' values."},
    tRule{"requires-too-large", warning, "Requires does not fit in 32 bits",
          "The host uses 4294967295, all features; if there is a minus sign, 1.", "Write a number up to 4294967295."},
    tRule{"requires-zero", error, "Requires is 0",
          "A plug-in starts only if the machine allows one of the features that it requires; this one never starts "
          "(-52002).",
          "Remove the line, or require a feature."},
    tRule{"feature-not-allowed", error, "a plug-in whose features the machine does not allow",
          "The host does not start it (-52002).",
          "Allow remote deployment on the machine if the plug-in requires it (2), or correct Requires."},
};

constexpr std::array names{
    tRule{"missing-name", warning, "a plug-in without a name", "The host starts it, but nothing can depend on it.",
          "Add a line Name=."},
    tRule{"unusable-name", warning, "a name that nothing can depend on",
          "Dependencies are separated by commas and lose surrounding blanks.",
          "Choose a name without commas and surrounding blanks."},
    tRule{"duplicate-name", warning, "a name of two plug-ins",
          "The host starts both, and a dependency on the name is satisfied by either.",
          "Give each plug-in a name of its own, or remove one of the files."},
};

constexpr std::array dependencies{
    tRule{"unknown-dependency", error, "a dependency that no description names",
          "The host does not start the plug-in (-52006).", "Correct the name, or add the missing description."},
    tRule{"dependency-case", error, "a dependency that differs from a name in case",
          "Names are case-sensitive: the host does not start the plug-in (-52006).",
          "Write the name as in the other description."},
    tRule{"self-dependency", error, "a plug-in that depends on itself", "The host does not start it (-52006).",
          "Remove the plug-in's own name from Dependencies."},
    tRule{"repeated-dependency", error, "a dependency that is named twice",
          "The host does not start a plug-in that names a dependency twice (-52006).", "Name each dependency once."},
    tRule{"circular-dependency", error, "plug-ins that depend on one another", "The host starts none of them (-52006).",
          "Remove one of the dependencies from the circle."},
    tRule{"chain-order", error, "a plug-in that comes before its dependency",
          "The host orders plug-ins by name, except that a dependency it names directly comes first. In a long chain "
          "this can put a plug-in too early, and it does not start (-52006).",
          "Name the indirect dependencies as well."},
    tRule{"dependency-fails", note, "a dependency that does not start", "The host does not start the plug-in (-52006).",
          "Look at the dependency's own findings."},
};

constexpr std::array libraries{
    tRule{"missing-path", error, "a plug-in without a library", "The host cannot load it (-52005).",
          "Add a line Path= with the library's absolute path."},
    tRule{"relative-path", error, "a relative path",
          "Windows searches for the library in the host's folder, the system folders and PATH, not beside the "
          "description, and loads the first one of that name; if there is none, the load fails (-52005).",
          "Write the absolute path, with the drive's letter."},
    tRule{"forward-slashes", warning, "forward slashes in a path",
          "Windows may not find the library, or those that it needs (-52005).", "Write backslashes."},
    tRule{"long-path", warning, "a path of more than 259 characters",
          "Not every Windows loads a library from so long a path, even if other programs can open it (-52005).",
          "Install the library in a folder with a shorter path."},
    tRule{"native-path", warning, "a path as only Windows itself writes it",
          "Whether Windows loads a library with such a path is not documented; if not, the load fails (-52005).",
          R"(Write the path without \??\, beginning with the drive's letter.)"},
    tRule{"unmapped-path", note, "a library that is not on this machine",
          "The library has not been checked: the path is one of the machine where the host runs.",
          R"(Say where its folder is: --map "C:\FOLDER=DIRECTORY".)"},
    tRule{"missing-library", error, "a library that does not exist", "The host cannot load it (-52005).",
          "Correct Path, or install the library."},
    tRule{"unreadable-library", warning, "a library that cannot be read",
          "The library has not been checked. If the service cannot read it either, the host cannot load it (-52005).",
          "Give yourself and the service the right to read the file."},
    tRule{"not-a-library", error, "a file that is not a library", "The host cannot load it (-52005).",
          "Correct Path, or replace the file."},
    tRule{"damaged-library", error, "a library with damaged tables",
          "Windows may refuse to load it (-52005), or load it and fail later.", "Replace the file."},
    tRule{"wrong-processor", error, "a library for another processor",
          "The host is a 64-bit program for x86-64 and cannot load it (-52005).", "Build the library for x86-64."},
    tRule{"not-a-dll", error, "a program instead of a library",
          "Windows maps programs without making them ready to run: a call of an entry point can end the whole service.",
          "Build the plug-in as a DLL."},
    tRule{"missing-entry", error, "an entry point that the library does not export",
          "The host unloads the library again (-52005).",
          "Export the function under exactly this name (ZIPTRA_PLUGIN or ZIPTRA_EXPORT, or extern \"C\" and "
          "__declspec(dllexport)), or correct the description."},
    tRule{"no-entries", warning, "a plug-in without entry points",
          "The host loads the library but never calls a function of it.",
          "Name the functions: Initialize=, Stop=, Cleanup=."},
    tRule{"missing-import", error, "a library that needs one which is missing", "The host cannot load it (-52005).",
          "Put the missing library into the plug-in's folder, or link it statically."},
    tRule{"unchecked-import", note, "a library that may be part of Windows",
          "It has not been checked: this machine is not Windows, and not every Windows has it.",
          "Make sure that the machine where the host runs has it."},
    tRule{"borrowed-import", warning, "a library that another plug-in happens to load",
          "Windows finds the library only if something else in the process has loaded it before.",
          "Put the library into the plug-in's own folder, too."},
    tRule{"missing-function", error, "a library that needs a function which is missing",
          "Windows does not load it (-52005).", "Install the version of the other library that has the function."},
    tRule{"debug-runtime", warning, "a library that needs the debug runtime",
          "The debug runtime comes with Visual Studio and may not be installed with it elsewhere.",
          "Build the release configuration."},
    tRule{"shared-library", warning, "a library of two plug-ins",
          "Windows loads it once: the plug-ins share its variables, and each has its entry points called.",
          "Give each plug-in a library of its own, unless this is intended."},
};

constexpr std::array access{
    tRule{"exposed-code", error, "code that others than administrators can change",
          "The service runs it with its own rights, usually those of the system.",
          "Run the command that the finding shows."},
    tRule{"exposed-description", error, "descriptions that others than administrators can change",
          "They name the code that the service runs with its own rights.", "Run the command that the finding shows."},
    tRule{"exposed-setting", error, "settings of the service that others than administrators can change",
          "They decide which program the service is, or where it looks for descriptions.",
          "Run the command that the finding shows."},
    tRule{"exposed-status", warning, "a status folder or file that others than administrators can change",
          "Others can forge the status file, and may make the service overwrite another file through a link.",
          "Run the command that the finding shows."},
    tRule{"unreadable-access", warning, "an access list that cannot be read", "It has not been examined.",
          "Run the audit in a console with administrator rights."},
    tRule{"unexamined-path", warning, "a path whose end is not examined",
          "It leads to another machine, or through a link, or is searched for: others may be able to change the end.",
          "Use an absolute path on a drive of this machine, without links, or examine the end by hand."},
};

template <std::size_t... sizes>
constexpr auto join(const std::array<tRule, sizes>&... tables) {
    std::array<tRule, (sizes + ...)> all{};
    auto end = all.begin();
    ((end = std::copy(tables.begin(), tables.end(), end)), ...);
    return all;
}

constexpr auto rules = join(files, lines, values, names, dependencies, libraries, access);

}  // namespace

std::span<const tRule> all() noexcept { return rules; }

const tRule* find(std::string_view id) noexcept {
    const auto found = std::find_if(rules.begin(), rules.end(), [&](const tRule& rule) { return rule.id == id; });
    return found == rules.end() ? nullptr : &*found;
}

tFinding finding(std::string_view id, std::string file, std::optional<int> line, std::optional<std::string> plugin,
                 std::string message) {
    const tRule& rule = *find(id);
    return {std::string(rule.id), rule.severity,      std::move(file),         line,
            std::move(plugin),    std::move(message), std::string(rule.remedy)};
}

}  // namespace nRules
