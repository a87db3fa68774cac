#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>
#include <vector>

namespace nIni {

/// Whether two names are the same. Without regard to case, the letters A to Z alone are folded.
[[nodiscard]] bool sameName(std::string_view a, std::string_view b, bool caseSensitive) noexcept;

/// Equal for names that are the same; for others different, as far as chance goes. Seed 0 gives a quick hash, for which
/// anybody can make up names that it takes for one. Every other seed gives a strong one, and each a different one.
[[nodiscard]] std::uint64_t hashName(std::string_view name, bool caseSensitive, std::uint64_t seed = 0) noexcept;

/// Finds records by name: what a search from the first record on finds, at a cost that does not depend on how many
/// there are. The list may grow at its end between two searches; whoever changes it otherwise resets the index.
///
/// It is a hash table in one array, half of it empty at least. Names chosen to crowd into a part of it are noticed by
/// the steps that it takes to add them, and hashed by a seed that no file can foresee, so that none can make it slow.
/// Repeated names are looked for among those alone that share a part of their hash with another one, which few do: to
/// put all names of a long list into the array would cost more than all the rest.
class tNameIndex {
public:
    /// The position of the first record of that name, or the number of records. Short lists are searched through and
    /// cost no memory; others are indexed when they are searched. Without memory for that they are searched through.
    template <class tRecord>
    std::size_t find(const std::vector<tRecord>& records, std::string_view name, bool caseSensitive) noexcept;

    /// Removes each record whose name an earlier one has, after `merge(first, record)`. No name may be empty. Throws
    /// std::bad_alloc before anything is changed.
    template <class tRecord, class tMerge>
    void removeRepeated(std::vector<tRecord>& records, bool caseSensitive, tMerge merge);

    void reset() noexcept { *this = {}; }

private:
    static constexpr std::size_t shortList = 8;
    static constexpr std::size_t slotsAtFirst = 32;
    static constexpr std::ptrdiff_t stepsAtFirst = 64;
    static constexpr std::ptrdiff_t stepsPerSearch = 4;  // several times what chance takes
    static constexpr std::uint32_t none = UINT32_MAX;

    struct tSlot {
        std::uint32_t hash = 0;
        std::uint32_t position = none;  ///< of a record; four thousand million do not fit in memory
    };
    struct tRepeated {
        std::uint32_t first;
        std::uint32_t position;
    };

    template <class tRecord>
    static std::size_t search(const std::vector<tRecord>& records, std::size_t count, std::string_view name,
                              bool caseSensitive) noexcept;
    template <class tRecord>
    std::vector<tRepeated> findRepeated(const std::vector<tRecord>& records);
    template <class tRecord>
    void addNewRecords(const std::vector<tRecord>& records);
    template <class tRecord>
    std::uint32_t add(const std::vector<tRecord>& records, tSlot entry) noexcept;
    template <class tRecord>
    [[nodiscard]] std::vector<std::uint32_t> hashAll(const std::vector<tRecord>& records) const;
    template <class tMatch>
    tSlot& findSlot(std::uint32_t hash, tMatch matches) noexcept;
    [[nodiscard]] std::size_t home(std::uint32_t hash) const noexcept;
    [[nodiscard]] std::uint32_t hash(std::string_view name) const noexcept;
    void makeRoom(std::size_t count);
    [[nodiscard]] bool crowded() const noexcept { return stepsLeft_ < 0; }
    void takeAnotherSeed() noexcept;
    static std::vector<tSlot> sharingACell(const std::vector<std::uint32_t>& hashes);

    std::vector<tSlot> slots_;
    std::size_t indexed_ = 0;  ///< this many records have been looked at
    std::ptrdiff_t stepsLeft_ = stepsAtFirst;
    std::uint64_t seed_ = 0;
    bool caseSensitive_ = false;
};

template <class tRecord>
std::size_t tNameIndex::find(const std::vector<tRecord>& records, std::string_view name, bool caseSensitive) noexcept {
    if (records.size() <= shortList) return search(records, records.size(), name, caseSensitive);
    if (caseSensitive != caseSensitive_) reset();
    caseSensitive_ = caseSensitive;
    try {
        addNewRecords(records);
    } catch (const std::bad_alloc&) {
        return search(records, records.size(), name, caseSensitive);
    }
    const auto matches = [&](std::uint32_t other) { return sameName(records[other].name, name, caseSensitive); };
    const std::uint32_t position = findSlot(hash(name), matches).position;
    return position == none ? records.size() : position;
}

template <class tRecord, class tMerge>
void tNameIndex::removeRepeated(std::vector<tRecord>& records, bool caseSensitive, tMerge merge) {
    tNameIndex index;
    index.caseSensitive_ = caseSensitive;
    const std::vector<tRepeated> repeated = index.findRepeated(records);
    if (repeated.empty()) return;
    for (const auto& [first, position] : repeated) {
        merge(records[first], records[position]);
        records[position].name = {};
    }
    std::erase_if(records, [](const tRecord& record) { return record.name.empty(); });
    reset();
}

/// In the order of the list.
template <class tRecord>
std::vector<tNameIndex::tRepeated> tNameIndex::findRepeated(const std::vector<tRecord>& records) {
    std::vector<tRepeated> repeated;
    if (records.size() <= shortList) {
        for (std::uint32_t position = 1; position < records.size(); ++position) {
            const std::size_t first = search(records, position, records[position].name, caseSensitive_);
            if (first != position) repeated.push_back({static_cast<std::uint32_t>(first), position});
        }
        return repeated;
    }
    do {
        if (crowded()) takeAnotherSeed();
        repeated.clear();
        const std::vector<tSlot> entries = sharingACell(hashAll(records));
        makeRoom(entries.size());
        for (std::size_t i = 0; i < entries.size() && !crowded(); ++i) {
            const std::uint32_t first = add(records, entries[i]);
            if (first != entries[i].position) repeated.push_back({first, entries[i].position});
        }
    } while (crowded());
    return repeated;
}

/// The first one of that name among so many, or their number.
template <class tRecord>
std::size_t tNameIndex::search(const std::vector<tRecord>& records, std::size_t count, std::string_view name,
                               bool caseSensitive) noexcept {
    std::size_t position = 0;
    while (position < count && !sameName(records[position].name, name, caseSensitive)) ++position;
    return position;
}

template <class tRecord>
void tNameIndex::addNewRecords(const std::vector<tRecord>& records) {
    while (crowded() || indexed_ < records.size()) {
        if (crowded()) takeAnotherSeed();
        makeRoom(records.size());
        for (; indexed_ < records.size() && !crowded(); ++indexed_) {
            add(records, {hash(records[indexed_].name), static_cast<std::uint32_t>(indexed_)});
        }
    }
}

/// Unless there is one of that name. Gives the position of the one that is there now.
template <class tRecord>
std::uint32_t tNameIndex::add(const std::vector<tRecord>& records, tSlot entry) noexcept {
    tSlot& slot = findSlot(entry.hash, [&](std::uint32_t other) {
        return sameName(records[other].name, records[entry.position].name, caseSensitive_);
    });
    if (slot.position == none) slot = entry;
    return slot.position;
}

template <class tRecord>
std::vector<std::uint32_t> tNameIndex::hashAll(const std::vector<tRecord>& records) const {
    std::vector<std::uint32_t> hashes;
    hashes.reserve(records.size());
    for (const tRecord& record : records) hashes.push_back(hash(record.name));
    return hashes;
}

/// The slot of the record of that hash that matches or, when there is none, the empty slot where it belongs.
template <class tMatch>
tNameIndex::tSlot& tNameIndex::findSlot(std::uint32_t hash, tMatch matches) noexcept {
    stepsLeft_ += stepsPerSearch;
    for (std::size_t number = home(hash);; number = number + 1 == slots_.size() ? 0 : number + 1) {
        tSlot& slot = slots_[number];
        if (slot.position == none || (slot.hash == hash && matches(slot.position))) return slot;
        --stepsLeft_;
    }
}

}  // namespace nIni
