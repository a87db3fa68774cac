#include <windows.h>
// windows.h first: the others need its types.
#include <aclapi.h>
#include <sddl.h>

#include <array>
#include <cstring>
#include <memory>
#include <type_traits>

#include "quarks/closer.h"
#include "stdpath/path.h"
#include "tool/install/accessList.h"

namespace nAccess {
namespace {

using tText = std::unique_ptr<wchar_t, tCloser<LocalFree>>;
using tDescriptor = std::unique_ptr<void, tCloser<LocalFree>>;
using tHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, tCloser<CloseHandle>>;

SE_OBJECT_TYPE typeOf(tKind kind) noexcept {
    if (kind == tKind::key) return SE_REGISTRY_KEY;
    return kind == tKind::service ? SE_SERVICE : SE_FILE_OBJECT;
}

std::string utf8(const wchar_t* text) { return nStdPath::pathToUtf8(text); }

std::string textOf(PSID sid, const char* otherwise) {
    wchar_t* text = nullptr;
    if (ConvertSidToStringSidW(sid, &text) == FALSE) return otherwise;
    return utf8(tText(text).get());
}

/// An account that the system cannot name must not pass for one that is trusted, or for none.
std::string sidOf(PSID sid) { return textOf(sid, "an unknown account"); }

/// Returns "DOMAIN\NAME", or the SID if the system knows no name.
std::string nameOf(PSID sid) {
    std::array<wchar_t, 256> name{};
    std::array<wchar_t, 256> domain{};
    auto nameSize = static_cast<DWORD>(name.size());
    auto domainSize = static_cast<DWORD>(domain.size());
    SID_NAME_USE use{};
    if (LookupAccountSidW(nullptr, sid, name.data(), &nameSize, domain.data(), &domainSize, &use) == FALSE) {
        return sidOf(sid);
    }
    return domain[0] == 0 ? utf8(name.data()) : utf8(domain.data()) + '\\' + utf8(name.data());
}

/// Returns the offset of the SID in an entry that allows or denies something, or 0 for other kinds of entries.
std::size_t sidOffset(const ACE_HEADER& header) noexcept {
    switch (header.AceType) {
        case ACCESS_ALLOWED_ACE_TYPE:
        case ACCESS_DENIED_ACE_TYPE:
        case ACCESS_ALLOWED_CALLBACK_ACE_TYPE: return offsetof(ACCESS_ALLOWED_ACE, SidStart);
        case ACCESS_ALLOWED_OBJECT_ACE_TYPE:
        case ACCESS_DENIED_OBJECT_ACE_TYPE:
        case ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE: {
            const DWORD flags = reinterpret_cast<const ACCESS_ALLOWED_OBJECT_ACE&>(header).Flags;
            const bool object = (flags & ACE_OBJECT_TYPE_PRESENT) != 0;
            const bool inheritedObject = (flags & ACE_INHERITED_OBJECT_TYPE_PRESENT) != 0;
            return offsetof(ACCESS_ALLOWED_OBJECT_ACE, ObjectType) +
                   sizeof(GUID) * (static_cast<std::size_t>(object) + static_cast<std::size_t>(inheritedObject));
        }
        default: return 0;  // audits, labels, and denials under a condition, which may not apply
    }
}

void addEntry(tList& list, ACE_HEADER& header) {
    const std::size_t offset = sidOffset(header);
    if (offset == 0) return;
    const PSID sid = reinterpret_cast<BYTE*>(&header) + offset;
    const bool denies = header.AceType == ACCESS_DENIED_ACE_TYPE || header.AceType == ACCESS_DENIED_OBJECT_ACE_TYPE;
    list.entries.push_back({!denies, (header.AceFlags & INHERIT_ONLY_ACE) != 0, (header.AceFlags & INHERITED_ACE) != 0,
                            reinterpret_cast<const ACCESS_ALLOWED_ACE&>(header).Mask, sidOf(sid), nameOf(sid)});
}

/// Returns null, with the thread's last error, on failure.
tDescriptor descriptorFrom(const std::string& text) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(nStdPath::widePathFromUtf8(text).c_str(), SDDL_REVISION_1,
                                                         &descriptor, nullptr);
    return tDescriptor(descriptor);
}

tList toList(PSID owner, PACL acl) {
    tList list;
    if (owner != nullptr) list.ownerSid = sidOf(owner);
    if (owner != nullptr) list.ownerName = nameOf(owner);
    list.missing = acl == nullptr;
    for (DWORD i = 0; acl != nullptr && i < acl->AceCount; ++i) {
        void* entry = nullptr;
        if (GetAce(acl, i, &entry) != FALSE) addEntry(list, *static_cast<ACE_HEADER*>(entry));
    }
    return list;
}

/// Opens the folder itself, even if it is a link to another one. Returns null, with the thread's last error, on
/// failure.
tHandle openFolder(const std::string& path) {
    const HANDLE folder = CreateFileW(nStdPath::widePathFromUtf8(path).c_str(),
                                      READ_CONTROL | WRITE_DAC | WRITE_OWNER | FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    return tHandle(folder == INVALID_HANDLE_VALUE ? nullptr : folder);
}

}  // namespace

tReading read(const std::string& path, tKind kind) {
    constexpr std::string_view machine = "HKLM";
    const bool isKey = kind == tKind::key;
    const std::wstring name = nStdPath::widePathFromUtf8(isKey ? "MACHINE" + path.substr(machine.size()) : path);
    PSID owner = nullptr;
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error =
        GetNamedSecurityInfoW(name.c_str(), typeOf(kind), OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                              &owner, nullptr, &list, nullptr, &descriptor);
    if (error != ERROR_SUCCESS) return {error, {}};
    const tDescriptor owned(descriptor);
    return {0, toList(owner, list)};
}

std::uint32_t createFolder(const std::string& path, const std::string& text) {
    const tDescriptor descriptor = descriptorFrom(text);
    if (descriptor == nullptr) return GetLastError();
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
    return CreateDirectoryW(nStdPath::widePathFromUtf8(path).c_str(), &attributes) != FALSE ? 0 : GetLastError();
}

std::uint32_t setFolder(const std::string& path, const std::string& text) {
    const tHandle folder = openFolder(path);
    FILE_ATTRIBUTE_TAG_INFO information{};
    if (folder == nullptr ||
        GetFileInformationByHandleEx(folder.get(), FileAttributeTagInfo, &information, sizeof information) == FALSE) {
        return GetLastError();
    }
    constexpr DWORD kind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    if ((information.FileAttributes & kind) != FILE_ATTRIBUTE_DIRECTORY) return ERROR_DIRECTORY;
    const tDescriptor descriptor = descriptorFrom(text);
    if (descriptor == nullptr) return GetLastError();
    PSID owner = nullptr;
    PACL list = nullptr;
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    if (GetSecurityDescriptorOwner(descriptor.get(), &owner, &defaulted) == FALSE ||
        GetSecurityDescriptorDacl(descriptor.get(), &present, &list, &defaulted) == FALSE) {
        return GetLastError();
    }
    return SetSecurityInfo(folder.get(), SE_FILE_OBJECT,
                           OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                           owner, nullptr, list, nullptr);
}

std::string administrator() {
    std::array<BYTE, SECURITY_MAX_SID_SIZE> administrators{};
    auto size = static_cast<DWORD>(administrators.size());
    BOOL isMember = FALSE;
    if (CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &size) == FALSE ||
        CheckTokenMembership(nullptr, administrators.data(), &isMember) == FALSE || isMember == FALSE) {
        return {};
    }
    HANDLE opened = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened) == FALSE) return {};
    const tHandle token(opened);
    alignas(TOKEN_USER) std::array<BYTE, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> user{};
    if (GetTokenInformation(opened, TokenUser, user.data(), static_cast<DWORD>(user.size()), &size) == FALSE) return {};
    return textOf(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, "");
}

}  // namespace nAccess
