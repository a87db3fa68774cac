#include "tests/endtoend/harness/accessList.h"

// windows.h first: the others need its types.
#include <aclapi.h>
#include <sddl.h>

namespace endtoend {
namespace {

struct tLocalFree {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};
template <class Type>
using tLocal = std::unique_ptr<Type, tLocalFree>;

std::string sidText(PSID sid) {
    char* text = nullptr;
    require(ConvertSidToStringSidA(sid, &text), "ConvertSidToStringSidA");
    return tLocal<char>(text).get();
}

}  // namespace

std::vector<tAccessEntry> accessList(HANDLE object) {
    ACL* list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error = GetSecurityInfo(object, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                                        nullptr, &descriptor);
    if (error != ERROR_SUCCESS) failed("GetSecurityInfo", error);
    const tLocal<void> owner(descriptor);
    std::vector<tAccessEntry> entries;
    for (DWORD i = 0; list != nullptr && i < list->AceCount; ++i) {
        void* entry = nullptr;
        require(GetAce(list, i, &entry), "GetAce");
        // Entries of all usual types have the same first fields.
        auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        entries.push_back(
            {allowed->Header.AceType, allowed->Header.AceFlags, allowed->Mask, sidText(&allowed->SidStart)});
    }
    return entries;
}

}  // namespace endtoend
