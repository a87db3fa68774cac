#include "tool/status/statusSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

#include "err/Exception.h"
#include "source/tService.h"
#include "tests/support/folder.h"
#include "tests/support/statusReports.h"

namespace {

using nStatus::tCannotRead;
using testing::HasSubstr;

std::string failure(const std::function<void()>& call) {
    try {
        call();
    } catch (const tCannotRead& error) {
        return error.what();
    }
    return "no failure";
}

TEST(nStatusSource, ReadsAllBytesOfAFile) {
    const support::tFolder folder;
    for (const std::string& content : {std::string(),
                                       std::string("a\r\n\0\x1A"
                                                   "b",
                                                   6),
                                       std::string(1'000'000, 'x')}) {
        EXPECT_EQ(nStatus::readFile(folder.write("s.status", content)), content);
    }
}

TEST(nStatusSource, AcceptsAPathInAnyScript) {
    const support::tFolder folder(u"状态 🙂");
    EXPECT_EQ(nStatus::readFile(folder.write(u"文件.status", "text")), "text");
}

TEST(nStatusSource, NamesAFileThatCannotBeRead) {
    const support::tFolder folder;
    EXPECT_THAT(failure([&] { static_cast<void>(nStatus::readFile(folder.utf8("missing"))); }),
                testing::StartsWith("Cannot read '" + folder.utf8("missing") + "': "));
    EXPECT_THAT(failure([&] { static_cast<void>(nStatus::readFile(folder.utf8())); }), HasSubstr("Cannot read"));
}

TEST(nStatusSource, WaitsForAFileThatIsBeingReplaced) {
    const support::tFolder folder;
    const std::jthread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        folder.write("new", "text");
        rename(folder.path() / "new", folder.path() / "s.status");
    });
    EXPECT_EQ(nStatus::readFile(folder.utf8("s.status")), "text");
}

/// On Windows, the host cannot replace a file that is open at that moment; it then leaves it for the next time.
bool replaceIfPossible(const std::string& folder, const std::string& text) {
    try {
        WriteStatusFile(folder, "s.status", text);
        return true;
    } catch (const zuerr::Exception&) {
        return false;
    }
}

/// Returns nothing if there was no file for too long: a busy machine may stop the writer between deleting the old file
/// and renaming the new one.
std::optional<std::string> readIfThere(const std::string& path) {
    try {
        return nStatus::readFile(path);
    } catch (const tCannotRead&) {
        return std::nullopt;
    }
}

TEST(nStatusSource, NeverSeesHalfAFile) {
    const support::tFolder folder;
    const std::string texts[] = {std::string(20'000, 'a'), std::string(20'000, 'b')};
    WriteStatusFile(folder.utf8(), "s.status", texts[0]);
    const std::jthread host([&](const std::stop_token& stop) {
        for (int i = 1; !stop.stop_requested(); ++i) {
            if (!replaceIfPossible(folder.utf8(), texts[i % 2])) std::this_thread::yield();
        }
    });
    for (int reads = 0; reads < 300;) {
        const std::optional<std::string> text = readIfThere(folder.utf8("s.status"));
        if (!text) continue;
        EXPECT_TRUE(*text == texts[0] || *text == texts[1]) << text->size();
        ++reads;
    }
}

TEST(nStatusSource, RefusesAFileOfMoreThanAGigabyte) {
    const support::tFolder folder;
    folder.write("huge");
    resize_file(folder.path() / "huge", nStatus::nPlatform::largestSize + 1);  // takes no space
    EXPECT_THAT(failure([&] { static_cast<void>(nStatus::readFile(folder.utf8("huge"))); }), HasSubstr("1 GiB"));
}

TEST(nStatusSource, ReadsTheReportInAFile) {
    const support::tFolder folder;
    EXPECT_EQ(nStatus::readReport(folder.write("s.status", support::statusHead)).allowedMask, 0xFFFFFFFF);
}

TEST(nStatusSource, NamesTheLineThatIsNotOfAStatusFile) {
    const support::tFolder folder;
    const std::string path = folder.write("s.ini", "[Service]\n");
    EXPECT_EQ(failure([&] { static_cast<void>(nStatus::readReport(path)); }),
              "'" + path + "' is no status file: line 1: it is not the first line of a status file");
}

}  // namespace
