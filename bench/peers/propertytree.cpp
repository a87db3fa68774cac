// Boost.PropertyTree's INI parser. It rejects repeated keys.
#include <boost/property_tree/ini_parser.hpp>
#include <sstream>

#include "bench/peers.h"

namespace {

boost::property_tree::ptree load(const std::string& text) {
    std::istringstream stream(text);
    boost::property_tree::ptree tree;
    read_ini(stream, tree);
    return tree;
}

const nBench::tIniPeerRegistration propertyTree({
    "propertytree",
    [](const std::string& text) { load(text); },
    [](const std::string& text) {
        nBench::tKeyValues keys;
        const boost::property_tree::ptree tree = load(text);
        for (const auto& [name, value] : tree.get_child("Service")) keys.emplace_back(name, value.data());
        return keys;
    },
});

}  // namespace
