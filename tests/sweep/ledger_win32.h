#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sweep {

/// What the product has opened and not closed. Every opening and closing call passes through here. One at a time.
class tLedger {
public:
    void opened(std::string_view kind, void* handle);
    void closed(std::string_view kind, void* handle);
    /// Records a closing that the system refused: it was tried, and may be tried again.
    void refusedToClose(std::string_view kind, void* handle);

    /// Whether the product may close this again.
    [[nodiscard]] bool isOpen(std::string_view kind, void* handle) const;
    /// The kinds of what is open and was not tried to close.
    [[nodiscard]] std::vector<std::string> leaks() const;
    /// All open handles of a kind, refused ones included, each as often as it is open.
    [[nodiscard]] std::vector<void*> open(std::string_view kind) const;
    /// Counts closings of what was not open.
    int wrongClosings = 0;
    void clear();

private:
    struct tCount {
        int open = 0;
        int refused = 0;
    };
    std::map<std::pair<std::string, void*>, tCount> counts_;
};

/// Connects the ledger to the imports that open and close something, around their present stand-ins.
void keepLedger(tLedger& ledger);

}  // namespace sweep
