#pragma once

/* What the Settings plug-in offers to the plug-ins that name it under Dependencies. They link to Settings.dll; the
   host has loaded it by then, so that all of them see the one that it started. Both functions may be called on any
   thread, and what they give is valid until SettingsCleanup, which runs after the Cleanup of every dependant. */

#ifdef Settings_EXPORTS
#define SETTINGS_API __declspec(dllexport)
#else
#define SETTINGS_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The value of that name in Settings.txt, as UTF-8, or `otherwise` when there is none. The first one wins. */
SETTINGS_API const char* SettingsValue(const char* name, const char* otherwise);

/* The folder that Settings.dll and Settings.txt lie in, as UTF-8. */
SETTINGS_API const char* SettingsFolder(void);

/* For the host. */
SETTINGS_API int SettingsInitialize(void);
SETTINGS_API void SettingsCleanup(void);

#ifdef __cplusplus
}
#endif
