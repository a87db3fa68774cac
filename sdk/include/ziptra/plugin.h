#ifndef ZIPTRA_PLUGIN_H
#define ZIPTRA_PLUGIN_H

/* The contract between the ZU-Ziptra remote service and its plug-ins. For C11 and C++17; there is nothing to link.

   A plug-in is a 64-bit Windows library and a description file that names it. The host loads the library and calls up
   to three functions of it:

       ZIPTRA_EXPORT int32_t SchedulerInitialize(void);
       ZIPTRA_EXPORT void SchedulerStop(void);
       ZIPTRA_EXPORT void SchedulerCleanup(void);

   The description contains the names, and each function may be left out there. In C++, ziptra/plugin.hpp makes all
   three from a class.

   Calls
       Initialize   once, after the plug-ins on which this one depends have started. Return quickly: the plug-ins that
                    follow are waiting. Work that takes time needs a thread of the plug-in's own.
       Stop         once, after the last plug-in has been started and the service is to end; last started first. Start
                    no new work, ask your threads to end, and return without waiting for them. The plug-ins on which
                    this one depends still work.
       Cleanup      once, after Stop of every plug-in; last started first. Wait for your threads and release everything:
                    the library is unloaded as soon as this returns, and a thread that is still running its code ends
                    the whole service.
       Between Initialize and Stop the host calls nothing.

   Thread: all calls of all plug-ins are made on one thread of the host, never two at a time. Initialize, Stop and
   Cleanup therefore need no locks against one another, only against the plug-in's own threads.

   Results of Initialize
       0            started
       positive     started, with a warning. The status file shows the number.
       negative     not started. The status file shows the number, the host calls neither Stop nor Cleanup and unloads
                    the library, so release everything first; plug-ins that depend on this one fail with -52006.
       The range from ZIPTRA_HOST_CODES_FIRST to ZIPTRA_HOST_CODES_LAST belongs to the host: do not return a number of
       it. `ziptra explain NUMBER` says what one means.

   Failures for which no function is called
       -52002       the machine allows none of the features that the description requires
       -52005       the library or one that it needs cannot be loaded, or does not export a function that is named
       -52006       a dependency has not started

   Exceptions
       Let none leave a function. The host contains those that are derived from std::exception, if the library was built
       with GCC for mingw-w64 as the host is: Initialize then fails with -52003 (std::bad_alloc: -52000), and after a
       Cleanup that throws, the library stays loaded. Every other exception ends the service with all its plug-ins, and
       so does any exception that leaves a thread.

   All plug-ins share the host's process
       - An access violation, exit, abort, ExitProcess or std::terminate ends the service with all its plug-ins.
       - A function that does not return blocks the start or the stop of the service.
       - Never call FreeLibrary or FreeLibraryAndExitThread on your own library: the host unloads it.
       - Never call ExitThread in the three functions: it would end the host's only thread. A thread of your own ends by
         returning from its function.
       - The host's thread is lent. If you change its priority, locale or error mode (SetThreadErrorMode), or initialise
         COM on it, undo that before you return. COM is not initialised on it; a thread of your own is the better place.
       - The current directory, the environment, the error mode of the process, the search path of libraries, the
         console handlers, the C library's locale, umask and _fmode belong to all plug-ins: leave them alone.
       - A child process that inherits handles may inherit the host's status file, which is then not replaced until the
         child ends: list the handles to inherit (PROC_THREAD_ATTRIBUTE_HANDLE_LIST).
       - Functions of Windows that take narrow text (CreateFileA) use UTF-8 from Windows 10 version 1903 on, and the
         code page of the machine before: call the wide ones.
       - Code that runs while the library is loaded or unloaded (DllMain, constructors and destructors of globals)
         holds the loader's lock: it must neither start a thread nor wait for one.

   Ownership: the host passes nothing and takes nothing. What the plug-in allocates it frees, with the same runtime.
   Each library has its own C and C++ runtime; between plug-ins pass plain C types, and let the one that allocates free.
   The functions of a dependency may be called from the beginning of your Initialize to the end of your Cleanup.

   The functions have no access to the description. A file beside the library is found through the path of the library
   (GetModuleHandleExW, GetModuleFileNameW), never through the current directory. */

#include <stdint.h>

/* Marks a function that the library exports under its plain name. */
#if defined(_WIN32)
#define ZIPTRA_DETAIL_VISIBLE __declspec(dllexport)
#else
#define ZIPTRA_DETAIL_VISIBLE __attribute__((visibility("default"))) /* for tools that analyse the source elsewhere */
#endif
#if defined(__cplusplus)
#define ZIPTRA_EXPORT extern "C" ZIPTRA_DETAIL_VISIBLE
#else
#define ZIPTRA_EXPORT ZIPTRA_DETAIL_VISIBLE
#endif

/* Results. A plug-in chooses its own, outside the host's range. */
enum { ZIPTRA_OK = 0, ZIPTRA_HOST_CODES_FIRST = -52999, ZIPTRA_HOST_CODES_LAST = -52000 };

#endif
