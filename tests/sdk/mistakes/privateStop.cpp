#include <ziptra/plugin.hpp>
class Mistaken {
    void stop() {}
};
ZIPTRA_PLUGIN(Mistaken)
