// Compares status records under random calls, with buffer managers that run out of memory, with a plain model.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "check.h"
#include "err/StatusRecord.h"
#include "jsonText.h"

namespace {

using zuerr::StatusRecord;

/// How many requests for a larger buffer are still granted.
int grants = 0;
int modelGrants = 0;
/// Whether exactly the requested size is granted.
bool exact = false;

bool growExactly(StatusRecord& record, std::uint32_t capacity) noexcept {
    char* const buffer = static_cast<char*>(std::malloc(capacity));
    zuerr::CopyText(buffer, capacity, record.json == nullptr ? "{}" : record.json);
    std::free(record.json);
    record.json = buffer;
    record.capacity = capacity;
    return true;
}

bool stingyManager(StatusRecord& record, std::uint32_t capacity) noexcept {
    if (capacity <= record.capacity) return StatusRecord::reallocJsonDefault(record, capacity);
    if (grants-- <= 0) return false;
    return exact ? growExactly(record, capacity) : StatusRecord::reallocJsonDefault(record, capacity);
}

struct Model {
    bool stingy;
    std::int32_t code = 0;
    std::string text = "{}";
    std::size_t capacity = 0;

    bool grow(std::size_t wanted) {
        if (wanted <= capacity) return true;
        if (stingy && modelGrants-- <= 0) return false;
        capacity = stingy && exact ? wanted : 512;
        while (capacity < wanted) capacity *= 2;
        return true;
    }

    void clear() { *this = {stingy}; }

    bool setCode(std::int32_t next) {
        if (!(code == 0 && next != 0) && !(code > 0 && next < 0)) return false;
        code = next;
        text = "{}";
        return true;
    }

    /// Whether members can be added at all.
    bool begin() { return grow(4) && !jsonText::containsControlCharacter(text); }

    /// Adds to the object before the last `depth` closing braces.
    bool add(const std::string& member, std::size_t depth) {
        const std::size_t at = text.size() - depth;
        std::string next = text;
        next.insert(at, (text[at - 1] == '{' ? "" : ",") + member);
        while (next.size() + 2 > capacity) {
            if (!grow(2 * capacity - 2) || jsonText::containsControlCharacter(text)) return false;
        }
        text = next;
        return true;
    }

    bool copy(Model& source) {
        if (!setCode(source.code)) return false;
        if (stingy == source.stingy) {
            text = source.text;
            capacity = source.capacity;
            source.text = "{}";
            source.capacity = 0;
        } else if (grow(source.text.size() + 2)) {
            text = source.text;
        }
        return true;
    }
};

struct Subject {
    explicit Subject(bool stingy) : model{stingy} {
        if (stingy) record.reallocJson = stingyManager;
    }

    StatusRecord record;
    Model model;
};

/// Returns printable and escaped characters; rarely another control character, which makes the text invalid; sometimes
/// many, so that buffers grow.
std::string takeText(FuzzedDataProvider& data) {
    const int repeats = data.ConsumeIntegralInRange(0, 7) == 0 ? data.ConsumeIntegralInRange(1, 600) : 0;
    std::string text = std::string(static_cast<std::size_t>(repeats), 'x') + data.ConsumeRandomLengthString(30);
    for (char& character : text) {
        if (jsonText::isReadable(character) || character == 1) continue;
        character = "\b\t\n\f\r"[static_cast<unsigned char>(character) % 5];
    }
    return text;
}

void raise(FuzzedDataProvider& data, Subject& subject) {
    const auto code = data.ConsumeIntegralInRange(-2, 2);
    const std::string constant = takeText(data);
    const std::string file = takeText(data);
    const std::string component = takeText(data);
    const auto line = data.ConsumeIntegral<std::int32_t>();
    zuerr::RaiseInto(subject.record, code, {constant.c_str(), {file.c_str(), line}, component.c_str()});
    Model& model = subject.model;
    if (model.code < 0) return;
    model.setCode(code);
    static_cast<void>(model.begin() && model.add("\"error_constant\":" + jsonText::quoted(constant), 1) &&
                      model.add("\"file\":" + jsonText::quoted(file), 1) &&
                      model.add("\"line\":" + std::to_string(line), 1) &&
                      model.add("\"component\":" + jsonText::quoted(component), 1));
}

void append(FuzzedDataProvider& data, Subject& subject) {
    zuerr::JsonChain chain = zuerr::Append(subject.record);
    bool complete = subject.model.begin();
    std::size_t depth = 1;
    for (int i = data.ConsumeIntegralInRange(1, 5); i > 0; --i) {
        const std::string key = takeText(data);
        std::string member = jsonText::quoted(key) + ":";
        switch (data.ConsumeIntegralInRange(0, 4)) {
            case 0: {
                const std::string value = takeText(data);
                chain.AddString(key.c_str(), value.c_str());
                complete = complete && subject.model.add(member + jsonText::quoted(value), depth);
                break;
            }
            case 1: {
                const auto value = data.ConsumeIntegral<std::int32_t>();
                chain.AddInt(key.c_str(), value);
                complete = complete && subject.model.add(member + std::to_string(value), depth);
                break;
            }
            case 2: {
                const auto value = data.ConsumeIntegral<std::uint32_t>();
                chain.AddUInt(key.c_str(), value);
                complete = complete && subject.model.add(member + std::to_string(value), depth);
                break;
            }
            case 3:
                if (depth == 1) break;
                chain.LeaveObject();
                --depth;
                break;
            default:
                chain.EnterObject(key.c_str());
                complete = complete && subject.model.add(member + "{}", depth++);
                break;
        }
        check((chain.cursor() != nullptr) == complete, "where the chain stops");
    }
}

void checkSubject(const Subject& subject) {
    const StatusRecord& record = subject.record;
    const Model& model = subject.model;
    check(record.code == model.code, "code");
    check(record.capacity == model.capacity, "capacity");
    check((record.json != nullptr) == (model.capacity != 0), "a buffer with a capacity");
    if (record.json == nullptr) return;
    std::string expected = model.text;
    expected.resize(model.capacity);
    expected.back() = zuerr::jsonSentinel;
    check(std::memcmp(record.json, expected.data(), expected.size()) == 0, "text, terminator, zero fill and sentinel");
    jsonText::check(model.text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    grants = modelGrants = data.ConsumeIntegralInRange(0, 20);
    exact = data.ConsumeBool();
    std::array<Subject, 3> subjects{Subject(true), Subject(true), Subject(false)};
    while (data.remaining_bytes() > 0) {
        Subject& subject = subjects[data.ConsumeIntegralInRange<std::size_t>(0, 2)];
        Subject& other = subjects[data.ConsumeIntegralInRange<std::size_t>(0, 2)];
        switch (data.ConsumeIntegralInRange(0, 4)) {
            case 0: raise(data, subject); break;
            case 1: append(data, subject); break;
            case 2: check(Copy(subject.record, other.record) == subject.model.copy(other.model), "Copy"); break;
            case 3: {
                const auto code = data.ConsumeIntegralInRange(-2, 2);
                check(SetCode(subject.record, code) == subject.model.setCode(code), "SetCode");
                break;
            }
            default:
                Clear(subject.record);
                subject.model.clear();
                break;
        }
        checkSubject(subject);
        checkSubject(other);
    }
    for (const Subject& subject : subjects) checkSubject(subject);
    return 0;
}
