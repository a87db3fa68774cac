#include <exception>

#include "err/Exception.h"
#include "source/nDeployment.h"
#include "tool/check/thisMachine.h"

namespace nThisMachine {

bool runsHost() noexcept { return true; }

tAllowed queryAllowed() {
    tAllowed allowed;
    const zuerr::ForeignCallGuard guard;  // the framework may have its own C++ runtime
    try {
        if (!nDeployment::isAllowedAtOnce()) allowed.mask &= ~nDeployment::feature;
    } catch (const std::exception& exception) {
        const char* const text = exception.what();
        if (text != nullptr) allowed.message = text;
    }
    return allowed;
}

}  // namespace nThisMachine
