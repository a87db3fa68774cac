#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The names of the plug-ins that have started so far, compared bytewise. A hash table: ten thousand plug-ins may ask
/// for a hundred thousand dependencies, and a tree takes eight times as long to answer. Names chosen to collide would
/// make it slow, but each of them takes a description file, and whoever may write those gets any code run.
class tStartedNames {
public:
    /// There is room for so many names; std::bad_alloc if there is not.
    explicit tStartedNames(std::size_t room);

    /// As often as there is room. A name that is there already is not added again. Asks for no memory.
    void add(std::string name) noexcept;

    /// Whether all dependencies have started. Each started plug-in stands for one mention, so a list that names a
    /// plug-in twice never passes; nor does one out of order.
    [[nodiscard]] bool haveStarted(const std::vector<std::string>& dependencies) const noexcept;

private:
    /// Small, so that those of thousands of names stay in the cache.
    struct tSlot {
        std::uint32_t tag = 0;     ///< bits of the name's hash that do not tell the slot
        std::uint32_t number = 0;  ///< of the name, from 1 on; 0 where nothing is kept
    };

    /// The index of the slot where the name is or, when it is not there, where it belongs.
    [[nodiscard]] std::size_t find(std::size_t hash, std::string_view name) const noexcept;

    std::vector<std::string> names_;
    std::vector<tSlot> slots_;  ///< a power of two of them, at least twice as many as names
};
