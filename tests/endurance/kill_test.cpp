// Kills the executable while another thread reads the status file: it must be whole, or there must be none.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <regex>
#include <set>
#include <thread>

#include "tests/endtoend/harness/figures.h"
#include "tests/endtoend/harness/stage.h"

namespace endurance {
namespace {

using endtoend::figure;
using endtoend::readFile;
using endtoend::setting;
using endtoend::tPath;
using endtoend::tStatusFile;

/// Enough bad descriptions for a status file that is larger than a stream's buffer.
constexpr int badDescriptions = 40;
/// After the construction, the preparation, the start of the plug-ins, their stop, and at the end.
constexpr int replacements = 5;
/// Before and after each of five calls, and in the middle of the write.
constexpr int stepsOfAReplacement = 11;
constexpr DWORD killed = 1;
/// What the stand-in adds to the number of steps of a life that reaches its end.
constexpr DWORD wholeLife = 1000;

/// Recognises the complete text of each of the five replacements in a life.
class tWholeTexts {
public:
    explicit tWholeTexts(const tPath& descriptions) {
        for (int i = 0; i < badDescriptions; ++i) {
            messages_ +=
                "Failed to parse service description file: " + endtoend::utf8Path(descriptions / badName(i)) + "\r\n";
        }
    }

    static std::wstring badName(int i) { return L"bad" + std::to_wstring(1000 + i) + L".ini"; }

    /// 0: a part of a text. 1: the first of a life. 2: prepared. 3: with the plug-in.
    [[nodiscard]] int stage(const std::string& text) const {
        static const std::regex head(
            "ZU-Ziptra Remote Configuration and Deployment status\r\nUpdated: [^\r\n]{24}\r\nAllowed: 0xffffffff\r\n"
            "(Init Time [0-9]+ ms\r\n)?\r\n");
        static const std::regex plugin(
            "A \\(depends on \\)\r\nLoaded From: [^\r\n]+\r\nRequires: 1\r\n"
            "(InitOk Time: [0-9]+ ms\r\nInitOk Code: 0\r\n)?(CleanupOk Time: [0-9]+ ms\r\nCleanupOk Code: 0\r\n)?\r\n");
        std::smatch match;
        if (!std::regex_search(text, match, head, std::regex_constants::match_continuous)) return 0;
        const std::string rest = match.suffix();
        // A preparation in no measurable time has no line, so only the line without the messages is a part.
        if (rest.empty()) return match[1].matched ? 0 : 1;
        if (!rest.starts_with(messages_)) return 0;
        const std::string paragraphs = rest.substr(messages_.size());
        if (paragraphs.empty()) return 2;
        return std::regex_match(paragraphs, plugin) ? 3 : 0;
    }

private:
    std::string messages_;
};

/// Reads the status file repeatedly during its lifetime.
class tReader {
public:
    explicit tReader(const tWholeTexts& texts) : texts_(texts), thread_([this] { read(); }) {}
    ~tReader() {
        over_ = true;
        thread_.join();
        EXPECT_EQ(torn, 0) << "the first part that the reader saw:\n" << part_;
    }
    tReader(const tReader&) = delete;
    tReader& operator=(const tReader&) = delete;

    std::atomic<int> whole = 0;
    std::atomic<int> none = 0;
    std::atomic<int> torn = 0;

private:
    void read() {
        std::string before;
        while (!over_) {
            std::string text = readFile(tStatusFile::path());
            if (text.empty()) {
                ++none;
            } else if (text == before || texts_.stage(text) != 0) {
                ++whole;
                before = std::move(text);
            } else {
                if (++torn == 1) part_ = text;
            }
            // A file that is always open could never be replaced.
            Sleep(1);
        }
    }

    const tWholeTexts& texts_;
    std::string part_;
    std::atomic<bool> over_ = false;
    std::thread thread_;
};

/// The content of the folder after the process is dead.
struct tLeft {
    int stage = 0;
    bool none = false;
    bool temporary = false;
};

class kill : public endtoend::tEndToEnd {
protected:
    kill() {
        endtoend::rebindImport(executable(), "ADVAPI32.dll", "killing.dll");
        static_cast<void>(addLibrary(executable().parent_path() / L"killing.dll", L"killing.dll"));
        addPlugin("A", {.cleanup = "CleanupOk"});
        for (int i = 0; i < badDescriptions; ++i) static_cast<void>(describe(tWholeTexts::badName(i), "nonsense"));
    }

    /// Lives a whole life, or one that ends at a step. Returns the exit code.
    DWORD live(int killAtStep) {
        const endtoend::tEnvironmentVariable step(L"KILL_AT_STEP", std::to_wstring(killAtStep));
        return start().exitCode();
    }

    /// Returns what is left, and checks that it is no part of a file.
    [[nodiscard]] tLeft lookAtWhatIsLeft() const {
        tLeft left;
        left.none = !std::filesystem::exists(tStatusFile::path());
        left.temporary = std::filesystem::exists(tStatusFile::temporaryPath());
        if (!left.none) {
            const std::string text = readFile(tStatusFile::path());
            left.stage = whole_.stage(text);
            EXPECT_NE(left.stage, 0) << text;
        }
        return left;
    }

    /// Checks that a life after a kill leaves what a life on a clean machine leaves.
    void expectRecovery() {
        for (int attempt = 1;; ++attempt) {
            EXPECT_GT(live(0), wholeLife);
            const tLeft left = lookAtWhatIsLeft();
            if (left.stage == 3 && !left.temporary) break;
            // If the reader has the file open while it is to be replaced, that is put off to the next time.
            ASSERT_LT(attempt, 5) << "no recovery: stage " << left.stage;
            ++repeated_;
        }
        ++recovered_;
    }

    /// At least so many kills.
    int wanted_ = setting("KILLS", 55);
    tWholeTexts whole_{descriptions()};
    int recovered_ = 0;
    int repeated_ = 0;
};

TEST_F(kill, AtEachStepOfEachReplacementLeavesAWholeFileOrNone) {
    int kills = 0;
    int none = 0;
    int temporary = 0;
    std::set<int> stages;
    constexpr int lastStep = replacements * stepsOfAReplacement;
    {
        tReader reader(whole_);
        // From the first step to the last, and again.
        for (int step = 1; kills < wanted_ || step != 1; step = step % lastStep + 1) {
            ASSERT_EQ(live(step), killed) << "step " << step;
            ++kills;
            const tLeft left = lookAtWhatIsLeft();
            none += left.none ? 1 : 0;
            temporary += left.temporary ? 1 : 0;
            stages.insert(left.stage);
            if (step % stepsOfAReplacement == 0) expectRecovery();
            if (HasFatalFailure()) return;
        }
        EXPECT_EQ(live(lastStep + 1), wholeLife + lastStep) << "there is no further step";
        expectRecovery();
        figure("kill, step by step: reads of a whole file", reader.whole.load());
        figure("kill, step by step: reads of none", reader.none.load());
        figure("kill, step by step: reads of a part", reader.torn.load());
    }
    EXPECT_EQ(stages, (std::set<int>{0, 1, 2, 3})) << "0: none";
    figure("kill, step by step: kills", kills);
    figure("kill, step by step: no status file afterwards", none);
    figure("kill, step by step: a temporary file afterwards", temporary);
    figure("kill, step by step: recoveries", recovered_);
    figure("kill, step by step: recoveries that the reader put off", repeated_);
    EXPECT_LE(repeated_, 1 + recovered_ / 4);
}

}  // namespace
}  // namespace endurance
