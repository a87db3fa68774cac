#pragma once

/* The interface of the Settings plug-in for plug-ins that list it in Dependencies. They link to Settings.dll; the host
   has already loaded it, so all of them use the instance that it started. Both functions may be called on any thread.
   The strings that they return are valid until SettingsCleanup, which runs after the Cleanup of every dependant. */

#ifdef __cplusplus
extern "C" {
#endif

/* Returns the value of `name` in Settings.txt, as UTF-8, or `fallback` if there is none. If a name occurs twice, the
   first one counts. */
const char* SettingsValue(const char* name, const char* fallback);

/* Returns the folder that contains Settings.dll and Settings.txt, as UTF-8. */
const char* SettingsFolder(void);

#ifdef __cplusplus
}
#endif
