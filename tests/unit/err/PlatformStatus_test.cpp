#include "err/PlatformStatus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "err/Exception.h"
#include "tests/support/allocations.h"
#include "tests/support/report.h"

namespace {

using testing::StrEq;
using zuerr::Convert;
using zuerr::PlatformStatus;
using zuerr::RaiseInto;
using zuerr::StatusRecord;

constexpr zuerr::RaiseSite site{".\\quarks\\library", 12};

TEST(PlatformStatus, IsFreshWithSuccessAndTheFullSize) {
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

TEST(PlatformStatus, TakesCodeComponentFileAndLine) {
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

TEST(PlatformStatus, CutsAComponentToNineCharacters) {
    PlatformStatus status;
    RaiseInto(status, -1, "ninechars", site);
    EXPECT_THAT(status.component.data(), StrEq("ninechars"));
    status = {};
    RaiseInto(status, -1, "zuZiptraRemoteService", site);
    EXPECT_THAT(status.component.data(), StrEq("zuZiptraR"));
}

TEST(PlatformStatus, KeepsAPathOf100Characters) {
    const std::string path = std::string(99, 'x') + "y";
    PlatformStatus status;
    RaiseInto(status, -1, "", {path.c_str(), 1});
    EXPECT_EQ(status.file.data(), path);
}

TEST(PlatformStatus, ShortensALongerPathInTheMiddle) {
    for (const std::size_t middle : {3, 4, 1000}) {
        const std::string first = std::string(48, 'a') + "b";
        const std::string last = "c" + std::string(48, 'd');
        const std::string path = first + std::string(middle, 'm') + last;
        PlatformStatus status;
        RaiseInto(status, -1, "", {path.c_str(), 1});
        EXPECT_EQ(status.file.data(), first + ".." + last);
    }
}

TEST(PlatformStatus, LetsTheFirstErrorWin) {
    PlatformStatus status;
    RaiseInto(status, -1, "first", {"a", 1});
    RaiseInto(status, -2, "second", {"b", 2});
    RaiseInto(status, 3, "third", {"c", 3});
    EXPECT_EQ(status.code, -1);
    EXPECT_THAT(status.component.data(), StrEq("first"));
    EXPECT_THAT(status.file.data(), StrEq("a"));
    EXPECT_EQ(status.line, 1);
}

TEST(PlatformStatus, ReplacesAWarningByAnErrorAndItsLongerTexts) {
    PlatformStatus status;
    RaiseInto(status, 3, "warning", {"long/file/name", 3});
    RaiseInto(status, -1, "err", {"a", 1});
    EXPECT_EQ(status.code, -1);
    EXPECT_EQ(status.component, (decltype(status.component){'e', 'r', 'r'}));
    EXPECT_EQ(status.file, (decltype(status.file){'a'}));
    EXPECT_EQ(status.line, 1);
}

TEST(PlatformStatus, OfADeclaredSizeBelow208TakesTheCodeOnly) {
    PlatformStatus status{.size = 207};
    RaiseInto(status, -1, "component", site);
    EXPECT_EQ(status.code, -1);
    EXPECT_THAT(status.component.data(), StrEq(""));
    EXPECT_THAT(status.file.data(), StrEq(""));
    EXPECT_EQ(status.line, 0);
}

// Conversion

TEST(ConvertPlatformStatus, WritesFileLineAndComponent) {
    PlatformStatus platform;
    RaiseInto(platform, -52008, "zuZiptraRemoteService", site);
    StatusRecord record;
    Convert(platform, record);
    EXPECT_EQ(record.code, -52008);
    EXPECT_THAT(record.json, StrEq(R"({"file":".\\quarks\\library","line":12,"component":"zuZiptraR"})"));
}

TEST(ConvertPlatformStatus, DoesNothingForSuccess) {
    PlatformStatus platform;
    RaiseInto(platform, 0, "component", site);
    StatusRecord record;
    Convert(platform, record);
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.json, nullptr);
}

TEST(ConvertPlatformStatus, CarriesTheSmallestWarning) {
    PlatformStatus platform;
    RaiseInto(platform, 1, "component", site);
    StatusRecord record;
    Convert(platform, record);
    EXPECT_EQ(record.code, 1);
}

TEST(ConvertPlatformStatus, DoesNothingWhenTheRecordRefusesTheCode) {
    PlatformStatus platform;
    RaiseInto(platform, -52008, "component", site);
    StatusRecord record;
    record.code = -1;
    Convert(platform, record);
    EXPECT_EQ(record.code, -1);
    EXPECT_EQ(record.json, nullptr);
}

TEST(ConvertPlatformStatus, CarriesTheCodeOnlyForADeclaredSizeBelow208) {
    PlatformStatus platform;
    RaiseInto(platform, -1, "component", site);
    platform.size = 207;
    StatusRecord record;
    Convert(platform, record);
    EXPECT_EQ(record.code, -1);
    EXPECT_EQ(record.json, nullptr);
}

TEST(ConvertPlatformStatus, LeavesOutFileAndLineWithoutAFileAndAnEmptyComponent) {
    PlatformStatus platform;
    RaiseInto(platform, -1, "component", {"", 12});
    StatusRecord withoutFile;
    Convert(platform, withoutFile);
    EXPECT_THAT(withoutFile.json, StrEq(R"({"component":"component"})"));

    platform = {};
    RaiseInto(platform, -1, "", {"a", 12});
    StatusRecord withoutComponent;
    Convert(platform, withoutComponent);
    EXPECT_THAT(withoutComponent.json, StrEq(R"({"file":"a","line":12})"));
}

TEST(ConvertPlatformStatus, CarriesAWarning) {
    PlatformStatus platform;
    RaiseInto(platform, 3, "c", {"a", 12});
    StatusRecord record;
    Convert(platform, record);
    EXPECT_EQ(record.code, 3);
    EXPECT_THAT(record.json, StrEq(R"({"file":"a","line":12,"component":"c"})"));
}

TEST(ConvertPlatformStatus, FitsTheLongestMembersThatThereAre) {
    PlatformStatus platform;
    RaiseInto(platform, std::numeric_limits<std::int32_t>::min(), "\"\"\"\"\"\"\"\"\"",
              {std::string(100, '\\').c_str(), std::numeric_limits<std::int32_t>::min()});
    StatusRecord record;
    Convert(platform, record);
    const auto members = report::parsed(record.json);
    EXPECT_EQ(members["file"], std::string(100, '\\'));
    EXPECT_EQ(members["line"], std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(members["component"], "\"\"\"\"\"\"\"\"\"");
    EXPECT_EQ(record.capacity, 512U);
}

TEST(ConvertPlatformStatus, MakesSureOf258BytesOfRoomBeforeEachMember) {
    static std::vector<std::uint32_t> requests;
    static std::vector<std::size_t> lengths;
    StatusRecord record;
    record.reallocJson = [](StatusRecord& self, std::uint32_t capacity) {
        // The writer makes sure of an empty report before each member as well.
        if (capacity > 4) {
            requests.push_back(capacity);
            lengths.push_back(self.json == nullptr ? 2 : std::strlen(self.json));
        }
        return StatusRecord::reallocJsonDefault(self, capacity);
    };
    PlatformStatus platform;
    RaiseInto(platform, -1, "component", site);
    Convert(platform, record);
    ASSERT_EQ(requests.size(), 3U);
    // Text, terminator, room, sentinel.
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(requests[i], lengths[i] + 1 + 258 + 1);
}

TEST(ConvertPlatformStatus, KeepsTheCodeWhenMemoryRunsOut) {
    PlatformStatus platform;
    RaiseInto(platform, -52008, "component", site);
    StatusRecord record;
    allocations::refused(0, [&] { Convert(platform, record); });
    EXPECT_EQ(record.code, -52008);
    EXPECT_EQ(record.json, nullptr);
}

// Throwing

TEST(ThrowIfFailedPlatformStatus, ThrowsTheConvertedErrorAndClearsTheRecord) {
    PlatformStatus status;
    RaiseInto(status, -52008, "quarks", site);
    try {
        zuerr::ThrowIfFailed(status);
        FAIL() << "nothing thrown";
    } catch (const zuerr::Exception& exception) {
        EXPECT_EQ(exception.record.code, -52008);
        EXPECT_THAT(exception.what(), StrEq(R"({"file":".\\quarks\\library","line":12,"component":"quarks"})"));
    }
    EXPECT_EQ(status.code, 0);
    EXPECT_THAT(status.file.data(), StrEq(""));
}

TEST(ThrowIfFailedPlatformStatus, ThrowsNothingForAWarningOrSuccess) {
    PlatformStatus status;
    EXPECT_NO_THROW(zuerr::ThrowIfFailed(status));
    RaiseInto(status, 3, "quarks", site);
    EXPECT_NO_THROW(zuerr::ThrowIfFailed(status));
    EXPECT_EQ(status.code, 0);
}

TEST(ThrowIfFailedPlatformStatus, KeepsTheDeclaredSize) {
    PlatformStatus status{.size = 8};
    RaiseInto(status, 3, "quarks", site);
    zuerr::ThrowIfFailed(status);
    EXPECT_EQ(status.size, 8U);
    EXPECT_EQ(status.code, 0);
}

}  // namespace
