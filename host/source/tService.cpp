#include "source/tService.h"

#include "err/Exception.h"
#include "quarks/processAccess.h"

tService* gService = nullptr;

namespace {

/// Runs the body of an entry point. False when a std::exception ended it: that one goes no further, and its code is of
/// interest to the trace alone.
template <class Body>
bool contain(Body body) {
    try {
        body();
        return true;
    } catch (const std::exception&) {
        static_cast<void>(zuerr::CurrentExceptionCode());
        return false;
    }
}

}  // namespace

// The first status file tells that the service has started, the last one how it ended. WriteStatus keeps its failures
// to itself, so a service that has been built can always be destroyed.

tService::tService() {
    nProcessAccess::grantQueryToEveryone();
    WriteStatus(*this);
}

tService::~tService() { WriteStatus(*this); }

std::int32_t startService() {
    // A thread that asks this for the first time needs memory with some compilers, and their libraries end the process
    // when there is none: better now than in the middle of a run.
    static_cast<void>(zuerr::ExceptionIsPropagating());
    const bool started = contain([] {
        auto* const service = new tService;
        delete gService;
        gService = service;
    });
    return started ? 0 : -1;
}

void runService() {
    contain([] { gService->run(); });
}

void stopService() {
    contain([] {
        delete gService;
        gService = nullptr;
    });
}

void signalServiceStop() { gService->stopEvent.set(); }
