#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "bench/hostStage_win32.h"

/// Makes only the system calls that hosting these plug-ins takes from start to end: it parses, orders, records and
/// renders nothing. It knows in advance what the host has to find out.
class tBareHost {
public:
    /// `lastStatus` is the text of the status file that the host leaves. A file of the same size is written here.
    tBareHost(const tDescriptions& descriptions, std::string lastStatus);

    /// One whole life: start, run with the stop already requested, stop.
    void live() const;

private:
    std::filesystem::path directory_;
    std::vector<std::string> libraries_;
    std::string shortStatus_;
    std::string longStatus_;
};

/// The system calls of single steps: list a directory's files, read a file, replace a file.
[[nodiscard]] std::vector<std::wstring> listBarely(const std::wstring& directory);
void readBarely(const wchar_t* path);
void replaceBarely(const std::wstring& path, const std::wstring& temporaryPath, const std::string& text);
