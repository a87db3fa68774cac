#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "tests/support/folder.h"
#include "tests/support/peFile.h"
#include "tests/unit/tool/peHelpers.h"
#include "tool/pe/locate.h"
#include "tool/pe/machine.h"
#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

using testing::Contains;
using testing::Optional;
using testing::StrCaseEq;

std::string systemFolder() {
    std::array<char, MAX_PATH> path{};
    GetSystemDirectoryA(path.data(), MAX_PATH);
    return path.data();
}

std::string windowsFolder() {
    std::array<char, MAX_PATH> path{};
    GetWindowsDirectoryA(path.data(), MAX_PATH);
    return path.data();
}

TEST(nPeMachineWin32, SearchesTheSystemsFoldersAndThePath) {
    const tMachine machine = thisMachine({});
    ASSERT_GE(machine.searchFolders.size(), 5U);
    EXPECT_EQ(machine.systemFolder, systemFolder());
    EXPECT_EQ(machine.searchFolders[0], systemFolder());
    EXPECT_EQ(machine.searchFolders[1], windowsFolder() + "\\system");
    EXPECT_EQ(machine.searchFolders[2], windowsFolder());
    EXPECT_EQ(machine.searchFolders[3], machine.currentFolder);
    // Every machine's PATH contains the system folder.
    const std::vector<std::string> path(machine.searchFolders.begin() + 4, machine.searchFolders.end());
    EXPECT_THAT(path, Contains(StrCaseEq(systemFolder())));
    for (const std::string& folder : path) EXPECT_EQ(folder.find_first_of(";%"), std::string::npos) << folder;
}

TEST(nPeMachineWin32, TakesAPathLiterallyThatSaysSo) {
    const tMachine machine = thisMachine({});
    const std::string folder = systemFolder();
    EXPECT_THAT(machine.findPath(folder + R"(\..\system32\kernel32.dll)"), Optional(testing::_));
    EXPECT_THAT(machine.findPath(R"(\\?\)" + folder + R"(\kernel32.dll)"), Optional(testing::_));
    EXPECT_EQ(machine.findPath(R"(\\?\)" + folder + R"(\..\system32\kernel32.dll)"), std::nullopt);
    EXPECT_EQ(machine.findPath(R"(\\?\)" + folder + "/kernel32.dll"), std::nullopt);
}

TEST(nPeMachineWin32, KnowsALibraryByEveryPathThatLeadsToIt) {
    const tMachine machine = thisMachine({});
    const std::string library = systemFolder() + R"(\kernel32.dll)";
    EXPECT_NE(machine.identityOf(library), "");
    EXPECT_EQ(machine.identityOf(R"(\\?\)" + library), machine.identityOf(library));
    EXPECT_NE(machine.identityOf(systemFolder() + R"(\ntdll.dll)"), machine.identityOf(library));
}

TEST(nPeMachineWin32, HasTheFoldersOfAServiceBesideThisProgram) {
    const tMachine machine = thisMachine({});
    EXPECT_EQ(machine.currentFolder, systemFolder());
    EXPECT_THAT(machine.findFile(machine.applicationFolder, "tool_tests.exe"), Optional(testing::_));
    const tMachine foreground = thisMachine({}, {R"(C:\host)", R"(C:\now)"});
    EXPECT_EQ(foreground.applicationFolder, R"(C:\host)");
    EXPECT_EQ(foreground.currentFolder, R"(C:\now)");
    EXPECT_EQ(foreground.searchFolders[3], R"(C:\now)");
}

TEST(nPeMachineWin32, FindsFilesAndRemembersThem) {
    const support::tFolder folder;
    folder.write(u"größe 计划.dll");
    const tMachine machine = thisMachine({});
    EXPECT_THAT(machine.findFile(folder.utf8(), "größe 计划.dll"), Optional(folder.utf8(u"größe 计划.dll")));
    EXPECT_EQ(machine.findFile(folder.utf8(), "late.dll"), std::nullopt);
    folder.write("late.dll");
    EXPECT_EQ(machine.findFile(folder.utf8(), "LATE.dll"), std::nullopt);
    EXPECT_THAT(thisMachine({}).findFile(folder.utf8(), "LATE.dll"), Optional(testing::_));
}

TEST(nPeMachineWin32, FindsNoFileInAnotherFolder) {
    const support::tFolder folder;
    folder.write("below/a.dll");
    const tMachine machine = thisMachine({});
    for (const char* const name : {"below\\a.dll", "below/a.dll", "..\\below\\a.dll"}) {
        EXPECT_EQ(machine.findFile(folder.utf8(), name), std::nullopt) << name;
    }
}

TEST(nPeMachineWin32, FindsPathsAsWindowsUnderstandsThem) {
    const support::tFolder folder;
    const std::string file = folder.write("a.dll");
    const tMachine machine = thisMachine({});
    EXPECT_THAT(machine.findPath(file), Optional(file));
    EXPECT_THAT(machine.findPath(folder.utf8() + "\\nowhere\\..\\.\\a.dll."), Optional(file));
    EXPECT_EQ(machine.findPath(folder.utf8("b.dll")), std::nullopt);
    EXPECT_EQ(machine.findPath(""), std::nullopt);
}

TEST(nPeMachineWin32, AsksTheLoaderForApiSets) {
    const tMachine machine = thisMachine({});
    EXPECT_TRUE(machine.isSystemLibrary("api-ms-win-core-file-l1-1-0.dll"));
    EXPECT_TRUE(machine.isSystemLibrary("API-MS-Win-Core-File-L1-1-0.DLL"));
    for (const char* const name :
         {"api-ms-win-no-such-set-l1-1-0.dll", "ext-ms-win-no-such-set-l1-1-0.dll", "kernel32.dll",
          "api-ms-win-core-file-l1-1-0", "api-", "api-..\\kernel32.dll", "api-x/../kernel32.dll"}) {
        EXPECT_FALSE(machine.isSystemLibrary(name)) << name;
    }
}

TEST(nPeMachineWin32, ReadsTheSystemsLibraries) {
    const tMachine machine = thisMachine({});
    const std::optional<std::string> path = machine.findFile(machine.systemFolder, "KERNEL32.dll");
    ASSERT_TRUE(path);
    const auto& content = machine.readLibrary(*path);
    ASSERT_TRUE(std::holds_alternative<tLibrary>(content));
    const auto& library = std::get<tLibrary>(content);
    EXPECT_EQ(library.machine, machineX64);
    EXPECT_NE(findExport(library, "LoadLibraryExA"), nullptr);
    EXPECT_EQ(findExport(library, "LoadLibraryExB"), nullptr);
}

/// Fails the test for every file in the system folder of which something is missing.
TEST(nPeMachineWin32, FindsNothingMissingInTheSystemsLibraries) {
    tMachine machine = thisMachine({});
    const std::string folder = std::exchange(machine.systemFolder, "");  // otherwise they would not be examined
    std::size_t examined = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (toLowerAscii(entry.path().extension().string()) != ".dll") continue;
        ++examined;
        for (const tMissing& missing : findMissingImports(joined(folder, entry.path().filename().string()), machine)) {
            ADD_FAILURE() << entry.path().filename() << ": " << missing.library << ' ' << missing.symbol << ' '
                          << missing.reason;
        }
    }
    EXPECT_GT(examined, 100U);
}

/// The loader itself is the judge: what it finds and accepts must be what is predicted.
class nPeMachineLoader : public testing::Test {
protected:
    /// Writes a library that exports "run" and imports "run" from the libraries.
    std::string write(const std::string& name, const std::vector<std::string>& imports = {}) {
        support::tPeFile file;
        file.imageBase = nextBase_;
        nextBase_ += 0x10000;
        file.exports = named({"run"});
        for (const std::string& import : imports) file.imports.push_back(importOf(import, {"run"}));
        return folder_.write(name, file.bytes());
    }

    /// Returns the file that is loaded, or why none is.
    static std::string predict(const std::string& path, const tMachine& machine) {
        const auto location = locate(path, machine);
        if (!location) return "not found";
        const auto* const library = std::get_if<tLibrary>(&machine.readLibrary(location->file));
        if (library == nullptr || library->machine != machineX64) return "not loaded";
        return followImports(*location, machine).missing.empty() ? toLowerAscii(location->file) : "not loaded";
    }

    static std::string load(const std::string& path) {
        const HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
        if (module == nullptr) return "not loaded";
        std::array<char, 1000> file{};
        GetModuleFileNameA(module, file.data(), static_cast<DWORD>(file.size()));
        FreeLibrary(module);
        return toLowerAscii(file.data());
    }

    static tMachine machine() { return thisMachine({}, {{}, std::filesystem::current_path().string()}); }

    static void expectLoaded(const std::string& path, const std::string& file) {
        EXPECT_EQ(predict(path, machine()), toLowerAscii(file)) << path;
        EXPECT_EQ(load(path), toLowerAscii(file)) << path;
    }
    static void expectNotLoaded(const std::string& path) {
        EXPECT_THAT(predict(path, machine()), testing::AnyOf("not found", "not loaded")) << path;
        EXPECT_EQ(load(path), "not loaded") << path;
    }

    support::tFolder folder_;

private:
    std::uint32_t nextBase_ = 0x40000000;
};

TEST_F(nPeMachineLoader, FindsAPathHoweverItIsWritten) {
    const std::string file = write("a.dll");
    write("b.c.dll");
    const std::string folder = folder_.utf8();
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path().root_path());  // for the path without a drive
    for (const std::string& path :
         {file, folder + "\\a", folder + "\\a.dll.", folder + "\\a.dll ", folder + "\\A.DLL", folder + "\\\\a.dll",
          folder + "\\.\\a.dll", folder + R"(\x\..\a.dll)", folder + "/a.dll", file.substr(2)}) {
        expectLoaded(path, file);
    }
    for (const std::string& path :
         {folder + "\\a.", folder + "\\b", folder + "\\b.c", folder + "\\none.dll", folder, folder + "\\", '"' + file,
          "%SystemDrive%" + file.substr(2), std::string("a.dll")}) {
        expectNotLoaded(path);
    }
    std::filesystem::current_path(before);
}

TEST_F(nPeMachineLoader, FindsImportsInTheLibrarysFolder) {
    const std::string file = write("outer.dll", {"middle.dll"});
    expectNotLoaded(file);
    write("middle.dll", {"inner"});
    expectNotLoaded(file);
    write("inner.dll", {});
    expectLoaded(file, file);
    std::string slashes = file;
    std::ranges::replace(slashes, '\\', '/');
    expectNotLoaded(slashes);
}

TEST_F(nPeMachineLoader, FindsNoImportsBesideTheProgram) {
    const std::string below = write("below\\outer.dll", {"inner.dll"});
    write("inner.dll");
    expectNotLoaded(below);
}

TEST_F(nPeMachineLoader, FindsImportsThatAreLoadedAlready) {
    const std::string outer = write("a\\outer.dll", {"inner.dll"});
    const std::string inner = write("b\\inner.dll");
    expectNotLoaded(outer);
    const HMODULE loaded = LoadLibraryA(inner.c_str());
    ASSERT_NE(loaded, nullptr);
    tMachine with = machine();
    addLoaded(with, {inner});
    EXPECT_EQ(predict(outer, with), toLowerAscii(outer));
    EXPECT_EQ(load(outer), toLowerAscii(outer));
    FreeLibrary(loaded);
}

TEST_F(nPeMachineLoader, FindsImportsOfTheSystem) {
    support::tPeFile file;
    file.imageBase = 0x50000000;
    file.imports = {importOf("KERNEL32.dll", {"Sleep"}), importOf("api-ms-win-core-file-l1-1-0.dll", {"CreateFileW"})};
    const std::string path = folder_.write("a.dll", file.bytes());
    expectLoaded(path, path);
    file.imports.push_back(importOf("api-ms-win-no-such-set-l1-1-0.dll", {"x"}));
    expectNotLoaded(folder_.write("b.dll", file.bytes()));
}

TEST_F(nPeMachineLoader, IgnoresImportsOfAnExecutableAndThoseOfNoFunction) {
    support::tPeFile file;
    file.imageBase = 0x50000000;
    file.imports = {importOf("nowhere.dll", {"x"})};
    file.characteristics = 0x22;
    const std::string program = folder_.write("program.dll", file.bytes());
    expectLoaded(program, program);
    file.characteristics = 0x2022;
    expectNotLoaded(folder_.write("library.dll", file.bytes()));
    file.imports = {importOf("nowhere.dll", {}), importOf("late.dll", {"x"}, true)};
    const std::string unused = folder_.write("unused.dll", file.bytes());
    expectLoaded(unused, unused);
}

TEST_F(nPeMachineLoader, RefusesDamagedLibraries) {
    const std::string whole = write("whole.dll");
    expectLoaded(whole, whole);
    const std::string bytes = folder_.read("whole.dll");
    for (const std::size_t size : {std::size_t{0}, std::size_t{2}, std::size_t{0x100}, bytes.size() - 0x200}) {
        expectNotLoaded(folder_.write("cut" + std::to_string(size) + ".dll", bytes.substr(0, size)));
    }
    const auto expectDamage = [&](std::size_t offset, std::uint16_t value) {
        std::string damaged = bytes;
        support::put16(damaged, offset, value);
        expectNotLoaded(folder_.write(std::to_string(offset) + '-' + std::to_string(value) + ".dll", damaged));
    };
    const support::tPeFile layout;
    expectDamage(0, 0);
    expectDamage(0x3E, 0x7FFF);
    expectDamage(support::tPeFile::peHeader, 0);
    expectDamage(support::tPeFile::machineField, machineX86);
    expectDamage(support::tPeFile::machineField, machineArm64);
    expectDamage(support::tPeFile::optionalHeader, 0x10B);
    expectDamage(support::tPeFile::optionalHeader, 0);
    expectDamage(support::tPeFile::sectionCountField, 97);
    expectDamage(layout.sectionHeader() + 10, 0x7FFF);  // size in memory
    expectDamage(layout.sectionHeader() + 14, 0x7FFF);  // address
    expectDamage(layout.sectionHeader() + 22, 0x7FFF);  // offset in the file
    folder_.makeFolder("folder.dll");
    expectNotLoaded(folder_.utf8("folder.dll"));
}

}  // namespace
}  // namespace nPe
