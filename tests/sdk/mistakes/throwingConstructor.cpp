#include <stdexcept>
#include <ziptra/plugin.hpp>

class Mistaken {
public:
    Mistaken() { throw std::runtime_error("no file Settings.txt"); }
};
ZIPTRA_PLUGIN(Mistaken)
