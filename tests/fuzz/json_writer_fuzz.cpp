// Compares the JSON writer with a model that edits a std::string: at every kind of cursor, in buffers of every size and
// in a buffer that grows. Another JSON library parses the writer's output.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "check.h"
#include "err/JsonReport.h"
#include "jsonText.h"

namespace {

/// The expected state: a container's text, the size of its buffer, and the offset after the last value written.
struct Model {
    std::string text;
    std::size_t capacity;
    std::size_t afterLast = 0;

    /// Inserts the member at this offset as the writer should. Returns false if there is too little space.
    bool insert(std::size_t offset, const std::string& member) {
        const bool atStart = text[offset] == '{' || text[offset] == '[';
        const std::size_t at = atStart ? offset + 1 : offset;
        const bool empty = text[at] == (text[at - 1] == '{' ? '}' : ']') && std::strchr("{[", text[at - 1]) != nullptr;
        const std::string inserted = empty ? member : atStart ? member + "," : "," + member;
        if (text.size() + inserted.size() + 2 > capacity) return false;
        text.insert(at, inserted);
        afterLast = atStart ? at + member.size() : at + inserted.size();
        return true;
    }
};

void checkBuffer(const std::vector<char>& buffer, const Model& model) {
    std::vector<char> expected(model.text.begin(), model.text.end());
    expected.resize(model.capacity);
    expected.back() = zuerr::jsonSentinel;
    check(buffer == expected, "text, terminator, zero fill and sentinel");
}

/// FindEnd rejects an unescaped control character.
void checkEnd(std::vector<char>& buffer, const Model& model) {
    const bool valid = !jsonText::containsControlCharacter(model.text);
    check(zuerr::FindEnd(buffer.data()) == (valid ? buffer.data() + model.text.size() - 1 : nullptr), "the end");
}

/// Returns text without zero bytes. Readable text contains only bytes that every JSON reader accepts.
std::string takeText(FuzzedDataProvider& data, bool readable) {
    std::string text = data.ConsumeRandomLengthString(40);
    for (char& character : text) {
        const bool isEscaped = character != 0 && std::strchr("\b\t\n\f\r", character) != nullptr;
        if (character == 0 || (readable && !isEscaped && !jsonText::isReadable(character))) character = 'x';
    }
    return text;
}

/// A member to write.
struct Member {
    Member(FuzzedDataProvider& data, bool readable, bool inArray, std::size_t number)
        : hasKey(!inArray),
          key(hasKey ? (readable ? std::to_string(number) + " " : "") + takeText(data, readable) : ""),
          kind(data.ConsumeIntegralInRange(0, 3)),
          text(kind == 0 ? takeText(data, readable) : ""),
          value(kind == 1 || kind == 2 ? data.ConsumeIntegral<std::uint32_t>() : 0) {}

    [[nodiscard]] std::string asText() const {
        const std::string values[] = {jsonText::quoted(text), std::to_string(static_cast<std::int32_t>(value)),
                                      std::to_string(value), "{}"};
        return (hasKey ? jsonText::quoted(key) + ":" : "") + values[kind];
    }

    char* write(char* cursor) const {
        const char* const name = hasKey ? key.c_str() : nullptr;
        switch (kind) {
            case 0: return zuerr::AddString(cursor, name, text.c_str());
            case 1: return zuerr::AddInt(cursor, name, static_cast<std::int32_t>(value));
            case 2: return zuerr::AddUInt(cursor, name, value);
            default: return zuerr::AddObject(cursor, name);
        }
    }

    bool hasKey;
    std::string key;
    int kind;
    std::string text;
    std::uint32_t value;
};

struct Position {
    std::size_t offset;
    bool inArray;
};

/// Returns a cursor's position: at the start of the text, at its end, inside the last object written, or after the last
/// value written.
Position takePosition(FuzzedDataProvider& data, const Model& model, bool array, bool lastIsInArray) {
    switch (data.ConsumeIntegralInRange(0, 3)) {
        case 0: return {0, array};
        case 1: return {model.text.size() - 1, array};
        case 2:
            if (model.afterLast < 2 || model.text.substr(model.afterLast - 2, 2) != "{}") break;
            return {model.afterLast - 1, false};
        default: break;
    }
    return {model.afterLast, lastIsInArray};
}

/// Writes the member to both the buffer and the model. Returns false if there was too little space.
bool write(const Member& member, std::size_t offset, std::vector<char>& buffer, Model& model) {
    const bool fits = model.insert(offset, member.asText());
    char* const next = member.write(buffer.data() + offset);
    check(next == (fits ? buffer.data() + model.afterLast : nullptr), "the returned cursor");
    checkBuffer(buffer, model);
    return fits;
}

void grow(std::vector<char>& buffer, Model& model) {
    const std::vector<char> old = buffer;
    model.capacity *= 2;
    buffer.assign(model.capacity, '#');
    check(zuerr::CopyText(buffer.data(), static_cast<std::uint32_t>(buffer.size()), old.data()),
          "space in the larger buffer");
    checkBuffer(buffer, model);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    const bool readable = data.ConsumeBool();
    const bool array = data.ConsumeBool();
    const bool grows = data.ConsumeBool();
    Model model{array ? "[]" : "{}", data.ConsumeIntegralInRange<std::size_t>(4, 600)};
    model.afterLast = 1;
    std::vector<char> buffer(model.capacity, '#');
    check(zuerr::CopyText(buffer.data(), static_cast<std::uint32_t>(buffer.size()), model.text.c_str()),
          "space in the first buffer");

    bool lastIsInArray = array;
    for (std::size_t number = 0; data.remaining_bytes() > 0; ++number) {
        const Position position = takePosition(data, model, array, lastIsInArray);
        const Member member(data, readable, position.inArray, number);
        bool written = write(member, position.offset, buffer, model);
        while (grows && !written) {
            grow(buffer, model);
            written = write(member, position.offset, buffer, model);
        }
        if (!written) continue;
        lastIsInArray = position.inArray;
        jsonText::check(model.text);
    }
    // Readable keys are unique.
    if (readable)
        check(nlohmann::ordered_json::parse(model.text).dump() == model.text, "the values that another library reads");
    checkEnd(buffer, model);
    return 0;
}
