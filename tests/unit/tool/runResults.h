#pragma once

#include <string>
#include <utility>

#include "tests/unit/tool/lifeEvents.h"

namespace support {

/// Two plug-ins in two lives: in the first, Settings leaks a thread and Transport warns; in the second, Transport hangs
/// while it is being stopped.
inline nRun::tResult sampleResult() {
    using tPhase = tLifeEvents::tPhase;
    tLifeEvents log(2);
    log.call(0, tPhase::initialize, 0, 5).call(1, tPhase::initialize, 3, 31).call(1, tPhase::stop);
    log.call(1, tPhase::cleanup).call(0, tPhase::stop).call(0, tPhase::cleanup).left(0, 0, "1 thread").over();
    log.call(0, tPhase::initialize, 0, 7).call(1, tPhase::initialize, 3, 16).begin(1, tPhase::stop);
    return judge({livingPlugin("Settings"), livingPlugin("Transport", {"Settings"})}, 5, log.events,
                 {std::nullopt, 2'000, {"Error"}});
}

/// One plug-in in three lives: it fails in the first two and says why; in the third, a thread says something.
inline nRun::tResult talkingResult(const std::string& text = "no file") {
    using tPhase = tLifeEvents::tPhase;
    tLifeEvents log(1);
    for (int life = 0; life < 2; ++life) {
        log.begin(0, tPhase::initialize).said(0, tPhase::initialize, text).said(0, tPhase::initialize, text);
        log.call(0, tPhase::initialize, -1).over();
    }
    log.call(0, tPhase::initialize).said(0, tPhase::initialize, text, false).call(0, tPhase::stop);
    return judge({livingPlugin("A")}, 3, log.call(0, tPhase::cleanup).finished().events, {0, 1'000});
}

/// One plug-in with this name in one life, in which it is not started.
inline nRun::tResult resultOf(const std::string& name) {
    tLifeEvents log(1);
    nRun::tPlugin plugin = livingPlugin("A");
    plugin.description.name = name;
    plugin.description.dependencies = {name + "'s"};
    return judge({plugin}, 1, log.call(0, tLifeEvents::tPhase::initialize, -52006).finished().events, {0, 1'000});
}

}  // namespace support
