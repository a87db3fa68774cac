#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "bench/hostStage_win32.h"

/// The system calls that hosting these plug-ins takes from start to end, each once, and nothing else: nothing is
/// parsed, ordered, recorded or rendered. What the host must find out is known here beforehand.
class tBareHost {
public:
    /// `lastStatus` is the status file that the host leaves: one of that size is written here.
    tBareHost(const tDescriptions& descriptions, const std::string& lastStatus);

    void live() const;

private:
    std::filesystem::path directory_;
    std::vector<std::string> libraries_;
    std::string shortStatus_;
    std::string longStatus_;
};

/// The calls behind single steps of it.
[[nodiscard]] std::vector<std::wstring> listBarely(const std::wstring& directory);
void readBarely(const wchar_t* path);
void replaceBarely(const std::wstring& path, const std::wstring& temporaryPath, const std::string& text);
