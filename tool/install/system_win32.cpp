#include "tool/format.h"
#include "tool/install/lookAt.h"
#include "tool/install/perform.h"
#include "tool/install/system.h"
#include "tool/systemReason.h"

namespace nInstall {

std::string reasonOf(std::uint32_t error) {
    const std::string text = nSystemReason::of(error);
    const std::string number = std::to_string(error);
    return text.ends_with(number) ? text : fmt::format("{} ({})", text, number);
}

tSystem thisSystem(const tAccess& access) {
    return {[access] { return lookAt(access); }, [access](const tStep& step) { return perform(step, access); },
            reasonOf};
}

}  // namespace nInstall
