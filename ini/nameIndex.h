#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>
#include <vector>

namespace nIni {

/// Whether two names are the same. Without regard to case, the letters A to Z alone are folded.
[[nodiscard]] bool sameName(std::string_view a, std::string_view b, bool caseSensitive) noexcept;

/// Equal for names that are the same; for others different, as far as chance goes.
[[nodiscard]] std::uint64_t hashName(std::string_view name, bool caseSensitive) noexcept;

/// Finds records by name: what a search from the first record on finds, at a cost that does not depend on how many
/// there are. The list may grow at its end between two searches; whoever changes it otherwise resets the index.
///
/// It is a hash table by the low bits of the names' hashes. Records that share a slot form a binary tree that branches
/// by the high bits, so names chosen to share slots still part: no file can make the searches slow.
class tNameIndex {
public:
    /// The position of the first record of that name, or the number of records. Short lists are searched through and
    /// cost no memory; others are indexed when they are searched. Without memory for that they are searched through.
    template <class tRecord>
    std::size_t find(const std::vector<tRecord>& records, std::string_view name, bool caseSensitive) noexcept;

    void reset() noexcept { *this = {}; }

private:
    static constexpr std::size_t shortList = 8;
    static constexpr std::uint32_t none = UINT32_MAX;

    struct tNode {
        std::uint64_t hash;
        std::uint32_t position;  ///< of the first record of a name; four thousand million do not fit in memory
        std::array<std::uint32_t, 2> next{none, none};
    };

    template <class tRecord>
    static std::size_t searchThrough(const std::vector<tRecord>& records, std::string_view name, bool caseSensitive);
    template <class tRecord>
    void addNewRecords(const std::vector<tRecord>& records);
    template <class tMatch>
    std::uint32_t& findLink(std::uint64_t hash, tMatch matches);
    void makeRoom();

    std::vector<tNode> nodes_;
    std::vector<std::uint32_t> slots_;  ///< roots of the trees; their number is a power of two
    std::size_t indexed_ = 0;           ///< this many records have been looked at
    bool caseSensitive_ = false;
};

template <class tRecord>
std::size_t tNameIndex::find(const std::vector<tRecord>& records, std::string_view name, bool caseSensitive) noexcept {
    if (records.size() <= shortList) return searchThrough(records, name, caseSensitive);
    if (caseSensitive != caseSensitive_) reset();
    caseSensitive_ = caseSensitive;
    try {
        addNewRecords(records);
    } catch (const std::bad_alloc&) {
        return searchThrough(records, name, caseSensitive);
    }
    const std::uint32_t link = findLink(hashName(name, caseSensitive), [&](std::uint32_t position) {
        return sameName(records[position].name, name, caseSensitive);
    });
    return link == none ? records.size() : nodes_[link].position;
}

template <class tRecord>
std::size_t tNameIndex::searchThrough(const std::vector<tRecord>& records, std::string_view name, bool caseSensitive) {
    std::size_t position = 0;
    while (position < records.size() && !sameName(records[position].name, name, caseSensitive)) ++position;
    return position;
}

template <class tRecord>
void tNameIndex::addNewRecords(const std::vector<tRecord>& records) {
    for (; indexed_ < records.size(); ++indexed_) {
        makeRoom();
        const std::string_view name = records[indexed_].name;
        const std::uint64_t hash = hashName(name, caseSensitive_);
        std::uint32_t& link = findLink(
            hash, [&](std::uint32_t position) { return sameName(records[position].name, name, caseSensitive_); });
        if (link != none) continue;  // an earlier record has the name
        link = static_cast<std::uint32_t>(nodes_.size());
        nodes_.push_back({hash, static_cast<std::uint32_t>(indexed_)});
    }
}

/// The link to the node of that hash whose record matches or, when there is none, the empty link where it belongs.
template <class tMatch>
std::uint32_t& tNameIndex::findLink(std::uint64_t hash, tMatch matches) {
    std::uint32_t* link = &slots_[hash & (slots_.size() - 1)];
    for (std::uint64_t bits = hash; *link != none; bits <<= 1U) {
        tNode& node = nodes_[*link];
        if (node.hash == hash && matches(node.position)) break;
        link = &node.next[bits >> 63U];
    }
    return *link;
}

}  // namespace nIni
