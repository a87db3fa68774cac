// The same without plugin.hpp.
#include <ziptra/plugin.h>

static int rounds = 0;

ZIPTRA_EXPORT int32_t QuietByHandInitialize() {
    rounds = 1;
    return ZIPTRA_OK;
}
ZIPTRA_EXPORT void QuietByHandStop() { rounds = 0; }
ZIPTRA_EXPORT void QuietByHandCleanup() {}
