#include "tool/install/access.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace nAccess {
namespace {

constexpr std::array<std::string_view, 3> trusted{
    "S-1-5-18",                                                       // SYSTEM
    "S-1-5-32-544",                                                   // Administrators
    "S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464"  // TrustedInstaller
};
constexpr std::string_view everyone = "S-1-1-0";
constexpr std::string_view ownerRights = "S-1-3-4";
// Placeholders for the creator of a file or folder. No access token contains them.
constexpr std::array<std::string_view, 2> creators{"S-1-3-0", "S-1-3-1"};

constexpr std::uint32_t genericAll = 0x10000000;
constexpr std::uint32_t genericWrite = 0x40000000;

struct tRight {
    std::uint32_t bit;
    std::string_view words;
};

constexpr tRight remove{0x10000, "delete"};
constexpr tRight changeList{0x40000, "change the access list"};
constexpr tRight takeOwnership{0x80000, "take ownership"};

constexpr std::array fileRights{tRight{2, "write"}, tRight{4, "append"}, remove, changeList, takeOwnership};
constexpr std::array folderRights{tRight{2, "create files"},
                                  tRight{4, "create folders"},
                                  tRight{0x40, "delete what is in it"},
                                  remove,
                                  changeList,
                                  takeOwnership};
// What is created beside the way leads nowhere.
constexpr std::array passageRights{tRight{0x40, "delete what is in it"}, remove, changeList, takeOwnership};
constexpr std::array keyRights{
    tRight{2, "set values"}, tRight{4, "create keys"}, tRight{0x20, "create links"}, remove, changeList, takeOwnership};
constexpr std::array serviceRights{tRight{2, "change the configuration"}, remove, changeList, takeOwnership};

/// What rights of a kind of object change something, and what its generic rights consist of.
struct tKindRights {
    std::span<const tRight> rights;
    std::uint32_t genericWriteBits;
};

tKindRights rightsOf(tKind kind) noexcept {
    switch (kind) {
        case tKind::file: return {fileRights, 0x120116};
        case tKind::folder: return {folderRights, 0x120116};
        case tKind::passage: return {passageRights, 0x120116};
        case tKind::key: return {keyRights, 0x20006};
        default: return {serviceRights, 0x20002};
    }
}

/// Returns the rights that change something.
std::uint32_t changing(std::uint32_t rights, tKind kind) noexcept {
    const tKindRights known = rightsOf(kind);
    if ((rights & genericAll) != 0) rights = 0xFFFFFFFF;
    if ((rights & genericWrite) != 0) rights |= known.genericWriteBits;
    std::uint32_t all = 0;
    for (const tRight& right : known.rights) all |= right.bit;
    return rights & all;
}

bool isTrusted(std::string_view sid, std::string_view administrator) noexcept {
    return std::find(trusted.begin(), trusted.end(), sid) != trusted.end() || sid == administrator;
}

/// Returns what the entries before this one deny its principal.
std::uint32_t deniedBefore(const tList& list, const tEntry& entry, tKind kind) {
    std::uint32_t denied = 0;
    for (const tEntry* earlier = list.entries.data(); earlier != &entry; ++earlier) {
        const bool concerns = earlier->sid == entry.sid || earlier->sid == everyone;
        if (!earlier->allows && !earlier->inheritOnly && concerns) denied |= changing(earlier->rights, kind);
    }
    return denied;
}

void add(std::vector<tGrant>& grants, tGrant grant) {
    const auto known = std::find_if(grants.begin(), grants.end(), [&](const tGrant& g) { return g.sid == grant.sid; });
    if (known == grants.end()) {
        grants.push_back(std::move(grant));
    } else {
        known->rights |= grant.rights;
        known->inherited |= grant.inherited;
    }
}

/// An owner may change the list, unless an entry says what owners may do.
void addOwner(std::vector<tGrant>& grants, const tList& list, const std::string& administrator) {
    const bool limited = std::any_of(list.entries.begin(), list.entries.end(), [](const tEntry& entry) {
        return entry.sid == ownerRights && !entry.inheritOnly;
    });
    if (list.ownerSid.empty() || limited || isTrusted(list.ownerSid, administrator)) return;
    grants.push_back({list.ownerSid, list.ownerName, changeList.bit, false, true});
}

}  // namespace

std::vector<tGrant> grants(const tList& list, tKind kind, const std::string& administrator) {
    if (list.missing) return {{std::string(everyone), "Everyone", changing(genericAll, kind), false, false}};
    std::vector<tGrant> grants;
    for (const tEntry& entry : list.entries) {
        const bool stands = std::find(creators.begin(), creators.end(), entry.sid) != creators.end();
        const std::string& principal = entry.sid == ownerRights ? list.ownerSid : entry.sid;
        if (!entry.allows || entry.inheritOnly || stands || isTrusted(principal, administrator)) continue;
        const std::uint32_t rights = changing(entry.rights, kind) & ~deniedBefore(list, entry, kind);
        if (rights != 0) add(grants, {entry.sid, entry.name, rights, entry.inherited, false});
    }
    addOwner(grants, list, administrator);
    return grants;
}

std::string inWords(std::uint32_t rights, tKind kind) {
    std::string words;
    for (const tRight& right : rightsOf(kind).rights) {
        if ((rights & right.bit) != 0) words.append(words.empty() ? "" : ", ").append(right.words);
    }
    return words;
}

}  // namespace nAccess
