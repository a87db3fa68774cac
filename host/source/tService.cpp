#include "source/tService.h"

#include <cstddef>

#include "err/Exception.h"
#include "quarks/processAccess.h"

tService* gService = nullptr;

namespace {

// The order of the members; how long texts and lists are is the library's business.
static_assert(offsetof(tService, stopEvent) == 0 && offsetof(tService, pluginManager) == sizeof(tEvent));
static_assert(offsetof(tService, allowedMask) == sizeof(tEvent) + sizeof(tPluginManager));
static_assert(offsetof(tService, initTimeMs) == offsetof(tService, allowedMask) + 8);
static_assert(offsetof(tService, messages) == offsetof(tService, initTimeMs) + 8);
static_assert(sizeof(tService::allowedMask) == 4 && sizeof(tService::initTimeMs) == 8);

/// Runs the body of an entry point. Returns false if it threw a std::exception, whose code is only traced.
template <class Body>
bool runContained(Body body) {
    try {
        body();
        return true;
    } catch (const std::exception&) {
        static_cast<void>(zuerr::CurrentExceptionCode());
        return false;
    }
}

}  // namespace

// The first status file shows that the service has started, the last one how it ended.

tService::tService() {
    nProcessAccess::grantQueryToEveryone();
    WriteStatus(*this);
}

tService::~tService() noexcept(false) { WriteStatus(*this); }

std::int32_t startService() {
    // With some compilers, a thread's first call of this allocates memory, and the process ends if there is none:
    // better now than in the middle of a run.
    static_cast<void>(zuerr::ExceptionIsPropagating());
    const bool started = runContained([] {
        auto* const service = new tService;
        delete gService;
        gService = service;
    });
    return started ? 0 : -1;
}

void runService() {
    runContained([] { gService->run(); });
}

void stopService() {
    runContained([] {
        delete gService;
        gService = nullptr;
    });
}

void signalServiceStop() {
    runContained([] { gService->stopEvent.set(); });
}
