// What the library loader says in a diagnostic build.
#include "source/tSharedLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/debugger.h"
#include "tests/support/loader.h"
#include "trace/trace.h"

namespace {

using testing::EndsWith;
using testing::IsEmpty;

static_assert(nTrace::libraries == 4096);

/// Fails at everything, each time with another error number.
class FailingLoader : public support::tLoader {
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

class LibraryTrace : public testing::Test {
protected:
    void makeLoaded() { library_.loaded = 1; }

    FailingLoader loader_;
    tSharedLibrary library_;
    zuerr::PlatformStatus status_;
};

TEST_F(LibraryTrace, NamesTheLibraryThatDoesNotLoadAndTheError) {
    EXPECT_THAT(debuggerOutput([&] { library_.load("a b.dll", status_); }),
                EndsWith("] Failed to load library a b.dll, error was 126\n"));
}

TEST_F(LibraryTrace, TellsTheErrorOfARefusedUnload) {
    makeLoaded();
    EXPECT_THAT(debuggerOutput([&] { library_.unload(status_); }),
                EndsWith("] Failed to unload library, error was 5\n"));
}

TEST_F(LibraryTrace, NamesTheSymbolThatIsMissingAndTheError) {
    makeLoaded();
    EXPECT_THAT(debuggerOutput([&] { library_.symbol("Entry", status_); }),
                EndsWith("] Failed to load symbol Entry, error was 127\n"));
}

TEST_F(LibraryTrace, IsSilentAboutASymbolOfALibraryThatIsNotLoaded) {
    EXPECT_THAT(debuggerOutput([&] { library_.symbol("Entry", status_); }), IsEmpty());
    EXPECT_EQ(status_.line, 280);
}

TEST_F(LibraryTrace, IsSilentWhenTheStatusHoldsAFailureAlready) {
    makeLoaded();
    status_.code = -1;
    EXPECT_THAT(debuggerOutput([&] {
                    library_.load("a.dll", status_);
                    library_.symbol("Entry", status_);
                    library_.unload(status_);
                }),
                IsEmpty());
}

}  // namespace
