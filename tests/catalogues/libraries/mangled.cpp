// A plug-in whose author has forgotten extern "C".
#include <cstdint>

__declspec(dllexport) std::int32_t InitOk() { return 0; }
__declspec(dllexport) void StopOk() {}
