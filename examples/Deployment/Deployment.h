#pragma once

// The entry points that the description names. No other plug-in depends on this one.

#ifdef Deployment_EXPORTS
#define DEPLOYMENT_API __declspec(dllexport)
#else
#define DEPLOYMENT_API __declspec(dllimport)
#endif

extern "C" {

DEPLOYMENT_API int DeploymentInitialize() noexcept;
DEPLOYMENT_API void DeploymentStop() noexcept;
DEPLOYMENT_API void DeploymentCleanup() noexcept;
}
