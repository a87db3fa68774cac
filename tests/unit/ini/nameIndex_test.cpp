#include "ini/nameIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "tests/support/allocations.h"

namespace {

using nIni::hashName;
using nIni::removeRepeated;
using nIni::sameName;
using nIni::tNameIndex;

struct tRecord {
    std::string name;
    int merged = 0;
};

TEST(nameIndex, FoldsCaseAsTheCLocaleDoesByteForByte) {
    for (int left = 0; left < 256; ++left) {
        // Nine bytes, so that both a whole word and a rest contain every byte.
        const std::string a(9, static_cast<char>(left));
        for (int right = 0; right < 256; ++right) {
            const std::string b(9, static_cast<char>(right));
            const bool same = std::tolower(left) == std::tolower(right);
            ASSERT_EQ(sameName(a, b, false), same) << left << ' ' << right;
            ASSERT_EQ(hashName(a, false, 1) == hashName(b, false, 1), same) << left << ' ' << right;
            ASSERT_EQ(sameName(a, b, true), left == right) << left << ' ' << right;
            ASSERT_EQ(hashName(a, true, 1) == hashName(b, true, 1), left == right) << left << ' ' << right;
        }
    }
}

// The values come from another implementation: Python's hash of these bytes with PYTHONHASHSEED=0.
TEST(nameIndex, HashesAsSipHash13DoesWithAKeyOfZeros) {
    EXPECT_EQ(hashName("a", true, 0), 0x407448D2B89B1813U);
    EXPECT_EQ(hashName("1234567", true, 0), 0xA33D651594FDAE81U);
    EXPECT_EQ(hashName("12345678", true, 0), 0x3489982430560A87U);
    EXPECT_EQ(hashName("123456789", true, 0), 0x0FBC0F0007965FCFU);
    std::string longName;
    for (char c = 1; c <= 40; ++c) longName += c;
    EXPECT_EQ(hashName(longName, true, 0), 0xC6CA83093413BF3CU);
}

TEST(nameIndex, HashesDifferentlyWithEveryKey) {
    std::set<std::uint64_t> hashes;
    for (std::uint64_t key = 0; key < 100; ++key) hashes.insert(hashName("Service", false, key));
    EXPECT_EQ(hashes.size(), 100U);
}

TEST(nameIndex, NamesOfDifferentLengthDiffer) {
    for (std::size_t size = 0; size <= 40; ++size) {
        for (const bool caseSensitive : {false, true}) {
            EXPECT_FALSE(sameName(std::string(size, '\0'), std::string(size + 1, '\0'), caseSensitive)) << size;
        }
    }
}

TEST(nameIndex, EveryCharacterOfANameCounts) {
    for (std::size_t size = 1; size <= 24; ++size) {
        const std::string name(size, 'a');
        for (std::size_t position = 0; position < size; ++position) {
            std::string other = name;
            other[position] = 'b';
            EXPECT_FALSE(sameName(name, other, false)) << position << " of " << size;
            EXPECT_NE(hashName(name, false, 0), hashName(other, false, 0)) << position << " of " << size;
        }
    }
}

/// Names "0", "1", ...
std::vector<tRecord> numbered(std::size_t count) {
    std::vector<tRecord> records;
    for (std::size_t i = 0; i < count; ++i) records.push_back({std::to_string(i)});
    return records;
}

TEST(nameIndex, FindsEveryRecordOfAListWhileItGrows) {
    tNameIndex index;
    std::vector<tRecord> records;
    for (std::size_t size = 0; size < 300; ++size) {
        ASSERT_EQ(index.find(records, std::to_string(size), false), size) << "not there yet";
        records.push_back({std::to_string(size)});
        for (std::size_t i = 0; i <= size; ++i) ASSERT_EQ(index.find(records, std::to_string(i), false), i);
    }
}

TEST(nameIndex, FindsTheFirstOfEqualNamesInShortAndLongLists) {
    for (const std::size_t size : {3U, 8U, 9U, 100U}) {
        tNameIndex index;
        std::vector<tRecord> records = numbered(size);
        records.insert(records.end(), {{"Twice"}, {"TWICE"}, {"1"}, {"last"}});
        EXPECT_EQ(index.find(records, "twice", false), size);
        EXPECT_EQ(index.find(records, "1", false), 1U);
        EXPECT_EQ(index.find(records, "last", false), records.size() - 1);
        EXPECT_EQ(index.find(records, "TWICE", true), size + 1);
        EXPECT_EQ(index.find(records, "twice", true), records.size());
        EXPECT_EQ(index.find(records, "twice", false), size) << "and back to the other rule";
    }
}

TEST(nameIndex, AListThatWasChangedInsideIsIndexedAnewAfterAReset) {
    tNameIndex index;
    std::vector<tRecord> records = numbered(100);
    EXPECT_EQ(index.find(records, "50", false), 50U);
    records.erase(records.begin());
    index.reset();
    EXPECT_EQ(index.find(records, "50", false), 49U);
    EXPECT_EQ(index.find(records, "0", false), records.size());
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

TEST(nameIndex, FindsTheSameWhicheverAllocationFails) {
    const std::vector<tRecord> records = numbered(300);
    for (const auto howLong : {allocations::tHowLong::once, allocations::tHowLong::forEver}) {
        int failures = 0;
        // The first allocation is the test's own.
        for (int nth = 2;; ++nth) {
            allocations::startFailingNew(nth, howLong);
            const bool right = findsAllWhileGrowing(records);
            const bool failed = allocations::stopFailingNew();
            EXPECT_TRUE(right) << nth;
            if (!failed) break;
            ++failures;
        }
        EXPECT_GE(failures, 6);
    }
}

// --- removeRepeated ---

/// The names that removeRepeated leaves, each with the number of records that were merged into it.
std::vector<std::string> withoutRepeated(const std::vector<std::string>& names, bool caseSensitive) {
    std::vector<tRecord> records;
    for (const std::string& name : names) records.push_back({name});
    removeRepeated(records, caseSensitive, [](tRecord& first, const tRecord&) { ++first.merged; });
    std::vector<std::string> left;
    for (const tRecord& record : records) left.push_back(record.name + ' ' + std::to_string(record.merged));
    return left;
}

TEST(nameIndexRepeated, TheFirstOfEachNameIsKept) {
    EXPECT_EQ(withoutRepeated({}, false), (std::vector<std::string>{}));
    EXPECT_EQ(withoutRepeated({"a", "b", "A", "a", "c"}, false), (std::vector<std::string>{"a 2", "b 0", "c 0"}));
    EXPECT_EQ(withoutRepeated({"a", "b", "A", "a", "c"}, true), (std::vector<std::string>{"a 1", "b 0", "A 0", "c 0"}));
}

TEST(nameIndexRepeated, TheFirstOfEachNameIsKeptInLongLists) {
    for (const int count : {10, 1000, 5000}) {
        std::vector<std::string> names;
        std::vector<std::string> expected;
        for (int i = 0; i < count; ++i) {
            names.push_back("Name" + std::to_string(i));
            if (i % 3 == 0) names.push_back("NAME" + std::to_string(i / 2));
        }
        for (int i = 0; i < count; ++i) {
            // Those that are half of a multiple of three, rounded down.
            int merged = 0;
            for (const int twice : {2 * i, 2 * i + 1}) merged += twice % 3 == 0 && twice < count ? 1 : 0;
            expected.push_back("Name" + std::to_string(i) + ' ' + std::to_string(merged));
        }
        EXPECT_EQ(withoutRepeated(names, false), expected) << count;
    }
}

TEST(nameIndexRepeated, RecordsOfOneNameAreMergedInTheirOrder) {
    for (const int count : {3 * 2, 30'000}) {  // a short list and a long one
        const int names = std::min(count / 3, 100);
        std::vector<tRecord> records;
        for (int i = 0; i < count; ++i) records.push_back({std::to_string(i % names), i});
        removeRepeated(records, false, [names](tRecord& first, const tRecord& repeated) {
            EXPECT_EQ(first.merged + names, repeated.merged);
            first.merged = repeated.merged;
        });
        EXPECT_EQ(records.size(), static_cast<std::size_t>(names));
        EXPECT_EQ(records.back().merged, count - 1);
    }
}

TEST(nameIndexRepeated, WithoutMemoryNothingIsChanged) {
    std::vector<tRecord> records;
    for (int i = 0; i < 1000; ++i) records.push_back({std::to_string(i % 100)});
    int failures = 0;
    for (int nth = 1;; ++nth) {
        std::vector<tRecord> changed = records;
        bool thrown = false;
        allocations::startFailingNew(nth, allocations::tHowLong::once);
        try {
            removeRepeated(changed, false, [](tRecord&, const tRecord&) {});
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        const bool failed = allocations::stopFailingNew();
        EXPECT_EQ(thrown, failed) << nth;
        EXPECT_EQ(changed.size(), failed ? 1000U : 100U) << nth;
        EXPECT_EQ(changed.back().name, "99") << nth;
        if (!failed) break;
        ++failures;
    }
    EXPECT_GE(failures, 5);
}

// --- hostile names ---

/// A name that counts how many of its bytes are handed out, to be hashed or compared.
class tCountingName {
public:
    explicit tCountingName(std::string text) : text_(std::move(text)) {}
    tCountingName& operator=(std::string_view text) {
        text_ = text;
        return *this;
    }
    operator std::string_view() const {  // NOLINT(google-explicit-constructor): as the records' own names
        bytes += text_.size();
        return text_;
    }

    static inline std::size_t bytes = 0;

private:
    std::string text_;
};

struct tCountingRecord {
    tCountingName name;
};

/// Long names which a hash that multiplies words by an odd constant cannot tell apart: of each pair of words, the top
/// bits are flipped together. They follow many short names.
std::vector<tCountingRecord> namesAlikeToMultiplication(std::size_t count) {
    std::vector<tCountingRecord> records;
    for (std::size_t i = 0; i < 20'000; ++i) records.push_back({tCountingName(std::to_string(i))});
    for (std::size_t number = 0; number < count; ++number) {
        std::string name(16384, 'a');
        for (std::size_t bit = 0; bit < 10; ++bit) {
            std::string group(16, 'b');
            if ((number >> bit & 1U) != 0) {
                for (const std::size_t position : {7U, 11U, 15U}) group[position] = static_cast<char>('b' | 0x80);
            }
            name += group;
        }
        records.push_back({tCountingName(std::move(name))});
    }
    return records;
}

TEST(nameIndexHostile, AreLookedAtAFewTimesEachToBeFound) {
    const std::vector<tCountingRecord> records = namesAlikeToMultiplication(300);
    const std::size_t size = std::string_view(records.back().name).size();
    tCountingName::bytes = 0;
    tNameIndex index;
    EXPECT_EQ(index.find(records, "another", false), records.size());
    EXPECT_LE(tCountingName::bytes, 2 * size * 300);
}

TEST(nameIndexHostile, AreLookedAtAFewTimesEachToFindRepeatedOnes) {
    std::vector<tCountingRecord> records = namesAlikeToMultiplication(300);
    const std::size_t size = std::string_view(records.back().name).size();
    tCountingName::bytes = 0;
    removeRepeated(records, false, [](tCountingRecord&, const tCountingRecord&) {});
    EXPECT_EQ(records.size(), 20'300U);
    EXPECT_LE(tCountingName::bytes, 3 * size * 300);
}

}  // namespace
