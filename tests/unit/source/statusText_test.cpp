#include "source/statusText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/groupingLocale.h"

namespace {

constexpr const char* updated = "Mon Nov 16 03:26:40 2026\n";
const std::string start = "ZU-Ziptra Remote Configuration and Deployment status\nUpdated: Mon Nov 16 03:26:40 2026\n";

TEST(statusText, ShowsTheMaskInHexadecimalAndTheInitTimeInDecimalUnlessItIsZero) {
    struct {
        std::uint32_t mask;
        std::uint64_t initTimeMs;
        const char* text;
    } const rows[] = {{0xFFFFFFFF, 0, "Allowed: 0xffffffff\n\n"},
                      {0xFFFFFFFD, 1250, "Allowed: 0xfffffffd\nInit Time 1250 ms\n\n"},
                      // The low 32 bits are shown, but all 64 are tested for zero.
                      {3, std::uint64_t{1} << 32U, "Allowed: 0x3\nInit Time 0 ms\n\n"},
                      {0, 255, "Allowed: 0x0\nInit Time 255 ms\n\n"}};
    for (const auto& row : rows) EXPECT_EQ(statusText({updated, row.mask, row.initTimeMs, {}, {}}), start + row.text);
}

TEST(statusText, ShowsPlainDigitsInAnyLocale) {
    const support::tGroupingLocale locale;
    EXPECT_EQ(statusText({updated, 0xFFFFFFFF, 1234567, {}, {}}),
              start + "Allowed: 0xffffffff\nInit Time 1234567 ms\n\n");
}

TEST(statusText, ShowsTheMessagesUnchangedAndThePluginsBelow) {
    std::vector<tPluginEntry> entries(2);
    entries[0].description.name = "Alpha";
    entries[1].description.name = "Beta";
    EXPECT_EQ(statusText({updated, 1, 0, "first\r\nsecond\n", entries}),
              start +
                  "Allowed: 0x1\n\nfirst\r\nsecond\n"
                  "Alpha (depends on )\nLoaded From: \nRequires: 1\n\n"
                  "Beta (depends on )\nLoaded From: \nRequires: 1\n\n");
}

}  // namespace
