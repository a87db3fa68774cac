#include <windows.h>
// windows.h first: aclapi.h needs its types.
#include <aclapi.h>

#include <memory>

#include "quarks/closer.h"
#include "quarks/processAccess.h"

namespace nProcessAccess {
namespace {

using tProcess = std::unique_ptr<void, tCloser<CloseHandle>>;
using tAccessList = std::unique_ptr<ACL, tCloser<LocalFree>>;

/// Returns the entry that lets everyone query the process. It points to the SID.
EXPLICIT_ACCESS_A queryEntry(SID& everyone) {
    EXPLICIT_ACCESS_A entry{};
    entry.grfAccessPermissions = PROCESS_QUERY_INFORMATION;
    entry.grfAccessMode = SET_ACCESS;
    entry.grfInheritance = NO_INHERITANCE;
    entry.Trustee.pMultipleTrustee = nullptr;
    entry.Trustee.MultipleTrusteeOperation = NO_MULTIPLE_TRUSTEE;
    entry.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    entry.Trustee.TrusteeType = TRUSTEE_IS_USER;
    entry.Trustee.ptstrName = reinterpret_cast<char*>(&everyone);  // with TRUSTEE_IS_SID
    return entry;
}

/// Returns a list with only that entry, or null if the system cannot build it.
tAccessList makeAccessList() {
    SID everyone{SID_REVISION, 1, SECURITY_WORLD_SID_AUTHORITY, {SECURITY_WORLD_RID}};
    EXPLICIT_ACCESS_A entry = queryEntry(everyone);
    ACL* list = nullptr;
    const DWORD error = SetEntriesInAclA(1, &entry, nullptr, &list);
    return tAccessList(error == ERROR_SUCCESS ? list : nullptr);
}

}  // namespace

void grantQueryToEveryone() {
    const tProcess process(OpenProcess(PROCESS_ALL_ACCESS, FALSE, GetCurrentProcessId()));
    const tAccessList list = makeAccessList();
    if (list == nullptr) return;
    SetSecurityInfo(process.get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, list.get(), nullptr);
}

}  // namespace nProcessAccess
