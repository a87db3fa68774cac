#include "err/Exception.h"
#include "source/nDeployment.h"
#include "source/tService.h"

namespace {

/// The bit for deployment in the allowed mask.
constexpr std::uint32_t deploymentFeature = 2;

}  // namespace

void ApplyDeploymentSetting(tService& service) {
    const zuerr::ForeignCallGuard guard;  // the framework may have its own C++ runtime
    try {
        if (!nDeployment::IsDeploymentAllowed()) service.allowedMask &= ~deploymentFeature;
    } catch (const std::exception& exception) {
        const char* const text = exception.what();
        service.messages.append(text == nullptr ? "" : text).append("\n");
    }
}
