// A plug-in without a thread, in which nothing can throw.
#include <ziptra/plugin.hpp>

class Quiet {
public:
    void start() noexcept { rounds_ = 1; }
    void stop() noexcept { rounds_ = 0; }

private:
    int rounds_ = 0;
};
ZIPTRA_PLUGIN(Quiet)
