#pragma once

#include <functional>
#include <string>

namespace support {

/// While it exists, it calls the test before each description file is read, so that the test can change the plug-in
/// directory after the listing. At most one may exist at a time. (The test programs are linked with --wrap; the product
/// has no seam for this.)
class tDescriptionReads {
public:
    explicit tDescriptionReads(std::function<void(const std::string& filePath)> beforeEach);
    ~tDescriptionReads();
    tDescriptionReads(const tDescriptionReads&) = delete;
    tDescriptionReads& operator=(const tDescriptionReads&) = delete;
};

}  // namespace support
