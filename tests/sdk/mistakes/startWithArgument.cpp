#include <ziptra/plugin.hpp>
class Mistaken {
public:
    void start(int) {}
};
ZIPTRA_PLUGIN(Mistaken)
