#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sweep {

/// What the product has open: every opening and closing call comes through here. One at a time.
class tLedger {
public:
    void opened(std::string_view kind, const void* handle);
    void closed(std::string_view kind, const void* handle);
    /// A closing that the system refused: it was tried, and may be tried again.
    void refusedToClose(std::string_view kind, const void* handle);

    /// Whether the product may close this once more.
    [[nodiscard]] bool isOpen(std::string_view kind, const void* handle) const;
    /// What is open though nobody has tried to close it.
    [[nodiscard]] std::vector<std::string> leaks() const;
    /// All handles of a kind that are open, refused ones included, as often as they are.
    [[nodiscard]] std::vector<const void*> open(std::string_view kind) const;
    /// Closings of what was not open.
    int wrongClosings = 0;
    void clear();

private:
    struct tCount {
        int open = 0;
        int refused = 0;
    };
    std::map<std::pair<std::string, const void*>, tCount> counts_;
};

/// Puts the ledger behind the imports that open and close something, around what stands in for them now.
void keepLedger(tLedger& ledger);

}  // namespace sweep
