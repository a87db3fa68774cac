#include <windows.h>

#include <array>
#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/exception.hpp>
#include <cstdio>
#include <string_view>
#include <unordered_set>

#include "err/Exception.h"
#include "ini/file.h"
#include "ini/parser.h"
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
namespace {

std::string readAll(std::FILE* file) {
    std::rewind(file);
    std::string text;
    std::array<char, 4096> chunk;  // NOLINT(cppcoreguidelines-pro-type-member-init): fread fills it
    for (std::size_t count = chunk.size(); count == chunk.size();) {
        count = std::fread(chunk.data(), 1, chunk.size(), file);
        text.append(chunk.data(), count);
    }
    return text;
}

/// Requires: the files that the host sees are listed.
void findUnseen(const boost::filesystem::path& directory, tListing& listing) {
    const std::unordered_set<std::string_view> seen(listing.files.begin(), listing.files.end());
    for (const boost::filesystem::directory_entry& entry : boost::filesystem::directory_iterator(directory)) {
        if (!seen.contains(nStdPath::pathToUtf8(entry.path()))) addIfUnseen(entry.path(), listing);
    }
}

}  // namespace

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

void listDescriptions(const boost::filesystem::path& directory, tListing& listing) {
    nPluginData::listDescriptionFiles(directory, nDescriptionFormat::extension, listing.files);
    findUnseen(directory, listing);
}

std::optional<int> parseDescription(const std::string& file, nIni::tDocument& document, std::string& text) {
    const nIni::tFile stream = nIni::openFile(nStdPath::widePathFromUtf8(file).c_str());
    if (stream == nullptr) return std::nullopt;
    const int code = nIni::parseStream(document, stream.get());
    if (code >= 0) text = readAll(stream.get());
    return code;
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
