#include <ziptra/plugin.hpp>
class Mistaken {
public:
    static constexpr std::int32_t unexpected = 5;
};
ZIPTRA_PLUGIN(Mistaken)
