#include "ini/nameIndex.h"

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "tests/support/failingNew.h"

namespace {

using nIni::hashName;
using nIni::sameName;
using nIni::tNameIndex;

struct tRecord {
    std::string name;
};

TEST(NameIndex, FoldsCaseAsTheCLocaleDoesByteForByte) {
    for (int left = 0; left < 256; ++left) {
        // Nine bytes, so that the folding of eight at once and of the rest both see every byte.
        const std::string a(9, static_cast<char>(left));
        for (int right = 0; right < 256; ++right) {
            const std::string b(9, static_cast<char>(right));
            const bool same = std::tolower(left) == std::tolower(right);
            ASSERT_EQ(sameName(a, b, false), same) << left << ' ' << right;
            ASSERT_EQ(hashName(a, false, 1) == hashName(b, false, 1), same) << left << ' ' << right;
            ASSERT_TRUE(hashName(a, false) == hashName(b, false) || !same) << left << ' ' << right;
            ASSERT_EQ(sameName(a, b, true), left == right) << left << ' ' << right;
            ASSERT_EQ(hashName(a, true) == hashName(b, true), left == right) << left << ' ' << right;
        }
    }
}

// The values come from another implementation: Python's hash of these bytes with PYTHONHASHSEED=0.
TEST(NameIndex, HashesBySeedOneAsSipHash13DoesWithAKeyOfZeros) {
    EXPECT_EQ(hashName("a", true, 1), 0x407448D2B89B1813U);
    EXPECT_EQ(hashName("1234567", true, 1), 0xA33D651594FDAE81U);
    EXPECT_EQ(hashName("12345678", true, 1), 0x3489982430560A87U);
    EXPECT_EQ(hashName("123456789", true, 1), 0x0FBC0F0007965FCFU);
    std::string longName;
    for (char c = 1; c <= 40; ++c) longName += c;
    EXPECT_EQ(hashName(longName, true, 1), 0xC6CA83093413BF3CU);
}

TEST(NameIndex, HashesWithoutRegardToCaseAsItHashesSmallLetters) {
    std::string name, small;
    for (int c = 0; c < 256; ++c) {
        name += static_cast<char>(c);
        small += static_cast<char>(std::tolower(c));
    }
    for (const std::size_t size : {3U, 8U, 70U, 95U, 256U}) {
        const std::string end = name.substr(name.size() - size);
        EXPECT_EQ(hashName(end, false, 1), hashName(small.substr(small.size() - size), true, 1)) << size;
    }
    EXPECT_EQ(hashName(name.substr(0, 100), false, 1), hashName(small.substr(0, 100), true, 1));
}

TEST(NameIndex, HashesOtherwiseByEverySeed) {
    std::set<std::uint64_t> hashes;
    for (std::uint64_t seed = 0; seed < 100; ++seed) hashes.insert(hashName("Service", false, seed));
    EXPECT_EQ(hashes.size(), 100U);
}

TEST(NameIndex, NamesOfDifferentLengthDiffer) {
    std::set<std::uint64_t> hashes;
    for (std::size_t size = 0; size <= 40; ++size) {
        hashes.insert(hashName(std::string(size, '\0'), true));
        EXPECT_FALSE(sameName(std::string(size, 'a'), std::string(size + 1, 'a'), false));
        EXPECT_FALSE(sameName(std::string(size, 'a'), std::string(size + 1, 'a'), true));
    }
    EXPECT_EQ(hashes.size(), 41U);
}

TEST(NameIndex, EveryCharacterOfANameCounts) {
    for (std::size_t size = 1; size <= 24; ++size) {
        for (std::size_t position = 0; position < size; ++position) {
            std::string other(size, 'a');
            other[position] = 'b';
            EXPECT_NE(hashName(std::string(size, 'a'), false), hashName(other, false)) << position << " of " << size;
        }
    }
}

TEST(NameIndex, AnEmptyListHoldsNothing) {
    tNameIndex index;
    const std::vector<tRecord> records;
    EXPECT_EQ(index.find(records, "", false), 0U);
}

/// Names "0", "1", ...; the caller appends to them.
std::vector<tRecord> numbered(std::size_t count) {
    std::vector<tRecord> records;
    for (std::size_t i = 0; i < count; ++i) records.push_back({std::to_string(i)});
    return records;
}

TEST(NameIndex, FindsEveryRecordOfAListWhileItGrows) {
    tNameIndex index;
    std::vector<tRecord> records;
    for (std::size_t size = 0; size < 300; ++size) {
        ASSERT_EQ(index.find(records, std::to_string(size), false), size) << "not there yet";
        records.push_back({std::to_string(size)});
        for (std::size_t i = 0; i <= size; ++i) ASSERT_EQ(index.find(records, std::to_string(i), false), i);
    }
}

TEST(NameIndex, FindsTheFirstOfEqualNamesInShortAndLongLists) {
    for (const std::size_t size : {3, 8, 9, 100}) {
        tNameIndex index;
        std::vector<tRecord> records = numbered(size);
        records.push_back({"Twice"});
        records.push_back({"TWICE"});
        records.push_back({"1"});
        records.push_back({"behind"});
        EXPECT_EQ(index.find(records, "twice", false), size);
        EXPECT_EQ(index.find(records, "1", false), 1U);
        EXPECT_EQ(index.find(records, "behind", false), records.size() - 1);
        EXPECT_EQ(index.find(records, "TWICE", true), size + 1);
        EXPECT_EQ(index.find(records, "twice", true), records.size());
        EXPECT_EQ(index.find(records, "twice", false), size) << "and back to the other rule";
    }
}

TEST(NameIndex, AListThatWasChangedInsideIsIndexedAnewAfterAReset) {
    tNameIndex index;
    std::vector<tRecord> records = numbered(100);
    EXPECT_EQ(index.find(records, "50", false), 50U);
    records.erase(records.begin());
    index.reset();
    EXPECT_EQ(index.find(records, "50", false), 49U);
    EXPECT_EQ(index.find(records, "0", false), records.size());
}

/// That many names whose hashes by that seed lie in one part of so many: in a table they would all be neighbours.
std::vector<tRecord> crowdedBy(std::uint64_t seed, std::size_t parts, std::size_t count) {
    std::vector<tRecord> records;
    for (std::size_t i = 0; records.size() < count; ++i) {
        std::string name = std::to_string(i);
        const std::uint64_t hash = hashName(name, false, seed) & UINT32_MAX;
        if (hash * parts >> 32U == parts / 2) records.push_back({std::move(name)});
    }
    return records;
}

void expectAllFound(const std::vector<tRecord>& records) {
    tNameIndex index;
    for (std::size_t i = 0; i < records.size(); ++i) ASSERT_EQ(index.find(records, records[i].name, false), i);
    EXPECT_EQ(index.find(records, "none of them", false), records.size());
}

TEST(NameIndex, NamesThatCrowdIntoOnePartAreToldApart) {
    expectAllFound(crowdedBy(0, 1000, 2000));
    expectAllFound(crowdedBy(0, 1 << 16, 50));
}

TEST(NameIndex, NamesThatCrowdByManySeedsInTurnAreToldApartAtTheSecondTry) {
    std::vector<tRecord> records;
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        const std::vector<tRecord> others = crowdedBy(seed, 200, 200);
        records.insert(records.end(), others.begin(), others.end());
    }

    // For each try the hashes, the cells and the list of those that share one, which doubles a dozen times; once the
    // slots. A try for each seed needs more than that.
    tNameIndex index;
    failingNew::start(40, failingNew::tHowLong::once);
    EXPECT_NO_THROW(index.removeRepeated(records, false, [](tRecord&, const tRecord&) {}));
    EXPECT_FALSE(failingNew::stop());
    expectAllFound(records);
}

TEST(NameIndex, ATryThatWasGivenUpLeavesNothingToBeMerged) {
    struct tCounted {
        std::string name;
        int merged = 0;
    };
    std::vector<tCounted> records;
    for (const tRecord& record : crowdedBy(0, 1000, 2000)) records.insert(records.end(), 2, {record.name});
    tNameIndex index;
    index.removeRepeated(records, false, [](tCounted& first, const tCounted&) { ++first.merged; });
    ASSERT_EQ(records.size(), 2000U);
    for (const tCounted& record : records) ASSERT_EQ(record.merged, 1) << record.name;
}

TEST(NameIndex, AShortListWithoutRepeatedNamesNeedsNoMemory) {
    std::vector<tRecord> records = numbered(8);
    tNameIndex index;
    failingNew::start(1, failingNew::tHowLong::forEver);
    EXPECT_NO_THROW(index.removeRepeated(records, false, [](tRecord&, const tRecord&) {}));
    EXPECT_FALSE(failingNew::stop());
}

/// The names of the records, as removeRepeated leaves them, with the number of those that were merged into each.
std::vector<std::string> withoutRepeated(const std::vector<std::string>& names, bool caseSensitive) {
    struct tCounted {
        std::string name;
        int merged = 0;
    };
    std::vector<tCounted> records;
    for (const std::string& name : names) records.push_back({name});
    tNameIndex index;
    index.removeRepeated(records, caseSensitive, [](tCounted& first, const tCounted&) { ++first.merged; });
    std::vector<std::string> left;
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(index.find(records, records[i].name, caseSensitive), i);
        left.push_back(records[i].name + ' ' + std::to_string(records[i].merged));
    }
    return left;
}

TEST(NameIndex, TheFirstOfEachRepeatedNameIsKept) {
    EXPECT_EQ(withoutRepeated({}, false), (std::vector<std::string>{}));
    EXPECT_EQ(withoutRepeated({"a", "b", "A", "a", "c"}, false), (std::vector<std::string>{"a 2", "b 0", "c 0"}));
    EXPECT_EQ(withoutRepeated({"a", "b", "A", "a", "c"}, true), (std::vector<std::string>{"a 1", "b 0", "A 0", "c 0"}));
}

TEST(NameIndex, TheFirstOfEachRepeatedNameIsKeptInLongLists) {
    // Few enough to be added as they come, and so many that they are sorted before.
    for (const int count : {10, 1000, 20'000}) {
        std::vector<std::string> names;
        std::vector<std::string> expected;
        for (int i = 0; i < count; ++i) {
            names.push_back("Name" + std::to_string(i));
            if (i % 3 == 0) names.push_back("NAME" + std::to_string(i / 2));
        }
        for (int i = 0; i < count; ++i) {
            // Those that are half of a multiple of three, by a division that rounds down.
            int merged = 0;
            for (const int twice : {2 * i, 2 * i + 1}) merged += twice % 3 == 0 && twice < count ? 1 : 0;
            expected.push_back("Name" + std::to_string(i) + ' ' + std::to_string(merged));
        }
        EXPECT_EQ(withoutRepeated(names, false), expected) << count;
    }
}

TEST(NameIndex, RepeatedNamesAreMergedInTheirOrder) {
    struct tRecordWithNumber {
        std::string name;
        int number;
    };
    std::vector<tRecordWithNumber> records;
    for (int i = 0; i < 30'000; ++i) records.push_back({std::to_string(i % 100), i});
    tNameIndex index;
    index.removeRepeated(records, false, [](tRecordWithNumber& first, const tRecordWithNumber& repeated) {
        EXPECT_EQ(first.number + 100, repeated.number);
        first.number = repeated.number;
    });
    EXPECT_EQ(records.size(), 100U);
}

TEST(NameIndex, FindsWhatIsLeftWhereItIsNow) {
    std::vector<tRecord> records;
    for (const tRecord& record : numbered(50)) records.insert(records.end(), 100, record);
    tNameIndex index;
    EXPECT_EQ(index.find(records, "49", false), 4900U);
    index.removeRepeated(records, false, [](tRecord&, const tRecord&) {});
    ASSERT_EQ(records.size(), 50U);
    for (std::size_t i = 0; i < 50; ++i) EXPECT_EQ(index.find(records, std::to_string(i), false), i);
}

/// Whether the index finds what it should while a list grows record by record, none of which needs memory.
bool findsAllWhileGrowing(const std::vector<tRecord>& records) {
    tNameIndex index;
    std::vector<tRecord> growing;
    growing.reserve(records.size());
    bool right = true;
    for (const tRecord& record : records) {
        right = right && index.find(growing, record.name, false) == growing.size();
        growing.push_back(record);
        right = right && index.find(growing, record.name, false) == growing.size() - 1;
        right = right && index.find(growing, "0", false) == 0;
    }
    return right;
}

TEST(NameIndex, FindsTheSameWhicheverAllocationFails) {
    const std::vector<tRecord> records = numbered(300);
    for (const auto howLong : {failingNew::tHowLong::once, failingNew::tHowLong::forEver}) {
        int failures = 0;
        // The first allocation is the test's own.
        for (int nth = 2;; ++nth) {
            failingNew::start(nth, howLong);
            const bool right = findsAllWhileGrowing(records);
            const bool failed = failingNew::stop();
            EXPECT_TRUE(right) << nth;
            if (!failed) break;
            ++failures;
        }
        EXPECT_GE(failures, 6);
    }
}

}  // namespace
