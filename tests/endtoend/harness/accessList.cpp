#include "tests/endtoend/harness/accessList.h"

// windows.h first: the others need its types.
#include <aclapi.h>
#include <sddl.h>

namespace endtoend {

std::string accessList(HANDLE object) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error = GetSecurityInfo(object, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                                        nullptr, &descriptor);
    if (error != ERROR_SUCCESS) failed("GetSecurityInfo", error);
    char* text = nullptr;
    require(ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION,
                                                                 &text, nullptr),
            "ConvertSecurityDescriptorToStringSecurityDescriptorA");
    const std::string result = text;
    LocalFree(text);
    LocalFree(descriptor);
    return result;
}

}  // namespace endtoend
