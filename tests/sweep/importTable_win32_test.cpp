#include "tests/sweep/importTable_win32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <random>
#include <string>

#include "tests/support/folder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// An executable of headers and one section, which the loader puts at address 0x5000, with what is written into it.
class MadeUpExecutable {
public:
    static constexpr DWORD address = 0x5000;

    MadeUpExecutable() : bytes_(sectionStart + 0x400, '\0') {
        IMAGE_DOS_HEADER dos{};
        dos.e_lfanew = headerStart;
        put(0, dos);
        headers_.FileHeader.NumberOfSections = 1;
        headers_.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress = address;
        put(headerStart, headers_);
        IMAGE_SECTION_HEADER section{};
        section.VirtualAddress = address;
        section.PointerToRawData = sectionStart;
        section.SizeOfRawData = 0x400;
        put(headerStart + sizeof(headers_), section);
    }

    // Places are counted from the beginning of the section.
    void library(DWORD number, DWORD names, DWORD table) {
        IMAGE_IMPORT_DESCRIPTOR descriptor{};
        descriptor.Name = address + names;
        descriptor.OriginalFirstThunk = address + table;
        put(sectionStart + number * DWORD{sizeof(descriptor)}, descriptor);
    }
    void entry(DWORD place, std::uint64_t value) { put(sectionStart + place, value); }
    void text(DWORD place, const std::string& text) { bytes_.replace(sectionStart + place, text.size(), text); }

    [[nodiscard]] const std::string& bytes() const { return bytes_; }

private:
    static constexpr DWORD headerStart = sizeof(IMAGE_DOS_HEADER);
    static constexpr DWORD sectionStart = 0x200;

    template <class T>
    void put(DWORD place, const T& value) {
        std::memcpy(bytes_.data() + place, &value, sizeof(value));
    }

    IMAGE_NT_HEADERS64 headers_{};
    std::string bytes_;
};

std::vector<std::string> importsIn(const std::string& bytes) {
    const support::tFolder folder;
    return sweep::importsOf(folder.write("made-up.exe", bytes));
}

/// Two libraries: "First" and "Second" of the one, number 12 of the other.
MadeUpExecutable twoLibraries() {
    MadeUpExecutable executable;
    executable.library(0, 0x300, 0x100);
    executable.library(1, 0x310, 0x140);
    executable.text(0x300, "one.dll");
    executable.text(0x310, "other.dll");
    executable.entry(0x100, MadeUpExecutable::address + 0x200);
    executable.entry(0x108, MadeUpExecutable::address + 0x210);
    executable.entry(0x140, IMAGE_ORDINAL_FLAG64 | 12);
    executable.text(0x202, "First");  // behind a hint
    executable.text(0x212, "Second");
    return executable;
}

TEST(ImportTable, ListsTheNamesOfAllLibrariesAndNumbersAsSuch) {
    EXPECT_THAT(importsIn(twoLibraries().bytes()), ElementsAre("First", "Second", "#12"));
}

TEST(ImportTable, OfNoFileOrAnEmptyOneIsEmpty) {
    EXPECT_THAT(sweep::importsOf("C:\\no such folder\\no such file.exe"), IsEmpty());
    EXPECT_THAT(importsIn(""), IsEmpty());
    EXPECT_THAT(importsIn("MZ"), IsEmpty());
}

TEST(ImportTable, ThatIsCutOffAnywhereIsReadAsFarAsItGoes) {
    const std::string whole = twoLibraries().bytes();
    for (std::size_t size = 0; size < whole.size(); size += 7) {
        EXPECT_LE(importsIn(whole.substr(0, size)).size(), 3U) << size;
    }
}

TEST(ImportTable, OfRandomBytesIsReadToAnEnd) {
    std::mt19937 random(20);  // NOLINT(cert-msc51-cpp): the same bytes in every run
    const std::string whole = twoLibraries().bytes();
    for (int round = 0; round < 200; ++round) {
        std::string garbage = whole;
        for (int change = 0; change < 40; ++change) garbage[random() % garbage.size()] = static_cast<char>(random());
        EXPECT_LT(importsIn(garbage).size(), garbage.size()) << round;
    }
}

TEST(ForgottenCalls, AreThoseThatNeitherAScenarioNorTheRuntimeMakes) {
    EXPECT_THAT(sweep::forgottenCalls({"CreateEventA", "NewCallOfTheProduct", "malloc", "#12"}, {"CreateEventA"}),
                ElementsAre("NewCallOfTheProduct", "#12"));
}

TEST(ForgottenCalls, AreNoneWhenAllAreReached) {
    EXPECT_THAT(sweep::forgottenCalls({"CreateEventA", "memcpy"}, {"CreateEventA", "SetEvent"}), IsEmpty());
}

}  // namespace
