#include <ziptra/plugin.hpp>
class Mistaken {
    ziptra::Worker worker_;

public:
    Mistaken() {
        worker_.start([] {});
    }
};
ZIPTRA_PLUGIN(Mistaken)
