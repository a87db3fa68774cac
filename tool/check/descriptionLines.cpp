#include "tool/check/descriptionLines.h"

#include <algorithm>
#include <string>

#include "ini/line.h"
#include "ini/lineReader.h"
#include "ini/nameIndex.h"
#include "tool/check/similarNames.h"
#include "tool/check/wording.h"

namespace nCheck {
namespace {

namespace nKeys = nDescriptionFormat::nKeys;
using nWording::quoted;
using tWords = tFileFindings::tWords;

constexpr const char* rejects = ": the host rejects the whole file";

/// Returns the key's position in nKeys::all, or its size if the host knows no such key.
std::size_t knownKey(std::string_view name) {
    const auto found = std::find_if(nKeys::all.begin(), nKeys::all.end(),
                                    [name](std::string_view key) { return nIni::sameName(key, name, false); });
    return static_cast<std::size_t>(found - nKeys::all.begin());
}

/// Returns the same for a name with the case that the host writes.
std::size_t exactKey(std::string_view name) {
    return static_cast<std::size_t>(std::find(nKeys::all.begin(), nKeys::all.end(), name) - nKeys::all.begin());
}

constexpr bool isKnown(std::size_t key) { return key < nKeys::all.size(); }

bool isService(std::string_view section) { return nIni::sameName(section, nDescriptionFormat::section, false); }

struct tExplanation {
    const char* what;
    const char* remedy;  ///< empty if the rule's says enough
};

/// Requires: the line is malformed, and not blank.
tExplanation explain(nIni::tLineKind kind, std::string_view text) {
    if (kind == nIni::tLineKind::headerNotClosed) return {"the section's name has no \"]\"", "Add the bracket."};
    if (kind == nIni::tLineKind::headerWithoutName) return {"the section has no name", "Write [Service]."};
    if (kind == nIni::tLineKind::keyWithoutName) return {"nothing precedes the \"=\"", "Write the key's name."};
    const std::string_view start = text.substr(text.find_first_not_of(" \t\v\f\r\n"));
    if (start.starts_with('#') || start.starts_with("//")) {
        return {"only a semicolon begins a comment", "Write a semicolon instead."};
    }
    const bool colon = start.find(':') != std::string_view::npos;
    return {"no \"=\"", colon ? "Separate the key from the value by \"=\"." : ""};
}

/// Reads the lines one after another and remembers what the later ones depend on.
class tLines {
public:
    tLines(const tKeyLines& counting, tFileFindings& findings) : counting_(counting), findings_(findings) {}

    void read(std::string_view text, int number);
    void finish(bool rejected);

private:
    void reportMalformed(nIni::tLineKind kind, std::string_view text, int number);
    void readHeader(std::string_view name, int number);
    void readKey(std::string_view name, int number);
    void readServiceKey(std::string_view name, int number);
    void reportRepeatedKey(std::size_t key, int number);
    void reportUnknownKey(std::string_view name, int number);

    const tKeyLines& counting_;
    tFileFindings& findings_;
    bool hasSection_ = false;
    bool hasService_ = false;
    bool inService_ = false;
    bool inContinuation_ = false;  ///< whether the previous key of the section was part of a run of continuation keys
};

void tLines::read(std::string_view text, int number) {
    const nIni::tLine line = nIni::readLine(text, nDescriptionFormat::documentFlags);
    if (nIni::isMalformed(line.kind)) reportMalformed(line.kind, text, number);
    if (line.kind == nIni::tLineKind::header) readHeader(line.name, number);
    if (line.kind == nIni::tLineKind::key) readKey(line.name, number);
}

void tLines::reportMalformed(nIni::tLineKind kind, std::string_view text, int number) {
    if (kind == nIni::tLineKind::blank) {
        findings_.add("blank-line", number, [] { return tWords{std::string("blank line") + rejects}; });
        return;
    }
    findings_.add("malformed-line", number, [kind, text] {
        const auto [what, remedy] = explain(kind, text);
        return tWords{std::string(what) + rejects, remedy};
    });
}

void tLines::readHeader(std::string_view name, int number) {
    hasSection_ = true;
    inContinuation_ = false;
    inService_ = isService(name);
    hasService_ = hasService_ || inService_;
    if (inService_) return;
    if (nSimilarNames::areSimilar(name, nDescriptionFormat::section)) {
        findings_.add("misspelt-section", number, [name] {
            return tWords{"the host ignores section " + quoted(name) + "; it reads \"Service\"", "Write [Service]."};
        });
    } else {
        findings_.add("unknown-section", number, [name] { return tWords{"the host ignores section " + quoted(name)}; });
    }
}

void tLines::readKey(std::string_view name, int number) {
    if (!hasSection_) {
        findings_.add("key-before-section", number,
                      [name] { return tWords{"the host ignores " + quoted(name) + ", which is in no section"}; });
    } else if (inService_) {
        readServiceKey(name, number);
    }
}

void tLines::readServiceKey(std::string_view name, int number) {
    // Most keys are spelt as the host does, and none of these is a continuation.
    if (const std::size_t key = exactKey(name); isKnown(key)) {
        inContinuation_ = false;
        reportRepeatedKey(key, number);
        return;
    }
    const std::optional<nIni::tContinuation> continuation = nIni::toContinuation(name);
    const bool continues = continuation && !continuation->startsRun && inContinuation_;
    inContinuation_ = continuation && (continuation->startsRun || inContinuation_);
    if (continues) return;
    const std::size_t key = knownKey(inContinuation_ ? continuation->stem : name);
    if (isKnown(key)) {
        reportRepeatedKey(key, number);
    } else {
        reportUnknownKey(name, number);
    }
}

void tLines::reportRepeatedKey(std::size_t key, int number) {
    const std::optional<int> counts = counting_.at(key);
    if (!counts || *counts == number) return;
    findings_.add("repeated-key", number, [&] {
        return tWords{quoted(nKeys::all[key]) + " does not count here but in line " + std::to_string(*counts)};
    });
}

void tLines::reportUnknownKey(std::string_view name, int number) {
    if (const auto continuation = nIni::toContinuation(name); continuation && isKnown(knownKey(continuation->stem))) {
        findings_.add("misspelt-key", number, [&] {
            return tWords{quoted(name) + " continues nothing",
                          "Begin with " + std::string(continuation->stem) + " Line1, and continue in the next line."};
        });
        return;
    }
    if (const auto meant = nSimilarNames::closest(name, nKeys::all)) {
        findings_.add("misspelt-key", number, [&] {
            return tWords{"the host does not know " + quoted(name) + "; it reads " + quoted(*meant),
                          "Write " + std::string(*meant) + "=, or remove the line."};
        });
    } else {
        findings_.add("unknown-key", number, [name] { return tWords{"the host does not know " + quoted(name)}; });
    }
}

void tLines::finish(bool rejected) {
    if (!hasService_ && !rejected) {
        findings_.add("no-service-section", std::nullopt, "there is no section [Service], so the description is empty");
    }
}

/// Returns whether the text is UTF-16 without a byte-order mark: every second byte at its beginning is zero.
bool looksWide(std::string_view text) {
    if (text.size() < 4) return false;
    const auto isZero = [text](std::size_t i) { return text[i] == 0; };
    return isZero(0) != isZero(1) && isZero(0) == isZero(2) && isZero(1) == isZero(3);
}

/// Reports bytes that are no text: zeros, and the first others while `lookForBytes` is true.
void checkBytes(std::string_view line, bool endsWithZero, int number, bool& lookForBytes, tFileFindings& findings) {
    if (endsWithZero) findings.add("zero-byte", number, [] { return tWords{"a zero byte ends the line"}; });
    if (!lookForBytes || nWording::isUtf8(line)) return;
    lookForBytes = false;
    findings.add("not-utf-8", number, "the text is not valid UTF-8 from here on");
}

}  // namespace

void findInLines(std::string_view text, bool rejected, const tKeyLines& counting, tFileFindings& findings) {
    if (rejected && looksWide(text)) {
        findings.add("utf-16", std::nullopt, std::string("UTF-16 text") + rejects);
        return;
    }
    const std::string_view content = nIni::withoutByteOrderMark(text);
    if (content.size() < text.size()) findings.add("byte-order-mark", 1, "a byte-order mark, which the host skips");
    const char* const end = content.data() + content.size();
    nIni::tLineReader reader;
    reader.setBlock(content, true);
    tLines lines(counting, findings);
    bool lookForBytes = !nWording::isUtf8(content);
    while (const std::optional<std::string_view> line = reader.next()) {
        const char* const lineEnd = line->data() + line->size();
        checkBytes(*line, lineEnd < end && *lineEnd == 0, reader.lineNumber(), lookForBytes, findings);
        lines.read(*line, reader.lineNumber());
    }
    lines.finish(rejected);
}

}  // namespace nCheck
