// Fifteen common mistakes: what `ziptra check` says of them, and that the host does it.
//
// MISTAKES_TRANSCRIPT=FILE appends to a file what both said.

#include <gmock/gmock.h>

#include <fstream>
#include <memory>

#include "tests/catalogues/world.h"

namespace catalogues {
namespace {

using tEntries = std::vector<tEntry>;

struct tMistake {
    const char* name;
    const char* finding;  ///< the identifier
    const char* hosted;   ///< what the host does: a line for each message and for each plug-in, in start order
    tEntries (*entries)(const tWorld&);
    tDeployment deployment = tDeployment::allowed;
};

std::string library(const tWorld& world, const std::string& name) {
    return endtoend::utf8Path(world.stage().libraries()) + "\\" + name;
}

/// A description with further lines and a library from the stage's folder.
tEntry plugin(const tWorld& world, const std::string& name, const std::string& lines = "",
              const std::string& path = "good.dll") {
    return {name + ".ini", "[Service]\r\nName=" + name + "\r\n" + lines + "Path=" + library(world, path) +
                               "\r\nInitialize=InitOk\r\n"};
}

std::string replaced(std::string text, const std::string& part, const std::string& replacement) {
    return text.replace(text.find(part), part.size(), replacement);
}

tEntries blankLine(const tWorld& world) { return {plugin(world, "Transport", "\r\n")}; }

tEntries utf16(const tWorld& world) {
    tEntry entry = plugin(world, "Transport");
    std::string wide = "\xFF\xFE";
    for (const char c : entry.bytes) wide.append({c, '\0'});
    entry.bytes = wide;
    return {entry};
}

tEntries misspeltKey(const tWorld& world) {
    tEntry entry = plugin(world, "Transport");
    entry.bytes = replaced(entry.bytes, "Path=", "Paht=");
    return {entry};
}

tEntries missingExternC(const tWorld& world) { return {plugin(world, "Transport", "", "mangled.dll")}; }
tEntries wrongProcessor(const tWorld& world) { return {plugin(world, "Transport", "", "x86.dll")}; }
tEntries missingImport(const tWorld& world) { return {plugin(world, "Transport", "", "lacking\\outer.dll")}; }

tEntries relativePath(const tWorld& world) {
    tEntry entry = plugin(world, "Transport");
    entry.bytes = replaced(entry.bytes, library(world, ""), "");
    return {entry};
}

tEntries circle(const tWorld& world) {
    return {plugin(world, "Scheduler", "Dependencies=Transport\r\n"),
            plugin(world, "Settings", "Dependencies=Scheduler\r\n"),
            plugin(world, "Transport", "Dependencies=Settings\r\n")};
}

tEntries wrongCase(const tWorld& world) {
    return {plugin(world, "Scheduler", "Dependencies=transport\r\n"), plugin(world, "Transport")};
}

tEntries repeatedDependency(const tWorld& world) {
    return {plugin(world, "Scheduler", "Dependencies=Transport, Transport\r\n"), plugin(world, "Transport")};
}

/// The host compares neighbours only, and the first plug-in keeps the last one from coming before all.
tEntries chain(const tWorld& world) {
    return {plugin(world, "Base"), plugin(world, "Deployment", "Dependencies=Scheduler\r\n"),
            plugin(world, "Scheduler", "Dependencies=Transport\r\n"), plugin(world, "Transport")};
}

tEntries hexadecimalRequires(const tWorld& world) { return {plugin(world, "Transport", "Requires=0x2\r\n")}; }
tEntries requiresDeployment(const tWorld& world) { return {plugin(world, "Transport", "Requires=2\r\n")}; }

tEntries upperCaseExtension(const tWorld& world) {
    tEntry entry = plugin(world, "Transport");
    entry.name = "Transport.INI";
    return {entry};
}

tEntries forwardSlashes(const tWorld& world) {
    tEntry entry = plugin(world, "Transport", "", "complete\\outer.dll");
    std::ranges::replace(entry.bytes, '\\', '/');
    return {entry};
}

const tMistake mistakeTable[] = {
    {"BlankLine", "blank-line", "rejects Transport.ini\n", blankLine},
    {"Utf16", "utf-16", "rejects Transport.ini\n", utf16},
    {"MisspeltKey", "misspelt-key", "Transport -52005\n", misspeltKey},
    {"MissingExternC", "missing-entry", "Transport -52005\n", missingExternC},
    {"WrongProcessor", "wrong-processor", "Transport -52005\n", wrongProcessor},
    {"MissingImportTwoLevelsDown", "missing-import", "Transport -52005\n", missingImport},
    {"RelativePath", "relative-path", "Transport -52005\n", relativePath},
    {"Circle", "circular-dependency", "Transport -52006\nScheduler -52006\nSettings -52006\n", circle},
    {"WrongCase", "dependency-case", "Scheduler -52006\nTransport 0\n", wrongCase},
    {"RepeatedDependency", "repeated-dependency", "Transport 0\nScheduler -52006\n", repeatedDependency},
    {"ChainWithoutDirectNaming", "chain-order", "Base 0\nScheduler -52006\nDeployment -52006\nTransport 0\n", chain},
    {"HexadecimalRequires", "requires-hexadecimal", "Transport -52002\n", hexadecimalRequires},
    {"DeploymentForbidden", "feature-not-allowed", "Transport -52002\n", requiresDeployment, tDeployment::forbidden},
    {"UpperCaseExtension", "unseen-file", "", upperCaseExtension},
    {"ForwardSlashes", "forward-slashes", "Transport -52005\n", forwardSlashes},
};

std::string summary(const tStatusText& status) {
    std::string text;
    for (const std::string& message : status.messages) {
        text += "rejects " + message.substr(message.rfind('\\') + 1) + "\n";
    }
    for (const tStatusText::tPlugin& plugin : status.plugins) {
        text += plugin.heading.substr(0, plugin.heading.find(' ')) + " " + std::to_string(plugin.code) + "\n";
    }
    return text;
}

class mistakes : public testing::TestWithParam<tMistake> {
protected:
    static void SetUpTestSuite() { world = std::make_unique<tWorld>(); }
    static void TearDownTestSuite() { world.reset(); }

    /// Appends to the transcript, if one is wanted.
    static void transcribe(const tCatalogue& catalogue, const tHosting& hosting) {
        const char* const file = std::getenv("MISTAKES_TRANSCRIPT");
        if (file == nullptr) return;
        std::ofstream transcript(file, std::ios::binary | std::ios::app);
        transcript << "=== " << GetParam().name << "\n";
        for (const tEntry& entry : catalogue.entries) {
            transcript << "--- " << entry.name << "\n" << printable(entry.bytes);
        }
        transcript << "--- ziptra check\n" << world->check(catalogue, L"").output;
        transcript << "--- "
                   << "the host's status file\n"
                   << hosting.bytes << "\n";
    }

    static std::unique_ptr<tWorld> world;
};
std::unique_ptr<tWorld> mistakes::world;

TEST_P(mistakes, AreFoundAndTheHostDoesWhatIsPredicted) {
    tCatalogue catalogue;
    catalogue.deployment = GetParam().deployment;
    catalogue.entries = GetParam().entries(*world);
    world->arrange(catalogue);
    const tAnswer answer = world->check(catalogue);
    const tPrediction prediction = readPrediction(answer.output);
    const tHosting hosting = world->host(catalogue);
    EXPECT_THAT(prediction.findings, testing::Contains(testing::Field(&tPrediction::tFinding::id, GetParam().finding)))
        << answer.output;
    EXPECT_EQ(summary(hosting.status), GetParam().hosted);
    EXPECT_THAT(differences(catalogue, prediction, hosting), testing::IsEmpty()) << answer.output;
    transcribe(catalogue, hosting);
}

INSTANTIATE_TEST_SUITE_P(Common, mistakes, testing::ValuesIn(mistakeTable),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace catalogues
