#include "tool/run/runCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include "tool/check/thisMachine.h"
#include "tool/outputFile.h"
#include "tool/progress.h"
#include "tool/requestCommand.h"
#include "tool/run/lives.h"
#include "tool/run/render.h"

namespace nRun {
namespace {

struct tArguments {
    nCheck::tRequest request;  ///< its places are the descriptions
    tOrder order;
    std::uint64_t limitMs = 10'000;
    std::string junit;
    bool json = false;
};

std::optional<std::uint64_t> readNumber(std::string_view text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

/// Reads a number of seconds, "10" or "0.25". Returns its milliseconds, or nullopt if it is anything else, less than a
/// tenth of a second or more than a day.
std::optional<std::uint64_t> readSeconds(std::string_view text) {
    constexpr std::uint64_t shortestMs = 100;
    constexpr std::uint64_t dayMs = 86'400'000;
    constexpr std::size_t decimals = 3;
    std::string digits(text);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    digits.erase(point, 1);
    if (point == 0 || digits.size() - point > decimals) return std::nullopt;
    digits.append(decimals - (digits.size() - point), '0');
    const auto ms = readNumber(digits);
    return ms && *ms >= shortestMs && *ms <= dayMs ? ms : std::nullopt;
}

std::string checkTimes(const std::string& text) {
    constexpr std::uint64_t most = 100'000;
    const auto times = readNumber(text);
    return times && *times > 0 && *times <= most ? "" : "'" + text + "' is no number from 1 to 100000";
}

std::string checkSeconds(const std::string& text) {
    return readSeconds(text) ? "" : "'" + text + "' is no number of seconds from 0.1 to 86400";
}

void run(tArguments& arguments, tContext& context) {
    tOrder& order = arguments.order;
    order.files = arguments.request.places;
    const auto& mask = arguments.request.allowedMask;
    order.allowedMask = mask ? *mask : nThisMachine::queryAllowed().mask;
    tResult result;
    {
        tProgress progress(context, "running lives", order.times);
        result = run(order, arguments.limitMs, [&progress] { progress.advance(); });
    }
    context.out << (arguments.json ? toJson(result) : toText(result, context.colour));
    if (!arguments.junit.empty()) nOutputFile::replace(arguments.junit, toJunit(result));
    context.exitCode = passed(result) ? exitNothingFound : exitFindings;
}

}  // namespace

void addCommand(CLI::App& program, tContext& context) {
    CLI::App* const command =
        program.add_subcommand("run", "Start, stop and clean up plug-ins, and say what the service would suffer");
    const auto arguments = std::make_shared<tArguments>();
    command
        ->add_option("DESCRIPTION", arguments->request.places,
                     "Description files; plug-ins on which these depend are found beside them")
        ->required()
        ->type_name("");
    command
        ->add_option_function<std::string>(
            "--times", [arguments](const std::string& text) { arguments->order.times = *readNumber(text); },
            "How many lives; more than one find more leaks")
        ->check(checkTimes)
        ->type_name("N");
    command
        ->add_option_function<std::string>(
            "--limit", [arguments](const std::string& text) { arguments->limitMs = *readSeconds(text); },
            "How long a call may take; otherwise 10 seconds")
        ->check(checkSeconds)
        ->type_name("SECONDS");
    command->add_option("--junit", arguments->junit, "Also replace this file with a report for build servers")
        ->type_name("FILE");
    nRequest::addAllowedOption(*command, arguments->request);
    command->add_flag("--json", arguments->json, "Print one JSON document");
    command->footer(
        "Example: ziptra run plugins\\transport.ini --times 100\n"
        "The plug-ins run in a process of their own, which ends with the command.\n"
        "Exit code: 0 if all went well, 1 if not, 2 if the plug-ins could not be run.");
    command->callback([arguments, &context] { run(*arguments, context); });
}

}  // namespace nRun
