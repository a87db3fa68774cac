// The trace of the library loader in a diagnostic build.
#include "source/tSharedLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/loader.h"
#include "tests/unit/trace/diagnostic/traced.h"

namespace {

using testing::EndsWith;
using testing::IsEmpty;

static_assert(nTrace::libraries == 4096);

/// Makes every call fail, each with another error number.
class tFailingLoader : public support::tLoader {
    nLibrary::tHandle load(const char* /*path*/, std::uint32_t& osError) override {
        osError = 126;
        return nullptr;
    }
    bool unload(nLibrary::tHandle /*library*/, std::uint32_t& osError) override {
        osError = 5;
        return false;
    }
    void* symbol(nLibrary::tHandle /*library*/, const char* /*name*/, std::uint32_t& osError) override {
        osError = 127;
        return nullptr;
    }
};

class tSharedLibraryTrace : public testing::Test {
protected:
    /// Returns the trace of the action, which starts without an error.
    template <class Action>
    std::string traced(Action action) {
        return ::traced(nTrace::libraries, [&] {
            status_ = {};
            action();
        });
    }

    tFailingLoader loader_;
    tSharedLibrary library_;
    zuerr::PlatformStatus status_;
};

TEST_F(tSharedLibraryTrace, NamesTheFailedCallAndTheError) {
    EXPECT_THAT(traced([&] { library_.load("a b.dll", status_); }),
                EndsWith("] Failed to load library a b.dll, error was 126\n"));
    library_.loaded = 1;
    EXPECT_THAT(traced([&] { library_.unload(status_); }), EndsWith("] Failed to unload library, error was 5\n"));
    EXPECT_THAT(traced([&] { library_.symbol("Entry", status_); }),
                EndsWith("] Failed to load symbol Entry, error was 127\n"));
}

TEST_F(tSharedLibraryTrace, IsEmptyForASymbolOfALibraryThatIsNotLoaded) {
    EXPECT_THAT(traced([&] { library_.symbol("Entry", status_); }), IsEmpty());
    EXPECT_EQ(status_.line, 280);
}

TEST_F(tSharedLibraryTrace, IsEmptyIfTheStatusAlreadyContainsAnError) {
    library_.loaded = 1;
    EXPECT_THAT(debuggerOutput([&] {
                    status_.code = -1;
                    library_.load("a.dll", status_);
                    library_.symbol("Entry", status_);
                    library_.unload(status_);
                }),
                IsEmpty());
}

}  // namespace
