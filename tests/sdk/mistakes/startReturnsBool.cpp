#include <ziptra/plugin.hpp>
class Mistaken {
public:
    bool start() { return true; }
};
ZIPTRA_PLUGIN(Mistaken)
