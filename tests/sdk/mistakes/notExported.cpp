#include <ziptra/plugin.h>
extern "C" int32_t MistakenInitialize() { return 0; }
extern "C" void MistakenStop() {}
extern "C" void MistakenCleanup() {}
