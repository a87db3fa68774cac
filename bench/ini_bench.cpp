// Group ini, natively: the parser against one pass over the bytes, against other parsers, and against itself.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <vector>

#include "bench/groups.h"
#include "bench/pairs.h"
#include "bench/peers.h"
#include "ini/file.h"
#include "ini/parser.h"

namespace {

using nBench::demand;

using tText = std::shared_ptr<const std::string>;

/// The numbers below `count`, shuffled, the same at every run.
std::vector<std::size_t> shuffled(std::size_t count) {
    std::vector<std::size_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937_64(1));
    return numbers;
}

/// One section of that many keys, each once, about thirty bytes a line.
tText textOfKeys(std::int64_t count) {
    std::string text = "[Service]\n";
    for (const std::size_t number : shuffled(static_cast<std::size_t>(count))) {
        const std::string digits = std::to_string(number);
        text.append("Setting").append(digits).append("=value of ").append(digits) += '\n';
    }
    return std::make_shared<const std::string>(std::move(text));
}

using tNames = std::vector<std::string>;

/// That many names, tried in the order of their numbers, of which one in 64 is taken. Hostile: those that a table would
/// put into a 64th of its slots if its key were zero. Otherwise: every 64th.
tNames shortNames(std::int64_t count, bool hostile) {
    constexpr std::uint64_t parts = 64;
    tNames names;
    for (std::uint64_t number = 0; count > 0; ++number) {
        std::string name = "Setting" + std::to_string(number);
        const std::uint64_t hash = nIni::hashName(name, false, 0) & UINT32_MAX;
        if (hostile ? hash * parts >> 32U != 0 : number % parts != 0) continue;
        names.push_back(std::move(name));
        --count;
    }
    return names;
}

/// Returns a long name that a hash which multiplies words by odd constants cannot tell from those of other numbers: of
/// each pair of words, it flips the top bits together.
std::string hostileName(std::size_t number) {
    std::string name(16384, 'a');
    for (std::size_t bit = 0; bit < 10; ++bit) {
        std::string group(16, 'b');
        if ((number >> bit & 1U) != 0) {
            for (const std::size_t position : {7U, 11U, 15U}) group[position] = static_cast<char>('b' | 0x80);
        }
        name += group;
    }
    return name;
}

/// That many short names and 1,000 long ones, hostile or of random letters.
tNames longNames(std::int64_t count, bool hostile) {
    tNames names = shortNames(count, false);
    std::mt19937 random(1);
    for (std::size_t number = 0; number < 1000; ++number) {
        std::string name = hostileName(number);
        if (!hostile) {
            for (char& c : name) c = static_cast<char>('a' + random() % 26);
        }
        names.push_back(std::move(name));
    }
    return names;
}

tText textOf(const tNames& names, bool asSections) {
    std::string text = asSections ? "" : "[Service]\n";
    for (const std::string& name : names) {
        if (asSections) {
            text.append("[").append(name) += "]\n";
        } else {
            text.append(name) += "=value\n";
        }
    }
    return std::make_shared<const std::string>(std::move(text));
}

/// That many sections of three keys.
tText textOfSections(std::int64_t count) {
    std::string text;
    for (const std::size_t number : shuffled(static_cast<std::size_t>(count))) {
        text.append("[Section").append(std::to_string(number)).append("]\nName=one\nPath=two\nStartup=three\n");
    }
    return std::make_shared<const std::string>(std::move(text));
}

/// One stream for one text after the other: making a stream costs as much as parsing a small document.
class tTextStream {
public:
    tTextStream()
        : stream_(fopencookie(this, "rb", {.read = read, .write = nullptr, .seek = seek, .close = nullptr})) {}

    /// Returns the stream at the beginning of the text, which must outlive its use.
    std::FILE* of(std::string_view text) {
        text_ = text;
        std::rewind(stream_.get());
        return stream_.get();
    }

private:
    static ssize_t read(void* cookie, char* buffer, std::size_t size) {
        std::string_view& rest = static_cast<tTextStream*>(cookie)->rest_;
        const std::size_t count = rest.copy(buffer, size);
        rest.remove_prefix(count);
        return static_cast<ssize_t>(count);
    }
    static int seek(void* cookie, off64_t* /*position*/, int /*origin*/) {
        auto& self = *static_cast<tTextStream*>(cookie);
        self.rest_ = self.text_;
        return 0;
    }

    std::string_view text_;
    std::string_view rest_;
    nIni::tFile stream_;
};

std::FILE* streamOf(const std::string& text) {
    static tTextStream stream;
    return stream.of(text);
}

void parseInto(nIni::tDocument& document, const std::string& text) {
    document.flags = nIni::acceptEmptyValues | nIni::stripDoubleQuotes;
    demand(parseStream(document, streamOf(text)) == 0 && document.firstErrorLine == -1, "the text is rejected");
}

/// What is timed: everything from the text to freeing the document.
void parse(const std::string& text) {
    nIni::tDocument document;
    parseInto(document, text);
}

nBench::tKeyValues keysOf(const nIni::tSection& section) {
    nBench::tKeyValues keys;
    for (const nIni::tKey& key : section.keys) keys.emplace_back(key.name, key.value);
    return keys;
}

nBench::tKeyValues readKeys(const std::string& text) {
    nIni::tDocument document;
    parseInto(document, text);
    demand(document.sections.size() == 1, "not one section");
    return keysOf(document.sections.front());
}

std::size_t countSections(const std::string& text) {
    nIni::tDocument document;
    parseInto(document, text);
    return document.sections.size();
}

/// What any reader of lines does at least: one pass over the bytes that finds the end of each.
std::int64_t countLines(std::string_view text) {
    std::int64_t lines = 0;
    while (const void* const end = std::memchr(text.data(), '\n', text.size())) {
        text.remove_prefix(static_cast<std::size_t>(static_cast<const char*>(end) - text.data()) + 1);
        ++lines;
    }
    return lines;
}

/// The same without stopping: for a byte that is not there.
void lookAtEveryByte(const std::string& text) { demand(text.find('\0') == std::string::npos, "there is a zero byte"); }

nBench::tPair againstMemchr(std::int64_t count) {
    const tText text = textOfKeys(count);
    demand(readKeys(*text).size() == static_cast<std::size_t>(count), "keys are lost");
    return {[text] { parse(*text); }, [text, count] { demand(countLines(*text) == count + 1, "not all lines"); }};
}

nBench::tPair sectionsAgainstMemchr(std::int64_t count) {
    const tText text = textOfSections(count);
    demand(countSections(*text) == static_cast<std::size_t>(count), "sections are lost");
    return {[text] { parse(*text); }, [text, count] { demand(countLines(*text) == 4 * count, "not all lines"); }};
}

nBench::tPair againstEveryByte(std::int64_t count) {
    const tText text = textOfKeys(count);
    return {[text] { parse(*text); }, [text] { lookAtEveryByte(*text); }};
}

const nBench::tIniPeer& peerNamed(const std::string& name) {
    const nBench::tIniPeer* const peer = nBench::findIniPeer(name);
    if (peer == nullptr) throw std::runtime_error("not measured: " + name + " is not installed");
    return *peer;
}

void demandSameKeys(const nBench::tIniPeer& peer, const std::string& text) {
    nBench::tKeyValues ours = readKeys(text);
    nBench::tKeyValues theirs = peer.read(text);
    std::sort(ours.begin(), ours.end());
    std::sort(theirs.begin(), theirs.end());
    demand(ours == theirs, peer.name + " finds other keys");
}

nBench::tPair againstPeer(const std::string& name, std::int64_t count) {
    const nBench::tIniPeer& peer = peerNamed(name);
    const tText text = textOfKeys(count);
    demandSameKeys(peer, *text);
    return {[text] { parse(*text); }, [text, peer] { peer.parse(*text); }};
}

/// That many documents of the seven keys of a description.
std::vector<std::string> textsOfDescriptions(std::int64_t count) {
    std::vector<std::string> texts;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::string name = "Plugin" + std::to_string(i);
        std::string& text = texts.emplace_back("[Service]\r\nName=" + name + "\r\n");
        text += R"(Path=C:\Program Files\Plug-ins\)" + name + ".dll\r\nInitialize=initialize\r\nStop=stop\r\n";
        text += "Cleanup=cleanup\r\nDependencies=Settings, Transport\r\nRequires=1\r\n";
    }
    return texts;
}

/// Reads the text from the stream, as our side does: for a small document the stream is a sixth of our time.
void readAndParse(const nBench::tIniPeer& peer, const std::string& text) {
    static std::string copy;
    copy.resize(text.size());
    demand(std::fread(copy.data(), 1, copy.size(), streamOf(text)) == text.size(), "the text is cut short");
    peer.parse(copy);
}

nBench::tPair smallDocumentsAgainst(const std::string& name, std::int64_t count) {
    const nBench::tIniPeer& peer = peerNamed(name);
    const auto texts = std::make_shared<const std::vector<std::string>>(textsOfDescriptions(count));
    demand(readKeys(texts->back()).size() == 7, "keys are lost");
    demandSameKeys(peer, texts->back());
    return {[texts] { std::for_each(texts->begin(), texts->end(), parse); },
            [texts, peer] {
                for (const std::string& text : *texts) readAndParse(peer, text);
            }};
}

nBench::tPair keysAgainstATenth(std::int64_t count) {
    const tText many = textOfKeys(count);
    const tText few = textOfKeys(count / 10);
    demand(readKeys(*many).size() == 10 * readKeys(*few).size(), "keys are lost");
    return {[many] { parse(*many); }, [few] { parse(*few); }};
}

nBench::tPair sectionsAgainstATenth(std::int64_t count) {
    const tText many = textOfSections(count);
    const tText few = textOfSections(count / 10);
    demand(countSections(*many) == 10 * countSections(*few), "sections are lost");
    return {[many] { parse(*many); }, [few] { parse(*few); }};
}

nBench::tPair hostileAgainstHarmless(const tNames& hostileNames, const tNames& harmlessNames, bool asSections) {
    const tText hostile = textOf(hostileNames, asSections);
    const tText harmless = textOf(harmlessNames, asSections);
    demand(hostile->size() <= harmless->size() + harmless->size() / 100, "the twin is smaller");
    for (const tText& text : {hostile, harmless}) {
        const std::size_t count = asSections ? countSections(*text) : readKeys(*text).size();
        demand(count == harmlessNames.size(), "names are lost");
    }
    return {[hostile] { parse(*hostile); }, [harmless] { parse(*harmless); }};
}

void addHostileRows() {
    const std::int64_t scale = nBench::quick() ? 100 : 1;
    for (const bool asSections : {false, true}) {
        const std::string kind = asSections ? "sections" : "keys";
        const std::int64_t shortCount = (asSections ? 100'000 : 1'000'000) / scale;
        nBench::addRow({"ini/hostile-short-" + kind, "", shortCount, [=] {
                            return hostileAgainstHarmless(shortNames(shortCount, true), shortNames(shortCount, false),
                                                          asSections);
                        }});
        const std::int64_t longCount = 200'000 / scale;
        nBench::addRow({"ini/hostile-long-" + kind, "", longCount, [=] {
                            return hostileAgainstHarmless(longNames(longCount, true), longNames(longCount, false),
                                                          asSections);
                        }});
    }
}

/// The rows that cost against size is drawn from, from a hundredth of the judged size on.
void addCurve(const std::string& name, const std::string& axis, std::int64_t judgedSize,
              const std::function<nBench::tPair(std::int64_t)>& prepare) {
    const std::int64_t last = nBench::quick() ? judgedSize / 100 : judgedSize;
    for (std::int64_t size = judgedSize / 100; size <= last; size *= 10) {
        nBench::addRow({name, axis, size, [prepare, size] { return prepare(size); }});
    }
}

}  // namespace

void addIniRows() {
    addCurve("ini/memchr", "keys", 1'000'000, againstMemchr);
    addCurve("ini/every-byte", "keys", 1'000'000, againstEveryByte);
    addCurve("ini/sections", "sections", 100'000, sectionsAgainstMemchr);
    for (const char* const peer : {"inih", "simpleini", "gkeyfile", "propertytree"}) {
        addCurve(std::string("ini/") + peer, "keys", 1'000'000,
                 [peer](std::int64_t size) { return againstPeer(peer, size); });
    }
    const std::int64_t documents = nBench::quick() ? 100 : 10'000;
    nBench::addRow(
        {"ini/simpleini-small", "", documents, [documents] { return smallDocumentsAgainst("simpleini", documents); }});
    const std::int64_t size = nBench::quick() ? 10'000 : 1'000'000;
    nBench::addRow({"ini/ten-times-the-keys", "", size, [size] { return keysAgainstATenth(size); }});
    nBench::addRow({"ini/ten-times-the-sections", "", size / 10, [size] { return sectionsAgainstATenth(size / 10); }});
    addHostileRows();
}
