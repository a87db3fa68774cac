#include "tool/check/places.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "ini/nameIndex.h"
#include "source/descriptionFormat.h"
#include "stdpath/path.h"
#include "tool/check/fileNameOrder.h"
#include "tool/check/placesPlatform.h"
#include "tool/check/prediction.h"
#include "tool/check/thisMachine.h"
#include "tool/check/wording.h"
#include "tool/fileIdentity.h"
#include "tool/rules.h"

namespace nCheck {
namespace {

namespace nFiles = boost::filesystem;
using nWording::quoted;

bool isDescription(const nFiles::path& path) { return path.extension() == nDescriptionFormat::extension; }

/// Returns whether somebody may take the file for a description: "x.INI", or "x.ini.txt", which Explorer shows as
/// "x.ini".
bool looksLikeDescription(const nFiles::path& path) {
    const auto hasExtension = [](const nFiles::path& name, std::string_view extension) {
        return nIni::sameName(nStdPath::pathToUtf8(name.extension()), extension, false);
    };
    return hasExtension(path, nDescriptionFormat::extension) ||
           (hasExtension(path, ".txt") && hasExtension(path.stem(), nDescriptionFormat::extension));
}

void addUnseen(const nFiles::path& path, const nFiles::file_status& status, tListing& listing) {
    const bool isFolder = nFiles::is_directory(status);
    const bool isFile = nFiles::is_regular_file(status);
    tFinding finding = nRules::finding(
        isFolder ? "unseen-folder" : "unseen-file", nStdPath::pathToUtf8(path), std::nullopt, std::nullopt,
        isFolder ? "a folder named like a description, which the host ignores"
        : isFile ? "the host does not see the file: its extension is not \".ini\" in lower case"
                 : "the host does not see the file: it is not a regular file");
    if (!isFolder && !isFile) {
        finding.remedy = "Use a regular file: the host reads neither devices nor pipes, nor links that lead nowhere.";
    }
    listing.findings.push_back(std::move(finding));
}

void sortFindings(tListing& listing) {
    std::sort(listing.findings.begin(), listing.findings.end(),
              [](const tFinding& a, const tFinding& b) { return a.file < b.file; });
}

void listDirectory(const nFiles::path& directory, tListing& listing) try {
    listDescriptions(directory, listing);
    sortFindings(listing);
} catch (const std::exception&) {
    throw tCannotLook("The directory " + quoted(nStdPath::pathToUtf8(directory)) + " cannot be read");
}

/// Lists a file as its folder does, whose spelling of the name the host sees.
void listFile(const nFiles::path& typed, const nFiles::file_status& status, tListing& listing) {
    const std::optional<nFiles::path> name = listedName(typed);
    const nFiles::path path = name && *name != typed.filename() ? typed.parent_path() / *name : typed;
    const nFiles::file_status listed = name ? status : nFiles::file_status(nFiles::type_unknown);
    if (isDescription(path) && nFiles::is_regular_file(listed)) {
        listing.files.push_back(nStdPath::pathToUtf8(path));
    } else {
        addUnseen(path, listed, listing);
    }
}

void listPlace(const std::string& place, tListing& listing) {
    const nFiles::path path = nStdPath::pathFromUtf8(place);
    boost::system::error_code error;
    const nFiles::file_status status = nFiles::status(path, error);
    if (nFiles::is_directory(status)) {
        listDirectory(path, listing);
    } else if (nFiles::exists(status) || nFiles::is_symlink(nFiles::symlink_status(path, error))) {
        listFile(path, status, listing);
    } else {
        throw tCannotLook("There is no file or directory " + quoted(place));
    }
}

/// Knows what all paths to one entry of a folder have in common. Two names of one file are two entries.
class tEntries {
public:
    /// Returns whether no path to this entry has been added before.
    bool add(const std::string& file) {
        const nFiles::path path = nStdPath::pathFromUtf8(file);
        const nFiles::path folder = path.has_parent_path() ? path.parent_path() : nFiles::path(".");
        const auto [identity, isNew] = folders_.try_emplace(nStdPath::pathToUtf8(folder));
        if (isNew) identity->second = nFileIdentity::of(identity->first);
        const std::string& known = identity->second.empty() ? identity->first : identity->second;
        return entries_.insert(known + '/' + nStdPath::pathToUtf8(path.filename())).second;
    }

private:
    std::unordered_map<std::string, std::string> folders_;  ///< their identities, by path
    std::unordered_set<std::string> entries_;
};

/// Removes what is listed a second time.
void removeRepeated(tListing& listing) {
    tEntries files;
    std::erase_if(listing.files, [&](const std::string& file) { return !files.add(file); });
    tEntries unseen;
    std::erase_if(listing.findings, [&](const tFinding& finding) { return !unseen.add(finding.file); });
}

}  // namespace

void addIfUnseen(const boost::filesystem::path& path, tListing& listing) {
    boost::system::error_code error;
    if (looksLikeDescription(path)) addUnseen(path, nFiles::status(path, error), listing);
}

tListing listPlaces(const std::vector<std::string>& places) {
    tListing listing;
    if (places.empty()) {
        listing = listThisMachine();
        sortFindings(listing);
        return listing;
    }
    listing.directory = places.front();
    for (const std::string& place : places) listPlace(place, listing);
    // Windows lists a folder in the order of the names.
    const bool inOrder = places.size() == 1 && nThisMachine::runsHost();
    if (!inOrder) nFileNameOrder::sort(listing.files);
    if (places.size() > 1) removeRepeated(listing);
    return listing;
}

}  // namespace nCheck
