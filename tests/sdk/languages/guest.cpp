#include <ziptra/plugin.hpp>  // C++17: constructed by Initialize, destroyed by Cleanup
class Guest {
public:
    void stop() noexcept {}
};
ZIPTRA_PLUGIN(Guest)
