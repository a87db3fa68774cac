#include "err/Exception.h"
#include "source/nDeployment.h"
#include "source/tService.h"

namespace {

/// The bit of the allowed mask that stands for deployment.
constexpr std::uint32_t deploymentFeature = 2;

}  // namespace

void ApplyDeploymentSetting(tService& service) {
    const zuerr::ForeignCallGuard guard;  // the framework throws from another C++ runtime
    try {
        if (!nDeployment::IsDeploymentAllowed()) service.allowedMask &= ~deploymentFeature;
    } catch (const std::exception& exception) {
        const char* const text = exception.what();
        service.messages.append(text == nullptr ? "" : text).append("\n");
    }
}
