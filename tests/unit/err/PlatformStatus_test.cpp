#include "err/PlatformStatus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/report.h"

namespace {

using testing::StrEq;
using zuerr::PlatformStatus;
using zuerr::RaiseInto;
using zuerr::RaiseSite;
using zuerr::StatusRecord;

constexpr RaiseSite site{".\\quarks\\library", 12};

PlatformStatus raised(std::int32_t code, const char* component, const RaiseSite& raiseSite) {
    PlatformStatus status;
    RaiseInto(status, code, component, raiseSite);
    return status;
}

/// Returns code and report of the record that a platform status is converted to.
std::string converted(const PlatformStatus& platform) {
    StatusRecord record;
    ConvertPlatformStatus(platform, record);
    return std::to_string(record.code) + " " + (record.json == nullptr ? "none" : record.json);
}

TEST(PlatformStatus, IsInitiallySuccessOfTheFullSize) {
    const PlatformStatus status;
    EXPECT_EQ(status.size, 208U);
    EXPECT_EQ(status.code, 0);
    EXPECT_THAT(status.component.data(), StrEq(""));
    EXPECT_THAT(status.file.data(), StrEq(""));
    EXPECT_EQ(status.line, 0);
    EXPECT_EQ(status.extension, 0U);
    EXPECT_FALSE(status.failed());
}

// Raising

TEST(PlatformStatus, StoresCodeComponentFileAndLineAndResetsTheExtension) {
    PlatformStatus status;
    status.extension = 42;
    RaiseInto(status, -52008, "quarks", site);
    EXPECT_EQ(status.code, -52008);
    EXPECT_THAT(status.component.data(), StrEq("quarks"));
    EXPECT_THAT(status.file.data(), StrEq(".\\quarks\\library"));
    EXPECT_EQ(status.line, 12);
    EXPECT_EQ(status.extension, 0U);
    EXPECT_TRUE(status.failed());
}

TEST(PlatformStatus, TruncatesAComponentToNineCharacters) {
    EXPECT_THAT(raised(-1, "ninechars", site).component.data(), StrEq("ninechars"));
    EXPECT_THAT(raised(-1, "zuZiptraRemoteService", site).component.data(), StrEq("zuZiptraR"));
}

TEST(PlatformStatus, RemovesTheMiddleOfAPathOfMoreThan100Characters) {
    const std::string whole = std::string(99, 'x') + "y";
    EXPECT_EQ(raised(-1, "", {whole.c_str(), 1}).file.data(), whole);
    for (const std::size_t middle : {3U, 4U, 1000U}) {
        const std::string first = std::string(48, 'a') + "b";
        const std::string last = "c" + std::string(48, 'd');
        const std::string path = first + std::string(middle, 'm') + last;
        EXPECT_EQ(raised(-1, "", {path.c_str(), 1}).file.data(), first + ".." + last);
    }
}

TEST(PlatformStatus, KeepsTheFirstError) {
    PlatformStatus status = raised(-1, "first", {"a", 1});
    RaiseInto(status, -2, "second", {"b", 2});
    RaiseInto(status, 3, "third", {"c", 3});
    EXPECT_EQ(converted(status), R"(-1 {"file":"a","line":1,"component":"first"})");
}

TEST(PlatformStatus, ReplacesAWarningWithAnErrorAndClearsItsLongerTexts) {
    PlatformStatus status = raised(3, "warning", {"long/file/name", 3});
    RaiseInto(status, -1, "err", {"a", 1});
    EXPECT_EQ(status.code, -1);
    EXPECT_EQ(status.component, (decltype(status.component){'e', 'r', 'r'}));
    EXPECT_EQ(status.file, (decltype(status.file){'a'}));
    EXPECT_EQ(status.line, 1);
}

TEST(PlatformStatus, StoresOnlyTheCodeIfItsDeclaredSizeIsBelow208) {
    PlatformStatus status{.size = 207};
    RaiseInto(status, -1, "component", site);
    EXPECT_EQ(status.code, -1);
    EXPECT_THAT(status.component.data(), StrEq(""));
    EXPECT_THAT(status.file.data(), StrEq(""));
    EXPECT_EQ(status.line, 0);
}

// Conversion

TEST(PlatformStatusConversion, WritesFileLineAndComponentForAnErrorAndForAWarning) {
    for (const std::int32_t code : {-52008, 1, 3}) {
        EXPECT_EQ(converted(raised(code, "zuZiptraRemoteService", site)),
                  std::to_string(code) + R"( {"file":".\\quarks\\library","line":12,"component":"zuZiptraR"})");
    }
}

TEST(PlatformStatusConversion, OmitsFileAndLineWithoutAFileAndOmitsAnEmptyComponent) {
    EXPECT_EQ(converted(raised(-1, "component", {"", 12})), R"(-1 {"component":"component"})");
    EXPECT_EQ(converted(raised(-1, "", {"a", 12})), R"(-1 {"file":"a","line":12})");
}

TEST(PlatformStatusConversion, DoesNothingForSuccess) { EXPECT_EQ(converted(raised(0, "component", site)), "0 none"); }

TEST(PlatformStatusConversion, DoesNothingIfTheRecordDoesNotStoreTheCode) {
    StatusRecord record;
    record.code = -1;
    ConvertPlatformStatus(raised(-52008, "component", site), record);
    EXPECT_EQ(record.code, -1);
    EXPECT_EQ(record.json, nullptr);
}

TEST(PlatformStatusConversion, ConvertsOnlyTheCodeIfTheDeclaredSizeIsBelow208) {
    PlatformStatus platform = raised(-1, "component", site);
    platform.size = 207;
    EXPECT_EQ(converted(platform), "-1 none");
}

TEST(PlatformStatusConversion, FitsTheLongestMembersIntoABufferOf512Bytes) {
    const std::string file(100, '\\');
    const auto line = std::numeric_limits<std::int32_t>::min();
    StatusRecord record;
    ConvertPlatformStatus(raised(line, R"(""""""""")", {file.c_str(), line}), record);
    const auto members = report::parsed(record.json);
    EXPECT_EQ(members["file"], file);
    EXPECT_EQ(members["line"], line);
    EXPECT_EQ(members["component"], R"(""""""""")");
    EXPECT_EQ(record.capacity, 512U);
}

/// A manager that grants as many requests as the test allows and records them.
struct tManager {
    inline static std::vector<std::uint32_t> requests;
    inline static std::vector<std::size_t> lengths;
    inline static std::size_t refused = 0;  ///< which request is refused, counted from 1

    static bool realloc(StatusRecord& record, std::uint32_t capacity) noexcept {
        // The writer itself ensures before each member that there is at least an empty report.
        if (capacity > 4) {
            requests.push_back(capacity);
            lengths.push_back(record.json == nullptr ? 2 : std::strlen(record.json));
            if (requests.size() == refused) return false;
        }
        return StatusRecord::reallocJsonDefault(record, capacity);
    }

    static std::string convertedWithRefusal(std::size_t number) {
        requests.clear();
        lengths.clear();
        refused = number;
        StatusRecord record;
        record.reallocJson = realloc;
        ConvertPlatformStatus(raised(-1, "component", {"a", 12}), record);
        return record.json == nullptr ? "none" : record.json;
    }
};

TEST(PlatformStatusConversion, Reserves258BytesBeforeEachMember) {
    EXPECT_EQ(tManager::convertedWithRefusal(0), R"({"file":"a","line":12,"component":"component"})");
    ASSERT_EQ(tManager::requests.size(), 3U);
    // Text, terminator, reserved bytes, sentinel.
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(tManager::requests[i], tManager::lengths[i] + 1 + 258 + 1);
}

TEST(PlatformStatusConversion, WritesNoMemberAfterGrowthHasFailed) {
    EXPECT_EQ(tManager::convertedWithRefusal(1), "none");
    EXPECT_EQ(tManager::requests.size(), 1U);
    EXPECT_EQ(tManager::convertedWithRefusal(2), R"({"file":"a"})");
    EXPECT_EQ(tManager::requests.size(), 2U);
    EXPECT_EQ(tManager::convertedWithRefusal(3), R"({"file":"a","line":12})");
}

TEST(PlatformStatusConversion, KeepsTheCodeWhenMemoryRunsOut) {
    const PlatformStatus platform = raised(-52008, "component", site);
    StatusRecord record;
    allocations::refused(0, [&] { ConvertPlatformStatus(platform, record); });
    EXPECT_EQ(record.code, -52008);
    EXPECT_EQ(record.json, nullptr);
}

}  // namespace
