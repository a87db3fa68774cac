// Group host: whole lives of the host in this process, against the bare loop of the same system calls.
#include <algorithm>
#include <memory>

#include "bench/bareHost_win32.h"
#include "bench/groups.h"
#include "bench/pairs_win32.h"
#include "bench/systemTime_win32.h"
#include "source/tService.h"

namespace {

using nBench::demand;

/// Calls the entry points in the order in which a console or the service control manager reaches them. The stop request
/// comes before the run starts to wait for it.
void live() {
    demand(startService() == 0, "the host did not start");
    signalServiceStop();
    runService();
    stopService();
}

std::string statusText() { return readText(statusFolder() / "zuZiptraRemoteService.status"); }

std::ptrdiff_t occurrences(const std::string& text, std::string_view piece) {
    std::ptrdiff_t count = 0;
    for (std::size_t at = 0; (at = text.find(piece, at)) != std::string::npos; at += piece.size()) ++count;
    return count;
}

/// Demands that every plug-in was started, stopped and cleaned up: otherwise the status file shows a code.
void demandWholeLife(int plugins) {
    std::filesystem::remove(statusFolder() / "zuZiptraRemoteService.status");
    live();
    const std::string text = statusText();
    demand(occurrences(text, "\nLoaded From: ") == plugins, "the status file does not show every plug-in");
    demand(occurrences(text, " Code: ") == occurrences(text, " Code: 0"), "not every plug-in has started");
    demand(text.find("Failed") == std::string::npos, "a description was not read");
}

std::shared_ptr<tBareHost> prepare(int plugins) {
    const tDescriptions descriptions(plugins);
    stageHost(descriptions);
    demandWholeLife(plugins);
    return std::make_shared<tBareHost>(descriptions, statusText());
}

nBench::tPair lifePair(int plugins) {
    const auto bare = prepare(plugins);
    bare->live();
    return {live, [bare] { bare->live(); }};
}

/// Returns what measures the host's own share of a life; `peer` is the whole life. The watch does not see the calls
/// that read the directory, because Boost looks them up at run time, so a bare reading of it is timed too and
/// subtracted.
std::function<nBench::tTimes()> ownTime(int plugins) {
    prepare(plugins);
    const std::wstring directory = tDescriptions(plugins).directory().native();
    return [directory] {
        std::size_t files = 0;
        const double listing = nBench::seconds([&] { files = listBarely(directory).size(); });
        demand(files > 0, "there are no descriptions");
        const nSystemTime::tWatch watch;
        const double whole = nBench::seconds(live);
        return nBench::tTimes{whole - watch.seconds() - listing, whole};
    };
}

}  // namespace

void addHostRows() {
    for (const int plugins : {10, 100, 1000, 4000}) {
        if (nBench::quick() && plugins > 100) break;
        nBench::addRow({"host/life", "plug-ins", plugins, [plugins] { return lifePair(plugins); }});
    }
    const int plugins = nBench::quick() ? 100 : 1000;
    nBench::addTimedRow({"host/own-time", "", plugins, [plugins] { return ownTime(plugins); }});
}
