#include "tool/check/requiresValue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/descriptionFile.h"

namespace {

using support::idsOf;
using testing::ElementsAre;
using testing::IsEmpty;

struct tRead {
    std::uint32_t mask;
    std::vector<tFinding> findings;
};

/// Reads the value as the host does.
tRead readRequires(std::string_view value) {
    const support::tFolder folder;
    nCheck::tDescriptionFile file =
        nCheck::readFile(folder.write("a.ini", "[Service]\nRequires=" + std::string(value) + "\n"));
    return {file.description.value().requiresMask, file.findings.take("")};
}

std::vector<std::string> idsFor(std::string_view value) { return idsOf(readRequires(value).findings); }

TEST(requiresValue, IsADecimalNumber) {
    for (const char* value : {"1", "4294967295", "010", "\"3\"", "\" 3\"", ""}) {
        EXPECT_THAT(idsFor(value), IsEmpty()) << value;
    }
}

TEST(requiresValue, ThatIsNoNumberIsReadAs0) {
    for (const char* value : {"x", "two", ".5", "-", "+x", "- 1"}) {
        EXPECT_THAT(idsFor(value), ElementsAre("2 requires-not-a-number")) << value;
        EXPECT_EQ(readRequires(value).mask, 0U) << value;
    }
}

TEST(requiresValue, InHexadecimalIsReadAs0AndTheRemedyHasItInDecimal) {
    const tRead read = readRequires("0x1F");
    EXPECT_EQ(read.mask, 0U);
    EXPECT_THAT(idsOf(read.findings), ElementsAre("2 requires-hexadecimal"));
    EXPECT_EQ(read.findings[0].message, "Requires is \"0x1F\", which the host reads as 0");
    EXPECT_EQ(read.findings[0].remedy, "Write Requires=31.");
    EXPECT_THAT(idsFor("0X2"), ElementsAre("2 requires-hexadecimal"));
}

TEST(requiresValue, InHexadecimalThatIsNoMaskHasNoRemedyThatNeverStarts) {
    for (const char* value : {"0x", "0x0", "0xZ", "0x1FFFFFFFF"}) {
        const tRead read = readRequires(value);
        ASSERT_THAT(idsOf(read.findings), ElementsAre("2 requires-hexadecimal")) << value;
        EXPECT_EQ(read.findings[0].remedy, "Write the number in decimal.") << value;
    }
}

TEST(requiresValue, MayHaveASignThatWrapsItAround) {
    EXPECT_THAT(idsFor("-1"), ElementsAre("2 requires-signed"));
    EXPECT_EQ(readRequires("-1").mask, 0xFFFFFFFFU);
    EXPECT_EQ(readRequires("-4294967295").mask, 1U);
    EXPECT_THAT(idsFor("+2"), ElementsAre("2 requires-signed"));
}

TEST(requiresValue, MayBeFollowedByTextThatIsIgnored) {
    for (const char* value : {"2x", "1,2", "1 | 2", "2 3"}) {
        EXPECT_THAT(idsFor(value), ElementsAre("2 requires-trailing-text")) << value;
    }
    EXPECT_EQ(readRequires("2x").mask, 2U);
}

TEST(requiresValue, ThatDoesNotFitIn32BitsIsReadAsAllFeaturesAsOnWindows) {
    for (const char* value : {"4294967296", "99999999999999999999999", "18446744073709551618"}) {
        EXPECT_THAT(idsFor(value), ElementsAre("2 requires-too-large")) << value;
        EXPECT_EQ(readRequires(value).mask, 0xFFFFFFFFU) << value;
    }
}

TEST(requiresValue, ThatIsNegativeAndDoesNotFitIn32BitsIsReadAs1AsOnWindows) {
    for (const char* value : {"-4294967296", "-4294967297", "-18446744073709551616", "-99999999999999999999999"}) {
        EXPECT_THAT(idsFor(value), ElementsAre("2 requires-too-large", "2 requires-signed")) << value;
        EXPECT_EQ(readRequires(value).mask, 1U) << value;
    }
}

TEST(requiresValue, Of0NeverStarts) {
    EXPECT_THAT(idsFor("0"), ElementsAre("2 requires-zero"));
    EXPECT_THAT(idsFor("-0"), ElementsAre("2 requires-signed", "2 requires-zero"));
    EXPECT_THAT(idsFor("00x2"), ElementsAre("2 requires-trailing-text", "2 requires-zero"));
}

std::vector<tFinding> unallowed(std::uint32_t mask, std::uint32_t allowedMask) {
    nCheck::tFileFindings findings("a.ini");
    nCheck::findUnallowed(mask, allowedMask, 4, findings);
    return findings.take("");
}

TEST(requiresValue, NeedsOneFeatureThatTheMachineAllows) {
    EXPECT_THAT(unallowed(3, 0xFFFFFFFD), IsEmpty());
    const std::vector<tFinding> findings = unallowed(2, 0xFFFFFFFD);
    ASSERT_THAT(idsOf(findings), ElementsAre("4 feature-not-allowed"));
    EXPECT_EQ(findings[0].message, "requires remote deployment, which the machine does not allow");
    EXPECT_EQ(findings[0].remedy,
              "Allow remote deployment on the machine, or write Requires=3 if the plug-in can do without.");
    EXPECT_EQ(unallowed(6, 1)[0].message, "requires one of the features 0x6, but the machine allows 0x1");
    EXPECT_THAT(unallowed(0, 1), IsEmpty()) << "a finding of its own";
}

}  // namespace
