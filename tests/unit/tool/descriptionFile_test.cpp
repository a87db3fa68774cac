#include "tool/check/descriptionFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "err/Exception.h"
#include "tests/unit/tool/checkHelpers.h"

namespace {

namespace nKeys = nDescriptionFormat::nKeys;
using nCheck::tDescriptionFile;
using support::idsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class descriptionFile : public testing::Test {
protected:
    [[nodiscard]] tDescriptionFile read(std::string_view text) const {
        return nCheck::readFile(folder_.write("a.ini", text));
    }
    [[nodiscard]] const support::tFolder& folder() const { return folder_; }

private:
    support::tFolder folder_;
};

TEST_F(descriptionFile, IsDescribedAsTheHostDescribesIt) {
    const char* const text =
        "; a comment\r\n[service]\r\nname=Scheduler\r\nDependencies=b, a,,b\r\nPath Line1=C:\\x\\\r\nPath "
        "Line2=y.dll\r\n"
        "Requires=3\r\nInitialize=\"I\"\r\nStop=S\r\nCleanup=C\r\n";
    tPluginDescription hosts;
    nPluginData::readDescription(folder().write("a.ini", text), hosts);
    const tDescriptionFile file = read(text);
    ASSERT_TRUE(file.description);
    EXPECT_EQ(file.description->name, hosts.name);
    EXPECT_EQ(file.description->dependencies, hosts.dependencies);
    EXPECT_EQ(file.description->requiresMask, hosts.requiresMask);
    EXPECT_EQ(file.description->path, "C:\\x\\y.dll");
    EXPECT_EQ(file.description->path, hosts.path);
    EXPECT_EQ(file.description->initialize, hosts.initialize);
    EXPECT_EQ(file.description->stop, hosts.stop);
    EXPECT_EQ(file.description->cleanup, hosts.cleanup);
    EXPECT_EQ(file.lines.of(nKeys::name), 3) << "whatever the case of its letters";
}

TEST_F(descriptionFile, IsRejectedWhereTheHostThrows) {
    for (const char* text : {"[Service]\n\n", "x", "[Service", "=1\n", "[Service]\nName\n", "\xFF\xFEx", "[]"}) {
        tPluginDescription unused;
        EXPECT_THROW(nPluginData::readDescription(folder().write("a.ini", text), unused), zuerr::Exception) << text;
        EXPECT_FALSE(read(text).description) << text;
    }
    for (const char* text : {"", "\n[Service]\n", "[Other]\n", ";"}) {
        tPluginDescription unused;
        EXPECT_NO_THROW(nPluginData::readDescription(folder().write("a.ini", text), unused)) << text;
        EXPECT_TRUE(read(text).description) << text;
    }
}

TEST_F(descriptionFile, KnowsTheLinesOfTheKeysThatCount) {
    const tDescriptionFile file = read("[Service]\nName=A\nPath=x\nname=B\nStop Line1=a\nStop Line2=b\n");
    EXPECT_EQ(file.lines.of(nKeys::name), 4);
    EXPECT_EQ(file.lines.of(nKeys::path), 3);
    EXPECT_EQ(file.lines.of(nKeys::stop), 5);
    EXPECT_EQ(file.lines.of(nKeys::cleanup), std::nullopt);
    EXPECT_EQ(read("[Other]\nName=A\n").lines.of(nKeys::name), std::nullopt);
}

TEST_F(descriptionFile, KnowsTheNameOfAPluginWhoseDescriptionIsRejected) {
    EXPECT_EQ(read("[Service]\nName=A\n\n").rejectedName, "A");
    EXPECT_EQ(read("[Service]\nName=A\n").rejectedName, "");
}

TEST_F(descriptionFile, ThatDoesNotExistCannotBeRead) {
    tDescriptionFile file = nCheck::readFile(folder().utf8("none.ini"));
    EXPECT_FALSE(file.description);
    const std::vector<tFinding> findings = file.findings.take("");
    ASSERT_THAT(idsOf(findings), ElementsAre("unreadable-file"));
    EXPECT_THAT(findings[0].message, HasSubstr("no such file"));
    EXPECT_EQ(findings[0].file, folder().utf8("none.ini"));
}

TEST_F(descriptionFile, ThatCannotBeOpenedOrReadIsRejected) {
    // A folder can be opened on some systems, but not read.
    folder().makeFolder("folder.ini");
    tDescriptionFile file = nCheck::readFile(folder().utf8("folder.ini"));
    EXPECT_FALSE(file.description);
    EXPECT_THAT(idsOf(file.findings.take("")), ElementsAre("unreadable-file"));
}

TEST_F(descriptionFile, InUtf16Or32IsRejectedWithoutLookingAtItsLines) {
    using std::string_view_literals::operator""sv;
    for (const std::string_view mark : {"\xFF\xFE"sv, "\xFE\xFF"sv, "\0\0\xFE\xFF"sv}) {
        tDescriptionFile file = read(std::string(mark) + "\n\n\n");
        EXPECT_FALSE(file.description);
        EXPECT_THAT(idsOf(file.findings.take("")), ElementsAre("utf-16"));
    }
}

TEST_F(descriptionFile, OfAnySizeIsReadWhole) {
    std::string text = "[Service]\n";
    for (int line = 2; line <= 100'000; ++line) text += "; comment\n";
    tDescriptionFile file = read(text + "\nName=A\n");
    EXPECT_THAT(idsOf(file.findings.take("")), ElementsAre("100001 blank-line"));
    EXPECT_EQ(file.lines.of(nKeys::name), 100'002);
}

TEST_F(descriptionFile, WithANameThatIsNotAsciiIsRead) {
    const std::string path = folder().write(u"\u540D\u524D \u00E9.ini", "[Service]\nName=A\n");
    EXPECT_EQ(nCheck::readFile(path).description.value().name, "A");
}

TEST_F(descriptionFile, IsSearchedForMistakesInLinesAndInValues) {
    tDescriptionFile file = read("[Service]\nName=A\nColour=1\nRequires=x\n");
    EXPECT_THAT(idsOf(file.findings.take("A")), ElementsAre("3 unknown-key", "4 requires-not-a-number"));
    EXPECT_THAT(read("[Service]\nName=A\n").findings.take("A"), IsEmpty());
}

}  // namespace
