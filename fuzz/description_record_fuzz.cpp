// A description file of any content gives a record that says what the INI document says, or an error and the record is
// what it was.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "err/Exception.h"
#include "ini/parser.h"
#include "source/nPluginData.h"

namespace {

void require(bool truth) {
    if (!truth) std::abort();
}

/// A file in memory, with a path.
class tMemoryFile {
public:
    tMemoryFile(const std::uint8_t* data, std::size_t size) : file_(memfd_create("description", 0)) {
        require(write(file_, data, size) == static_cast<ssize_t>(size));
    }
    ~tMemoryFile() { close(file_); }
    tMemoryFile(const tMemoryFile&) = delete;
    tMemoryFile& operator=(const tMemoryFile&) = delete;

    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(file_); }

private:
    int file_;
};

std::string valueOf(nIni::tDocument& document, const char* name) {
    nIni::tSection* const section = nIni::findSection(document, "service");
    const nIni::tKey* const key = section == nullptr ? nullptr : nIni::findKey(*section, false, name);
    return key == nullptr ? "" : key->value;
}

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Digits that fit, with nothing before them; what else there is is left to the tests.
void checkRequires(const std::string& value, std::uint32_t mask) {
    if (value.empty()) require(mask == 1);
    const std::string digits = value.substr(0, value.find_first_not_of("0123456789"));
    if (!digits.empty() && digits.size() < 10) require(mask == std::stoul(digits));
    if (!value.empty() && digits.empty() && !isSpace(value[0]) && value[0] != '+' && value[0] != '-')
        require(mask == 0);
}

void checkDependencies(const tPluginDescription& record) {
    require(std::is_sorted(record.dependencies.begin(), record.dependencies.end()));
    for (const std::string& name : record.dependencies) {
        require(!name.empty() && !isSpace(name.front()) && !isSpace(name.back()));
        require(name.find(',') == std::string::npos);
    }
}

void checkRecord(const tPluginDescription& record, nIni::tDocument& document) {
    require(record.name == valueOf(document, "NAME"));
    require(record.path == valueOf(document, "path"));
    require(record.initialize == valueOf(document, "Initialize"));
    require(record.stop == valueOf(document, "stop"));
    require(record.cleanup == valueOf(document, "CleanUp"));
    checkRequires(valueOf(document, "requires"), record.requiresMask);
    checkDependencies(record);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const tMemoryFile file(data, size);
    const std::string path = file.path();
    nIni::tDocument document;
    document.flags = 3;
    const int result = nIni::parseFile(document, std::wstring(path.begin(), path.end()).c_str());

    tPluginDescription record;
    record.name = "as it was";
    try {
        nPluginData::readDescription(path, record);
        require(result == 0 && document.firstErrorLine == -1);
        checkRecord(record, document);
    } catch (const zuerr::Exception& exception) {
        require(exception.record.code == (result < 0 ? result : -52005));
        require(record.name == "as it was");
    }
    return 0;
}
