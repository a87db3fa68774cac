// Fifteen common mistakes: what `ziptra check` says about each of them, and that docs/mistakes.md shows it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/render.h"

namespace {

using support::plainLibrary;
using support::tPeFile;
using support::tPluginFolder;
using support::usualLibrary;
using testing::HasSubstr;

/// Returns the document. The working folder is the source folder or below it.
std::string document() {
    std::filesystem::path folder = std::filesystem::current_path();
    while (!exists(folder / "docs" / "mistakes.md") && folder.has_relative_path()) folder = folder.parent_path();
    std::string text = support::read(folder / "docs" / "mistakes.md");
    std::erase(text, '\r');
    return text;
}

/// A plug-in directory in which somebody has made a mistake.
class mistakes : public testing::Test {
protected:
    mistakes() { good_ = folder_.addLibrary("transport.dll", usualLibrary({"TransportInitialize"})); }

    [[nodiscard]] tPluginFolder& folder() { return folder_; }
    /// Adds the description of a plug-in with the name, further lines, and a library, which is usually good.
    void add(const std::string& name, const std::string& lines = "", const std::string& path = "",
             const std::string& extension = ".ini") {
        std::string file = name + extension;
        file[0] = static_cast<char>(file[0] - 'A' + 'a');
        folder_.add(file, "[Service]\nName=" + name + "\n" + lines + "Path=" + (path.empty() ? good_ : path) +
                              "\nInitialize=TransportInitialize\n");
    }

    /// Returns what the command prints, with the folders' paths cut out.
    [[nodiscard]] std::string said(std::uint32_t allowedMask = 0xFFFFFFFF) const {
        std::string text = toText(folder_.predict(allowedMask), false);
        for (const std::string& path : {folder_.path() + '/', folder_.path() + '\\', folder_.library("")}) {
            for (std::size_t at = text.find(path); at != std::string::npos; at = text.find(path)) {
                text.erase(at, path.size());
            }
        }
        return text;
    }
    void expectSaid(const std::string& text, std::uint32_t allowedMask = 0xFFFFFFFF) const {
        EXPECT_THAT(said(allowedMask), HasSubstr(text));
        EXPECT_THAT(document(), HasSubstr(text));
    }

private:
    tPluginFolder folder_;
    std::string good_;
};

TEST_F(mistakes, ABlankLine) {
    add("Transport", "\n");
    expectSaid(
        "transport.ini:3: error: blank line: the host rejects the whole file [blank-line]\n"
        "    Remove the line.\n");
    EXPECT_THAT(said(), HasSubstr("Failed to parse service description file: transport.ini\n"));
}

TEST_F(mistakes, Utf16) {
    std::string wide = "\xFF\xFE";
    for (const char c : "[Service]\nName=Transport\n") wide.append({c, '\0'});
    folder().add("transport.ini", wide);
    expectSaid(
        "transport.ini: error: UTF-16 or UTF-32 text: the host rejects the whole file [utf-16]\n"
        "    Save the file as UTF-8.\n");
}

TEST_F(mistakes, AMisspeltKey) {
    folder().add("transport.ini", "[Service]\nName=Transport\nPaht=C:\\Corvell\\transport.dll\n");
    expectSaid(
        "transport.ini:3: error: the host does not know \"Paht\"; it reads \"Path\" [misspelt-key]\n"
        "    Write Path=, or remove the line.\n"
        "transport.ini: error: there is no path of a library [missing-path]\n"
        "    Add a line Path= with the library's absolute path.\n");
    EXPECT_THAT(said(), HasSubstr("  Transport   -52005  transport.ini\n"));
}

TEST_F(mistakes, AMissingExternC) {
    add("Transport", "", folder().addLibrary("mangled.dll", usualLibrary({"_Z19TransportInitializev"})));
    expectSaid(
        "transport.ini:4: error: the library does not export \"TransportInitialize\"; it exports "
        "\"_Z19TransportInitializev\" [missing-entry]\n"
        "    Export the function under exactly this name (ZIPTRA_PLUGIN or ZIPTRA_EXPORT, or extern \"C\" and "
        "__declspec(dllexport)), or correct the description.\n");
}

TEST_F(mistakes, A32BitLibrary) {
    tPeFile file = plainLibrary({"TransportInitialize"});
    file.machine = nPe::machineX86;
    file.pe32Plus = false;
    add("Transport", "", folder().addLibrary("x86.dll", file.bytes()));
    expectSaid(
        "transport.ini:3: error: the library is for 32-bit x86, not x86-64 [wrong-processor]\n"
        "    Build the library for x86-64.\n");
    EXPECT_THAT(said(), HasSubstr("  Transport   -52005  transport.ini\n"));
}

TEST_F(mistakes, AMissingImportTwoLevelsDown) {
    tPeFile outer = plainLibrary({"TransportInitialize"});
    outer.imports = {{"codec.dll", false, {{"f", 0}}}};
    tPeFile middle = plainLibrary({"f"});
    middle.imports = {{"compress.dll", false, {{"f", 0}}}};
    folder().addLibrary("codec.dll", middle.bytes());
    add("Transport", "", folder().addLibrary("transport.dll", outer.bytes()));
    expectSaid(
        "transport.ini:3: error: \"codec.dll\" needs \"compress.dll\", which is missing (transport.dll -> codec.dll) "
        "[missing-import]\n"
        "    Put the missing library into the plug-in's folder, or link it statically.\n");
    EXPECT_THAT(said(), HasSubstr("  Transport   -52005  transport.ini\n"));
}

/// What Windows finds is only known on Windows.
TEST_F(mistakes, ARelativePath) {
    add("Transport", "", "transport.dll");
    expectSaid("transport.ini:3: error: \"transport.dll\" is not an absolute path");
}

TEST_F(mistakes, ACircle) {
    add("Transport", "Dependencies=Settings\n");
    add("Scheduler", "Dependencies=Transport\n");
    add("Settings", "Dependencies=Scheduler\n");
    expectSaid(
        "scheduler.ini:3: error: circular dependency: Scheduler -> Transport -> Settings -> Scheduler "
        "[circular-dependency]\n    Remove one of the dependencies from the circle.\n");
    EXPECT_THAT(said(), HasSubstr("  Settings    -52006  settings.ini\n"));
}

TEST_F(mistakes, ANameInTheWrongCase) {
    add("Settings");
    add("Transport", "Dependencies=settings\n");
    expectSaid(
        "transport.ini:3: error: no description has the name \"settings\"; there is \"Settings\", and case matters "
        "[dependency-case]\n    Write \"Settings\".\n");
    EXPECT_THAT(said(), HasSubstr("  Transport   -52006  transport.ini\n"));
}

TEST_F(mistakes, ARepeatedDependency) {
    add("Settings");
    add("Transport", "Dependencies=Settings, Settings\n");
    expectSaid(
        "transport.ini:3: error: \"Settings\" is named twice: such a plug-in never starts [repeated-dependency]\n"
        "    Name each dependency once.\n");
    EXPECT_THAT(said(), HasSubstr("  Transport   -52006  transport.ini\n"));
}

TEST_F(mistakes, AChainWithoutDirectNaming) {
    add("Base");
    add("Deployment", "Dependencies=Scheduler\n");
    add("Scheduler", "Dependencies=Transport\n");
    add("Transport");
    expectSaid(
        "scheduler.ini:3: error: the plug-in comes before its dependency \"Transport\" in the start order "
        "[chain-order]\n"
        "    Write \"Dependencies=Scheduler, Transport\" in deployment.ini: with all indirect dependencies, the order "
        "is right.\n");
    EXPECT_THAT(said(), HasSubstr("    2  Scheduler    -52006  scheduler.ini\n"));
}

TEST_F(mistakes, RequiresInHexadecimal) {
    add("Transport", "Requires=0x2\n");
    expectSaid(
        "transport.ini:3: error: Requires is \"0x2\", which the host reads as 0 [requires-hexadecimal]\n"
        "    Write Requires=2.\n");
    EXPECT_THAT(said(), HasSubstr("  Transport   -52002  transport.ini\n"));
}

TEST_F(mistakes, DeploymentThatTheMachineForbids) {
    add("Transport", "Requires=2\n");
    expectSaid(
        "transport.ini:3: error: requires remote deployment, which the machine does not allow [feature-not-allowed]\n"
        "    Allow remote deployment on the machine, or write Requires=3 if the plug-in can do without.\n",
        0xFFFFFFFD);
    EXPECT_THAT(said(0xFFFFFFFD), HasSubstr("  Transport   -52002  transport.ini\n"));
}

TEST_F(mistakes, AnExtensionInUpperCase) {
    add("Transport", "", "", ".INI");
    expectSaid(
        "transport.INI: error: the host does not see the file: its extension is not \".ini\" in lower case "
        "[unseen-file]\n    Rename the file so that its name ends in .ini, in lower case.\n");
    EXPECT_THAT(said(), HasSubstr("0 plug-ins"));
}

TEST_F(mistakes, ForwardSlashes) {
    add("Transport", "", "C:/Corvell/transport.dll");
    expectSaid(
        "transport.ini:3: warning: \"C:/Corvell/transport.dll\" has forward slashes [forward-slashes]\n"
        "    Write backslashes.\n");
}

}  // namespace
