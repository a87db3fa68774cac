// The JSON writer, at every kind of cursor and in every size of buffer, against a model that edits a std::string.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "err/JsonReport.h"

namespace {

std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        const std::size_t found = std::string("\b\t\n\f\r\"\\").find(character);
        if (found == std::string::npos) {
            result += character;
        } else {
            result += '\\';
            result += "btnfr\"\\"[found];
        }
    }
    return result;
}

/// A container's text, its buffer's room, and the offset behind the last value written: what the buffer must show.
struct Model {
    std::string text;
    std::size_t capacity;
    std::size_t behindLast = 0;

    /// Inserts at this offset by the writer's rule; returns false when there is no room.
    bool insert(std::size_t offset, const std::string& member) {
        const bool atStart = text[offset] == '{' || text[offset] == '[';
        const std::size_t at = atStart ? offset + 1 : offset;
        const bool empty = text[at] == (text[at - 1] == '{' ? '}' : ']') && std::strchr("{[", text[at - 1]) != nullptr;
        const std::string inserted = empty ? member : atStart ? member + "," : "," + member;
        if (text.size() + inserted.size() + 2 > capacity) return false;
        text.insert(at, inserted);
        behindLast = atStart ? at + member.size() : at + inserted.size();
        return true;
    }
};

void check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void checkBuffer(const std::vector<char>& buffer, const Model& model) {
    std::vector<char> expected(model.text.begin(), model.text.end());
    expected.resize(model.capacity);
    expected.back() = zuerr::jsonSentinel;
    check(buffer == expected, "the buffer is not text, terminator, zero fill and sentinel");
}

/// Text without a zero: any bytes, or such as every JSON reader takes.
std::string takeText(FuzzedDataProvider& data, bool readable) {
    std::string text = data.ConsumeRandomLengthString(40);
    for (char& character : text) {
        const bool isEscaped = character != 0 && std::strchr("\b\t\n\f\r", character) != nullptr;
        if (character == 0 || (readable && !isEscaped && (character < ' ' || character > '~'))) character = 'x';
    }
    return text;
}

/// One write of a random kind, in the buffer and in the model. False when there was no room for it.
bool writeMember(FuzzedDataProvider& data, bool readable, bool inArray, std::size_t offset, std::vector<char>& buffer,
                 Model& model) {
    const std::string keyText = takeText(data, readable);
    const char* const key = inArray ? nullptr : keyText.c_str();
    std::string member = inArray ? "" : "\"" + escaped(keyText) + "\":";
    char* const cursor = buffer.data() + offset;
    char* behind = nullptr;
    switch (data.ConsumeIntegralInRange(0, 3)) {
        case 0: {
            const std::string value = takeText(data, readable);
            member += "\"" + escaped(value) + "\"";
            behind = zuerr::AddString(cursor, key, value.c_str());
            break;
        }
        case 1: {
            const auto value = data.ConsumeIntegral<std::int32_t>();
            member += std::to_string(value);
            behind = zuerr::AddInt(cursor, key, value);
            break;
        }
        case 2: {
            const auto value = data.ConsumeIntegral<std::uint32_t>();
            member += std::to_string(value);
            behind = zuerr::AddUInt(cursor, key, value);
            break;
        }
        default:
            member += "{}";
            behind = zuerr::AddObject(cursor, key);
            break;
    }
    const bool fits = model.insert(offset, member);
    check(behind == (fits ? buffer.data() + model.behindLast : nullptr), "the cursor returned is another");
    return fits;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    const bool readable = data.ConsumeBool();
    const bool array = data.ConsumeBool();
    Model model{array ? "[]" : "{}", data.ConsumeIntegralInRange<std::size_t>(4, 600)};
    model.behindLast = 1;
    std::vector<char> buffer(model.capacity, '#');
    check(zuerr::CopyText(buffer.data(), static_cast<std::uint32_t>(buffer.size()), model.text.c_str()), "no room");

    bool lastIsInArray = array;
    while (data.remaining_bytes() > 0) {
        std::size_t offset = model.behindLast;
        bool inArray = lastIsInArray;
        switch (data.ConsumeIntegralInRange(0, 3)) {
            case 0:
                offset = 0;
                inArray = array;
                break;
            case 1:
                offset = model.text.size() - 1;
                inArray = array;
                break;
            case 2:
                // Into the object that was written last, if it was one.
                if (model.behindLast < 2 || model.text.substr(model.behindLast - 2, 2) != "{}") break;
                --offset;
                inArray = false;
                break;
            default: break;
        }
        if (writeMember(data, readable, inArray, offset, buffer, model)) lastIsInArray = inArray;
        checkBuffer(buffer, model);
    }
    if (readable) {
        check(nlohmann::json::accept(model.text), "not the JSON that others read");
        check(zuerr::FindEnd(buffer.data()) == buffer.data() + model.text.size() - 1, "no end is found");
    }
    return 0;
}
