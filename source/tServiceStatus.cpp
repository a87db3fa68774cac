#include <cstdio>
#include <locale>
#include <memory>
#include <sstream>

#include "err/Exception.h"
#include "source/statusFile.h"
#include "source/tService.h"
#include "stdpath/stdpath.h"

namespace {

constexpr const char* sourceFile = ".\\source\\tService";

std::string statusText(const tService& service) {
    std::ostringstream text;
    text.imbue(std::locale::classic());  // the same digits whatever the process's locale is
    text.exceptions(std::ios::badbit);   // streams hide a lack of memory and end the text there
    text << "ZU-Ziptra Remote Configuration and Deployment status\n"
         << "Updated: " << nStatusFile::currentTimeText()  // brings its line break
         << "Allowed: 0x" << std::hex << service.allowedMask << std::dec << '\n';
    // 32 bits, as in the lines of the plug-ins: after 49.7 days the number starts over.
    if (service.initTimeMs != 0) text << "Init Time " << static_cast<std::uint32_t>(service.initTimeMs) << " ms\n";
    text << '\n' << service.messages << service.pluginManager.statusText();
    return text.str();
}

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

/// Leaves a complete file behind or throws.
void writeTextFile(const std::string& path, std::string text) {
    std::unique_ptr<std::FILE, CloseFile> file(nStatusFile::open(path));
    if (!file) zuerr::Raise(zuerr::insufficientPermissions, {sourceFile, 207});

    std::erase(text, '\r');  // the text mode puts one before every line feed, and would double those that are there
    constexpr zuerr::RaiseSite writing{sourceFile, 217};
    if (std::fwrite(text.data(), 1, text.size(), file.get()) < text.size()) zuerr::Raise(zuerr::osFault, writing);
    // What the stream still holds goes to the disk now, so a full one may show no earlier. A file that ends in the
    // middle must not take the place of a whole one.
    if (std::fclose(file.release()) != 0) zuerr::Raise(zuerr::osFault, writing);
}

}  // namespace

void WriteStatus(const tService& service) {
    try {
        const std::string text = statusText(service);
        std::string directory;
        zuerr::StatusRecord status;
        nStdPath::getCommonAppDataDirectory(directory, status);
        const bool known = !status.failed();  // not thrown, and yet to be heeded, while another exception propagates
        zuerr::ThrowIfFailed(status);
        if (known) WriteStatusFile(directory, "zuZiptraRemoteService.status", text);
    } catch (const std::exception&) {
        static_cast<void>(zuerr::CurrentExceptionCode());
    }
}

void WriteStatusFile(const std::string& directory, const std::string& name, const std::string& text) {
    const std::string path = directory + "\\" + name;
    const std::string temporaryPath = directory + "\\." + name + ".tmp";
    writeTextFile(temporaryPath, text);
    nStatusFile::remove(path);  // there may be none
    if (!nStatusFile::rename(temporaryPath, path)) zuerr::Raise(zuerr::insufficientPermissions, {sourceFile, 225});
}
