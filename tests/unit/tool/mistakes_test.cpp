// Fifteen common mistakes: what `ziptra check` says about each of them.
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

/// A plug-in directory in which somebody has made a mistake.
class mistakes : public testing::Test {
protected:
    mistakes() { good_ = folder_.addLibrary("good.dll", usualLibrary({"Start"})); }

    [[nodiscard]] tPluginFolder& folder() { return folder_; }
    [[nodiscard]] std::string libraryLines(const std::string& path) const {
        return "Path=" + path + "\nInitialize=Start\n";
    }
    [[nodiscard]] std::string goodLines() const { return libraryLines(good_); }

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

private:
    tPluginFolder folder_;
    std::string good_;
};

TEST_F(mistakes, ABlankLine) {
    folder().add("a.ini", "[Service]\nName=A\n\n" + goodLines());
    EXPECT_THAT(said(), HasSubstr("a.ini:3: error: blank line: the host rejects the whole file [blank-line]\n"));
    EXPECT_THAT(said(), HasSubstr("Failed to parse service description file: a.ini\n"));
}

TEST_F(mistakes, Utf16) {
    std::string wide = "\xFF\xFE";
    for (const char c : "[Service]\nName=A\n" + goodLines()) wide.append({c, '\0'});
    folder().add("a.ini", wide);
    EXPECT_THAT(said(), HasSubstr("a.ini: error: UTF-16 or UTF-32 text: the host rejects the whole file [utf-16]\n"
                                  "    Save the file as UTF-8.\n"));
}

TEST_F(mistakes, AMisspeltKey) {
    folder().add("a.ini", "[Service]\nName=A\nPaht=a.dll\n");
    EXPECT_THAT(said(),
                HasSubstr("a.ini:3: error: the host does not know \"Paht\"; it reads \"Path\" [misspelt-key]\n"));
    EXPECT_THAT(said(), HasSubstr("  A   -52005  a.ini\n"));
}

TEST_F(mistakes, AMissingExternC) {
    const std::string path = folder().addLibrary("mangled.dll", usualLibrary({"_Z5Startv"}));
    folder().add("a.ini", "[Service]\nName=A\n" + libraryLines(path));
    EXPECT_THAT(said(), HasSubstr("a.ini:4: error: the library does not export \"Start\"; it exports \"_Z5Startv\" "
                                  "[missing-entry]\n"));
    EXPECT_THAT(said(), HasSubstr("  A   -52005  a.ini\n"));
}

TEST_F(mistakes, A32BitLibrary) {
    tPeFile file = plainLibrary({"Start"});
    file.machine = nPe::machineX86;
    file.pe32Plus = false;
    folder().add("a.ini", "[Service]\nName=A\n" + libraryLines(folder().addLibrary("a.dll", file.bytes())));
    EXPECT_THAT(said(), HasSubstr("a.ini:3: error: the library is for 32-bit x86 [wrong-processor]\n"));
    EXPECT_THAT(said(), HasSubstr("  A   -52005  a.ini\n"));
}

TEST_F(mistakes, AMissingImportTwoLevelsDown) {
    tPeFile outer = plainLibrary({"Start"});
    outer.imports = {{"middle.dll", false, {{"f", 0}}}};
    tPeFile middle = plainLibrary({"f"});
    middle.imports = {{"inner.dll", false, {{"f", 0}}}};
    folder().addLibrary("middle.dll", middle.bytes());
    folder().add("a.ini", "[Service]\nName=A\n" + libraryLines(folder().addLibrary("outer.dll", outer.bytes())));
    EXPECT_THAT(said(), HasSubstr("a.ini:3: error: \"middle.dll\" needs \"inner.dll\", which is missing "
                                  "(outer.dll -> middle.dll) [missing-import]\n"));
    EXPECT_THAT(said(), HasSubstr("  A   -52005  a.ini\n"));
}

TEST_F(mistakes, ARelativePath) {
    folder().add("a.ini", "[Service]\nName=A\n" + libraryLines("good.dll"));
    EXPECT_THAT(said(), HasSubstr("a.ini:3: error: \"good.dll\" is not an absolute path [relative-path]\n"));
}

TEST_F(mistakes, ACircle) {
    folder().add("a.ini", "[Service]\nName=A\nDependencies=B\n" + goodLines());
    folder().add("b.ini", "[Service]\nName=B\nDependencies=C\n" + goodLines());
    folder().add("c.ini", "[Service]\nName=C\nDependencies=A\n" + goodLines());
    EXPECT_THAT(said(), HasSubstr("b.ini:3: error: circular dependency: A -> B -> C -> A [circular-dependency]\n"));
    EXPECT_THAT(said(), HasSubstr("  B   -52006  b.ini\n"));
}

TEST_F(mistakes, ANameInTheWrongCase) {
    folder().add("a.ini", "[Service]\nName=Settings\n" + goodLines());
    folder().add("b.ini", "[Service]\nName=Transport\nDependencies=settings\n" + goodLines());
    EXPECT_THAT(said(), HasSubstr("b.ini:3: error: \"settings\" differs from the name \"Settings\" in case "
                                  "[dependency-case]\n    Write \"Settings\".\n"));
    EXPECT_THAT(said(), HasSubstr("  Transport   -52006  b.ini\n"));
}

TEST_F(mistakes, ARepeatedDependency) {
    folder().add("a.ini", "[Service]\nName=A\n" + goodLines());
    folder().add("b.ini", "[Service]\nName=B\nDependencies=A, A\n" + goodLines());
    EXPECT_THAT(said(), HasSubstr("b.ini:3: error: \"A\" is named twice [repeated-dependency]\n"));
    EXPECT_THAT(said(), HasSubstr("  B   -52006  b.ini\n"));
}

TEST_F(mistakes, AChainWithoutDirectNaming) {
    folder().add("1.ini", "[Service]\nName=B\n" + goodLines());
    folder().add("2.ini", "[Service]\nName=D\nDependencies=B\n" + goodLines());
    folder().add("3.ini", "[Service]\nName=C\n" + goodLines());
    folder().add("4.ini", "[Service]\nName=A\nDependencies=D\n" + goodLines());
    EXPECT_THAT(said(), HasSubstr("4.ini:3: error: the plug-in comes before its dependency \"D\" in the start order "
                                  "[chain-order]\n"
                                  "    Write \"Dependencies=B, D\" in 4.ini: with all indirect dependencies, the order "
                                  "is right.\n"));
    EXPECT_THAT(said(), HasSubstr("    1  A   -52006  4.ini\n"));
}

TEST_F(mistakes, RequiresInHexadecimal) {
    folder().add("a.ini", "[Service]\nName=A\nRequires=0x2\n" + goodLines());
    EXPECT_THAT(said(), HasSubstr("a.ini:3: error: Requires is \"0x2\", which the host reads as 0 "
                                  "[requires-hexadecimal]\n    Write Requires=2.\n"));
    EXPECT_THAT(said(), HasSubstr("  A   -52002  a.ini\n"));
}

TEST_F(mistakes, DeploymentThatTheMachineForbids) {
    folder().add("a.ini", "[Service]\nName=A\nRequires=2\n" + goodLines());
    EXPECT_THAT(said(0xFFFFFFFD), HasSubstr("a.ini:3: error: requires one of the features 0x2, but the machine allows "
                                            "0xfffffffd [feature-not-allowed]\n"));
    EXPECT_THAT(said(0xFFFFFFFD), HasSubstr("  A   -52002  a.ini\n"));
}

TEST_F(mistakes, AnExtensionInUpperCase) {
    folder().add("a.INI", "[Service]\nName=A\n" + goodLines());
    EXPECT_THAT(said(),
                HasSubstr("a.INI: error: the host does not see the file: its extension is not \".ini\" in lower "
                          "case [unseen-file]\n"));
    EXPECT_THAT(said(), HasSubstr("0 plug-ins"));
}

TEST_F(mistakes, ForwardSlashes) {
    folder().add("a.ini", "[Service]\nName=A\n" + libraryLines("C:/Libraries/good.dll"));
    EXPECT_THAT(said(), HasSubstr("a.ini:3: warning: \"C:/Libraries/good.dll\" has forward slashes "
                                  "[forward-slashes]\n"));
}

}  // namespace
