#include <ziptra/plugin.hpp>
class Mistaken {};
ZIPTRA_PLUGIN(Mistaken)
