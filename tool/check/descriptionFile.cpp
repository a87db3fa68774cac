#include "tool/check/descriptionFile.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "ini/file.h"
#include "ini/parser.h"
#include "stdpath/path.h"
#include "tool/check/descriptionLines.h"
#include "tool/check/descriptionValues.h"
#include "tool/check/placesPlatform.h"

namespace nCheck {
namespace {

namespace nKeys = nDescriptionFormat::nKeys;

/// Returns an index of nKeys::all.
std::size_t indexOf(std::string_view key) noexcept {
    return static_cast<std::size_t>(std::find(nKeys::all.begin(), nKeys::all.end(), key) - nKeys::all.begin());
}

tKeys findKeys(nIni::tDocument& document) {
    tKeys keys{};
    nIni::tSection* const service = nIni::findSection(document, nDescriptionFormat::section);
    if (service == nullptr) return keys;
    std::transform(nKeys::all.begin(), nKeys::all.end(), keys.begin(),
                   [&](std::string_view name) { return nIni::findKey(*service, document.caseSensitive != 0, name); });
    return keys;
}

/// Describes a file that the host cannot read at all.
void addUnreadable(tFileFindings& findings, int code) {
    if (code == nIni::wideText) {
        findings.add("utf-16", std::nullopt, "UTF-16 or UTF-32 text: the host rejects the whole file");
        return;
    }
    const char* const reason = code == nIni::fileNotFound    ? "there is no such file"
                               : code == nIni::fileNotOpened ? "it cannot be opened"
                               : code == nIni::outOfMemory   ? "it does not fit in memory"
                                                             : "reading it fails";
    findings.add("unreadable-file", std::nullopt, std::string("the host cannot read the file: ") + reason);
}

/// Returns the parser's result, as the host's own reading would. Reads the file once: opening one takes longer than
/// anything else that is done with a small file.
int read(const std::string& path, tDescriptionFile& result) {
    nIni::tDocument document;
    document.flags = nDescriptionFormat::documentFlags;
    std::string text;
    const std::optional<int> code = parseDescription(path, document, text);
    if (!code) {
        const bool exists = nIni::lastWriteTime(nStdPath::widePathFromUtf8(path).c_str()).has_value();
        return exists ? nIni::fileNotOpened : nIni::fileNotFound;
    }
    if (*code < 0) return *code;
    const bool rejected = document.firstErrorLine != -1;
    tPluginDescription description = nPluginData::describe(document);
    if (rejected) {
        result.rejectedName = std::move(description.name);
    } else {
        result.description = std::move(description);
    }
    const tKeys keys = findKeys(document);
    result.lines = tKeyLines(keys);
    findInLines(text, rejected, result.lines, result.findings);
    if (result.description) findInValues(keys, *result.description, result.findings);
    return *code;
}

/// A file whose name is not UTF-8, as only systems other than Windows have them, cannot be opened by the host's code.
int readIfNamed(const std::string& path, tDescriptionFile& result) try {
    return read(path, result);
} catch (const std::filesystem::filesystem_error&) {
    return nIni::fileNotOpened;
}

}  // namespace

tKeyLines::tKeyLines(const tKeys& keys) noexcept {
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (keys[i] != nullptr) lines_[i] = keys[i]->line;
    }
}

std::optional<int> tKeyLines::of(std::string_view key) const noexcept { return lines_[indexOf(key)]; }

void tKeyLines::set(std::string_view key, int line) noexcept { lines_[indexOf(key)] = line; }

tDescriptionFile readFile(std::string path) {
    tDescriptionFile result(std::move(path));
    const int code = readIfNamed(result.findings.file(), result);
    if (code < 0) addUnreadable(result.findings, code);
    return result;
}

}  // namespace nCheck
