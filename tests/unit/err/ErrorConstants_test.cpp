#include "err/ErrorConstants.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>

namespace {

using testing::ContainerEq;
using testing::StrEq;

/// The constants by their names in the code.
const std::map<std::string, zuerr::ErrorConstant>& constants() {
    static const std::map<std::string, zuerr::ErrorConstant> all{
        {"outOfMemory", zuerr::outOfMemory},
        {"featureUnsupported", zuerr::featureUnsupported},
        {"softwareFault", zuerr::softwareFault},
        {"invalidParameter", zuerr::invalidParameter},
        {"resourceNotFound", zuerr::resourceNotFound},
        {"statusResourceNotFound", zuerr::statusResourceNotFound},
        {"osFault", zuerr::osFault},
        {"insufficientPermissions", zuerr::insufficientPermissions}};
    return all;
}

/// The source folder: the working folder or one above it.
std::filesystem::path sources() {
    std::filesystem::path folder = std::filesystem::current_path();
    while (!exists(folder / "docs" / "codes.md") && folder.has_relative_path()) folder = folder.parent_path();
    return folder;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

template <class Use>
void forEachMatch(const std::string& text, const char* pattern, Use use) {
    const std::regex expression(pattern);
    for (std::sregex_iterator match(text.begin(), text.end(), expression); match != std::sregex_iterator(); ++match) {
        use(*match);
    }
}

/// Maps "file line" to the code, or to "" if no error constant is named beside the site.
using tSites = std::map<std::string, std::string>;

std::string unescaped(const std::string& literal) { return std::regex_replace(literal, std::regex(R"(\\\\)"), "\\"); }

/// Finds the raise sites in a source file: {sourceFile, LINE} or {"file", LINE}, optionally after an error constant,
/// and the lines that stdpath passes for its system errors.
void addSites(const std::string& text, tSites& sites) {
    std::string sourceFile = "zutolq\\stdpath";
    forEachMatch(text, R"rx(sourceFile = "([^"]*)")rx",
                 [&](const std::smatch& match) { sourceFile = unescaped(match[1]); });
    forEachMatch(text, R"rx((?:(\w+), )?\{(?:sourceFile|"([^"]+)"), (\d+)\})rx", [&](const std::smatch& match) {
        const std::string file = match[2].matched ? unescaped(match[2]) : sourceFile;
        const auto constant = constants().find(match[1]);
        sites[file + " " + match[3].str()] = constant == constants().end() ? "" : std::to_string(constant->second.code);
    });
    forEachMatch(text, R"(std::int32_t \w+Line = (\d+);)",
                 [&](const std::smatch& match) { sites["zutolq\\stdpath " + match[1].str()] = ""; });
}

TEST(ErrorConstants, AreTheDocumentedCodesAndTexts) {
    std::map<std::string, std::int32_t> codes;
    for (const auto& [name, constant] : constants()) codes[constant.text] = constant.code;
    EXPECT_THAT(codes,
                ContainerEq(std::map<std::string, std::int32_t>{{"-52000", -52000},
                                                                {"zukesterr_featureUnsupported", -52002},
                                                                {"zukesterr_softwareFaultKESTInternalUseOnly", -52003},
                                                                {"zukesterr_invalidParameter", -52005},
                                                                {"zukesterr_resourceNotFound", -52006},
                                                                {"kestStatusResourceNotFound", -52006},
                                                                {"zukesterr_osFault", -52008},
                                                                {"zukesterr_insufficientPermissions", -52026}}));
    EXPECT_THAT(zuerr::hostComponent, StrEq("zuZiptraRemoteService"));
}

TEST(ErrorConstants, AreDocumentedWithEveryRaiseSiteOfTheHost) {
    tSites documented;
    forEachMatch(contentOf(sources() / "docs" / "codes.md"), R"(\n\| ([^|]+) \| ([^|]+) \| (\d+) \|)",
                 [&](const std::smatch& match) { documented[match[2].str() + " " + match[3].str()] = match[1]; });
    tSites raised;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(sources() / "host")) {
        if (entry.path().extension() == ".cpp") addSites(contentOf(entry.path()), raised);
    }
    ASSERT_GT(documented.size(), 0U) << "no table in docs/codes.md";
    for (auto& [site, code] : raised) {
        if (code.empty() && documented.contains(site)) code = documented[site];
    }
    EXPECT_THAT(raised, ContainerEq(documented));
}

}  // namespace
