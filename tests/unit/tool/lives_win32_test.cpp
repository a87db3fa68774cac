// Each behaviour of tests/plugins/misbehaving, in the program itself.
#include <windows.h>

#include "tool/run/lives.h"
// windows.h first: tlhelp32.h needs its types.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tlhelp32.h>

#include <chrono>

#include "tests/support/folder.h"
#include "tests/unit/tool/toolProcess_win32.h"

namespace {

using support::tToolProcess;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

/// Returns the values of a member, which are texts, wherever it occurs in a document.
std::vector<std::string> valuesOf(const std::string& json, const std::string& member) {
    const std::string start = "\"" + member + "\": \"";
    std::vector<std::string> values;
    for (std::size_t at = json.find(start); at != std::string::npos; at = json.find(start, at)) {
        at += start.size();
        const std::string rest = json.substr(at, json.find('\n', at) - at);
        values.push_back(rest.substr(0, rest.rfind('"')));
    }
    return values;
}

/// Returns how many processes of the program are running.
int countTools() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Process32FirstW(snapshot, &entry); more != FALSE; more = Process32NextW(snapshot, &entry)) {
        count += std::wstring_view(entry.szExeFile) == L"ziptra.exe" ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

/// Wine has no windows without a display, unless it is told to do without one.
void letWineOpenWindows() {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Wine\\Drivers", 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key,
                    nullptr);
    RegSetValueExW(key, L"Graphics", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"null"), sizeof L"null");
    RegCloseKey(key);
}

class nRunLives : public testing::Test {
protected:
    static void SetUpTestSuite() { letWineOpenWindows(); }
    void TearDown() override { EXPECT_EQ(countTools(), 0); }

    /// Describes a plug-in with these entries of the test library.
    void add(const std::string& name, const std::string& initialize, const std::string& stop = "Behaves",
             const std::string& cleanup = "Behaves", const std::string& dependencies = "") const {
        const auto library = tToolProcess::ownFolder() / "test-plugins" / "misbehaving.dll";
        folder.write(name + ".ini", "[Service]\nName=" + name + "\nDependencies=" + dependencies +
                                        "\nPath=" + library.string() + "\nInitialize=" + initialize + "\nStop=" + stop +
                                        "\nCleanup=" + cleanup + "\n");
    }

    /// Returns the arguments for `run` with this plug-in.
    [[nodiscard]] std::wstring arguments(const std::wstring& name, const std::wstring& options) const {
        return L"run --json \"" + (folder.path() / name).wstring() + L".ini\" " + options;
    }

    support::tFolder folder{"lives"};
};

struct tBehaviour {
    const char* initialize;
    const char* outcome;
    const char* detail;  ///< a part of it
};

TEST_F(nRunLives, SayWhatEachMisbehaviourDoesToTheService) {
    const std::vector<tBehaviour> behaviours = {
        {"Behaves", "ok", ""},
        {"Warns", "ok", "Warns returned the warning 3"},
        {"Fails", "failed", "Fails returned -7; the service would run without it"},
        {"Throws", "failed", "Throws threw an exception derived from std::exception"},
        {"ThrowsAnything", "crashed",
         "an exception not derived from std::exception in ThrowsAnything; this would have"},
        {"CatchesException", "ok", ""},  // the library's runtime keeps handles that it opens then
        {"Faults", "crashed", "an access violation (0xC0000005) at misbehaving.dll+0x"},
        {"OverflowsStack", "crashed", "a stack overflow (0xC00000FD)"},
        {"RunsIllegalInstruction", "crashed", "(0xC000001D) at misbehaving.dll+0x"},
        {"FaultsOnItsThread", "crashed", "an access violation (0xC0000005) at misbehaving.dll+0x"},
        {"LeavesThreadInItsCode", "crashed",
         ", outside all libraries, perhaps on a thread of A, whose library has been unloaded, "},
        {"Aborts", "crashed", "a call of abort in Aborts; this would have ended the service"},
        {"Exits", "exited", "the process ended with the exit code 5 in Exits; this would have ended the service"},
        {"ExitsAsAbort", "exited", "the process exited with code 3, as abort does, in ExitsAsAbort; this would have"},
        {"EndsThread", "exited", "the host's thread was ended in EndsThread"},
        {"LeavesThread", "leaked", "left behind after Cleanup: 1 thread"},
        {"LeavesHandle", "leaked", "left behind after Cleanup: 1 handle"},
        {"LeavesLibrary", "leaked", "left behind after Cleanup: the library "},
        {"ChangesLocale", "leaked", "left behind after Cleanup: another locale of the C library"},
        {"ChangesThreadLocale", "leaked", "left behind after Cleanup: another locale of the host's thread"},
        {"ChangesDirectory", "leaked", "left behind after Cleanup: another current directory"},
        {"ChangesEnvironment", "leaked", "left behind after Cleanup: another environment"},
        {"ChangesErrorMode", "leaked", "left behind after Cleanup: another error mode"},
        {"ChangesPriority", "leaked", "left behind after Cleanup: another priority of the host's thread"},
        {"Missing", "notStarted", "its library cannot be loaded or unloaded, or lacks an entry"},
    };
    for (const tBehaviour& behaviour : behaviours) {
        add("A", behaviour.initialize);
        const tToolProcess tool(arguments(L"A", L""));
        EXPECT_EQ(tool.exitCode(), std::string_view(behaviour.outcome) == "ok" ? 0U : 1U) << behaviour.initialize;
        EXPECT_THAT(valuesOf(tool.out(), "outcome"), ElementsAre(behaviour.outcome)) << behaviour.initialize;
        EXPECT_THAT(valuesOf(tool.out(), "detail"), ElementsAre(HasSubstr(behaviour.detail))) << behaviour.initialize;
        EXPECT_EQ(countTools(), 0) << behaviour.initialize;
    }
}

TEST_F(nRunLives, MistakeNoNullFunctionForUnloadedCode) {
    add("A", "Behaves", "Behaves", "CallsNothingOnItsThread");
    const tToolProcess tool(arguments(L"A", L""));
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_THAT(valuesOf(tool.out(), "detail"),
                ElementsAre("an access violation (0xC0000005) at 0x0 in "
                            "CallsNothingOnItsThread; this would have ended the service"));
}

TEST_F(nRunLives, FindAChangedCodePageOfTheConsole) {
    add("A", "ChangesCodePage");
    const tToolProcess tool(arguments(L"A", L""), CREATE_NO_WINDOW);  // with a console of its own
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_THAT(valuesOf(tool.out(), "detail"),
                ElementsAre(StartsWith("left behind after Cleanup: another code page of the console; ")));
}

TEST_F(nRunLives, EndACallThatTakesLongerThanTheLimit) {
    add("initialize", "Hangs");
    add("stop", "Behaves", "Hangs");
    add("cleanup", "Behaves", "Behaves", "Hangs");
    const auto began = std::chrono::steady_clock::now();
    const tToolProcess tools[]{tToolProcess(arguments(L"initialize", L"--limit 2")),
                               tToolProcess(arguments(L"stop", L"--limit 2")),
                               tToolProcess(arguments(L"cleanup", L"--limit 2"))};
    for (const tToolProcess& tool : tools) {
        EXPECT_EQ(tool.exitCode(), 1U);
        EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::seconds(2));
        EXPECT_THAT(valuesOf(tool.out(), "outcome"), ElementsAre("hung"));
        const bool cleanup = &tool == std::end(tools) - 1;
        EXPECT_THAT(
            valuesOf(tool.out(), "detail"),
            ElementsAre(StartsWith(std::string("no return within 2000 ms in Hangs") +
                                   (cleanup ? ", which may be waiting for a thread that does not end; " : "; "))));
    }
}

TEST_F(nRunLives, EndACallThatWritesToThePipeOfTheReportsWithoutPause) {
    add("A", "FloodsReports");
    const tToolProcess tool(arguments(L"A", L"--limit 2"));
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_THAT(valuesOf(tool.out(), "outcome"), ElementsAre("hung"));
}

TEST_F(nRunLives, NameTheWindowThatAPlugInWaitsFor) {
    add("A", "Behaves", "OpensWindow");
    const tToolProcess tool(arguments(L"A", L"--limit 2"));
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_THAT(valuesOf(tool.out(), "outcome"), ElementsAre("hung"));
    EXPECT_THAT(tool.out(), HasSubstr(R"(in OpensWindow, where the window \"A message box\" is open; )"));
}

TEST_F(nRunLives, FindAHandleThatEachOfAHundredLivesLeavesBehind) {
    add("A", "LeavesHandle");
    const tToolProcess tool(arguments(L"A", L"--times 100"));
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_THAT(valuesOf(tool.out(), "outcome"), AllOf(SizeIs(100), Each("leaked")));
    EXPECT_THAT(valuesOf(tool.out(), "detail"), Each(HasSubstr("left behind after Cleanup: 1 handle;")));
}

TEST_F(nRunLives, FindTheHandleThatIsLeftBehindBesideThoseOfTheRuntime) {
    add("A", "LeavesHandle", "CatchesException");
    const tToolProcess tool(arguments(L"A", L"--times 3"));
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_THAT(valuesOf(tool.out(), "detail"),
                AllOf(SizeIs(3), Each(HasSubstr("left behind after Cleanup: 1 handle;"))));
}

TEST_F(nRunLives, FindThePlugInThatLeavesSomethingBehind) {
    add("A", "Behaves");
    add("B", "LeavesHandle", "LeavesThread", "ChangesDirectory", "A");
    add("C", "Behaves", "Behaves", "Behaves", "B");
    const tToolProcess tool(arguments(L"C", L"--times 2"));
    EXPECT_EQ(tool.exitCode(), 1U) << tool.error();
    ASSERT_THAT(valuesOf(tool.out(), "outcome"), ElementsAre("ok", "leaked", "ok", "ok", "leaked", "ok"));
    EXPECT_THAT(valuesOf(tool.out(), "detail")[1],
                AllOf(HasSubstr("1 handle"), HasSubstr("1 thread"), HasSubstr("another current directory")));
}

TEST_F(nRunLives, PassAsOftenAsTheyAreAskedFor) {
    add("A", "Behaves");
    const tToolProcess tool(
        arguments(L"A", L"--times 30 --junit \"" + (folder.path() / "report.xml").wstring() + L"\""));
    EXPECT_EQ(tool.exitCode(), 0U);
    EXPECT_THAT(valuesOf(tool.out(), "verdict"), ElementsAre("passed"));
    EXPECT_THAT(valuesOf(tool.out(), "outcome"), AllOf(SizeIs(30), Each("ok")));
    EXPECT_THAT(folder.read("report.xml"), AllOf(HasSubstr("<testsuite name=\"life 30\" tests=\"1\" failures=\"0\""),
                                                 EndsWith("</testsuites>\n")));
}

TEST_F(nRunLives, RunDependenciesInTheHostsOrderAndByItsRules) {
    add("C", "Behaves", "Behaves", "Behaves", "A");
    add("B", "Behaves", "Behaves", "Behaves", "C, Missing");
    add("A", "Fails");
    const tToolProcess tool(arguments(L"B", L""));
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_THAT(valuesOf(tool.out(), "name"), ElementsAre("A", "C", "B"));
    EXPECT_THAT(valuesOf(tool.out(), "outcome"), ElementsAre("failed", "notStarted", "notStarted"));
    EXPECT_THAT(valuesOf(tool.out(), "detail"),
                ElementsAre(HasSubstr("-7"), HasSubstr("it depends on A, which has not started"),
                            HasSubstr("it depends on C, which has not started")));
    const tToolProcess forbidden(arguments(L"A", L"--allowed 2"));
    EXPECT_EQ(forbidden.exitCode(), 1U);
    EXPECT_THAT(valuesOf(forbidden.out(), "detail"), ElementsAre(HasSubstr("the machine allows none of the features")));
}

TEST_F(nRunLives, ShowWhatIsSaidToTheDebuggerWithTheCallAndTheThread) {
    add("A", "SaysWhyItFails");
    const tToolProcess failed(arguments(L"A", L"--times 2"));
    EXPECT_EQ(failed.exitCode(), 1U);
    EXPECT_THAT(valuesOf(failed.out(), "outcome"), Each("failed"));
    EXPECT_THAT(valuesOf(failed.out(), "text"), ElementsAre("no file Settings.txt", "no file Settings.txt"));
    EXPECT_THAT(valuesOf(failed.out(), "thread"), Each("host"));
    add("B", "SaysWide", "SaysSomethingOnItsThread");
    const tToolProcess good(arguments(L"B", L""));
    EXPECT_EQ(good.exitCode(), 0U) << good.out();
    EXPECT_THAT(valuesOf(good.out(), "text"), ElementsAre("wide", "a thread gave up"));
    EXPECT_THAT(valuesOf(good.out(), "thread"), ElementsAre("host", "other"));
    EXPECT_THAT(good.out(), HasSubstr("\"entry\": \"SaysSomethingOnItsThread\",\n              \"thread\""));
}

TEST_F(nRunLives, ShowTheFirstNineTextsOfEachCallAndTheLast) {
    add("A", "SaysMuch", "SaysMuch");
    const tToolProcess tool(arguments(L"A", L""));
    EXPECT_EQ(tool.exitCode(), 0U);
    const std::vector<std::string> texts = valuesOf(tool.out(), "text");
    ASSERT_THAT(texts, SizeIs(20));
    EXPECT_THAT(texts, Each(AllOf(SizeIs(303), EndsWith("xxx\xE2\x80\xA6"))));
    for (const std::size_t call : {0U, 10U}) {
        EXPECT_THAT(texts[call], StartsWith("0x"));
        EXPECT_THAT(texts[call + 8], StartsWith("8x"));
        EXPECT_THAT(texts[call + 9], StartsWith("19x"));
    }
}

TEST_F(nRunLives, ShowTheLastTextOfEachCallAfterAThousandTexts) {
    add("A", "SaysMuch", "SaysMuch");
    const tToolProcess tool(arguments(L"A", L"--times 60"));
    EXPECT_EQ(tool.exitCode(), 0U);
    const std::vector<std::string> texts = valuesOf(tool.out(), "text");
    ASSERT_THAT(texts, SizeIs(1000 + 2 * 60));
    for (auto text = texts.end() - 8; text != texts.end(); ++text) EXPECT_THAT(*text, StartsWith("19x"));
}

TEST_F(nRunLives, ShowTheLastTextOfACallThatDoesNotReturn) {
    for (const std::string entry : {"SaysMuchAndFaults", "SaysMuchAndAborts", "SaysMuchAndHangs"}) {
        add("A", entry);
        const tToolProcess tool(arguments(L"A", L"--limit 3"));
        EXPECT_EQ(tool.exitCode(), 1U) << entry;
        const std::vector<std::string> texts = valuesOf(tool.out(), "text");
        ASSERT_THAT(texts, SizeIs(10)) << entry;
        EXPECT_THAT(texts.back(), StartsWith("19x")) << entry;
    }
}

TEST_F(nRunLives, SurviveATextThatIsNowhere) {
    add("A", "SaysWhatIsNowhere");
    const tToolProcess tool(arguments(L"A", L""));
    EXPECT_EQ(tool.exitCode(), 0U) << tool.out() << tool.error();
    EXPECT_THAT(valuesOf(tool.out(), "text"), ElementsAre("four"));
}

TEST_F(nRunLives, EndACallThatHangsAlthoughAThreadSaysSomething) {
    add("A", "HangsButSaysSo");
    const auto began = std::chrono::steady_clock::now();
    const tToolProcess tool(arguments(L"A", L"--limit 2"));
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(25));  // 30 where no call is running
    EXPECT_THAT(valuesOf(tool.out(), "outcome"), ElementsAre("hung"));
    EXPECT_THAT(valuesOf(tool.out(), "text"), AllOf(Not(IsEmpty()), Each("I am still here")));
}

TEST_F(nRunLives, KeepWhatPlugInsWriteOutOfTheResult) {
    add("A", "Writes");
    const tToolProcess tool(arguments(L"A", L""));
    EXPECT_EQ(tool.exitCode(), 0U);
    EXPECT_THAT(tool.out(), AllOf(StartsWith("{\n"), EndsWith("}\n"), Not(HasSubstr("written by"))));
    EXPECT_THAT(tool.error(), StartsWith("written by a plug-in"));
}

/// The process that a plug-in starts: this test, which shows that it runs by an event and then sleeps.
constexpr const wchar_t* childEvent = L"ziptra test child";

bool childRuns() {
    const HANDLE event = OpenEventW(SYNCHRONIZE, FALSE, childEvent);
    if (event != nullptr) CloseHandle(event);
    return event != nullptr;
}

/// Waits until it is so.
bool soon(bool (*condition)(), bool expected) {
    for (int i = 0; i < 1000 && condition() != expected; ++i) Sleep(10);
    return condition() == expected;
}

class nRunLivesWithChild : public nRunLives {
protected:
    void SetUp() override {
        wchar_t self[MAX_PATH];
        GetModuleFileNameW(nullptr, self, MAX_PATH);
        const std::wstring line = L"\"" + std::wstring(self) + L"\" --gtest_filter=nRunLivesChild.Sleeps";
        SetEnvironmentVariableW(L"TEST_CHILD", line.c_str());
        add("A", "StartsChild", "Hangs");
    }
    void TearDown() override {
        SetEnvironmentVariableW(L"TEST_CHILD", nullptr);
        nRunLives::TearDown();
    }
};

TEST(nRunLivesChild, Sleeps) {
    if (GetEnvironmentVariableW(L"TEST_CHILD", nullptr, 0) == 0) return;  // this is the test program
    CreateEventW(nullptr, TRUE, FALSE, childEvent);
    Sleep(60'000);
}

TEST_F(nRunLivesWithChild, LeaveNoProcessOfAPlugInBehind) {
    const tToolProcess tool(arguments(L"A", L"--limit 5"));
    EXPECT_TRUE(soon(childRuns, true));
    EXPECT_EQ(tool.exitCode(), 1U);
    EXPECT_FALSE(childRuns());
}

TEST_F(nRunLivesWithChild, LeaveNoProcessBehindIfTheCommandIsEnded) {
    const tToolProcess tool(arguments(L"A", L"--limit 60"));
    EXPECT_TRUE(soon(childRuns, true));
    EXPECT_EQ(countTools(), 2);
    tool.terminate();
    EXPECT_TRUE(soon(childRuns, false));
    EXPECT_TRUE(soon([] { return countTools() != 0; }, false));
}

TEST_F(nRunLives, CannotLookWithoutADescription) {
    const tToolProcess tool(arguments(L"Missing", L"--junit \"" + (folder.path() / "report.xml").wstring() + L"\""));
    EXPECT_EQ(tool.exitCode(), 2U);
    EXPECT_THAT(tool.out(), IsEmpty());
    EXPECT_THAT(tool.error(),
                AllOf(StartsWith("ziptra: The host cannot read '"), EndsWith("'ziptra check' says why\n")));
    EXPECT_FALSE(folder.has("report.xml"));
}

}  // namespace
