#include "ini/nameIndex.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <functional>

namespace nIni {
namespace {

/// As tolower does in the C locale.
constexpr char foldCase(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// The same for eight characters at once. Within each byte the sums carry into the top bit from 'A' and from behind
/// 'Z' on; where just the first one does, and the byte is ASCII, the bit for lower case is set.
constexpr std::uint64_t foldCase(std::uint64_t characters) noexcept {
    constexpr std::uint64_t each = 0x0101010101010101U;
    const std::uint64_t sevenBits = characters & 0x7F * each;
    const std::uint64_t fromA = sevenBits + (0x80 - 'A') * each;
    const std::uint64_t behindZ = sevenBits + (0x7F - 'Z') * each;
    return characters | (((fromA ^ behindZ) & ~characters & 0x80 * each) >> 2U);
}

/// SipHash-1-3, a hash for which nobody knows how to make many values equal. Names that agree in some bits, which
/// anybody can find by trying, do so for one key.
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

/// A whole word of characters.
std::uint64_t load(const char* from) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, from, wordSize);
    return word;
}

/// Fewer characters than a word has, and zeros.
std::uint64_t loadRest(std::string_view rest) noexcept {
    std::uint64_t word = 0;
    rest.copy(reinterpret_cast<char*>(&word), wordSize);
    return word;
}

/// Adds words of eight characters; the last word has what is left, with the size above it.
std::uint64_t strongHash(std::string_view name, bool caseSensitive, std::uint64_t key) noexcept {
    const auto fold = [caseSensitive](std::uint64_t word) { return caseSensitive ? word : foldCase(word); };
    tSipHash hash(key);
    std::string_view rest = name;
    for (; rest.size() >= wordSize; rest.remove_prefix(wordSize)) hash.add(fold(load(rest.data())));
    hash.add(fold(loadRest(rest)) | std::uint64_t{name.size()} << 56U);
    return hash.finish();
}

/// For names that nobody has chosen with care. The bit for lower case is set in whatever the characters are: that this
/// makes some equal that are none, "[" and "{", does no harm here. The last word is the last eight characters, of which
/// some have been in the word before.
std::uint64_t quickHash(std::string_view name, bool caseSensitive) noexcept {
    const std::uint64_t lowerCase = caseSensitive ? 0 : 0x2020202020202020U;
    std::uint64_t hash = name.size();
    const auto add = [&](std::uint64_t word) {
        hash = (hash ^ (word | lowerCase)) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32U;
    };
    if (name.size() < wordSize) {
        add(loadRest(name));
        return hash;
    }
    const char* const last = name.data() + name.size() - wordSize;
    for (const char* at = name.data(); at < last; at += wordSize) add(load(at));
    add(load(last));
    return hash;
}

}  // namespace

bool sameName(std::string_view a, std::string_view b, bool caseSensitive) noexcept {
    if (caseSensitive) return a == b;
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return foldCase(left) == foldCase(right); });
}

std::uint64_t hashName(std::string_view name, bool caseSensitive, std::uint64_t seed) noexcept {
    return seed == 0 ? quickHash(name, caseSensitive) : strongHash(name, caseSensitive, seed - 1);
}

/// Where a search begins: the greater the hash, the farther on.
std::size_t tNameIndex::home(std::uint32_t hash) const noexcept { return hash * std::uint64_t{slots_.size()} >> 32U; }

std::uint32_t tNameIndex::hash(std::string_view name) const noexcept {
    return static_cast<std::uint32_t>(hashName(name, caseSensitive_, seed_));
}

/// For that many records, and an empty slot for each.
void tNameIndex::makeRoom(std::size_t count) {
    if (2 * count <= slots_.size()) return;
    std::vector<tSlot> slots(std::max({slotsAtFirst, 2 * count, 2 * slots_.size()}));
    slots_.swap(slots);
    indexed_ = 0;
}

/// All records are to be added again. Seeds known in advance would let a file hold names that crowd under one, others
/// that crowd under the next and so on; where memory lies differs from run to run.
void tNameIndex::takeAnotherSeed() noexcept {
    seed_ += std::hash<const void*>()(slots_.data());
    std::fill(slots_.begin(), slots_.end(), tSlot{});
    indexed_ = 0;
    stepsLeft_ = stepsAtFirst;
}

/// Those that fall into a cell with another one, and their positions. Of hashes that are different, chance does that to
/// one in nine.
std::vector<tNameIndex::tSlot> tNameIndex::sharingACell(const std::vector<std::uint32_t>& hashes) {
    const std::uint64_t cells = 8 * hashes.size();
    const auto cellOf = [cells](std::uint32_t hash) { return hash * cells >> 32U; };
    std::vector<bool> taken(cells);
    std::vector<bool> shared(cells);
    for (const std::uint32_t hash : hashes) {
        const std::uint64_t cell = cellOf(hash);
        if (taken[cell]) shared[cell] = true;
        taken[cell] = true;
    }
    std::vector<tSlot> sharing;
    for (std::uint32_t position = 0; position < hashes.size(); ++position) {
        if (shared[cellOf(hashes[position])]) sharing.push_back({hashes[position], position});
    }
    return sharing;
}

}  // namespace nIni
