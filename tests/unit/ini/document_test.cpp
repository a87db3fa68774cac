#include "ini/document.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

using nIni::tDocument;
using nIni::tKey;
using nIni::tSection;

void addSections(tDocument& document, std::initializer_list<const char*> names) {
    for (const char* const name : names) document.sections.push_back({name, {}, -1, {}});
}

TEST(iniDocument, StartsWithTheDefaults) {
    const nIni::tDocumentPointer document(nIni::create());
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(document->sections.empty());
    EXPECT_EQ(document->currentSection, nullptr);
    EXPECT_EQ(document->mergeDuplicates, 1);
    EXPECT_EQ(document->caseSensitive, 0);
    EXPECT_EQ(document->lastKeyLine, -1);
    EXPECT_EQ(document->layout[0], 80);
    EXPECT_EQ(document->layout[1], 14);
    EXPECT_EQ(document->flags, 2U);
    EXPECT_EQ(document->firstErrorLine, -1);
    EXPECT_EQ(document->filePath, (std::array<wchar_t, 256>{}));
    EXPECT_EQ(document->fileTime, 0U);
}

TEST(iniDocument, DestroyTakesNothingForAnAnswer) { nIni::destroy(nullptr); }

TEST(iniDocument, SectionsAreFoundWithoutRegardToCase) {
    tDocument document;
    addSections(document, {"Other", "Service"});
    EXPECT_EQ(findSection(document, "SERVICE"), &document.sections[1]);
    EXPECT_EQ(findSection(document, "Servic"), nullptr);
    EXPECT_EQ(findSection(document, "Services"), nullptr);
    EXPECT_EQ(findSection(document, ""), nullptr);
}

TEST(iniDocument, CaseCountsForSectionsWhenTheDocumentSaysSo) {
    tDocument document;
    document.caseSensitive = 1;
    addSections(document, {"service", "Service"});
    EXPECT_EQ(findSection(document, "Service"), &document.sections[1]);
    EXPECT_EQ(findSection(document, "service"), &document.sections.front());
    EXPECT_EQ(findSection(document, "SERVICE"), nullptr);
}

TEST(iniDocument, TheFirstOfEqualSectionsIsFound) {
    tDocument document;
    addSections(document, {"service", "Service"});
    EXPECT_EQ(findSection(document, "Service"), &document.sections.front());
}

TEST(iniDocument, TheSectionFoundLastIsTriedFirst) {
    tDocument document;
    addSections(document, {"service", "Service"});
    document.currentSection = &document.sections[1];
    EXPECT_EQ(findSection(document, "service"), &document.sections[1]);
}

TEST(iniDocument, ASectionThatIsFoundBecomesTheCurrentOne) {
    tDocument document;
    addSections(document, {"a", "b"});
    EXPECT_EQ(findSection(document, "b"), &document.sections[1]);
    EXPECT_EQ(document.currentSection, &document.sections[1]);
    EXPECT_EQ(findSection(document, "c"), nullptr);
    EXPECT_EQ(document.currentSection, &document.sections[1]) << "a search in vain changes nothing";
}

TEST(iniDocument, KeysAreFoundByTheCallersCaseRule) {
    tSection section;
    section.keys = {tKey{"name", "1"}, tKey{"Name", "2"}};
    EXPECT_EQ(findKey(section, false, "NAME"), &section.keys.front());
    EXPECT_EQ(findKey(section, false, "Name"), &section.keys.front()) << "the first one wins";
    EXPECT_EQ(findKey(section, true, "Name"), &section.keys[1]);
    EXPECT_EQ(findKey(section, true, "NAME"), nullptr);
    EXPECT_EQ(findKey(section, false, "Nam"), nullptr);
}

TEST(iniDocument, AnEmptySectionHasNoKeys) {
    tSection section;
    EXPECT_EQ(findKey(section, false, "Name"), nullptr);
    EXPECT_EQ(findKey(section, false, ""), nullptr);
}

}  // namespace
