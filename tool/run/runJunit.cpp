#include <algorithm>

#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/run/render.h"

namespace nRun {
namespace {

std::string escaped(std::string_view text) { return nPlainText::escapedMarkup(nPlainText::printableInXml(text)); }

std::string seconds(std::uint64_t ms) { return fmt::format("{}.{:03}", ms / 1000, ms % 1000); }

std::uint64_t duration(const tPluginLife& life) {
    std::uint64_t ms = 0;
    for (const tCall& call : life.calls) ms += call.timeMs;
    return ms;
}

std::string failure(const tPluginLife& life) {
    if (life.outcome == tOutcome::ok) return {};
    return fmt::format("      <failure type=\"{}\" message=\"{}\"/>\n", outcomeName(life.outcome),
                       escaped(life.detail));
}

std::string output(const tPluginLife& life) {
    std::string lines;
    for (const tSaid& said : life.said) lines += escaped(sentenceOf(said)) + '\n';
    return lines.empty() ? "" : fmt::format("      <system-err>{}</system-err>\n", lines);
}

std::string testCase(const tPlugin& plugin, const tPluginLife& life) {
    std::string text = fmt::format(R"(    <testcase classname="{}" name="{}" time="{}")", escaped(plugin.file),
                                   escaped(plugin.description.name), seconds(duration(life)));
    if (life.outcome == tOutcome::ok && life.said.empty()) return text + "/>\n";
    return text + ">\n" + failure(life) + output(life) + "    </testcase>\n";
}

std::string suite(const tResult& result, std::size_t number) {
    const tLife& life = result.lives[number];
    std::string cases;
    std::uint64_t ms = 0;
    for (std::size_t i = 0; i < life.size(); ++i) {
        cases += testCase(result.plugins[i], life[i]);
        ms += duration(life[i]);
    }
    const auto failures = std::ranges::count_if(life, [](const tPluginLife& p) { return p.outcome != tOutcome::ok; });
    return fmt::format(
        "  <testsuite name=\"life {}\" tests=\"{}\" failures=\"{}\" errors=\"0\" skipped=\"0\" time=\"{}\">\n{}"
        "  </testsuite>\n",
        number + 1, life.size(), failures, seconds(ms), cases);
}

}  // namespace

std::string toJunit(const tResult& result) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"ziptra run\">\n";
    for (std::size_t life = 0; life < result.lives.size(); ++life) text += suite(result, life);
    return text + "</testsuites>\n";
}

}  // namespace nRun
