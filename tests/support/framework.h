#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "source/zusysapi.h"
#include "tests/support/allocations.h"

namespace support {

class tScriptedFramework;

/// The base of the scripted framework's objects: a checked reference count. An object exists until its framework is
/// destroyed, so that a use after the last release is harmless and is reported.
class tCounted {
public:
    tCounted(tScriptedFramework& script, std::string name) : script_(script), name_(std::move(name)) {}
    virtual ~tCounted() = default;
    tCounted(const tCounted&) = delete;
    tCounted& operator=(const tCounted&) = delete;

    [[nodiscard]] std::uint32_t references() const { return references_; }
    [[nodiscard]] const std::string& name() const { return name_; }

protected:
    /// Every operation calls this first.
    void note(const std::string& call);
    std::uint32_t add();
    std::uint32_t drop();
    nZusysapi::Result unexpectedSlot(int slot) {
        ADD_FAILURE() << name_ << " called through slot " << slot;
        return -1;
    }

    tScriptedFramework& script_;

private:
    std::string name_;
    std::uint32_t references_ = 1;
};

/// A system-configuration framework that a test scripts. It records every call and checks its arguments, and on
/// destruction it expects that every reference has been released. At most one may exist at a time.
class tScriptedFramework {
public:
    using Result = nZusysapi::Result;

    tScriptedFramework() { current_ = this; }
    ~tScriptedFramework() {
        current_ = nullptr;
        for (const auto& object : objects_) EXPECT_EQ(object->references(), 0U) << object->name() << " still held";
    }
    tScriptedFramework(const tScriptedFramework&) = delete;
    tScriptedFramework& operator=(const tScriptedFramework&) = delete;

    /// The library's entry point.
    static Result instantiate(std::uint32_t first, std::uint32_t second, nZusysapi::Framework** framework);

    /// The value of the setting.
    std::uint32_t setting = 1;
    /// Returns the result of a step (1 to 6) on an attempt (1 and up), where 0 is success; called when the step is
    /// called. May throw.
    std::function<Result(int attempt, int step)> outcome = [](int, int) { return 0; };
    /// The effect of a failing step on its out pointer.
    enum class tOnFailure { leavesThePointer, writesNull, returnsAnObject, writesGarbage };
    tOnFailure onFailure = tOnFailure::leavesThePointer;
    /// The step that succeeds but returns null; 0 for none.
    int nullStep = 0;
    /// Whether every instantiation returns the same framework object.
    bool oneFramework = false;

    /// The calls, in order: "instantiate", "framework.createOptions", "options.release" and so on. From the second
    /// attempt on, the names contain its number: "framework2.createOptions".
    std::vector<std::string> calls;
    int attempts = 0;

    [[nodiscard]] std::uint32_t held() const {
        std::uint32_t references = 0;
        for (const auto& object : objects_) references += object->references();
        return references;
    }

    /// Called by the objects: the outcome of a step that returns an object.
    template <class Implementation, class Interface>
    Result returnObject(int step, const char* name, Interface** out);

private:
    inline static tScriptedFramework* current_ = nullptr;
    std::vector<std::unique_ptr<tCounted>> objects_;
};

inline void tCounted::note(const std::string& call) {
    const allocations::tPause pause;
    script_.calls.push_back(name_ + "." + call);
    EXPECT_GT(references_, 0U) << name_ << "." << call << " after the last release";
}

inline std::uint32_t tCounted::add() {
    note("addReference");
    return ++references_;
}

inline std::uint32_t tCounted::drop() {
    note("release");
    return references_ == 0 ? 0 : --references_;
}

/// The three slots that all interfaces share.
template <class Interface>
class tScripted : public Interface, public tCounted {
public:
    using Result = nZusysapi::Result;
    using tCounted::tCounted;

    Result queryInterface(const nZusysapi::InterfaceId& id, void** object) override {
        note("queryInterface");
        EXPECT_EQ(id.data4[7], 0x46) << "queried for an interface other than the identity";
        add();
        *object = static_cast<nZusysapi::Object*>(this);
        return 0;
    }
    std::uint32_t addReference() override { return add(); }
    std::uint32_t release() override { return drop(); }
};

class tScriptedResource final : public tScripted<nZusysapi::Resource> {
public:
    using tScripted::tScripted;
    Result slot3() override { return unexpectedSlot(3); }
    Result slot4() override { return unexpectedSlot(4); }
    Result slot5() override { return unexpectedSlot(5); }
    Result slot6() override { return unexpectedSlot(6); }
    Result slot7() override { return unexpectedSlot(7); }
    Result slot8() override { return unexpectedSlot(8); }
    Result slot9() override { return unexpectedSlot(9); }
    Result slot10() override { return unexpectedSlot(10); }
    Result slot11() override { return unexpectedSlot(11); }
    Result slot12() override { return unexpectedSlot(12); }
    Result slot13() override { return unexpectedSlot(13); }
    Result slot14() override { return unexpectedSlot(14); }
    Result readSetting(std::uint32_t setting, std::uint32_t* value) override {
        note("readSetting");
        EXPECT_EQ(setting, 0x13000000U);
        EXPECT_EQ(*value, 0U) << "the value starts as 0";
        const Result result = script_.outcome(script_.attempts, 6);
        if (result == 0) *value = script_.setting;
        return result;
    }
};

class tScriptedConnection final : public tScripted<nZusysapi::Connection> {
public:
    using tScripted::tScripted;
    Result selectResource(std::uint32_t selector, nZusysapi::Resource** resource, std::uint32_t* count) override {
        note("selectResource");
        EXPECT_EQ(selector, 1U);
        EXPECT_EQ(*count, 0U) << "the count starts as 0";
        *count = 1;
        return script_.returnObject<tScriptedResource>(5, "resource", resource);
    }
};

class tScriptedOptions final : public tScripted<nZusysapi::Options> {
public:
    using tScripted::tScripted;
    Result slot3() override { return unexpectedSlot(3); }
    Result slot4() override { return unexpectedSlot(4); }
    Result slot5() override { return unexpectedSlot(5); }
    Result slot6() override { return unexpectedSlot(6); }
    Result slot7() override { return unexpectedSlot(7); }
    Result slot8() override { return unexpectedSlot(8); }
    Result slot9() override { return unexpectedSlot(9); }
    Result setOption(std::uint32_t option, std::uint32_t value) override {
        note("setOption");
        EXPECT_EQ(option, 0x103A000U);
        EXPECT_EQ(value, 4U);
        return script_.outcome(script_.attempts, 3);
    }
};

class tScriptedFrameworkObject final : public tScripted<nZusysapi::Framework> {
public:
    using tScripted::tScripted;
    Result slot3() override { return unexpectedSlot(3); }
    Result connect(const char16_t* target, std::uint32_t flag, nZusysapi::Options* options,
                   nZusysapi::Connection** connection) override {
        note("connect");
        EXPECT_TRUE(std::u16string_view(target) == u"//localhost");
        EXPECT_EQ(flag, 1U);
        EXPECT_NE(dynamic_cast<tScriptedOptions*>(options), nullptr);
        return script_.returnObject<tScriptedConnection>(4, "connection", connection);
    }
    Result slot5() override { return unexpectedSlot(5); }
    Result slot6() override { return unexpectedSlot(6); }
    Result slot7() override { return unexpectedSlot(7); }
    Result slot8() override { return unexpectedSlot(8); }
    Result slot9() override { return unexpectedSlot(9); }
    Result createOptions(nZusysapi::Options** options) override {
        note("createOptions");
        return script_.returnObject<tScriptedOptions>(2, "options", options);
    }
};

template <class Implementation, class Interface>
nZusysapi::Result tScriptedFramework::returnObject(int step, const char* name, Interface** out) {
    const allocations::tPause pause;
    EXPECT_EQ(*out, nullptr) << "the out pointer of step " << step << " starts as null";
    const Result result = outcome(attempts, step);
    if (step == nullStep) return result;
    if (result == 0 || onFailure == tOnFailure::returnsAnObject) {
        const std::string number = attempts == 1 ? "" : std::to_string(attempts);
        auto object = std::make_unique<Implementation>(*this, name + number);
        *out = object.get();
        objects_.push_back(std::move(object));
    } else if (onFailure == tOnFailure::writesNull) {
        *out = nullptr;
    } else if (onFailure == tOnFailure::writesGarbage) {
        static int garbage = 0;
        *out = reinterpret_cast<Interface*>(&garbage);
    }
    return result;
}

inline nZusysapi::Result tScriptedFramework::instantiate(std::uint32_t first, std::uint32_t second,
                                                         nZusysapi::Framework** framework) {
    const allocations::tPause pause;
    tScriptedFramework& script = *current_;
    ++script.attempts;
    script.calls.emplace_back("instantiate");
    EXPECT_EQ(first, 1U);
    EXPECT_EQ(second, 0U);
    if (script.oneFramework && !script.objects_.empty()) {
        auto& object = dynamic_cast<tScriptedFrameworkObject&>(*script.objects_.front());
        object.addReference();
        *framework = &object;
        return 0;
    }
    return script.returnObject<tScriptedFrameworkObject>(1, "framework", framework);
}

}  // namespace support
