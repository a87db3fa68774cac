// Reads any bytes as the reports of a process that runs plug-ins, says what they mean, and shows that in every form.
// Where the bytes are divided must not matter, and every event that was read is read again as it was written.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "tool/run/render.h"

namespace {

constexpr std::size_t plugins = 3;

std::vector<nRun::tPlugin> somePlugins() {
    std::vector<nRun::tPlugin> result(plugins);
    for (std::size_t i = 0; i < plugins; ++i) {
        result[i].file = "a.ini";
        result[i].description.name = std::string(1, static_cast<char>('A' + i));
        result[i].description.initialize = i == 0 ? "" : "Initialize";
        result[i].description.dependencies = {"A", "X"};
    }
    return result;
}

std::string written(const std::vector<nRun::tEvent>& events) {
    std::string text;
    for (const nRun::tEvent& event : events) text += nRun::toLine(event);
    return text;
}

void judge(const std::vector<nRun::tEvent>& events, const nRun::tEnding& ending) {
    try {
        const nRun::tResult result = judge(somePlugins(), 2, events, ending);
        check(!result.lives.empty(), "lives");
        for (const nRun::tLife& life : result.lives) {
            check(life.size() == plugins, "plug-ins");
            for (const nRun::tPluginLife& plugin : life) {
                check(plugin.calls.size() <= plugins, "calls");
                check(plugin.outcome == nRun::tOutcome::ok || !plugin.detail.empty(), "detail");
            }
        }
        check(toText(result, false).find('\x1B') == std::string::npos, "text");
        check(toJson(result).ends_with("}\n"), "document");
        check(toJunit(result).ends_with("</testsuites>\n"), "report");
    } catch (const nRun::tCannotRun&) {
        return;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(input), size);
    nRun::tReader whole;
    whole.add(text);
    nRun::tReader pieces;
    const std::size_t middle = size / 2;
    pieces.add(text.substr(0, middle));
    for (const char c : text.substr(middle)) pieces.add({&c, 1});
    check(written(pieces.events()) == written(whole.events()), "pieces");
    nRun::tReader again;
    again.add(written(whole.events()));
    check(written(again.events()) == written(whole.events()), "round trip");
    judge(whole.events(), {std::nullopt, 1'000, {"window"}});
    judge(whole.events(), {0xC0000005, 1'000});
    judge(whole.events(), {3, 1'000});
    return 0;
}
