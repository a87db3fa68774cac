#include "tests/support/caughtReports.h"

#include <cstdint>

#include "err/Exception.h"
#include "tests/support/allocations.h"

namespace support {
namespace {

tCaughtReports* current = nullptr;

}  // namespace

tCaughtReports::tCaughtReports() { current = this; }
tCaughtReports::~tCaughtReports() { current = nullptr; }

// See loader.cpp for the names.

std::int32_t realCurrentExceptionCode() asm("__real__ZN5zuerr20CurrentExceptionCodeEv");
std::int32_t wrappedCurrentExceptionCode() asm("__wrap__ZN5zuerr20CurrentExceptionCodeEv");
std::int32_t wrappedCurrentExceptionCode() {
    if (current != nullptr) {
        const allocations::tPause pause;
        try {
            throw;
        } catch (const zuerr::ExceptionBase& exception) {
            current->texts.emplace_back(exception.report() == nullptr ? "" : exception.report());
        } catch (...) {
            // It has no report.
        }
    }
    return realCurrentExceptionCode();
}

}  // namespace support
