#include "ini/nameIndex.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <functional>
#include <numeric>

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

/// A hash for names that nobody has chosen with care.
class tQuickHash {
public:
    void add(std::uint64_t word) noexcept {
        value_ = (value_ ^ word) * 0x9E3779B97F4A7C15U;
        value_ ^= value_ >> 32U;
    }

    [[nodiscard]] std::uint64_t finish() const noexcept { return value_; }

private:
    std::uint64_t value_ = 0;
};

/// Adds a name in words of eight characters; the last word has what is left, with the size above it.
template <class tHash>
std::uint64_t hashWords(tHash hash, std::string_view name, bool caseSensitive) noexcept {
    constexpr std::size_t wordSize = sizeof(std::uint64_t);
    const auto fold = [caseSensitive](std::uint64_t word) { return caseSensitive ? word : foldCase(word); };
    std::size_t position = 0;
    std::uint64_t word = 0;
    for (; name.size() - position >= wordSize; position += wordSize) {
        std::memcpy(&word, name.data() + position, wordSize);
        hash.add(fold(word));
    }
    // The last eight characters end with those that are left.
    if (position > 0) {
        std::memcpy(&word, name.data() + name.size() - wordSize, wordSize);
    } else {
        for (const char c : name) word = word >> 8U | std::uint64_t{static_cast<unsigned char>(c)} << 56U;
    }
    const std::size_t left = name.size() - position;
    const std::uint64_t rest = left == 0 ? 0 : fold(word) >> 8 * (wordSize - left);
    hash.add(rest | std::uint64_t{name.size()} << 56U);
    return hash.finish();
}

}  // namespace

bool sameName(std::string_view a, std::string_view b, bool caseSensitive) noexcept {
    if (caseSensitive) return a == b;
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return foldCase(left) == foldCase(right); });
}

std::uint64_t hashName(std::string_view name, bool caseSensitive, std::uint64_t seed) noexcept {
    if (seed == 0) return hashWords(tQuickHash(), name, caseSensitive);
    return hashWords(tSipHash(seed - 1), name, caseSensitive);
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

/// Keeps the order of those that have it in common.
void tNameIndex::sortByFirstByte(std::vector<tSlot>& entries) {
    constexpr auto firstByte = [](const tSlot& entry) { return entry.hash >> 24U; };
    std::array<std::size_t, 256> counts{};
    for (const tSlot& entry : entries) ++counts[firstByte(entry)];
    std::array<std::size_t, 256> places{};
    std::exclusive_scan(counts.begin(), counts.end(), places.begin(), std::size_t{0});
    std::vector<tSlot> sorted(entries.size());
    for (const tSlot& entry : entries) sorted[places[firstByte(entry)]++] = entry;
    entries.swap(sorted);
}

}  // namespace nIni
