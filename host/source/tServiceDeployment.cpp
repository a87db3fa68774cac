#include "err/Exception.h"
#include "source/nDeployment.h"
#include "source/tService.h"

void ApplyDeploymentSetting(tService& service) {
    const zuerr::ForeignCallGuard guard;  // the framework may have its own C++ runtime
    try {
        if (!nDeployment::IsDeploymentAllowed()) service.allowedMask &= ~nDeployment::feature;
    } catch (const std::exception& exception) {
        const char* const text = exception.what();
        service.messages.append(text == nullptr ? "" : text).append("\n");
    }
}
