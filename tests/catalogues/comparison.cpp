#include "tests/catalogues/comparison.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <utility>

#include "tests/catalogues/libraries.h"

namespace catalogues {
namespace {

constexpr std::int32_t featureUnsupported = -52002;
constexpr std::int32_t invalidParameter = -52005;
constexpr std::int32_t resourceNotFound = -52006;

/// The Initialize entries of the test plug-ins and what they come to.
constexpr std::array<std::pair<std::string_view, std::int32_t>, 4> ownCodes{
    {{"InitOk", 0}, {"InitWarning3", 3}, {"InitFails7", -7}, {"InitThrowsOwnException", -52003}}};

class tDifferences {
public:
    void compare(const std::string& what, const std::string& predicted, const std::string& hosted) {
        if (predicted == hosted) return;
        add(what + ": predicted \"" + printable(predicted) + "\", hosted \"" + printable(hosted) + "\"");
    }
    void add(const std::string& sentence) { sentences.push_back(sentence); }

    std::vector<std::string> sentences;
};

std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string result;
    for (const std::string& text : texts) result += (&text == texts.data() ? "" : separator) + text;
    return result;
}

std::string hexadecimal(std::uint32_t number) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%x", static_cast<unsigned>(number));
    return text.data();
}

std::string heading(const tPrediction::tPlugin& plugin) {
    return plugin.name + " (depends on " + joined(plugin.dependencies, ", ") + ")";
}

/// Adds what the tool, which was told the mask, does not query.
void addQueryMessage(std::vector<std::string>& messages, tDeployment deployment) {
    if (deployment == tDeployment::notFound) messages.emplace_back(notFoundMessage);
    if (deployment == tDeployment::noFramework) messages.emplace_back(noFrameworkMessage);
}

bool dependsOnUnpredicted(const tPrediction& prediction, const tPrediction::tPlugin& plugin) {
    return std::ranges::any_of(prediction.plugins, [&](const tPrediction::tPlugin& other) {
        return !other.code && std::ranges::count(plugin.dependencies, other.name) != 0;
    });
}

/// Returns whether a finding says why it is not known what Windows does with the library.
bool isUncertain(const tPrediction& prediction, const tPrediction::tPlugin& plugin) {
    constexpr std::array<std::string_view, 5> reasons{"relative-path", "forward-slashes", "not-a-dll", "long-path",
                                                      "native-path"};
    return std::ranges::any_of(prediction.findings, [&](const tPrediction::tFinding& finding) {
        return finding.file == plugin.file && std::ranges::count(reasons, finding.id) != 0;
    });
}

/// Returns whether the code may come from an Initialize. If it returned 0 in no time, the label is not shown.
bool isOwnCode(const tStatusText::tPlugin& hosted) {
    if (hosted.code == 0 && hosted.label.empty()) return !runsNoCode(hosted.path);
    return std::ranges::count(ownCodes, std::pair(std::string_view(hosted.label), hosted.code)) != 0;
}

tOrigin originOfPredicted(std::int32_t code) {
    switch (code) {
        case 0: return tOrigin::starts;
        case featureUnsupported: return tOrigin::feature;
        case invalidParameter: return tOrigin::library;
        case resourceNotFound: return tOrigin::dependency;
        default: return tOrigin::unknownCode;
    }
}

void comparePlugin(tDifferences& differences, const tPrediction& prediction, std::size_t index,
                   const tStatusText::tPlugin& hosted) {
    const tPrediction::tPlugin& predicted = prediction.plugins[index];
    const std::string what = "plug-in " + std::to_string(index + 1) + " (" + printable(hosted.heading) + ")";
    differences.compare("heading of " + what, heading(predicted), throughJson(hosted.heading));
    differences.compare("path of " + what, predicted.path, throughJson(hosted.path));
    differences.compare("features of " + what, std::to_string(predicted.requiresMask), hosted.requiresText);
    if (predicted.code) {
        differences.compare("code of " + what, std::to_string(*predicted.code), std::to_string(hosted.code));
    }
    if (!predicted.mayStart && hosted.code >= 0) {
        differences.add("code of " + what + ": predicted to fail, hosted " + std::to_string(hosted.code));
    }
    const tOrigin origin = originOf(prediction, index, hosted);
    if (origin == tOrigin::unknownCode) differences.add("code of " + what + ": the host never decides on this one");
    if (origin == tOrigin::unexplained) {
        differences.add("code of " + what + ": not predicted, but the host decided on " + std::to_string(hosted.code));
    }
}

long count(const std::string& text, std::string_view part) {
    long result = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++result;
    return result;
}

/// Each plug-in whose Initialize returned 0 has a code of its own, which must not be predicted.
void compareCalls(tDifferences& differences, const tPrediction& prediction, const tHosting& hosting) {
    long open = 0;
    for (std::size_t i = 0; i < prediction.plugins.size(); ++i) {
        if (!prediction.plugins[i].code && hosting.status.plugins[i].code == 0) ++open;
    }
    const long calls = count(hosting.calls, " InitOk\n");
    if (calls > open) {
        differences.add(std::to_string(calls) + " calls returned 0, but the tool left only " + std::to_string(open) +
                        " such codes open");
    }
}

/// Whoever is told of a failure is told why.
void compareFindings(tDifferences& differences, const tPrediction& prediction) {
    for (const tPrediction::tPlugin& plugin : prediction.plugins) {
        if (!plugin.code || *plugin.code >= 0) continue;
        const bool explained = std::ranges::count(prediction.findings, plugin.file, &tPrediction::tFinding::file) != 0;
        if (!explained) differences.add("no finding explains the code of " + printable(plugin.file));
    }
}

}  // namespace

std::uint32_t allowedMask(tDeployment deployment) {
    return deployment == tDeployment::forbidden ? 0xFFFFFFFD : 0xFFFFFFFF;
}

tOrigin originOf(const tPrediction& prediction, std::size_t plugin, const tStatusText::tPlugin& hosted) {
    const tPrediction::tPlugin& predicted = prediction.plugins.at(plugin);
    if (predicted.code) return originOfPredicted(*predicted.code);
    if (isOwnCode(hosted)) return tOrigin::ownCode;
    const bool loads = hosted.code == 0 && (hosted.label.empty() || hosted.label == "Init");
    const bool refused = hosted.code == resourceNotFound;
    if (!loads && !refused && hosted.code != invalidParameter) return tOrigin::unexplained;
    if (dependsOnUnpredicted(prediction, predicted)) return tOrigin::dependencysCode;
    if (refused) return tOrigin::unexplained;
    if (loads ? !runsNoCode(predicted.path) : loadDependsOnCode(predicted.path)) return tOrigin::loadingCode;
    return isUncertain(prediction, predicted) ? tOrigin::uncertainLibrary : tOrigin::unexplained;
}

std::vector<std::string> differences(const tCatalogue& catalogue, const tPrediction& prediction,
                                     const tHosting& hosting) {
    const tStatusText& status = hosting.status;
    tDifferences result;
    result.compare("allowed", hexadecimal(prediction.allowedMask), status.allowed);
    std::vector<std::string> messages = prediction.messages;
    if (catalogue.givesAllowed) addQueryMessage(messages, catalogue.deployment);
    result.compare("messages", joined(messages, "\n"), throughJson(joined(status.messages, "\n")));
    result.compare("number of plug-ins", std::to_string(prediction.plugins.size()),
                   std::to_string(status.plugins.size()));
    if (!result.sentences.empty()) return result.sentences;
    for (std::size_t i = 0; i < status.plugins.size(); ++i) comparePlugin(result, prediction, i, status.plugins[i]);
    compareCalls(result, prediction, hosting);
    compareFindings(result, prediction);
    return result.sentences;
}

}  // namespace catalogues
