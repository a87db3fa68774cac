#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nRun {

/// What plug-ins share in their process and can leave behind or change.
struct tProcessState {
    std::size_t handles = 0;  ///< how many are open
    /// Threads, libraries and settings: for each an identifier, which for a setting includes its value, and what people
    /// call it: "thread", "the library C:\\p\\a.dll", "another current directory".
    std::map<std::string, std::string> things{};

    static constexpr std::string_view thread = "thread";
};

struct tLeft {
    std::size_t life = 0;    ///< from 0
    std::size_t plugin = 0;  ///< its position
    std::string text;        ///< "2 threads"
    bool isHandles = false;
};

/// Finds out what plug-ins leave behind, and which plug-in it was, from the states of the process after each call and
/// after each life.
///
/// Handles may remain open after the first life, because libraries of the system keep some, and after another one,
/// because runtimes open some when a thread first has to wait, which may not happen in every life. A plug-in therefore
/// leaks handles if it has left some open after two later lives, or more than a runtime opens after one, and more were
/// open after each of these than after all lives before; the first life did, too, if the second does.
class tLeftovers {
public:
    tLeftovers(std::size_t plugins, tProcessState before);

    /// Call after each call of a plug-in. With a single plug-in it makes no difference.
    void afterCall(std::size_t plugin, tProcessState now);

    /// Returns whether threads are running that were not there before this life. They may be about to end.
    [[nodiscard]] bool hasNewThreads(const tProcessState& now) const;

    /// Returns what was left behind in the life that has just ended, and begins another one.
    [[nodiscard]] std::vector<tLeft> afterLife(const tProcessState& now);

    /// Returns whether only another life can tell if handles have been leaked.
    [[nodiscard]] bool undecided() const noexcept { return undecided_; }

private:
    using tTexts = std::vector<std::vector<std::string>>;  // of each plug-in

    void addThings(const tProcessState& now, tTexts& texts) const;
    void addHandles(const tProcessState& now, std::vector<tLeft>& left);
    void suspect(std::size_t plugin, std::vector<tLeft>& left);

    std::size_t life_ = 0;
    bool undecided_ = false;
    std::size_t mostHandles_ = 0;
    std::size_t lastPlugin_ = 0;
    tProcessState atStart_;  // of the life
    tProcessState last_;
    std::vector<std::int64_t> opened_;           // handles that each plug-in has opened in this life, and not closed
    std::vector<std::int64_t> firstOpened_;      // the same of the first life
    std::vector<int> suspicions_;                // of each plug-in: how many lives seem to have leaked
    std::vector<std::vector<tLeft>> suspected_;  // and what, as long as it may have been the only time
    std::map<std::string, std::size_t> owners_;  // the plug-in after whose call each thing was there for the first time
};

}  // namespace nRun
