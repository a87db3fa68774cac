#include <ziptra/plugin.hpp>
class Mistaken {
public:
    explicit Mistaken(int) {}
};
ZIPTRA_PLUGIN(Mistaken)
