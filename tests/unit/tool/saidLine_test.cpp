#include "tool/run/saidLine.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using nRun::tEvent;
using nRun::tSaidLine;
using nStatus::tPhase;

/// Returns what the reader of the reports makes of a line.
std::vector<tEvent> readBack(const tSaidLine& line) {
    nRun::tReader reader;
    reader.add(line.view());
    return reader.events();
}

/// Returns the text of the line's event.
std::string said(std::string_view text) {
    const std::vector<tEvent> events = readBack(tSaidLine(0, tPhase::initialize, true, text));
    return events.size() == 1 ? events[0].text : "not one event";
}

const std::string ellipsis = "\xE2\x80\xA6";

TEST(nRunSaidLine, NamesTheCallAndWhetherItWasTheHostsThread) {
    const std::size_t plugin = std::numeric_limits<std::size_t>::max();
    const std::vector<tEvent> host = readBack(tSaidLine(plugin, tPhase::cleanup, true, "no file Settings.txt"));
    ASSERT_EQ(host.size(), 1U);
    EXPECT_EQ(host[0].kind, nRun::tEventKind::said);
    EXPECT_EQ(host[0].plugin, plugin);
    EXPECT_EQ(host[0].phase, tPhase::cleanup);
    EXPECT_EQ(host[0].number, 0U);
    EXPECT_EQ(host[0].text, "no file Settings.txt");
    const std::vector<tEvent> other = readBack(tSaidLine(0, tPhase::stop, false, ""));
    ASSERT_EQ(other.size(), 1U);
    EXPECT_EQ(other[0].number, 1U);
    EXPECT_EQ(other[0].text, "");
}

TEST(nRunSaidLine, IsOneLineWhateverTheTextContains) {
    EXPECT_EQ(said("one\r\nz 0 0 0 0 \n\ttwo\x1B[2J\x7F \r\n"), "one  z 0 0 0 0   two [2J");
    EXPECT_EQ(said("100 %s \xC3\xBC \xFF"), "100 %s \xC3\xBC \xFF");
    EXPECT_EQ(said(std::string_view("up to here\0not this", 19)), "up to here");
    EXPECT_EQ(said("\n \n"), "");
    EXPECT_EQ(said(" \n\tindented\n"), "indented");
}

TEST(nRunSaidLine, IsEmptyIfThereIsNothingToShow) {
    for (const std::string text : {"", "\n", " \r\n\t"}) {
        EXPECT_TRUE(tSaidLine(0, tPhase::stop, true, text).isEmpty()) << text;
    }
    EXPECT_FALSE(tSaidLine(0, tPhase::stop, true, "\nx").isEmpty());
}

TEST(nRunSaidLine, CutsALongTextOffBetweenTwoCharacters) {
    const std::string longest(tSaidLine::longestText, 'x');
    EXPECT_EQ(said(longest), longest);
    EXPECT_EQ(said(longest + std::string(1, '\0') + 'y'), longest);
    EXPECT_EQ(said(longest + 'y'), longest + ellipsis);
    const std::string shorter(tSaidLine::longestText - 1, 'x');
    EXPECT_EQ(said(shorter + "\xC3\xBC"), shorter + ellipsis);
    EXPECT_EQ(said(std::string(0x10000, '\x80')), ellipsis) << "it has no character at all";
}

TEST(nRunSaidLine, ShowsThatATextWasCutOffWhereItHasBlanks) {
    const std::string blanks(tSaidLine::longestText, ' ');
    EXPECT_EQ(said("one" + blanks), "one" + ellipsis);
    EXPECT_EQ(said(blanks + 'x'), ellipsis);
    EXPECT_FALSE(tSaidLine(0, tPhase::stop, true, blanks + 'x').isEmpty());
    EXPECT_EQ(said("  " + blanks.substr(3) + "yz"), "y" + ellipsis);
}

}  // namespace
