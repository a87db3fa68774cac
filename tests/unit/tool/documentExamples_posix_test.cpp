// What docs/tool.md shows is what the program prints.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/unit/tool/checkHelpers.h"
#include "tests/unit/tool/sources.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::sources;
using support::tToolRun;

/// Makes a folder the working folder while it exists.
class tWorkingFolder {
public:
    explicit tWorkingFolder(const std::filesystem::path& folder) { current_path(folder); }
    ~tWorkingFolder() { current_path(before_); }
    tWorkingFolder(const tWorkingFolder&) = delete;
    tWorkingFolder& operator=(const tWorkingFolder&) = delete;

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

struct tExample {
    std::string command;
    std::string output;
};

/// Returns each block of the document that begins with "$ ziptra COMMAND".
std::vector<tExample> examplesFor(const std::string& command) {
    const std::string document = support::read(sources() / "docs" / "tool.md");
    const std::string fence = "```\n";
    const std::string prompt = "$ ziptra ";
    std::vector<tExample> examples;
    const std::string start = fence + prompt + command + ' ';
    for (std::size_t at = document.find(start); at != std::string::npos; at = document.find(start, at + 1)) {
        const std::size_t first = at + fence.size() + prompt.size();
        const std::size_t line = document.find('\n', first);
        const std::size_t end = document.find("\n" + fence, line) + 1;
        examples.push_back({document.substr(first, line - first), document.substr(line + 1, end - line - 1)});
    }
    return examples;
}

/// Splits a command line, in which single quotes may enclose a part with blanks.
std::vector<std::string> argumentsOf(const std::string& command) {
    std::vector<std::string> arguments(1);
    bool quoted = false;
    for (const char c : command) {
        if (c == '\'') {
            quoted = !quoted;
        } else if (c == ' ' && !quoted) {
            arguments.emplace_back();
        } else {
            arguments.back() += c;
        }
    }
    return arguments;
}

/// Runs the examples of a command in a folder.
void expectExamples(const std::string& command, std::size_t count, const std::filesystem::path& folder) {
    const std::vector<tExample> examples = examplesFor(command);
    EXPECT_EQ(examples.size(), count);
    const tWorkingFolder inFolder(folder);
    for (const tExample& example : examples) {
        EXPECT_EQ(tToolRun(argumentsOf(example.command)).out, example.output) << example.command;
    }
}

TEST(documentExamples, OfCheckAreItsOutput) {
    const support::tFolder folder("examples");
    const auto addPlugin = [&folder](const std::string& name, const std::string& lines) {
        folder.write("plugins/" + name + ".ini",
                     "[Service]\nName=" + name + '\n' + lines + R"(Path=C:\Program Files\Corvell\)" + name + ".dll\n" +
                         "Initialize=" + name + (name == "Transport" ? "Initialise" : "Initialize") + '\n');
        folder.write("dist/" + name + ".dll", support::usualLibrary({name + "Initialize"}));
    };
    addPlugin("Settings", "");
    addPlugin("Transport", "Dependencies=Settings\n");
    addPlugin("Deployment", "Dependencies=Settings, Transport\n");
    addPlugin("Scheduler", "\n");
    expectExamples("check", 1, folder.path());
}

TEST(documentExamples, OfExplainAreItsOutput) { expectExamples("explain", 5, sources() / "tests" / "tool"); }

TEST(documentExamples, OfStatusAreItsOutput) { expectExamples("status", 1, sources()); }

TEST(documentExamples, OfGraphAreItsOutput) { expectExamples("graph", 1, sources() / "tests" / "tool"); }

TEST(documentExamples, ThePictureIsThatOfTheGraph) {
    const std::string picture = support::read(sources() / "docs" / "images" / "graph.svg");
    const tWorkingFolder inFolder(sources() / "tests" / "tool");
    EXPECT_EQ(tToolRun({"graph", "plugins", "--allowed", "0xFFFFFFFD", "--svg"}).out, picture);
}

}  // namespace
