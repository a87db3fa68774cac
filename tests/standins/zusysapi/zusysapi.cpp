#include "source/zusysapi.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

// What it does and how it is told what to do: see README.md.
namespace {

using nZusysapi::Result;

enum Step { instantiate = 1, createOptions, setOption, connect, selectResource, readSetting };

constexpr Result unusedSlot = -200;
constexpr Result noSuchInterface = static_cast<Result>(0x80004002);

std::atomic<unsigned long> attempts{0};

struct tKind {
    const char* name;
    std::atomic<int> references{0};
};
tKind frameworks{"framework"};
tKind options{"options"};
tKind connections{"connection"};
tKind resources{"resource"};

unsigned long variable(const char* name, unsigned long otherwise) {
    char text[32];
    const DWORD length = GetEnvironmentVariableA(name, text, sizeof text);
    return length == 0 || length >= sizeof text ? otherwise : std::strtoul(text, nullptr, 0);
}

/// What a step gives, given whether it was called as the host should call it.
Result outcome(Step step, bool rightArguments) {
    if (!rightArguments) return -100 - step;
    const bool fails = variable("ZUSYSAPI_FAIL_STEP", 0) == static_cast<unsigned long>(step) &&
                       attempts <= variable("ZUSYSAPI_FAIL_ATTEMPTS", ULONG_MAX);
    return fails ? -step : 0;
}

/// The slots that all interfaces share. An object starts with one reference and goes with the last.
template <class Interface>
class tCounted : public Interface {
public:
    explicit tCounted(tKind& kind) : kind_(kind) { ++kind_.references; }
    tCounted(const tCounted&) = delete;
    tCounted& operator=(const tCounted&) = delete;
    virtual ~tCounted() = default;  // behind the slots of the interface, so it moves none of them

    Result queryInterface(const nZusysapi::InterfaceId& id, void** object) override {
        const bool isIdentity = std::memcmp(&id, &nZusysapi::identity, sizeof id) == 0;
        *object = isIdentity ? static_cast<nZusysapi::Object*>(this) : nullptr;
        if (!isIdentity) return noSuchInterface;
        addReference();
        return 0;
    }

    std::uint32_t addReference() override {
        ++kind_.references;
        return ++references_;
    }

    std::uint32_t release() override {
        --kind_.references;
        const std::uint32_t left = --references_;
        if (left == 0) delete this;
        return left;
    }

private:
    tKind& kind_;
    std::atomic<std::uint32_t> references_{1};
};

class Resource final : public tCounted<nZusysapi::Resource> {
public:
    using tCounted::tCounted;
    Result slot3() override { return unusedSlot; }
    Result slot4() override { return unusedSlot; }
    Result slot5() override { return unusedSlot; }
    Result slot6() override { return unusedSlot; }
    Result slot7() override { return unusedSlot; }
    Result slot8() override { return unusedSlot; }
    Result slot9() override { return unusedSlot; }
    Result slot10() override { return unusedSlot; }
    Result slot11() override { return unusedSlot; }
    Result slot12() override { return unusedSlot; }
    Result slot13() override { return unusedSlot; }
    Result slot14() override { return unusedSlot; }
    Result readSetting(std::uint32_t setting, std::uint32_t* value) override {
        const Result result = outcome(Step::readSetting, setting == 0x13000000 && value != nullptr);
        if (result == 0) *value = variable("ZUSYSAPI_SETTING", 1);
        return result;
    }
};

class Connection final : public tCounted<nZusysapi::Connection> {
public:
    using tCounted::tCounted;
    Result selectResource(std::uint32_t selector, nZusysapi::Resource** resource, std::uint32_t* count) override {
        const bool right = selector == 1 && resource != nullptr && count != nullptr && *count == 0;
        const Result result = outcome(Step::selectResource, right);
        if (result != 0) return result;
        *resource = new Resource(resources);
        *count = 1;
        return 0;
    }
};

class Options final : public tCounted<nZusysapi::Options> {
public:
    using tCounted::tCounted;
    Result slot3() override { return unusedSlot; }
    Result slot4() override { return unusedSlot; }
    Result slot5() override { return unusedSlot; }
    Result slot6() override { return unusedSlot; }
    Result slot7() override { return unusedSlot; }
    Result slot8() override { return unusedSlot; }
    Result slot9() override { return unusedSlot; }
    Result setOption(std::uint32_t option, std::uint32_t value) override {
        const Result result = outcome(Step::setOption, option == 0x103A000 && value == 4);
        if (result == 0) set = true;
        return result;
    }

    bool set = false;
};

class Framework final : public tCounted<nZusysapi::Framework> {
public:
    using tCounted::tCounted;
    Result slot3() override { return unusedSlot; }
    Result connect(const char16_t* target, std::uint32_t flag, nZusysapi::Options* givenOptions,
                   nZusysapi::Connection** connection) override {
        const auto* const ours = dynamic_cast<Options*>(givenOptions);
        const bool right = target != nullptr && std::u16string_view(target) == u"//localhost" && flag == 1 &&
                           ours != nullptr && ours->set && connection != nullptr;
        const Result result = outcome(Step::connect, right);
        if (result == 0) *connection = new Connection(connections);
        return result;
    }
    Result slot5() override { return unusedSlot; }
    Result slot6() override { return unusedSlot; }
    Result slot7() override { return unusedSlot; }
    Result slot8() override { return unusedSlot; }
    Result slot9() override { return unusedSlot; }
    Result createOptions(nZusysapi::Options** created) override {
        const Result result = outcome(Step::createOptions, created != nullptr);
        if (result == 0) *created = new Options(options);
        return result;
    }
};

void append(const char* line) {
    wchar_t path[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(L"ZUSYSAPI_REPORT", path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return;
    const HANDLE file = CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, line, static_cast<DWORD>(std::strlen(line)), &written, nullptr);
    CloseHandle(file);
}

/// "zusysapi: 3 references held: framework 2, resource 1" and a line break.
void reportReferences() {
    const tKind* const kinds[] = {&frameworks, &options, &connections, &resources};
    int held = 0;
    for (const tKind* kind : kinds) held += kind->references;
    char line[160];
    int length = std::snprintf(line, sizeof line, "zusysapi: %d references held", held);
    const char* separator = ": ";
    for (const tKind* kind : kinds) {
        if (kind->references == 0) continue;
        length += std::snprintf(line + length, sizeof line - static_cast<std::size_t>(length), "%s%s %d", separator,
                                kind->name, kind->references.load());
        separator = ", ";
    }
    std::snprintf(line + length, sizeof line - static_cast<std::size_t>(length), "\n");
    OutputDebugStringA(line);
    append(line);
}

}  // namespace

extern "C" {

__declspec(dllexport) Result
    zusysInstantiateFramework2(std::uint32_t first, std::uint32_t second, nZusysapi::Framework** framework) {
    ++attempts;
    const Result result = outcome(Step::instantiate, first == 1 && second == 0 && framework != nullptr);
    if (result == 0) *framework = new Framework(frameworks);
    return result;
}

BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_PROCESS_DETACH) reportReferences();
    return TRUE;
}
}
