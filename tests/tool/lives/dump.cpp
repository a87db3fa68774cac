// run_dump json|junit FILE NAME...: prints what the reports in FILE mean for plug-ins of these names, of which each
// depends on the one before it.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "tool/run/render.h"

int main(int count, char** arguments) {
    std::vector<nRun::tPlugin> plugins;
    for (int i = 3; i < count; ++i) {
        nRun::tPlugin& plugin = plugins.emplace_back();
        plugin.file = "plugins/" + std::to_string(i) + ".ini";
        plugin.description.name = arguments[i];
        plugin.description.initialize = plugin.description.stop = "Initialize";
        if (i > 3) plugin.description.dependencies = {arguments[i - 1]};
    }
    std::ifstream file(arguments[2], std::ios::binary);
    nRun::tReader reader;
    reader.add(std::string{std::istreambuf_iterator<char>(file), {}});
    try {
        const nRun::tResult result =
            judge(plugins, 100, reader.events(), {std::nullopt, 10'000, {"<Error> & \"more\""}});
        std::fputs((std::string_view(arguments[1]) == "json" ? toJson(result) : toJunit(result)).c_str(), stdout);
        return passed(result) ? 0 : 1;
    } catch (const nRun::tCannotRun&) {
        return 2;
    }
}
