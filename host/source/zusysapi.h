#pragma once

#include <cstddef>
#include <cstdint>

/// The operations of the system-configuration library zusysapi.dll that this program uses. Its objects follow the
/// conventions of COM (https://learn.microsoft.com/windows/win32/com/the-component-object-model): a function table
/// whose first three slots are query interface, add reference and release. Operations return 0 on success; the caller
/// must release each object that is returned. Unused slots are named after their numbers.
namespace nZusysapi {

using Result = std::int32_t;

/// An interface identifier (GUID) in its memory layout.
struct InterfaceId {
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::uint8_t data4[8];
};

static_assert(sizeof(InterfaceId) == 16 && alignof(InterfaceId) == 4);
static_assert(offsetof(InterfaceId, data2) == 4 && offsetof(InterfaceId, data3) == 6 &&
              offsetof(InterfaceId, data4) == 8);

/// The identity interface: two references denote the same object if and only if both return the same pointer for it.
inline constexpr InterfaceId identity{0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// The order of the functions defines the binary interface. Virtual destructors would occupy slots, so there are none.
class Object {
public:
    virtual Result queryInterface(const InterfaceId& id, void** object) = 0;  // slot 0
    virtual std::uint32_t addReference() = 0;
    virtual std::uint32_t release() = 0;

protected:
    ~Object() = default;
};

class Resource : public Object {
public:
    virtual Result slot3() = 0;
    virtual Result slot4() = 0;
    virtual Result slot5() = 0;
    virtual Result slot6() = 0;
    virtual Result slot7() = 0;
    virtual Result slot8() = 0;
    virtual Result slot9() = 0;
    virtual Result slot10() = 0;
    virtual Result slot11() = 0;
    virtual Result slot12() = 0;
    virtual Result slot13() = 0;
    virtual Result slot14() = 0;
    virtual Result readSetting(std::uint32_t setting, std::uint32_t* value) = 0;  // slot 15

protected:
    ~Resource() = default;
};

class Connection : public Object {
public:
    virtual Result selectResource(std::uint32_t selector, Resource** resource, std::uint32_t* count) = 0;  // slot 3

protected:
    ~Connection() = default;
};

class Options : public Object {
public:
    virtual Result slot3() = 0;
    virtual Result slot4() = 0;
    virtual Result slot5() = 0;
    virtual Result slot6() = 0;
    virtual Result slot7() = 0;
    virtual Result slot8() = 0;
    virtual Result slot9() = 0;
    virtual Result setOption(std::uint32_t option, std::uint32_t value) = 0;  // slot 10

protected:
    ~Options() = default;
};

class Framework : public Object {
public:
    virtual Result slot3() = 0;
    virtual Result connect(const char16_t* target, std::uint32_t flag, Options* options,
                           Connection** connection) = 0;  // slot 4
    virtual Result slot5() = 0;
    virtual Result slot6() = 0;
    virtual Result slot7() = 0;
    virtual Result slot8() = 0;
    virtual Result slot9() = 0;
    virtual Result createOptions(Options** options) = 0;  // slot 10

protected:
    ~Framework() = default;
};

/// The library's only export, zusysInstantiateFramework2, called with 1 and 0.
using InstantiateFramework2 = Result (*)(std::uint32_t, std::uint32_t, Framework**);
inline constexpr const char* libraryName = "zusysapi.dll";
inline constexpr const char* entryName = "zusysInstantiateFramework2";

}  // namespace nZusysapi
