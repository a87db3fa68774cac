// What the documents show of install is what it prints.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/support/folder.h"
#include "tests/unit/tool/fakeMachine.h"
#include "tool/install/installRun.h"

namespace {

using namespace nInstall;

/// Returns a document. The working folder is the source folder or below it.
std::string document(const std::string& name) {
    std::filesystem::path folder = std::filesystem::current_path();
    while (!exists(folder / "docs" / name) && folder.has_relative_path()) folder = folder.parent_path();
    return support::read(folder / "docs" / name);
}

/// Returns what is printed on a new machine, on which one action fails, or none.
std::string printed(tOutput output, std::optional<tAction> failing = {}) {
    support::tFakeMachine fake;
    std::ostringstream out;
    tContext context{out, out};
    const tSystem system{[&] { return fake.machine; },
                         [&](const tStep& step) { return step.action == failing ? 5U : 0U; },
                         [](std::uint32_t) { return "Access is denied (5)"; }};
    run(tRequest{}, output, system, context);
    return out.str();
}

void expectBlock(const std::string& name, const std::string& block) {
    EXPECT_NE(document(name).find(block + "```\n"), std::string::npos) << block;
}

TEST(installDocuments, ShowTheLinesToInstallByHand) {
    expectBlock("operations.md", "```powershell\n" + printed(tOutput::commandLines));
}

TEST(installDocuments, ShowWhatAnInstallPrints) {
    expectBlock("tool.md", "```\n> ziptra install\n" + printed(tOutput::text));
    expectBlock("tool.md", "```\n> ziptra install\n" + printed(tOutput::text, tAction::createService));
}

}  // namespace
