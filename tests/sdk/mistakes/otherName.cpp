#include <ziptra/plugin.h>
ZIPTRA_EXPORT int32_t MistakenInitialise() { return 0; }
ZIPTRA_EXPORT void MistakenStop() {}
ZIPTRA_EXPORT void MistakenCleanup() {}
