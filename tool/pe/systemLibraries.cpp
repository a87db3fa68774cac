#include "tool/pe/systemLibraries.h"

#include <algorithm>
#include <array>
#include <string>

#include "tool/pe/windowsPath.h"

namespace nPe {
namespace {

/// Sorted. Libraries that plug-ins may well use, and that Windows 7 and all later versions contain.
constexpr auto everywhere = std::to_array<std::string_view>({
    "activeds.dll", "advapi32.dll",  "authz.dll",       "avicap32.dll",
    "avifil32.dll", "avrt.dll",      "bcrypt.dll",      "bcryptprimitives.dll",
    "bthprops.cpl", "cabinet.dll",   "cfgmgr32.dll",    "clbcatq.dll",
    "clusapi.dll",  "comctl32.dll",  "comdlg32.dll",    "credui.dll",
    "crypt32.dll",  "cryptbase.dll", "cryptdll.dll",    "cryptnet.dll",
    "cryptsp.dll",  "cryptui.dll",   "d2d1.dll",        "d3d11.dll",
    "d3d9.dll",     "dbghelp.dll",   "dciman32.dll",    "ddraw.dll",
    "dhcpcsvc.dll", "dhcpcsvc6.dll", "dinput.dll",      "dinput8.dll",
    "dnsapi.dll",   "dsound.dll",    "dsrole.dll",      "dwmapi.dll",
    "dwrite.dll",   "dxgi.dll",      "dxva2.dll",       "esent.dll",
    "evr.dll",      "fltlib.dll",    "fwpuclnt.dll",    "gdi32.dll",
    "gdiplus.dll",  "glu32.dll",     "hid.dll",         "hlink.dll",
    "httpapi.dll",  "imagehlp.dll",  "imm32.dll",       "inetmib1.dll",
    "iphlpapi.dll", "iprop.dll",     "kernel32.dll",    "kernelbase.dll",
    "ktmw32.dll",   "loadperf.dll",  "logoncli.dll",    "lz32.dll",
    "mapi32.dll",   "mgmtapi.dll",   "mlang.dll",       "mmdevapi.dll",
    "mpr.dll",      "mprapi.dll",    "msacm32.dll",     "msasn1.dll",
    "mscms.dll",    "msdelta.dll",   "mshtml.dll",      "msi.dll",
    "msimg32.dll",  "mssign32.dll",  "msv1_0.dll",      "msvcrt.dll",
    "msvfw32.dll",  "mswsock.dll",   "mtxdm.dll",       "ncrypt.dll",
    "netapi32.dll", "netutils.dll",  "newdev.dll",      "normaliz.dll",
    "npptools.dll", "ntdll.dll",     "ntdsapi.dll",     "ntmarta.dll",
    "odbc32.dll",   "odbccp32.dll",  "ole32.dll",       "oleacc.dll",
    "oleaut32.dll", "oledlg.dll",    "opengl32.dll",    "pdh.dll",
    "powrprof.dll", "profapi.dll",   "propsys.dll",     "psapi.dll",
    "rasapi32.dll", "rasdlg.dll",    "rasman.dll",      "riched20.dll",
    "rpcrt4.dll",   "rstrtmgr.dll",  "rtutils.dll",     "samcli.dll",
    "samlib.dll",   "scarddlg.dll",  "scecli.dll",      "schannel.dll",
    "sechost.dll",  "secur32.dll",   "security.dll",    "sensapi.dll",
    "setupapi.dll", "sfc.dll",       "shdocvw.dll",     "shell32.dll",
    "shfolder.dll", "shlwapi.dll",   "slc.dll",         "snmpapi.dll",
    "softpub.dll",  "spoolss.dll",   "srvcli.dll",      "sspicli.dll",
    "t2embed.dll",  "tapi32.dll",    "tbs.dll",         "tdh.dll",
    "traffic.dll",  "url.dll",       "urlmon.dll",      "user32.dll",
    "userenv.dll",  "usp10.dll",     "uxtheme.dll",     "version.dll",
    "virtdisk.dll", "vssapi.dll",    "webservices.dll", "wecapi.dll",
    "wer.dll",      "wevtapi.dll",   "wimgapi.dll",     "windowscodecs.dll",
    "winhttp.dll",  "wininet.dll",   "winmm.dll",       "winscard.dll",
    "winspool.drv", "winsta.dll",    "wintrust.dll",    "wkscli.dll",
    "wldap32.dll",  "ws2_32.dll",    "wsdapi.dll",      "wsnmp32.dll",
    "wsock32.dll",  "wtsapi32.dll",  "xinput9_1_0.dll", "xmllite.dll",
    "xolehlp.dll",
});
static_assert(std::ranges::is_sorted(everywhere));

/// Beginnings of families of which each version of Windows or of a runtime has other members.
constexpr auto families = std::to_array<std::string_view>({
    "atl1",   "combase",    "concrt1",          "d3d",         "dcomp",      "dxcompiler", "dxcore", "mf.",
    "mfc1",   "mfc4",       "mfplat",           "mfreadwrite", "microsoft.", "mscoree",    "msvcp",  "msvcr",
    "shcore", "ucrtbase",   "uiautomationcore", "vccorlib1",   "vcomp1",     "vcruntime",  "winbio", "windows.",
    "wlan",   "x3daudio1_", "xaudio2_",         "xinput1_",
});

/// Of plug-ins of Windows itself: control panels, drivers, controls.
constexpr auto extensions = std::to_array<std::string_view>({".acm", ".ax", ".cpl", ".drv", ".ocx", ".sys"});

}  // namespace

bool isApiSet(std::string_view name) {
    const std::string lower = toLowerAscii(name);
    return lower.starts_with("api-") || lower.starts_with("ext-");
}

bool isInEveryWindows(std::string_view name) { return std::ranges::binary_search(everywhere, toLowerAscii(name)); }

bool looksLikeWindows(std::string_view name) {
    const std::string lower = toLowerAscii(name);
    return std::ranges::any_of(families, [&lower](std::string_view family) { return lower.starts_with(family); }) ||
           std::ranges::any_of(extensions, [&lower](std::string_view end) { return lower.ends_with(end); });
}

}  // namespace nPe
