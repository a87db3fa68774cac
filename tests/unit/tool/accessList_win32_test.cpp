#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/folder.h"
#include "tests/support/imports_win32.h"
#include "tool/install/accessList.h"

namespace {

using namespace nAccess;
using testing::StartsWith;

/// Has the system answer with this descriptor.
void answerWith(const std::wstring& text) {
    imports::GetNamedSecurityInfoW.replace([text](const wchar_t*, auto, auto, PSID* owner, PSID*, PACL* list, PACL*,
                                                  PSECURITY_DESCRIPTOR* descriptor) -> DWORD {
        BOOL flag = FALSE;
        ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, descriptor, nullptr);
        GetSecurityDescriptorOwner(*descriptor, owner, &flag);
        GetSecurityDescriptorDacl(*descriptor, &flag, list, &flag);
        return ERROR_SUCCESS;
    });
}

TEST(nAccessList, HasTheOwnerAndTheEntriesWithTheirNames) {
    answerWith(L"O:BAD:(D;;FA;;;BG)(A;OICIIOID;0x1200a9;;;WD)");
    const tList list = read("C:\\x", tKind::folder).list;
    EXPECT_EQ(list.ownerSid, "S-1-5-32-544");
    EXPECT_THAT(list.ownerName, testing::EndsWith("Administrators"));
    EXPECT_FALSE(list.missing);
    ASSERT_EQ(list.entries.size(), 2U);
    EXPECT_EQ(list.entries[0].sid, "S-1-5-32-546");
    EXPECT_FALSE(list.entries[0].allows || list.entries[0].inheritOnly || list.entries[0].inherited);
    EXPECT_EQ(list.entries[0].rights, 0x1F01FFU);
    EXPECT_EQ(list.entries[1].sid, "S-1-1-0");
    EXPECT_EQ(list.entries[1].name, "Everyone");
    EXPECT_TRUE(list.entries[1].allows && list.entries[1].inheritOnly && list.entries[1].inherited);
    EXPECT_EQ(list.entries[1].rights, 0x1200A9U);
}

TEST(nAccessList, ShowsTheSidOfAnAccountThatIsGone) {
    answerWith(L"O:S-1-5-21-1-2-3-4D:");
    const tList list = read("C:\\x", tKind::file).list;
    EXPECT_EQ(list.ownerName, "S-1-5-21-1-2-3-4");
    EXPECT_TRUE(list.entries.empty());
    EXPECT_FALSE(list.missing);
}

TEST(nAccessList, MayBeMissing) {
    imports::GetNamedSecurityInfoW.replace(
        [](auto, auto, auto, PSID*, PSID*, PACL*, PACL*, auto) -> DWORD { return 0; });
    EXPECT_TRUE(read("C:\\x", tKind::file).list.missing);
    EXPECT_EQ(read("C:\\x", tKind::file).list.ownerSid, "");
}

/// An access list with one entry of this type, whose SID is that of everyone, after as many bytes as given.
struct tOneEntry {
    tOneEntry(BYTE type, DWORD flags, std::size_t offset) {
        InitializeAcl(list(), sizeof bytes, ACL_REVISION_DS);
        SID everyone{SID_REVISION, 1, SECURITY_WORLD_SID_AUTHORITY, {SECURITY_WORLD_RID}};
        auto* const entry = reinterpret_cast<ACCESS_ALLOWED_OBJECT_ACE*>(list() + 1);
        entry->Header = {type, 0, static_cast<WORD>(offset + sizeof everyone)};
        entry->Mask = 2;
        entry->Flags = flags;
        std::memcpy(reinterpret_cast<BYTE*>(entry) + offset, &everyone, sizeof everyone);
        list()->AceCount = 1;
    }
    ACL* list() { return reinterpret_cast<ACL*>(bytes); }

    alignas(8) BYTE bytes[256]{};
};

/// Returns "+SID" or "-SID", or an empty text if there is no entry.
std::string readOneEntry(int type, DWORD flags, std::size_t offset) {
    tOneEntry entry(static_cast<BYTE>(type), flags, offset);
    imports::GetNamedSecurityInfoW.replace([&](auto, auto, auto, PSID*, PSID*, PACL* list, PACL*, auto) -> DWORD {
        *list = entry.list();
        return 0;
    });
    const tList list = read("C:\\x", tKind::file).list;
    return list.entries.empty() ? "" : (list.entries[0].allows ? '+' : '-') + list.entries[0].sid;
}

TEST(nAccessList, FindsThePrincipalInEveryKindOfEntry) {
    EXPECT_EQ(readOneEntry(ACCESS_ALLOWED_ACE_TYPE, 1, 8), "+S-1-1-0");
    EXPECT_EQ(readOneEntry(ACCESS_DENIED_ACE_TYPE, 1, 8), "-S-1-1-0");
    EXPECT_EQ(readOneEntry(ACCESS_ALLOWED_CALLBACK_ACE_TYPE, 1, 8), "+S-1-1-0");
    for (const int type :
         {ACCESS_ALLOWED_OBJECT_ACE_TYPE, ACCESS_DENIED_OBJECT_ACE_TYPE, ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE}) {
        const std::string expected = type == ACCESS_DENIED_OBJECT_ACE_TYPE ? "-S-1-1-0" : "+S-1-1-0";
        EXPECT_EQ(readOneEntry(type, 0, 12), expected);
        EXPECT_EQ(readOneEntry(type, ACE_OBJECT_TYPE_PRESENT, 28), expected);
        EXPECT_EQ(readOneEntry(type, ACE_INHERITED_OBJECT_TYPE_PRESENT, 28), expected);
        EXPECT_EQ(readOneEntry(type, ACE_OBJECT_TYPE_PRESENT | ACE_INHERITED_OBJECT_TYPE_PRESENT, 44), expected);
    }
}

TEST(nAccessList, IgnoresEntriesThatGrantNothingOrMayNotApply) {
    for (const int type : {SYSTEM_AUDIT_ACE_TYPE, ACCESS_DENIED_CALLBACK_ACE_TYPE, SYSTEM_MANDATORY_LABEL_ACE_TYPE}) {
        EXPECT_EQ(readOneEntry(type, 0, 8), "") << type;
    }
}

TEST(nAccessList, IsAskedForByTypeAndName) {
    std::vector<std::wstring> asked;
    imports::GetNamedSecurityInfoW.replace(
        [&](const wchar_t* name, SE_OBJECT_TYPE type, SECURITY_INFORMATION what, auto...) -> DWORD {
            asked.push_back(std::to_wstring(type) + L" " + std::to_wstring(what) + L" " + name);
            return ERROR_ACCESS_DENIED;
        });
    EXPECT_EQ(read("C:\\插", tKind::file).error, ERROR_ACCESS_DENIED);
    for (const tKind kind : {tKind::folder, tKind::passage, tKind::service}) static_cast<void>(read("x", kind));
    static_cast<void>(read("HKLM\\SOFTWARE", tKind::key));
    EXPECT_THAT(asked, testing::ElementsAre(L"1 5 C:\\插", L"1 5 x", L"1 5 x", L"2 5 x", L"4 5 MACHINE\\SOFTWARE"));
}

TEST(nAccessList, OfARealFolderAndKeyCanBeRead) {
    const support::tFolder folder("插");
    const tReading reading = read(folder.utf8(), tKind::folder);
    EXPECT_EQ(reading.error, 0U);
    EXPECT_THAT(reading.list.ownerSid, StartsWith("S-1-"));
    EXPECT_EQ(read("HKLM\\SOFTWARE", tKind::key).error, 0U);
    EXPECT_EQ(read(folder.utf8("missing"), tKind::file).error, ERROR_FILE_NOT_FOUND);
}

TEST(nAccessList, OfATextIsThatOfANewFolderAndReplacesThatOfAnother) {
    const support::tFolder folder("插");
    constexpr const char* access = "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";
    EXPECT_EQ(createFolder(folder.utf8(L"新"), access), 0U);
    EXPECT_TRUE(is_directory(folder.path() / L"新"));
    EXPECT_EQ(createFolder(folder.utf8(L"新"), access), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(setFolder(folder.utf8(L"新"), access), 0U);
    EXPECT_NE(setFolder(folder.utf8("missing"), access), 0U);
    EXPECT_NE(createFolder(folder.utf8("a"), "nonsense"), 0U);
    EXPECT_NE(setFolder(folder.utf8(L"新"), "nonsense"), 0U);
}

TEST(nAccessList, IsNotSetForAFileInPlaceOfTheFolder) {
    const support::tFolder folder;
    folder.write("file", "");
    EXPECT_EQ(setFolder(folder.utf8("file"), "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)"), ERROR_DIRECTORY);
}

TEST(nAccessList, KnowsTheAccountOfAnAdministratorOnly) {
    EXPECT_THAT(administrator(), StartsWith("S-1-5-"));  // under Wine; otherwise only in an administrator's console
    imports::CheckTokenMembership.replace([](HANDLE, PSID, BOOL* member) {
        *member = FALSE;
        return TRUE;
    });
    EXPECT_EQ(administrator(), "");
}

}  // namespace
