#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

using testing::Each;
using testing::HasSubstr;
using testing::Not;

struct tImageUnloader {
    void operator()(HMODULE image) const noexcept { FreeLibrary(image); }
};

/// The staged executable laid out in memory as the loader would, but neither bound nor run.
class Executable : public EndToEnd {
protected:
    [[nodiscard]] const IMAGE_NT_HEADERS64& headers() const {
        return at<IMAGE_NT_HEADERS64>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0).e_lfanew));
    }

    [[nodiscard]] std::vector<std::string> importedLibraries() const {
        std::vector<std::string> libraries;
        const DWORD table = headers().OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
        for (const auto* import = &at<IMAGE_IMPORT_DESCRIPTOR>(table); import->Name != 0; ++import) {
            std::string name = &at<char>(import->Name);
            for (char& letter : name) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
            libraries.push_back(name);
        }
        return libraries;
    }

private:
    template <class T>
    [[nodiscard]] const T& at(DWORD offset) const {
        return *reinterpret_cast<const T*>(reinterpret_cast<const char*>(image_.get()) + offset);
    }

    std::unique_ptr<std::remove_pointer_t<HMODULE>, tImageUnloader> image_{
        LoadLibraryExW(executable().c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES)};
};

// A name such as api-ms-win-core-synch-l1-2-0.dll is no file of Windows 7's, which then refuses the whole program.
TEST_F(Executable, IsBoundToLibrariesOfEveryWindowsThatItsManifestNames) {
    const std::vector<std::string> libraries = importedLibraries();
    EXPECT_THAT(libraries, testing::IsSupersetOf({"advapi32.dll", "kernel32.dll"}));
    EXPECT_THAT(libraries, Each(Not(HasSubstr("api-ms-win-core"))));
    EXPECT_THAT(libraries, Not(testing::Contains("zusysapi.dll")));
}

// It takes longer to load than everything else, and a call for help needs nothing of it.
TEST_F(Executable, LoadsTheShellWhenItIsAskedAndNotWhenItStarts) {
    EXPECT_THAT(importedLibraries(), Not(testing::Contains("shell32.dll")));
}

TEST_F(Executable, IsA64BitConsoleProgramThatTheSystemMayPlaceAnywhereAndGuard) {
    const IMAGE_OPTIONAL_HEADER64& header = headers().OptionalHeader;
    EXPECT_EQ(headers().FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_EQ(header.Subsystem, IMAGE_SUBSYSTEM_WINDOWS_CUI);
    constexpr WORD guards = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
                            IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA;
    EXPECT_EQ(header.DllCharacteristics & guards, guards);
    EXPECT_NE(header.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U) << "it cannot be moved";
}

}  // namespace
}  // namespace endtoend
