#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>
#include <string_view>
#include <vector>

/// Searching lists of records by their member `name`, in time proportional to the list whatever the names are.
namespace nIni {

/// Up to this many records are searched one by one, which needs no memory.
inline constexpr std::size_t linearSearchLimit = 8;

/// Returns the letters A to Z in lower case, any other character unchanged, as tolower does in the C locale.
[[nodiscard]] constexpr char toLower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

/// Returns true iff the names are equal. Unless case counts, the letters A to Z equal a to z.
[[nodiscard]] inline bool sameName(std::string_view a, std::string_view b, bool caseSensitive) noexcept {
    if (a.size() != b.size()) return false;
    const auto sameCharacter = [=](char x, char y) { return x == y || (!caseSensitive && toLower(x) == toLower(y)); };
    return std::equal(a.begin(), a.end(), b.begin(), sameCharacter);
}

/// Returns a hash (SipHash-1-3) that is equal for equal names. Nobody can construct other names with equal hashes
/// without knowing the key.
[[nodiscard]] std::uint64_t hashName(std::string_view name, bool caseSensitive, std::uint64_t key) noexcept;

/// Returns a key that the author of a file cannot predict: an address differs from run to run.
[[nodiscard]] inline std::uint64_t keyFrom(const void* address) noexcept { return std::hash<const void*>()(address); }

/// The hash of a record's name, and the record's position in its list.
struct tHashed {
    std::uint32_t hash = 0;
    std::uint32_t position = UINT32_MAX;
};

/// Finds records by name. Records may be appended to the list between two searches.
///
/// A hash table with linear probing, at most half full. It contains the first record of each name.
class tNameIndex {
public:
    /// Returns the position of the first record of that name, or records.size(). If memory for the table runs out, it
    /// searches the records one by one.
    template <class Record>
    std::size_t find(const std::vector<Record>& records, std::string_view name, bool caseSensitive) noexcept;

    /// Call after changing the list other than by appending to it.
    void reset() noexcept { *this = {}; }

private:
    static constexpr std::uint32_t noPosition = tHashed{}.position;

    template <class Record>
    void addNewRecords(const std::vector<Record>& records, bool caseSensitive);
    template <class Record>
    tHashed& findSlot(const std::vector<Record>& records, std::string_view name, std::uint32_t hash) noexcept;
    tHashed& emptySlot(std::uint32_t hash) noexcept;
    void reserve(std::size_t count);
    [[nodiscard]] std::uint32_t hashOf(std::string_view name) const noexcept;
    [[nodiscard]] std::size_t firstSlot(std::uint32_t hash) const noexcept { return hash & (slots_.size() - 1); }
    [[nodiscard]] std::size_t nextSlot(std::size_t slot) const noexcept { return (slot + 1) & (slots_.size() - 1); }

    std::vector<tHashed> slots_;  ///< their number is a power of two
    std::size_t indexed_ = 0;     ///< the number of records that have been added
    std::uint64_t key_ = 0;
    bool caseSensitive_ = false;
};

/// Removes each record that has the name of an earlier one, after calling `merge(first, repeated)` for the two.
/// Repeated records of one name are merged in their order. Requires: no name is empty. Throws std::bad_alloc before it
/// changes anything.
template <class Record, class Merge>
void removeRepeated(std::vector<Record>& records, bool caseSensitive, Merge merge);

/// Leaves those hashes that may occur more than once, in the order of hash and position.
void keepPossiblyRepeated(std::vector<tHashed>& hashes);

template <class Record>
std::size_t tNameIndex::find(const std::vector<Record>& records, std::string_view name, bool caseSensitive) noexcept {
    if (records.size() > linearSearchLimit) {
        try {
            addNewRecords(records, caseSensitive);
            const std::uint32_t position = findSlot(records, name, hashOf(name)).position;
            return position == noPosition ? records.size() : position;
        } catch (const std::bad_alloc&) {
            // The search below needs no memory.
        }
    }
    const auto found = std::find_if(records.begin(), records.end(),
                                    [&](const Record& record) { return sameName(record.name, name, caseSensitive); });
    return static_cast<std::size_t>(found - records.begin());
}

template <class Record>
void tNameIndex::addNewRecords(const std::vector<Record>& records, bool caseSensitive) {
    if (caseSensitive != caseSensitive_) reset();
    caseSensitive_ = caseSensitive;
    reserve(records.size());
    for (; indexed_ < records.size(); ++indexed_) {
        const std::string_view name = records[indexed_].name;
        const std::uint32_t hash = hashOf(name);
        tHashed& slot = findSlot(records, name, hash);
        if (slot.position == noPosition) slot = {hash, static_cast<std::uint32_t>(indexed_)};
    }
}

/// Returns the slot of the record of that name or, if there is none, the empty slot where it belongs.
template <class Record>
tHashed& tNameIndex::findSlot(const std::vector<Record>& records, std::string_view name, std::uint32_t hash) noexcept {
    const auto isNamed = [&](const tHashed& slot) {
        return slot.hash == hash && sameName(records[slot.position].name, name, caseSensitive_);
    };
    std::size_t slot = firstSlot(hash);
    while (slots_[slot].position != noPosition && !isNamed(slots_[slot])) slot = nextSlot(slot);
    return slots_[slot];
}

/// Returns the records that may be repeated, in the order of hash and position.
template <class Record>
std::vector<tHashed> possiblyRepeated(const std::vector<Record>& records, bool caseSensitive) {
    std::vector<tHashed> hashes;
    hashes.reserve(records.size());
    const std::uint64_t key = keyFrom(hashes.data());
    for (const Record& record : records) {
        const std::uint64_t hash = hashName(record.name, caseSensitive, key);
        hashes.push_back({static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(hashes.size())});
    }
    keepPossiblyRepeated(hashes);
    return hashes;
}

/// Does not need memory. Returns true iff a record was merged; its name is then empty.
template <class Record, class Merge>
bool mergeRepeatedOfFew(std::vector<Record>& records, bool caseSensitive, Merge merge) {
    bool merged = false;
    for (auto record = records.begin(); record != records.end(); ++record) {
        const auto first = std::find_if(records.begin(), record, [&](const Record& earlier) {
            return sameName(earlier.name, record->name, caseSensitive);
        });
        if (first == record) continue;
        merge(*first, *record);
        record->name = {};
        merged = true;
    }
    return merged;
}

/// The same in time proportional to the list.
template <class Record, class Merge>
bool mergeRepeatedOfMany(std::vector<Record>& records, bool caseSensitive, Merge merge) {
    const std::vector<tHashed> candidates = possiblyRepeated(records, caseSensitive);
    bool merged = false;
    std::vector<tHashed> firsts;  // of their names, among the candidates with the present hash
    firsts.reserve(candidates.size());
    for (const tHashed& candidate : candidates) {
        if (!firsts.empty() && firsts.front().hash != candidate.hash) firsts.clear();
        Record& record = records[candidate.position];
        const auto first = std::find_if(firsts.begin(), firsts.end(), [&](const tHashed& earlier) {
            return sameName(records[earlier.position].name, record.name, caseSensitive);
        });
        if (first == firsts.end()) {
            firsts.push_back(candidate);
        } else {
            merge(records[first->position], record);
            record.name = {};
            merged = true;
        }
    }
    return merged;
}

template <class Record, class Merge>
void removeRepeated(std::vector<Record>& records, bool caseSensitive, Merge merge) {
    const bool merged = records.size() <= linearSearchLimit ? mergeRepeatedOfFew(records, caseSensitive, merge)
                                                            : mergeRepeatedOfMany(records, caseSensitive, merge);
    if (!merged) return;
    std::erase_if(records, [](const Record& record) { return std::string_view(record.name).empty(); });
}

}  // namespace nIni
