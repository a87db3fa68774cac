#include "tests/support/descriptionReads.h"

#include <utility>

#include "source/nPluginData.h"

namespace support {
namespace {

std::function<void(const std::string& filePath)> current;

}  // namespace

tDescriptionReads::tDescriptionReads(std::function<void(const std::string& filePath)> beforeEach) {
    current = std::move(beforeEach);
}
tDescriptionReads::~tDescriptionReads() { current = nullptr; }

// See loader.cpp for the names.

void realRead(const std::string& filePath, tPluginDescription& record) asm(
    "__real__ZN11nPluginData15readDescriptionERKNSt7__cxx1112basic_stringIcSt11char_"
    "traitsIcESaIcEEER18tPluginDescription");
void wrappedRead(const std::string& filePath, tPluginDescription& record) asm(
    "__wrap__ZN11nPluginData15readDescriptionERKNSt7__cxx1112basic_stringIcSt11char_"
    "traitsIcESaIcEEER18tPluginDescription");
void wrappedRead(const std::string& filePath, tPluginDescription& record) {
    if (current) current(filePath);
    realRead(filePath, record);
}

}  // namespace support
