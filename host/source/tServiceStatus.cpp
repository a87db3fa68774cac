#include <cstdio>
#include <memory>

#include "err/Exception.h"
#include "quarks/closer.h"
#include "source/statusFile.h"
#include "source/statusText.h"
#include "source/tService.h"
#include "stdpath/stdpath.h"

namespace {

constexpr const char* sourceFile = ".\\source\\tService";
constexpr zuerr::RaiseReport openFailed{zuerr::insufficientPermissions, {sourceFile, 207}};
constexpr zuerr::RaiseReport writeFailed{zuerr::osFault, {sourceFile, 217}};
constexpr zuerr::RaiseReport renameFailed{zuerr::insufficientPermissions, {sourceFile, 225}};

std::string statusTextOf(const tService& service) {
    const std::string updated = nStatusFile::currentTimeText();
    return statusText(
        {updated, service.allowedMask, service.initTimeMs, service.messages, service.pluginManager.entries()});
}

using tFile = std::unique_ptr<std::FILE, tCloser<std::fclose>>;

/// Writes a complete file or throws.
void writeTextFile(const std::string& path, std::string text) {
    tFile file(nStatusFile::open(path));
    if (!file) zuerr::Raise(openFailed);

    std::erase(text, '\r');  // text mode adds one to every line feed and would double existing ones
    if (std::fwrite(text.data(), 1, text.size(), file.get()) < text.size()) zuerr::Raise(writeFailed);
    // fclose flushes the rest, so a full disk may only be detected here. A truncated file must not replace a whole one.
    if (std::fclose(file.release()) != 0) zuerr::Raise(writeFailed);
}

}  // namespace

void WriteStatus(const tService& service) {
    try {
        const std::string text = statusTextOf(service);
        std::string directory;
        zuerr::StatusRecord status;
        nStdPath::getCommonAppDataDirectory(directory, status);
        const bool known = !status.failed();
        zuerr::ThrowIfFailed(status);
        if (known) WriteStatusFile(directory, nStatusFile::fileName, text);
    } catch (const std::exception&) {
        static_cast<void>(zuerr::CurrentExceptionCode());
    }
}

void WriteStatusFile(const std::string& directory, const std::string& name, const std::string& text) {
    const std::string path = directory + "\\" + name;
    const std::string temporaryPath = directory + "\\." + name + ".tmp";
    writeTextFile(temporaryPath, text);
    nStatusFile::remove(path);  // may fail: there may be no file yet
    if (!nStatusFile::rename(temporaryPath, path)) zuerr::Raise(renameFailed);
}
