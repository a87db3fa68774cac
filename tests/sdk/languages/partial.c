#include <ziptra/plugin.h>
ZIPTRA_EXPORT int32_t PartialInitialize(void) { return ZIPTRA_OK; }
