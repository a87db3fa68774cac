// Group report: what one raise writes into a status record, against RapidJSON's Writer.
#include <string>

#include "bench/groups.h"
#include "bench/pairs.h"
#include "err/StatusRecord.h"
#if __has_include(<rapidjson/writer.h>)
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#define PEER_IS_INSTALLED
#endif

namespace {

using nBench::demand;

constexpr zuerr::ErrorConstant constant = zuerr::osFault;
constexpr zuerr::RaiseSite site{".\\source\\tService", 217};
constexpr zuerr::RaiseReport report{constant, site};

/// The raises of the program: what they report is known when it is compiled.
constexpr auto raise = [](auto see) {
    zuerr::StatusRecord record;
    RaiseInto(record, constant.code, report);
    see(record.json);
};

/// A report whose texts are met only when it is written.
constexpr auto raiseUnknown = [](auto see) {
    zuerr::StatusRecord record;
    RaiseInto(record, constant.code, constant.text, site, zuerr::hostComponent);
    see(record.json);
};

constexpr auto writeWithPeer = [](auto see) {
#ifdef PEER_IS_INSTALLED
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("error_constant");
    writer.String(constant.text);
    writer.Key("file");
    writer.String(site.file);
    writer.Key("line");
    writer.Int(site.line);
    writer.Key("component");
    writer.String(zuerr::hostComponent);
    writer.EndObject();
    see(buffer.GetString());
#else
    demand(false, "not measured: RapidJSON is not installed");
#endif
};

template <class tWriter>
std::string textOf(tWriter write) {
    std::string text;
    write([&text](const char* written) { text = written; });
    return text;
}

template <class tWriter>
void writeMany(tWriter write) {
    // Read by nobody, but the compiler may not know.
    [[maybe_unused]] static const char* volatile last;
    for (int i = 0; i < 10'000; ++i) write([](const char* written) { last = written; });
}

template <class tWriter>
nBench::tPair againstPeer(tWriter ours) {
    const std::string text = textOf(ours);
    const std::string theirs = textOf(writeWithPeer);
    demand(text == theirs, "not the same bytes: " + text + " and " + theirs);
    return {[ours] { writeMany(ours); }, [] { writeMany(writeWithPeer); }};
}

}  // namespace

void addReportRows(const std::string& prefix) {
    nBench::addRow({"report/" + prefix + "rapidjson", "", 0, [] { return againstPeer(raise); }});
    nBench::addRow({"report/" + prefix + "unknown", "", 0, [] { return againstPeer(raiseUnknown); }});
}
