#include "tool/run/protocol.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using nRun::tEvent;
using nRun::tEventKind;
using nRun::toLine;
using nRun::tReader;
using nStatus::tPhase;

std::vector<tEvent> readWhole(std::string_view text) {
    tReader reader;
    reader.add(text);
    return reader.events();
}

TEST(nRunProtocol, ReadsWhatItWrites) {
    for (const char kind : std::string("rcdslhozfatekg")) {
        const tEvent sent{static_cast<tEventKind>(kind), 7, tPhase::cleanup, 0xFFFFFFFFFF, -52003, "C:\\a b\\c.dll"};
        const std::vector<tEvent> read = readWhole(toLine(sent));
        ASSERT_EQ(read.size(), 1U) << kind;
        EXPECT_EQ(read[0].kind, sent.kind);
        EXPECT_EQ(read[0].plugin, sent.plugin);
        EXPECT_EQ(read[0].phase, sent.phase);
        EXPECT_EQ(read[0].number, sent.number);
        EXPECT_EQ(read[0].code, sent.code);
        EXPECT_EQ(read[0].text, sent.text);
    }
}

TEST(nRunProtocol, ReadsLinesThatArriveByteByByte) {
    const std::string text = toLine({tEventKind::called, 1, tPhase::stop}) + toLine({tEventKind::finished});
    tReader reader;
    int completed = 0;
    for (const char c : text) completed += reader.add({&c, 1}) ? 1 : 0;
    EXPECT_EQ(completed, 2);
    ASSERT_EQ(reader.events().size(), 2U);
    EXPECT_EQ(reader.events()[0].phase, tPhase::stop);
}

TEST(nRunProtocol, SeesNothingOfALineThatIsCutOff) {
    const std::string line = toLine({tEventKind::returned, 12, tPhase::stop, 345, -6, "text"});
    for (std::size_t size = 0; size < line.size(); ++size) EXPECT_TRUE(readWhole(line.substr(0, size)).empty()) << size;
}

TEST(nRunProtocol, IgnoresLinesThatDescribeNoEvent) {
    const std::string good = toLine({tEventKind::ready});
    for (const std::string bad :
         {"", "r", "r ", "x 0 0 0 0 ", "r0 0 0 0 ", "r 0 0 0 ", "r 0 0 0 0", "r -1 0 0 0 ", "r 0 3 0 0 ", "r 0 0 -1 0 ",
          "r 0 0 0 2147483648 ", "r 0 0 18446744073709551616 0 ", "r  0 0 0 0 ", "r a 0 0 0 ", "Hello, world"}) {
        const std::vector<tEvent> read = readWhole(bad + "\n" + good);
        EXPECT_EQ(read.size(), 1U) << bad;
    }
}

TEST(nRunProtocol, IgnoresALineOfAnyLengthWithoutStoringIt) {
    const std::string longest(tReader::longestLine - std::string_view("r 0 0 0 0 ").size(), 'x');
    const std::string good = toLine({tEventKind::ready, 0, {}, 0, 0, longest});
    EXPECT_EQ(readWhole(good).size(), 1U);
    EXPECT_EQ(readWhole(toLine({tEventKind::ready, 0, {}, 0, 0, longest + 'x'}) + good).size(), 1U);
    tReader reader;
    for (int i = 0; i < 1000; ++i) EXPECT_FALSE(reader.add(std::string(1000, 'x')));
    EXPECT_FALSE(reader.add("\n"));
    EXPECT_TRUE(reader.add(good));
}

}  // namespace
