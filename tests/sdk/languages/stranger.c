#include <ziptra/plugin.h> /* C11 */
int32_t notExported(void);
int32_t notExported(void) { return 0; }
ZIPTRA_EXPORT int32_t StrangerInitialize(void) { return notExported(); }
ZIPTRA_EXPORT void StrangerStop(void) {}
ZIPTRA_EXPORT void StrangerCleanup(void) {}
