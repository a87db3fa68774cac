#include "tool/check/libraries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/pe/windowsPath.h"

namespace {

using nCheck::tLibraries;
using nCheck::tLoadVerdict;
using nCheck::tStart;
using support::idsOf;
using support::messageOf;
using testing::ElementsAre;
using testing::IsEmpty;

/// A Windows machine with the given libraries and nothing else.
class libraries : public testing::Test {
protected:
    libraries() {
        machine_.systemFolder = R"(C:\Windows\System32)";
        machine_.applicationFolder = R"(C:\Host)";
        machine_.currentFolder = R"(C:\Windows\System32)";
        machine_.searchFolders = {R"(C:\Windows\System32)"};
        machine_.findPath = [this](const std::string& path) { return find(path); };
        machine_.findFile = [this](const std::string& folder, const std::string& name) {
            return find(nPe::joined(folder, name));
        };
        machine_.readLibrary = [this](const std::string& path) -> const auto& {
            ++reads_;
            return files_.at(path);
        };
        machine_.identityOf = [this](const std::string& path) {
            ++identified_;
            return nPe::toLowerAscii(path);
        };
        machine_.isSystemLibrary = [](const std::string& name) { return name == "KERNEL32.dll"; };
    }

    nPe::tLibrary& add(const std::string& path, const std::vector<std::string>& imports = {}) {
        nPe::tLibrary library;
        library.machine = nPe::machineX64;
        library.isDll = true;
        library.exports.push_back({"f", 1, {}});
        for (const std::string& name : imports) library.imports.push_back({name, false, {{"f", 0}}});
        return std::get<nPe::tLibrary>(files_.insert_or_assign(path, std::move(library)).first->second);
    }

    /// Examines a plug-in with this path and a description in NAME.ini, which starts as said.
    tLoadVerdict examine(const std::string& path, tStart start = tStart::no, const std::string& name = "a") {
        if (!examined_) examined_.emplace(machine_);
        tPluginDescription description;
        description.path = path;
        nCheck::tKeyLines lines;
        lines.set("Path", 3);
        nCheck::tFileFindings findings(name + ".ini");
        const tLoadVerdict verdict = examined_->examine({description, lines, findings});
        examined_->keep(start);
        found_ = findings.take("");
        return verdict;
    }
    [[nodiscard]] const std::vector<tFinding>& found() const { return found_; }
    [[nodiscard]] std::vector<std::string> ids() const { return idsOf(found_); }
    /// Returns how often a file has been identified.
    [[nodiscard]] int identified() const { return identified_; }

private:
    [[nodiscard]] std::optional<std::string> find(const std::string& path) const {
        return files_.contains(path) ? std::optional(path) : std::nullopt;
    }

    std::unordered_map<std::string, std::variant<nPe::tLibrary, nPe::tUnreadable>> files_;
    nPe::tMachine machine_;
    std::optional<tLibraries> examined_;
    std::vector<tFinding> found_;
    int reads_ = 0;
    int identified_ = 0;
};

TEST_F(libraries, LoadFromAnAbsolutePath) {
    add(R"(C:\P\a.dll)", {"KERNEL32.dll"});
    EXPECT_EQ(examine(R"(C:\P\a.dll)"), tLoadVerdict::succeeds);
    EXPECT_THAT(found(), IsEmpty());
    add(R"(\\server\share\a.dll)");
    EXPECT_EQ(examine(R"(\\server\share\a.dll)"), tLoadVerdict::succeeds);
}

TEST_F(libraries, NeedAPath) {
    EXPECT_EQ(examine(""), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 missing-path"));
}

TEST_F(libraries, ThatAreMissingDoNotLoad) {
    EXPECT_EQ(examine(R"(C:\P\none)"), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 missing-library"));
    EXPECT_EQ(found()[0].message, R"(there is no file "C:\P\none.dll")");
}

TEST_F(libraries, OfARelativePathLoadFromWhereWindowsSearches) {
    add(R"(C:\Host\a.dll)");
    EXPECT_EQ(examine("a.dll"), tLoadVerdict::uncertain) << "the service may search elsewhere";
    EXPECT_THAT(ids(), ElementsAre("3 relative-path"));
    EXPECT_EQ(found()[0].message, R"("a.dll" is not an absolute path; Windows loads "C:\Host\a.dll")");
}

TEST_F(libraries, OfARelativePathDoNotLoadIfWindowsFindsThemNowhere) {
    for (const char* path : {"a.dll", R"(sub\a.dll)", R"(p\a.dll)", R"(\P\a.dll)", "C:a.dll", "a", "C:", R"(\)"}) {
        EXPECT_EQ(examine(path), tLoadVerdict::fails) << path;
        EXPECT_THAT(ids(), ElementsAre("3 relative-path")) << path;
        EXPECT_EQ(found()[0].message,
                  '"' + std::string(path) + "\" is not an absolute path; Windows finds no such library");
    }
}

TEST_F(libraries, OfARelativePathAreExaminedToo) {
    add(R"(C:\Host\a.dll)", {"missing.dll"});
    EXPECT_EQ(examine("a.dll"), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 relative-path", "3 missing-import"));
}

TEST_F(libraries, OfARelativePathMayBeLoadedAlready) {
    add(R"(C:\P\a.dll)");
    EXPECT_EQ(examine(R"(C:\P\a.dll)", tStart::perhaps), tLoadVerdict::succeeds);
    EXPECT_EQ(examine("a.dll"), tLoadVerdict::uncertain);
}

TEST_F(libraries, OfAPathWithAVariableAreToldThatItIsNotReplaced) {
    static_cast<void>(examine(R"(%ProgramFiles%\a.dll)"));
    EXPECT_EQ(found().at(0).message,
              R"("%ProgramFiles%\a.dll" is not an absolute path, and environment variables are not replaced; )"
              "Windows finds no such library");
}

TEST_F(libraries, OfAPathWithForwardSlashesAreReported) {
    add(R"(C:/P\a.dll)");
    EXPECT_EQ(examine(R"(C:/P\a.dll)"), tLoadVerdict::succeeds);
    EXPECT_THAT(ids(), ElementsAre("3 forward-slashes"));
}

TEST_F(libraries, OfAPathWithForwardSlashesOnlyFindImportsInTheHostsFolderOnly) {
    add("C:/P/a.dll", {"b.dll"});
    add(R"(C:\P\b.dll)");
    EXPECT_EQ(examine("C:/P/a.dll"), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 forward-slashes", "3 missing-import"));
    EXPECT_EQ(found()[1].remedy,
              "Write backslashes in Path first: without them, Windows does not look in the library's own folder.");
}

/// Returns an absolute path with so many characters, whatever their size in UTF-8.
std::string pathOfLength(std::size_t length, const std::string& character = "x") {
    std::string path = R"(C:\P\)";
    for (std::size_t i = path.size() + 4; i < length; ++i) path += character;
    return path + ".dll";
}

TEST_F(libraries, OfAPathOf260CharactersAreOpenBecauseNotEveryWindowsLoadsThem) {
    const std::string prefix = R"(\\?\)";
    for (const std::string& path : {pathOfLength(259), pathOfLength(259, "\u540D"), prefix + pathOfLength(255)}) {
        add(path);
        EXPECT_EQ(examine(path), tLoadVerdict::succeeds) << path;
        EXPECT_THAT(found(), IsEmpty()) << path;
    }
    for (const std::string& path : {pathOfLength(260), pathOfLength(260, "\u540D"), prefix + pathOfLength(256)}) {
        add(path);
        EXPECT_EQ(examine(path), tLoadVerdict::uncertain) << path;
        EXPECT_THAT(ids(), ElementsAre("3 long-path")) << path;
    }
}

TEST_F(libraries, OfALongPathAreOpenEvenIfOnlyItsExtensionOrBlanksMakeItLong) {
    const std::string path = pathOfLength(260);
    add(path);
    EXPECT_EQ(examine(path.substr(0, 256)), tLoadVerdict::uncertain);
    EXPECT_THAT(ids(), ElementsAre("3 long-path"));
    add(R"(C:\P\a.dll)");
    EXPECT_EQ(examine(R"(C:\P\a.dll)" + std::string(250, ' ')), tLoadVerdict::uncertain);
    EXPECT_THAT(ids(), ElementsAre("3 long-path"));
}

TEST_F(libraries, OfALongPathDoNotLoadIfTheyAreMissing) {
    EXPECT_EQ(examine(pathOfLength(300)), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 long-path", "3 missing-library"));
}

TEST_F(libraries, OfANativePathAreOpenBecauseWindowsMayRefuseIt) {
    add(R"(\\?\C:\P\a.dll)", {"b.dll"});
    add(R"(\\?\C:\P\b.dll)");
    EXPECT_EQ(examine(R"(\??\C:\P\a)"), tLoadVerdict::uncertain);
    EXPECT_THAT(ids(), ElementsAre("3 native-path"));
    EXPECT_EQ(found()[0].message, R"("\??\C:\P\a" begins with \??\)");
}

TEST_F(libraries, OfANativePathDoNotLoadIfTheyAreMissing) {
    EXPECT_EQ(examine(R"(\??\C:\P\a.dll)"), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 native-path", "3 missing-library"));
}

TEST_F(libraries, NeedWhatTheirImportsNeed) {
    add(R"(C:\P\a.dll)", {"b.dll"});
    add(R"(C:\P\b.dll)", {"c.dll"});
    EXPECT_EQ(examine(R"(C:\P\a.dll)"), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 missing-import"));
    EXPECT_EQ(found()[0].message, R"("b.dll" needs "c.dll", which is missing (a.dll -> b.dll))");
}

TEST_F(libraries, AreUncertainIfCodeOfAnImportRunsWhenItIsLoaded) {
    add(R"(C:\P\a.dll)", {"b.dll"});
    add(R"(C:\P\b.dll)").hasEntryPoint = true;
    EXPECT_EQ(examine(R"(C:\P\a.dll)"), tLoadVerdict::uncertain);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(libraries, TrustTheCodeOfWindows) {
    add(R"(C:\P\a.dll)", {"version.dll"});
    add(R"(C:\Windows\System32\version.dll)").hasEntryPoint = true;
    EXPECT_EQ(examine(R"(C:\P\a.dll)"), tLoadVerdict::succeeds);
}

TEST_F(libraries, FindImportsThatAStartedPluginHasLoaded) {
    add(R"(C:\P\a.dll)", {"b.dll"});
    add(R"(C:\P\b.dll)");
    add(R"(C:\Q\c.dll)", {"b.dll"});
    EXPECT_EQ(examine(R"(C:\P\a.dll)", tStart::yes), tLoadVerdict::succeeds);
    EXPECT_EQ(examine(R"(C:\Q\c.dll)"), tLoadVerdict::succeeds);
    EXPECT_THAT(ids(), ElementsAre("3 borrowed-import"));
    EXPECT_EQ(found()[0].message, R"("b.dll" is not in a folder that Windows searches for it)");
}

TEST_F(libraries, LackNotOnlyWhatTheyBorrow) {
    add(R"(C:\P\a.dll)", {"b.dll"});
    add(R"(C:\P\b.dll)");
    add(R"(C:\Q\c.dll)", {"b.dll", "gone.dll"});
    EXPECT_EQ(examine(R"(C:\P\a.dll)", tStart::yes), tLoadVerdict::succeeds);
    EXPECT_EQ(examine(R"(C:\Q\c.dll)"), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 missing-import", "3 borrowed-import"));
}

TEST_F(libraries, DoNotFindImportsThatAFailedPluginHadLoaded) {
    add(R"(C:\P\a.dll)", {"b.dll"});
    add(R"(C:\P\b.dll)");
    add(R"(C:\Q\c.dll)", {"b.dll"});
    EXPECT_EQ(examine(R"(C:\P\a.dll)", tStart::no), tLoadVerdict::succeeds);
    EXPECT_EQ(examine(R"(C:\Q\c.dll)"), tLoadVerdict::fails);
    EXPECT_THAT(ids(), ElementsAre("3 missing-import"));
}

TEST_F(libraries, AreUncertainIfAPluginThatMayStartHasLoadedTheirImports) {
    add(R"(C:\P\a.dll)", {"b.dll"});
    add(R"(C:\P\b.dll)");
    add(R"(C:\Q\c.dll)", {"b.dll"});
    EXPECT_EQ(examine(R"(C:\P\a.dll)", tStart::perhaps), tLoadVerdict::succeeds);
    EXPECT_EQ(examine(R"(C:\Q\c.dll)"), tLoadVerdict::uncertain);
    EXPECT_THAT(ids(), ElementsAre("3 borrowed-import"));
}

TEST_F(libraries, ThatHaveTheirImportsBesideThemBorrowNothing) {
    add(R"(C:\P\a.dll)", {"b.dll"});
    add(R"(C:\P\b.dll)");
    add(R"(C:\P\c.dll)", {"b.dll"});
    EXPECT_EQ(examine(R"(C:\P\a.dll)", tStart::perhaps), tLoadVerdict::succeeds);
    EXPECT_EQ(examine(R"(C:\P\c.dll)"), tLoadVerdict::succeeds);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(libraries, OfTwoPluginsAreShared) {
    add(R"(C:\P\a.dll)");
    add(R"(c:\p\A.DLL)");
    static_cast<void>(examine(R"(C:\P\a.dll)", tStart::yes, "first"));
    EXPECT_THAT(found(), IsEmpty());
    static_cast<void>(examine(R"(c:\p\A.DLL)", tStart::yes, "second"));
    EXPECT_THAT(ids(), ElementsAre("3 shared-library"));
    EXPECT_EQ(found()[0].message, "the library is also that of the plug-in in first.ini");
}

TEST_F(libraries, ThatOnlyLookAlikeAreNotShared) {
    for (const std::string name : {"a", "b", "c"}) {
        add(R"(C:\P\)" + name + ".dll");
        static_cast<void>(examine(R"(C:\P\)" + name + ".dll", tStart::yes, name));
        EXPECT_THAT(found(), IsEmpty());
    }
    add(R"(c:\p\B.DLL)");
    static_cast<void>(examine(R"(c:\p\B.DLL)", tStart::yes, "second"));
    EXPECT_EQ(found().at(0).message, "the library is also that of the plug-in in b.ini");
}

TEST_F(libraries, AreIdentifiedOnlyIfTheyLookAlike) {
    add(R"(C:\P\a.dll)");
    add(R"(C:\P\longer.dll)").fileSize = 1;
    add(R"(C:\P\other.dll)").exports.at(0).name = "g";
    for (const std::string name : {"a", "longer", "other"}) {
        static_cast<void>(examine(R"(C:\P\)" + name + ".dll", tStart::yes, name));
    }
    EXPECT_EQ(identified(), 0);
    add(R"(C:\P\b.dll)");
    static_cast<void>(examine(R"(C:\P\b.dll)", tStart::yes, "b"));
    EXPECT_EQ(identified(), 2);
}

}  // namespace
