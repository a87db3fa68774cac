#include "ini/nameIndex.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace nIni {
namespace {

/// Returns the eight characters in lower case, as tolower does in the C locale. In each byte, the first sum sets the
/// top bit from 'A' on and the second one after 'Z'; if only the first does, and the byte is ASCII, the bit that makes
/// a letter small is set.
constexpr std::uint64_t foldCase(std::uint64_t characters) noexcept {
    constexpr std::uint64_t each = 0x0101010101010101U;
    const std::uint64_t sevenBits = characters & 0x7F * each;
    const std::uint64_t fromA = sevenBits + (0x80 - 'A') * each;
    const std::uint64_t afterZ = sevenBits + (0x7F - 'Z') * each;
    return characters | (((fromA ^ afterZ) & ~characters & 0x80 * each) >> 2U);
}

/// SipHash-1-3, whose values nobody can predict without the key. Half of the 128-bit key is zero.
class tSipHash {
public:
    explicit tSipHash(std::uint64_t key) noexcept : v0_(0x736F6D6570736575U ^ key), v2_(0x6C7967656E657261U ^ key) {}

    void add(std::uint64_t word) noexcept {
        v3_ ^= word;
        round();
        v0_ ^= word;
    }

    std::uint64_t finish() noexcept {
        v2_ ^= 0xFF;
        for (int i = 0; i < 3; ++i) round();
        return v0_ ^ v1_ ^ v2_ ^ v3_;
    }

private:
    void round() noexcept {
        v0_ += v1_;
        v2_ += v3_;
        v1_ = std::rotl(v1_, 13) ^ v0_;
        v3_ = std::rotl(v3_, 16) ^ v2_;
        v0_ = std::rotl(v0_, 32);
        v2_ += v1_;
        v0_ += v3_;
        v1_ = std::rotl(v1_, 17) ^ v2_;
        v3_ = std::rotl(v3_, 21) ^ v0_;
        v2_ = std::rotl(v2_, 32);
    }

    std::uint64_t v0_;
    std::uint64_t v1_ = 0x646F72616E646F6DU;
    std::uint64_t v2_;
    std::uint64_t v3_ = 0x7465646279746573U;
};

constexpr std::size_t wordSize = sizeof(std::uint64_t);

std::uint64_t loadWord(const char* characters) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, characters, wordSize);
    return word;
}

/// Returns the characters from that position to the end, at most seven, filled up with zeros.
std::uint64_t loadRest(std::string_view name, std::size_t position) noexcept {
    const std::size_t size = name.size() - position;
    if (size == 0) return 0;
    // One word that ends with the name is cheaper than a loop. Characters preceding the position are shifted out.
    if (position > 0) return loadWord(name.data() + name.size() - wordSize) >> 8 * (wordSize - size);
    std::uint64_t word = 0;
    for (std::size_t i = size; i-- > 0;) word = word << 8U | static_cast<unsigned char>(name[i]);
    return word;
}

/// Returns the eight characters at that position, in lower case unless case counts. A shorter rest is filled up with
/// zeros. Requires: the position is a multiple of eight.
std::uint64_t wordAt(std::string_view name, std::size_t position, bool caseSensitive) noexcept {
    const bool isWhole = name.size() - position >= wordSize;
    const std::uint64_t word = isWhole ? loadWord(name.data() + position) : loadRest(name, position);
    return caseSensitive ? word : foldCase(word);
}

}  // namespace

std::uint64_t hashName(std::string_view name, bool caseSensitive, std::uint64_t key) noexcept {
    tSipHash hash(key);
    std::size_t position = 0;
    for (; name.size() - position >= wordSize; position += wordSize) hash.add(wordAt(name, position, caseSensitive));
    hash.add(wordAt(name, position, caseSensitive) | std::uint64_t{name.size()} << 56U);
    return hash.finish();
}

std::uint32_t tNameIndex::hashOf(std::string_view name) const noexcept {
    return static_cast<std::uint32_t>(hashName(name, caseSensitive_, key_));
}

tHashed& tNameIndex::emptySlot(std::uint32_t hash) noexcept {
    std::size_t slot = firstSlot(hash);
    while (slots_[slot].position != noPosition) slot = nextSlot(slot);
    return slots_[slot];
}

/// Makes the table large enough for that many records.
void tNameIndex::reserve(std::size_t count) {
    if (2 * count <= slots_.size()) return;
    std::vector<tHashed> slots(std::bit_ceil(2 * count));
    if (slots_.empty()) key_ = keyFrom(slots.data());
    slots_.swap(slots);
    for (const tHashed& slot : slots) {
        if (slot.position != noPosition) emptySlot(slot.hash) = slot;
    }
}

namespace {

/// Removes the hashes that are alone in their cell of a bit map, as most are if all names differ.
void keepSharing(std::vector<tHashed>& hashes, int rotation) {
    const std::uint64_t cells = 8 * hashes.size();
    const auto cellOf = [=](const tHashed& hashed) { return std::rotl(hashed.hash, rotation) * cells >> 32U; };
    std::vector<bool> taken(cells);
    std::vector<bool> shared(cells);
    for (const tHashed& hashed : hashes) {
        const std::uint64_t cell = cellOf(hashed);
        if (taken[cell]) shared[cell] = true;
        taken[cell] = true;
    }
    std::erase_if(hashes, [&](const tHashed& hashed) { return !shared[cellOf(hashed)]; });
}

}  // namespace

/// Bit maps fit in the processor's cache, and few hashes are left to be sorted.
void keepPossiblyRepeated(std::vector<tHashed>& hashes) {
    for (const int rotation : {0, 16}) keepSharing(hashes, rotation);
    std::sort(hashes.begin(), hashes.end(), [](const tHashed& a, const tHashed& b) {
        return a.hash != b.hash ? a.hash < b.hash : a.position < b.position;
    });
}

}  // namespace nIni
