#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

/// Holds a call while a test inspects the process in the middle of it: if there is a file NAME.hold, the call creates
/// NAME.held to show that it has started, and waits until NAME.hold is removed.
inline void waitAtGate(const std::filesystem::path& name) {
    const auto with = [&](const char* extension) { return std::filesystem::path(name) += extension; };
    if (!std::filesystem::exists(with(".hold"))) return;
    std::ofstream(with(".held")).put('x');
    while (std::filesystem::exists(with(".hold"))) std::this_thread::sleep_for(std::chrono::milliseconds(5));
}
