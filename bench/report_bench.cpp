// Group report: compares one raise, from throw to catch and including its report, with throwing a std::runtime_error
// whose text RapidJSON's Writer has written.
#include <stdexcept>
#include <string>

#include "bench/groups.h"
#include "bench/pairs.h"
#include "err/Exception.h"
#if __has_include(<rapidjson/writer.h>)
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#define PEER_IS_INSTALLED
#endif

namespace {

using nBench::demand;

constexpr zuerr::RaiseReport report{zuerr::osFault, {".\\source\\tService", 217}};

[[noreturn]] void raise() { zuerr::Raise(report); }

[[noreturn]] void raiseWithPeer() {
#ifdef PEER_IS_INSTALLED
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("error_constant");
    writer.String(report.constant);
    writer.Key("file");
    writer.String(report.site.file);
    writer.Key("line");
    writer.Int(report.site.line);
    writer.Key("component");
    writer.String(report.component);
    writer.EndObject();
    throw std::runtime_error(buffer.GetString());
#else
    throw std::runtime_error("no peer");
#endif
}

template <class See>
void caught(void (*raise)(), See see) {
    try {
        raise();
    } catch (const std::exception& exception) {
        see(exception.what());
    }
}

std::string textOf(void (*raise)()) {
    std::string text;
    caught(raise, [&text](const char* what) { text = what; });
    return text;
}

void raiseMany(void (*raise)()) {
    // Not read, but the compiler must not notice that.
    [[maybe_unused]] static const char* volatile last;
    for (int i = 0; i < 10'000; ++i) caught(raise, [](const char* what) { last = what; });
}

nBench::tPair againstPeer() {
#ifndef PEER_IS_INSTALLED
    demand(false, "not measured: RapidJSON is not installed");
#endif
    const std::string ours = textOf(raise);
    const std::string theirs = textOf(raiseWithPeer);
    demand(ours == theirs, "not the same bytes: " + ours + " and " + theirs);
    return {[] { raiseMany(raise); }, [] { raiseMany(raiseWithPeer); }};
}

}  // namespace

void addReportRows(const std::string& prefix) { nBench::addRow({"report/" + prefix + "raise", "", 0, againstPeer}); }
