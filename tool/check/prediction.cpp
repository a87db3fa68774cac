#include "tool/check/prediction.h"

#include <iterator>
#include <utility>

#include "source/descriptionFormat.h"
#include "source/runMessages.h"
#include "tool/check/catalogue.h"
#include "tool/check/dependencyFindings.h"
#include "tool/check/libraries.h"
#include "tool/check/places.h"
#include "tool/check/pluginNames.h"
#include "tool/check/predictedStarts.h"
#include "tool/check/requiresValue.h"
#include "tool/check/thisMachine.h"

namespace nCheck {
namespace {

/// Reads the files as the host does, and adds a message for each that it rejects.
std::vector<tDescriptionFile> readAll(std::vector<std::string> paths, std::vector<std::string>& messages) {
    std::vector<tDescriptionFile> files;
    files.reserve(paths.size());
    for (std::string& path : paths) {
        const tDescriptionFile& file = files.emplace_back(readFile(std::move(path)));
        if (!file.description) messages.push_back(nRunMessages::descriptionNotParsed + file.findings.file());
    }
    return files;
}

/// Determines the features that the machine allows, and adds a message if the host would.
void decideAllowed(const tRequest& request, tPrediction& prediction) {
    if (request.allowedMask) {
        prediction.allowedMask = *request.allowedMask;
        return;
    }
    nThisMachine::tAllowed allowed = nThisMachine::queryAllowed();
    prediction.allowedMask = allowed.mask;
    if (!allowed.message.empty()) prediction.messages.push_back(std::move(allowed.message));
}

/// Returns what becomes of each plug-in, by position, and finds what is wrong with the libraries.
std::vector<tOutcome> startAll(const tRequest& request, std::uint32_t allowedMask, tCatalogue& catalogue) {
    tLibraries libraries(request.folderMap);
    tPredictedStarts starts(catalogue.descriptions(), allowedMask, request.assumed);
    std::vector<tOutcome> outcomes(catalogue.size());
    for (const std::size_t plugin : catalogue.order()) {
        const tPluginDescription& description = catalogue.descriptions()[plugin];
        const tLoadVerdict load = libraries.examine({description, catalogue.lines(plugin), catalogue.findings(plugin)});
        outcomes[plugin] = starts.start(description, load);
        libraries.keep(outcomes[plugin].start);
        if (request.onPlugin) request.onPlugin(catalogue.size());
    }
    return outcomes;
}

void findInFeatures(tCatalogue& catalogue, std::uint32_t allowedMask) {
    for (std::size_t plugin = 0; plugin < catalogue.size(); ++plugin) {
        findUnallowed(catalogue.descriptions()[plugin].requiresMask, allowedMask,
                      catalogue.lines(plugin).of(nDescriptionFormat::nKeys::requiresMask), catalogue.findings(plugin));
    }
}

}  // namespace

tPrediction predict(const tRequest& request) {
    tListing listing = listPlaces(request.places);
    tPrediction prediction;
    prediction.directory = std::move(listing.directory);
    prediction.messages = std::move(listing.messages);
    prediction.findings = std::move(listing.findings);
    if (!prediction.messages.empty()) return prediction;  // the host gives up

    tCatalogue catalogue(readAll(std::move(listing.files), prediction.messages));
    decideAllowed(request, prediction);
    const std::vector<tOutcome> outcomes = startAll(request, prediction.allowedMask, catalogue);
    findInNames(catalogue);
    findWithoutEntries(catalogue);
    findInFeatures(catalogue, prediction.allowedMask);
    findInDependencies(catalogue, outcomes, request.assumed);
    std::vector<tFinding> findings = catalogue.takeFindings();
    std::move(findings.begin(), findings.end(), std::back_inserter(prediction.findings));
    prediction.plugins.reserve(catalogue.size());
    for (const std::size_t plugin : catalogue.order()) {
        prediction.plugins.push_back({catalogue.takePath(plugin), catalogue.takeDescription(plugin),
                                      outcomes[plugin].code, outcomes[plugin].start != tStart::no});
    }
    return prediction;
}

}  // namespace nCheck
