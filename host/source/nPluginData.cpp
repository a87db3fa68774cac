#include "source/nPluginData.h"

#include <algorithm>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "err/Exception.h"
#include "ini/parser.h"
#include "source/descriptionFormat.h"
#include "stdpath/path.h"
#include "stdpath/stdpath.h"
#include "trace/trace.h"

namespace nPluginData {
namespace {

// Checks only the order of the fields: the sizes of strings and vectors depend on the standard library.
static_assert(offsetof(tPluginDescription, name) < offsetof(tPluginDescription, dependencies) &&
              offsetof(tPluginDescription, dependencies) < offsetof(tPluginDescription, requiresMask) &&
              offsetof(tPluginDescription, requiresMask) < offsetof(tPluginDescription, path) &&
              offsetof(tPluginDescription, path) < offsetof(tPluginDescription, initialize) &&
              offsetof(tPluginDescription, initialize) < offsetof(tPluginDescription, stop) &&
              offsetof(tPluginDescription, stop) < offsetof(tPluginDescription, cleanup));
static_assert(sizeof(tPluginDescription::requiresMask) == 4);

constexpr const char* sourceFile = ".\\source\\nPluginData";

/// Returns an empty string if the section or the key is missing.
std::string lookUp(nIni::tDocument& document, std::string_view name) {
    nIni::tSection* const section = nIni::findSection(document, nDescriptionFormat::section);
    if (section == nullptr) return {};
    const nIni::tKey* const key = nIni::findKey(*section, document.caseSensitive != 0, name);
    if (key == nullptr) return {};
    document.lastKeyLine = key->line;
    return std::string(key->value);
}

/// Parses like scanf's "%u": a negative number wraps around, and text after the digits is ignored. The C library's
/// scanf reads numbers with strtoul, which allocates nothing when called directly; the scanf of one Windows compiler
/// does allocate, and does not check the result.
std::uint32_t toRequiresMask(const std::string& value) {
    if (value.empty()) return tPluginDescription{}.requiresMask;
    return static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 10));
}

void parse(nIni::tDocument& document, const std::string& filePath) {
    document.flags = nDescriptionFormat::documentFlags;
    const int result = nIni::parseContent(document, nStdPath::widePathFromUtf8(filePath).c_str());
    if (result < 0) zuerr::Raise({"result", {sourceFile, 261}}, result);
    if (document.firstErrorLine == -1) return;
    nTrace::trace(nTrace::descriptions, "Parse error %s:%i", filePath.c_str(), document.firstErrorLine);
    zuerr::Raise({zuerr::invalidParameter, {sourceFile, 268}});
}

}  // namespace

void listPlugins(std::vector<std::string>& files) {
    listDescriptionFiles(nStdPath::getPluginDirectory(), nDescriptionFormat::extension, files);
}

void listDescriptionFiles(const boost::filesystem::path& directory, const boost::filesystem::path& extension,
                          std::vector<std::string>& files) {
    boost::system::error_code ignored;
    // A registry value of several texts contains zeros. The system would treat the part preceding the first one as the
    // path.
    const bool hasZero =
        directory.native().find(boost::filesystem::path::value_type{}) != boost::filesystem::path::string_type::npos;
    if (hasZero || !boost::filesystem::is_directory(directory, ignored)) {
        nTrace::trace(nTrace::descriptions, "Directory does not exist.");
        zuerr::Raise({zuerr::softwareFault, {sourceFile, 138}});
    }
    for (const boost::filesystem::directory_entry& entry : boost::filesystem::directory_iterator(directory)) {
        if (!boost::filesystem::is_regular_file(entry.status(ignored))) continue;
        if (entry.path().extension() == extension) files.push_back(nStdPath::pathToUtf8(entry.path()));
    }
}

void readDescription(const std::string& filePath, tPluginDescription& record) {
    const nIni::tDocumentPointer document(nIni::create());
    if (document == nullptr) return;
    parse(*document, filePath);
    record = describe(*document);
}

tPluginDescription describe(nIni::tDocument& document) {
    namespace nKeys = nDescriptionFormat::nKeys;
    tPluginDescription description;
    description.name = lookUp(document, nKeys::name);
    splitDependencies(lookUp(document, nKeys::dependencies), description.dependencies);
    std::sort(description.dependencies.begin(), description.dependencies.end());
    description.path = lookUp(document, nKeys::path);
    description.requiresMask = toRequiresMask(lookUp(document, nKeys::requiresMask));
    description.initialize = lookUp(document, nKeys::initialize);
    description.stop = lookUp(document, nKeys::stop);
    description.cleanup = lookUp(document, nKeys::cleanup);
    return description;
}

void splitDependencies(std::string_view text, std::vector<std::string>& list) {
    boost::algorithm::split(list, text, [](char character) { return character == ','; });
    for (std::string& name : list) boost::algorithm::trim(name);
    std::erase(list, std::string());
}

}  // namespace nPluginData
