#pragma once

#include <functional>
#include <string>

namespace support {

/// While it lives, the test is called before each description file is read: the plug-in directory may be changed then,
/// after it was listed. One at a time. (The test programs are linked with --wrap; the product has no seam for this.)
class tDescriptionReads {
public:
    explicit tDescriptionReads(std::function<void(const std::string& filePath)> beforeEach);
    ~tDescriptionReads();
    tDescriptionReads(const tDescriptionReads&) = delete;
    tDescriptionReads& operator=(const tDescriptionReads&) = delete;
};

}  // namespace support
