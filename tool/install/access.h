#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Who can change something, read from its access list. Pure: the platform's part is accessList.h.
namespace nAccess {

/// What the rights of a list mean.
enum class tKind {
    file,
    folder,   ///< its files are trusted
    passage,  ///< a folder on the way to one that is trusted
    key,      ///< of the registry
    service,
};

/// One entry of an access list.
struct tEntry {
    bool allows = true;        ///< or denies
    bool inheritOnly = false;  ///< only for what is created inside
    bool inherited = false;    ///< from the folder or key above
    std::uint32_t rights = 0;  ///< the system's bits, among them generic ones
    std::string sid;           ///< "S-1-1-0"
    std::string name;          ///< "Everyone", or the SID if there is no name
};

struct tList {
    std::string ownerSid;  ///< empty if there is no owner
    std::string ownerName;
    bool missing = false;  ///< without a list, everyone may do everything
    std::vector<tEntry> entries;
};

/// A principal that is not trusted but can change something.
struct tGrant {
    std::string sid;
    std::string name;
    std::uint32_t rights = 0;  ///< only those that change something; no generic ones
    bool inherited = false;    ///< at least one of them
    bool asOwner = false;      ///< the owner may change the list, whatever the list says
};

/// Returns the grants of a list, the owner's last; empty if only trusted principals can change the object. SYSTEM, the
/// Administrators and the installer of Windows are trusted, and `administrator`: the SID of the account that asks, or
/// an empty text unless it is an administrator's.
[[nodiscard]] std::vector<tGrant> grants(const tList& list, tKind kind, const std::string& administrator);

/// Returns the rights in words, for example "create files, delete".
[[nodiscard]] std::string inWords(std::uint32_t rights, tKind kind);

}  // namespace nAccess
