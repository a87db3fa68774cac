// The same without plugin.hpp. It keeps the same rules: no exception leaves an entry or the thread, the thread is asked
// to stop in Stop and has ended when Cleanup returns.
#include <windows.h>
#include <ziptra/plugin.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

static std::string temporaryFolder() {
    const char* const folder = std::getenv("TEMP");
    return folder != nullptr ? folder : "C:";
}

namespace {

struct State {
    std::string name;
    int rounds = 0;
    HANDLE stop = nullptr;
    HANDLE thread = nullptr;
};
State* state = nullptr;

void write() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(state->name.c_str(), "w"), std::fclose);
    if (file == nullptr) throw std::runtime_error("cannot write " + state->name);
    std::fprintf(file.get(), "%d\n", ++state->rounds);
}

DWORD WINAPI work(void*) {
    try {
        do {
            write();
        } while (WaitForSingleObject(state->stop, 200) != 0);
    } catch (const std::exception& exception) {
        OutputDebugStringA(exception.what());
    } catch (...) {
    }
    return 0;
}

void release() {
    if (state->thread != nullptr) CloseHandle(state->thread);
    if (state->stop != nullptr) CloseHandle(state->stop);
    delete state;
    state = nullptr;
}

}  // namespace

ZIPTRA_EXPORT int32_t ByHandInitialize() {
    try {
        state = new State;
        state->name = temporaryFolder() + "\\rounds.txt";
        state->stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        if (state->stop != nullptr) state->thread = CreateThread(nullptr, 0, work, nullptr, 0, nullptr);
        if (state->thread != nullptr) return ZIPTRA_OK;
    } catch (const std::exception& exception) {
        OutputDebugStringA(exception.what());
    } catch (...) {
    }
    if (state != nullptr) release();
    return -1;
}

ZIPTRA_EXPORT void ByHandStop() { SetEvent(state->stop); }

ZIPTRA_EXPORT void ByHandCleanup() {
    WaitForSingleObject(state->thread, INFINITE);
    release();
}
