#include "tool/pe/systemLibraries.h"

#include <gtest/gtest.h>

namespace nPe {
namespace {

TEST(nPeSystemLibraries, IncludeApiSets) {
    EXPECT_TRUE(isApiSet("api-ms-win-core-file-l1-1-0.dll"));
    EXPECT_TRUE(isApiSet("EXT-MS-WIN-GDI-FONT-L1-1-0.DLL"));
    EXPECT_FALSE(isApiSet("apinet.dll"));
    EXPECT_FALSE(isApiSet("my-api-ms.dll"));
}

TEST(nPeSystemLibraries, AreKnownByName) {
    for (const char* const name :
         {"KERNEL32.dll", "ntdll.dll", "ADVAPI32.DLL", "msvcrt.dll", "WS2_32.dll", "WINSPOOL.DRV"}) {
        EXPECT_TRUE(isInEveryWindows(name)) << name;
    }
    for (const char* const name : {"kernel32", "libstdc++-6.dll", "zusysapi.dll", "vcruntime140.dll", "ucrtbase.dll"}) {
        EXPECT_FALSE(isInEveryWindows(name)) << name;
    }
}

TEST(nPeSystemLibraries, OfSomeVersionsAreRecognisedByTheirFamily) {
    for (const char* const name : {"d3d12.dll", "D3DCompiler_47.dll", "VCRUNTIME140_1.dll", "msvcp140.dll",
                                   "ucrtbase.dll", "mfc140u.dll", "Windows.UI.dll", "bthprops.cpl", "MSCOMCTL.OCX"}) {
        EXPECT_TRUE(looksLikeWindows(name)) << name;
    }
    for (const char* const name :
         {"libgcc_s_seh-1.dll", "zlib1.dll", "Qt6Core.dll", "myd3d.dll", "mfcx.dll", "cpl.dll"}) {
        EXPECT_FALSE(looksLikeWindows(name)) << name;
    }
}

}  // namespace
}  // namespace nPe
