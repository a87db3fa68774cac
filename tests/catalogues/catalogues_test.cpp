#include <gmock/gmock.h>

#include <array>
#include <map>

#include "tests/catalogues/generator.h"
#include "tests/catalogues/world.h"
#include "tests/endtoend/harness/figures.h"

namespace catalogues {
namespace {

using endtoend::figure;
using endtoend::setting;

constexpr std::array<const char*, 10> originNames{"starts without code of its own",
                                                  "-52002 predicted",
                                                  "-52005 predicted",
                                                  "-52006 predicted",
                                                  "another code predicted",
                                                  "left open: its own code decides",
                                                  "left open: a dependency's code decides",
                                                  "left open: code decides while libraries load",
                                                  "left open: what Windows does is uncertain",
                                                  "left open without a reason"};

/// What a run has seen.
struct tCounts {
    long directories = 0;
    long services = 0;
    long entries = 0;
    long plugins = 0;
    long rejected = 0;
    long differences = 0;
    std::array<long, originNames.size()> codes{};

    void add(const tCatalogue& catalogue, const tPrediction& prediction, const tHosting& hosting) {
        entries += static_cast<long>(catalogue.entries.size());
        plugins += static_cast<long>(hosting.status.plugins.size());
        rejected += static_cast<long>(prediction.messages.size());
        if (prediction.plugins.size() != hosting.status.plugins.size()) return;
        for (std::size_t i = 0; i < prediction.plugins.size(); ++i) {
            ++codes.at(static_cast<std::size_t>(originOf(prediction, i, hosting.status.plugins[i])));
        }
    }

    void print() const {
        figure("catalogues: directories", directories);
        figure("catalogues: of these hosted as a service", services);
        figure("catalogues: files", entries);
        figure("catalogues: files rejected", rejected);
        figure("catalogues: plug-ins", plugins);
        for (std::size_t i = 0; i < codes.size(); ++i) figure(std::string("catalogues: ") + originNames[i], codes[i]);
        figure("catalogues: differences", differences);
    }
};

/// Returns what the tool's exit code must be, without --strict.
unsigned long exitCodeFor(const tPrediction& prediction) {
    return std::ranges::count(prediction.findings, "error", &tPrediction::tFinding::severity) == 0 ? 0 : 1;
}

class catalogues : public testing::Test {
protected:
    void compare(std::uint64_t seed) {
        const tCatalogue catalogue = generate(seed, world_.libraries());
        ++counts_.directories;
        if (catalogue.asService) ++counts_.services;
        tAnswer answer;
        std::string status;
        std::vector<std::string> found;
        try {
            world_.arrange(catalogue);
            answer = world_.check(catalogue);
            const tPrediction prediction = readPrediction(answer.output);
            const tHosting hosting = world_.host(catalogue);
            status = hosting.bytes;
            found = differences(catalogue, prediction, hosting);
            if (answer.exitCode != exitCodeFor(prediction))
                found.emplace_back("the exit code contradicts the findings");
            counts_.add(catalogue, prediction, hosting);
        } catch (const std::exception& exception) {
            found.emplace_back(exception.what());
        }
        if (!found.empty()) report(catalogue, found, answer, status);
    }

    const tCounts& counts() const { return counts_; }

private:
    void report(const tCatalogue& catalogue, const std::vector<std::string>& found, const tAnswer& answer,
                const std::string& status) {
        ++counts_.differences;
        std::string text;
        for (const std::string& sentence : found) text += sentence + "\n";
        ADD_FAILURE() << text << describe(catalogue) << "--- the tool: exit code " << answer.exitCode << "\n"
                      << answer.output << answer.errors << "--- the host\n"
                      << printable(status);
    }

    tWorld world_;
    tCounts counts_;
};

constexpr int usualCount = 60;

// CATALOGUES directories from the seed CATALOGUE_SEED on; CATALOGUES=1 repeats a single one.
TEST_F(catalogues, AreHostedAsCheckPredicts) {
    const int first = setting("CATALOGUE_SEED", 1);
    const int count = setting("CATALOGUES", usualCount);
    for (int i = 0; i < count; ++i) compare(static_cast<std::uint64_t>(first) + static_cast<std::uint64_t>(i));
    counts().print();
    if (count < usualCount) return;
    // Otherwise the comparison would prove nothing about some of the rules.
    const auto codes = [this](tOrigin origin) { return counts().codes.at(static_cast<std::size_t>(origin)); };
    for (const tOrigin origin : {tOrigin::starts, tOrigin::feature, tOrigin::library, tOrigin::dependency,
                                 tOrigin::ownCode, tOrigin::dependencysCode}) {
        EXPECT_GT(codes(origin), 0) << originNames.at(static_cast<std::size_t>(origin));
    }
    EXPECT_GT(counts().rejected, 0);
    EXPECT_GT(counts().services, 0);
}

}  // namespace
}  // namespace catalogues
