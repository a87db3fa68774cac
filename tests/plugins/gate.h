#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

/// Holds a call for as long as a test needs to look at a process in the middle of it: the call waits while there is a
/// file NAME.hold, and leaves NAME.held to tell that it has come.
inline void waitAtGate(const std::filesystem::path& name) {
    const auto with = [&](const char* extension) { return std::filesystem::path(name) += extension; };
    if (!std::filesystem::exists(with(".hold"))) return;
    std::ofstream(with(".held")).put('x');
    while (std::filesystem::exists(with(".hold"))) std::this_thread::sleep_for(std::chrono::milliseconds(5));
}
