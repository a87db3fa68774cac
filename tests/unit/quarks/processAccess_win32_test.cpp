#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>

#include "quarks/processAccess.h"
#include "tests/support/imports_win32.h"

namespace {

/// Records every call of the module in order, checks its arguments and leaves the process unchanged. A test makes a
/// call fail by naming it.
class nProcessAccessCalls : public testing::Test {
protected:
    void SetUp() override {
        imports::GetCurrentProcessId.replace([this] {
            calls += "GetCurrentProcessId ";
            return DWORD{4242};
        });
        imports::OpenProcess.replace([this](DWORD access, BOOL inherit, DWORD id) -> HANDLE {
            calls += "OpenProcess ";
            EXPECT_EQ(access, 0x1FFFFFU);
            EXPECT_EQ(inherit, FALSE);
            EXPECT_EQ(id, 4242U);
            return failing == "OpenProcess" ? nullptr : process;
        });
        imports::SetEntriesInAclA.replace([this](ULONG count, EXPLICIT_ACCESS_A* entries, ACL* oldList, ACL** newList) {
            calls += "SetEntriesInAclA ";
            EXPECT_EQ(count, 1U);
            EXPECT_EQ(oldList, nullptr);
            checkEntry(*entries);
            if (failing == "SetEntriesInAclA") return DWORD{ERROR_NOT_ENOUGH_MEMORY};
            *newList = &list;
            return DWORD{ERROR_SUCCESS};
        });
        imports::SetSecurityInfo.replace([this](HANDLE handle, SE_OBJECT_TYPE type, SECURITY_INFORMATION information,
                                                PSID owner, PSID group, ACL* dacl, ACL* sacl) {
            calls += "SetSecurityInfo ";
            EXPECT_EQ(handle, failing == "OpenProcess" ? nullptr : process);
            EXPECT_EQ(type, 6);          // SE_KERNEL_OBJECT
            EXPECT_EQ(information, 4U);  // DACL_SECURITY_INFORMATION
            EXPECT_EQ(owner, nullptr);
            EXPECT_EQ(group, nullptr);
            EXPECT_EQ(dacl, &list);
            EXPECT_EQ(sacl, nullptr);
            return failing == "SetSecurityInfo" ? DWORD{ERROR_ACCESS_DENIED} : DWORD{ERROR_SUCCESS};
        });
        imports::LocalFree.replace([this](HLOCAL block) -> HLOCAL {
            if (block != &list) return imports::LocalFree.real(block);
            calls += "LocalFree ";
            return failing == "LocalFree" ? block : nullptr;
        });
        imports::CloseHandle.replace([this](HANDLE handle) {
            calls += handle == process ? "CloseHandle " : "CloseHandle-of-another ";
            return failing == "CloseHandle" ? FALSE : TRUE;
        });
    }

    static void checkEntry(const EXPLICIT_ACCESS_A& entry) {
        EXPECT_EQ(entry.grfAccessPermissions, 0x400U);
        EXPECT_EQ(entry.grfAccessMode, 2);  // SET_ACCESS
        EXPECT_EQ(entry.grfInheritance, 0U);
        EXPECT_EQ(entry.Trustee.pMultipleTrustee, nullptr);
        EXPECT_EQ(entry.Trustee.MultipleTrusteeOperation, 0);
        EXPECT_EQ(entry.Trustee.TrusteeForm, 0);  // TRUSTEE_IS_SID
        EXPECT_EQ(entry.Trustee.TrusteeType, 1);  // TRUSTEE_IS_USER
        // S-1-1-0: revision, count of sub-authorities, six bytes of authority, sub-authority.
        const std::array<unsigned char, 12> everyone{1, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0};
        const auto* const sid = reinterpret_cast<const unsigned char*>(entry.Trustee.ptstrName);
        EXPECT_TRUE(std::equal(everyone.begin(), everyone.end(), sid));
    }

    std::string run(const char* failingCall = "") {
        failing = failingCall;
        SetLastError(0);
        nProcessAccess::grantQueryToEveryone();
        imports::ImportBase::restoreAll();
        return calls;
    }

    std::string calls;
    std::string failing;
    ACL list{};
    const HANDLE process = &list + 1;
};

constexpr const char* allCalls =
    "GetCurrentProcessId OpenProcess SetEntriesInAclA SetSecurityInfo LocalFree CloseHandle ";

TEST_F(nProcessAccessCalls, OpensTheProcessBuildsTheListSetsItAndReleasesBoth) { EXPECT_EQ(run(), allCalls); }

TEST_F(nProcessAccessCalls, SkipsSettingAListThatCouldNotBeBuilt) {
    EXPECT_EQ(run("SetEntriesInAclA"), "GetCurrentProcessId OpenProcess SetEntriesInAclA CloseHandle ");
}

TEST_F(nProcessAccessCalls, DoesNotCloseAHandleThatItDidNotGet) {
    EXPECT_EQ(run("OpenProcess"), "GetCurrentProcessId OpenProcess SetEntriesInAclA SetSecurityInfo LocalFree ");
}

TEST_F(nProcessAccessCalls, ReleasesBothWhenTheListIsRefused) { EXPECT_EQ(run("SetSecurityInfo"), allCalls); }

TEST_F(nProcessAccessCalls, IgnoresAFailureToFreeTheList) { EXPECT_EQ(run("LocalFree"), allCalls); }

TEST_F(nProcessAccessCalls, IgnoresAFailureToCloseTheHandle) { EXPECT_EQ(run("CloseHandle"), allCalls); }

TEST(nProcessAccess, IsOneEntryThatLetsEveryoneQueryIt) {
    // Read through a handle that this test opens before the list locks others out.
    const HANDLE process = OpenProcess(READ_CONTROL | WRITE_DAC, FALSE, GetCurrentProcessId());
    ASSERT_NE(process, nullptr);
    ACL* before = nullptr;
    PSECURITY_DESCRIPTOR descriptorBefore = nullptr;
    ASSERT_EQ(GetSecurityInfo(process, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &before, nullptr,
                              &descriptorBefore),
              DWORD{ERROR_SUCCESS});

    nProcessAccess::grantQueryToEveryone();

    ACL* list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetSecurityInfo(process, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list, nullptr,
                              &descriptor),
              DWORD{ERROR_SUCCESS});
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->AceCount, 1);
    void* ace = nullptr;
    ASSERT_NE(GetAce(list, 0, &ace), FALSE);
    const auto& entry = *static_cast<ACCESS_ALLOWED_ACE*>(ace);
    EXPECT_EQ(entry.Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_EQ(entry.Header.AceFlags, 0);
    EXPECT_EQ(entry.Mask, 0x400U);
    const std::array<unsigned char, 12> everyone{1, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0};
    EXPECT_TRUE(std::equal(everyone.begin(), everyone.end(), reinterpret_cast<const unsigned char*>(&entry.SidStart)));

    SetSecurityInfo(process, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, before, nullptr);
    LocalFree(descriptor);
    LocalFree(descriptorBefore);
    CloseHandle(process);
}

}  // namespace
