#include "ini/nameIndex.h"

#include <algorithm>
#include <array>
#include <bit>

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

/// SipHash-1-3, a hash for which nobody knows how to make many values equal. Its key need not be secret here: equal
/// low bits, which anybody can find by trying, do no harm to the index.
class tSipHash {
public:
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

    // The start values for a key of zeros.
    std::uint64_t v0_ = 0x736F6D6570736575U;
    std::uint64_t v1_ = 0x646F72616E646F6DU;
    std::uint64_t v2_ = 0x6C7967656E657261U;
    std::uint64_t v3_ = 0x7465646279746573U;
};

}  // namespace

bool sameName(std::string_view a, std::string_view b, bool caseSensitive) noexcept {
    if (caseSensitive) return a == b;
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return foldCase(left) == foldCase(right); });
}

std::uint64_t hashName(std::string_view name, bool caseSensitive) noexcept {
    constexpr std::size_t wordSize = sizeof(std::uint64_t);
    const auto wordAt = [&](std::size_t position) {
        std::array<char, wordSize> bytes{};
        name.copy(bytes.data(), wordSize, position);
        const auto word = std::bit_cast<std::uint64_t>(bytes);
        return caseSensitive ? word : foldCase(word);
    };
    tSipHash hash;
    std::size_t position = 0;
    for (; name.size() - position >= wordSize; position += wordSize) hash.add(wordAt(position));
    hash.add(wordAt(position) | std::uint64_t{name.size()} << 56U);
    return hash.finish();
}

/// Keeps room for one more node and at least as many slots as nodes.
void tNameIndex::makeRoom() {
    if (nodes_.size() < slots_.size()) return;
    std::vector<std::uint32_t> slots(std::max(2 * shortList, 2 * slots_.size()), none);
    nodes_.reserve(slots.size());
    slots_.swap(slots);
    for (tNode& node : nodes_) node.next = {none, none};
    std::uint32_t number = 0;
    for (const tNode& node : nodes_) findLink(node.hash, [](std::uint32_t) { return false; }) = number++;
}

}  // namespace nIni
