#include <windows.h>

#include <boost/filesystem/exception.hpp>

#include "err/Exception.h"
#include "source/descriptionFormat.h"
#include "source/nPluginData.h"
#include "source/runMessages.h"
#include "stdpath/path.h"
#include "stdpath/stdpath.h"
#include "tool/check/placesPlatform.h"
#include "tool/check/prediction.h"
#include "tool/check/wording.h"
#include "tool/rules.h"

namespace nCheck {

tListing listThisMachine() {
    tListing listing;
    try {
        const boost::filesystem::path directory = nStdPath::getPluginDirectory();
        listing.directory = nStdPath::pathToUtf8(directory);
        nPluginData::listPlugins(listing.files);
        findUnseen(directory, listing);
    } catch (const zuerr::ExceptionBase&) {
        listing.messages.emplace_back(nRunMessages::directoryNotOpened);
        listing.findings.push_back(nRules::finding("plugins-directory", listing.directory, std::nullopt, std::nullopt,
                                                   "the host cannot open its plug-in directory and stops"));
    } catch (const boost::filesystem::filesystem_error&) {
        throw tCannotLook("The directory " + nWording::quoted(listing.directory) + " cannot be read");
    }
    return listing;
}

void listDescriptions(const boost::filesystem::path& directory, std::vector<std::string>& files) {
    nPluginData::listDescriptionFiles(directory, nDescriptionFormat::extension, files);
}

nIni::tFile openDescription(const std::string& file) {
    return nIni::openFile(nStdPath::widePathFromUtf8(file).c_str());
}

std::optional<boost::filesystem::path> listedName(const boost::filesystem::path& file) {
    std::wstring full(GetFullPathNameW(file.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(file.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    const bool mayBeDevice = full.starts_with(LR"(\\.\)");  // as of NUL, but "\\.\C:\x.ini" is a file
    if (mayBeDevice && full != file.native()) return std::nullopt;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(file.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return mayBeDevice ? std::nullopt : std::optional(file.filename());
    FindClose(search);
    return found.cFileName;
}

}  // namespace nCheck
