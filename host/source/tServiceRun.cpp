#include "err/Exception.h"
#include "source/nPluginData.h"
#include "source/nPluginOrder.h"
#include "source/runMessages.h"
#include "source/tService.h"
#include "time/stopwatch.h"

void tService::run() {
    const nTime::tStopwatch stopwatch;
    std::vector<std::string> descriptionPaths;
    try {
        nPluginData::listPlugins(descriptionPaths);
    } catch (const zuerr::ExceptionBase&) {
        messages += std::string(nRunMessages::directoryNotOpened) + "\n";  // the whole line or nothing
        return;
    }
    std::vector<tPluginDescription> descriptions = readDescriptions(descriptionPaths);
    nPluginOrder::sort(descriptions);
    ApplyDeploymentSetting(*this);
    initTimeMs = stopwatch.elapsedMs();
    WriteStatus(*this);

    pluginManager.startAll(descriptions, allowedMask);
    WriteStatus(*this);

    stopEvent.wait();

    pluginManager.stopAll();
    pluginManager.cleanupAll();
    WriteStatus(*this);
}

/// A file that cannot be read affects only its own plug-in.
std::vector<tPluginDescription> tService::readDescriptions(const std::vector<std::string>& descriptionPaths) {
    std::vector<tPluginDescription> descriptions;
    descriptions.reserve(descriptionPaths.size());
    for (const std::string& path : descriptionPaths) {
        try {
            tPluginDescription description;
            nPluginData::readDescription(path, description);
            descriptions.push_back(description);
        } catch (const std::exception&) {
            messages += nRunMessages::descriptionNotParsed + path + "\n";
        }
    }
    return descriptions;
}
