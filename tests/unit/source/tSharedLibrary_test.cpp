#include "source/tSharedLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "err/Exception.h"
#include "tests/support/loader.h"

namespace {

using testing::_;
using testing::InSequence;
using testing::Return;
using testing::StrEq;

/// A loader that fails the test on every call that was not expected.
class MockLoader : public support::tLoader {
public:
    MOCK_METHOD(nLibrary::Handle, load, (const char* path, std::uint32_t& osError), (override));
    MOCK_METHOD(bool, unload, (nLibrary::Handle library, std::uint32_t& osError), (override));
    MOCK_METHOD(void*, symbol, (nLibrary::Handle library, const char* name, std::uint32_t& osError), (override));
};

int calls = 0;
std::int32_t initializeFive() { return 5; }
void countCall() { ++calls; }
void countCallTwice() { calls += 2; }

template <class Function>
void* addressOf(Function function) {
    return reinterpret_cast<void*>(function);
}

class SharedLibrary : public testing::Test {
protected:
    /// A status that holds this code before the operation under test.
    static zuerr::PlatformStatus statusWith(std::int32_t code) {
        zuerr::PlatformStatus status;
        status.code = code;
        return status;
    }

    void expectFailureAtLine(std::int32_t line) const {
        EXPECT_EQ(status_.code, -52005);
        EXPECT_EQ(status_.line, line);
        EXPECT_STREQ(status_.file.data(), "zukest/quarks/library");
        EXPECT_STREQ(status_.component.data(), "zuZiptraR") << "the component's field holds nine characters";
        EXPECT_EQ(status_.extension, 0U);
    }

    void expectBuiltInEntries() const {
        calls = 0;
        EXPECT_EQ(library_.initialize(), 0);
        library_.stop();
        library_.cleanup();
        EXPECT_EQ(calls, 0);
    }

    void makeLoaded() {
        library_.loaded = 1;
        library_.handle = &module_;
    }

    static tPluginDescription description(const char* initialize, const char* stop, const char* cleanup) {
        tPluginDescription description;
        description.path = "a.dll";
        description.initialize = initialize;
        description.stop = stop;
        description.cleanup = cleanup;
        return description;
    }

    void expectLoad() { EXPECT_CALL(loader_, load(StrEq("a.dll"), _)).WillOnce(Return(&module_)); }
    void expectSymbol(const char* name, void* address) {
        EXPECT_CALL(loader_, symbol(&module_, StrEq(name), _)).WillOnce(Return(address));
    }

    int module_ = 0;
    testing::StrictMock<MockLoader> loader_;
    tSharedLibrary library_;
    zuerr::PlatformStatus status_;
};

TEST_F(SharedLibrary, IsFreshlyNotLoadedAndItsEntriesAreHarmless) {
    EXPECT_EQ(library_.loaded, 0);
    expectBuiltInEntries();
}

TEST_F(SharedLibrary, IsAPlainValueThatUnloadsNothingWhenItGoes) {
    makeLoaded();
    const tSharedLibrary copy = library_;
    EXPECT_EQ(copy.loaded, 1);
    EXPECT_EQ(copy.handle, &module_);
}

TEST_F(SharedLibrary, LoadKeepsTheHandleAndCountsAsLoaded) {
    expectLoad();
    library_.load("a.dll", status_);
    EXPECT_EQ(library_.loaded, 1);
    EXPECT_EQ(library_.handle, &module_);
    EXPECT_EQ(status_.code, 0);
}

TEST_F(SharedLibrary, LoadReportsLine134WhenTheSystemCannotLoad) {
    EXPECT_CALL(loader_, load(StrEq("a.dll"), _)).WillOnce(Return(nullptr));
    library_.load("a.dll", status_);
    expectFailureAtLine(134);
    EXPECT_EQ(library_.loaded, 0);
}

TEST_F(SharedLibrary, LoadDoesNothingWhenTheStatusHoldsAFailure) {
    status_ = statusWith(-1);
    library_.load("a.dll", status_);
    EXPECT_EQ(library_.loaded, 0);
    EXPECT_EQ(status_.code, -1);
}

TEST_F(SharedLibrary, LoadKeepsAWarningWhenItSucceeds) {
    expectLoad();
    status_ = statusWith(5);
    library_.load("a.dll", status_);
    EXPECT_EQ(library_.loaded, 1);
    EXPECT_EQ(status_.code, 5);
}

TEST_F(SharedLibrary, LoadOverwritesAWarningWhenItFails) {
    EXPECT_CALL(loader_, load).WillOnce(Return(nullptr));
    status_ = statusWith(5);
    library_.load("a.dll", status_);
    expectFailureAtLine(134);
}

TEST_F(SharedLibrary, UnloadGivesTheHandleBack) {
    makeLoaded();
    EXPECT_CALL(loader_, unload(&module_, _)).WillOnce(Return(true));
    library_.unload(status_);
    EXPECT_EQ(library_.loaded, 0);
    EXPECT_EQ(status_.code, 0);
}

TEST_F(SharedLibrary, UnloadOfOneNeverLoadedDoesAndReportsNothing) {
    library_.unload(status_);
    EXPECT_EQ(status_.code, 0);
}

TEST_F(SharedLibrary, UnloadHappensOnce) {
    makeLoaded();
    EXPECT_CALL(loader_, unload).WillOnce(Return(true));
    library_.unload(status_);
    library_.unload(status_);
}

TEST_F(SharedLibrary, UnloadReportsLine225AndStaysLoadedWhenTheSystemRefuses) {
    makeLoaded();
    EXPECT_CALL(loader_, unload(&module_, _)).WillOnce(Return(false));
    library_.unload(status_);
    expectFailureAtLine(225);
    EXPECT_EQ(library_.loaded, 1);
}

TEST_F(SharedLibrary, UnloadDoesNothingWhenTheStatusHoldsAFailure) {
    makeLoaded();
    status_ = statusWith(-1);
    library_.unload(status_);
    EXPECT_EQ(library_.loaded, 1);
    EXPECT_EQ(status_.code, -1);
}

TEST_F(SharedLibrary, UnloadWorksUnderAWarningAndKeepsIt) {
    makeLoaded();
    EXPECT_CALL(loader_, unload).WillOnce(Return(true));
    status_ = statusWith(5);
    library_.unload(status_);
    EXPECT_EQ(library_.loaded, 0);
    EXPECT_EQ(status_.code, 5);
}

TEST_F(SharedLibrary, UnloadOverwritesAWarningWhenItFails) {
    makeLoaded();
    EXPECT_CALL(loader_, unload).WillOnce(Return(false));
    status_ = statusWith(5);
    library_.unload(status_);
    expectFailureAtLine(225);
}

TEST_F(SharedLibrary, SymbolGivesTheAddress) {
    makeLoaded();
    expectSymbol("Entry", &calls);
    EXPECT_EQ(library_.symbol("Entry", status_), &calls);
    EXPECT_EQ(status_.code, 0);
}

TEST_F(SharedLibrary, SymbolReportsLine299ForANameThatIsNotExported) {
    makeLoaded();
    expectSymbol("Entry", nullptr);
    EXPECT_EQ(library_.symbol("Entry", status_), nullptr);
    expectFailureAtLine(299);
}

TEST_F(SharedLibrary, SymbolReportsLine280WhenNothingIsLoaded) {
    EXPECT_EQ(library_.symbol("Entry", status_), nullptr);
    expectFailureAtLine(280);
}

TEST_F(SharedLibrary, SymbolDoesNothingWhenTheStatusHoldsAFailure) {
    makeLoaded();
    status_ = statusWith(-1);
    EXPECT_EQ(library_.symbol("Entry", status_), nullptr);
    EXPECT_EQ(status_.code, -1);
}

TEST_F(SharedLibrary, SymbolOfOneNotLoadedKeepsTheFirstFailure) {
    status_ = statusWith(-1);
    EXPECT_EQ(library_.symbol("Entry", status_), nullptr);
    EXPECT_EQ(status_.code, -1);
    EXPECT_EQ(status_.line, 0);
}

TEST_F(SharedLibrary, SymbolOverwritesAWarningWhenItFails) {
    status_ = statusWith(5);
    EXPECT_EQ(library_.symbol("Entry", status_), nullptr);
    expectFailureAtLine(280);
}

TEST_F(SharedLibrary, OpenLoadsFirstAndThenFindsInitializeStopAndCleanup) {
    const InSequence inThisOrder;
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    expectSymbol("S", addressOf(countCall));
    expectSymbol("C", addressOf(countCallTwice));
    library_.open(description("I", "S", "C"));
    EXPECT_EQ(library_.loaded, 1);
    EXPECT_EQ(library_.initialize, &initializeFive);
    EXPECT_EQ(library_.stop, &countCall);
    EXPECT_EQ(library_.cleanup, &countCallTwice);
}

TEST_F(SharedLibrary, OpenWithoutEntryNamesSucceedsWithHarmlessEntries) {
    expectLoad();
    library_.open(description("", "", ""));
    EXPECT_EQ(library_.loaded, 1);
    expectBuiltInEntries();
}

TEST_F(SharedLibrary, OpenStartsFromTheBuiltInsWhateverTheEntriesWereBefore) {
    library_.stop = countCall;
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    library_.open(description("I", "", ""));
    EXPECT_EQ(library_.initialize, &initializeFive);
    calls = 0;
    library_.stop();
    EXPECT_EQ(calls, 0);
}

/// The report of the exception that open throws.
std::string openReport(tSharedLibrary& library, const tPluginDescription& description) {
    try {
        library.open(description);
    } catch (const zuerr::Exception& exception) {
        EXPECT_EQ(exception.record.code, -52005);
        return exception.what();
    }
    return "nothing thrown";
}

TEST_F(SharedLibrary, OpenThrowsWhatTheLoadReported) {
    EXPECT_CALL(loader_, load).WillOnce(Return(nullptr));
    EXPECT_EQ(openReport(library_, description("I", "S", "C")),
              R"({"file":"zukest/quarks/library","line":134,"component":"zuZiptraR"})");
    EXPECT_EQ(library_.loaded, 0);
    expectBuiltInEntries();
}

TEST_F(SharedLibrary, OpenThrowsLine299ForAMissingEntryAndLeavesTheLibraryLoadedWithTheEntriesItHad) {
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    expectSymbol("S", nullptr);
    EXPECT_EQ(openReport(library_, description("I", "S", "C")),
              R"({"file":"zukest/quarks/library","line":299,"component":"zuZiptraR"})");
    EXPECT_EQ(library_.loaded, 1);
    expectBuiltInEntries();
}

TEST_F(SharedLibrary, OpenStoresNoEntryWhenTheLastOneIsMissing) {
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    expectSymbol("S", addressOf(countCall));
    expectSymbol("C", nullptr);
    EXPECT_THROW(library_.open(description("I", "S", "C")), zuerr::Exception);
    expectBuiltInEntries();
}

TEST_F(SharedLibrary, CloseUnloadsAndPutsTheBuiltInsBack) {
    makeLoaded();
    library_.initialize = initializeFive;
    library_.stop = countCall;
    library_.cleanup = countCall;
    EXPECT_CALL(loader_, unload(&module_, _)).WillOnce(Return(true));
    library_.close();
    EXPECT_EQ(library_.loaded, 0);
    expectBuiltInEntries();
}

TEST_F(SharedLibrary, CloseOfOneNeverLoadedIsHarmless) {
    library_.close();
    expectBuiltInEntries();
}

TEST_F(SharedLibrary, CloseThrowsLine225AndChangesNothingWhenTheSystemRefuses) {
    makeLoaded();
    library_.initialize = initializeFive;
    EXPECT_CALL(loader_, unload).WillOnce(Return(false));
    try {
        library_.close();
        FAIL();
    } catch (const zuerr::Exception& exception) {
        EXPECT_STREQ(exception.what(), R"({"file":"zukest/quarks/library","line":225,"component":"zuZiptraR"})");
    }
    EXPECT_EQ(library_.loaded, 1);
    EXPECT_EQ(library_.initialize, &initializeFive);
}

/// Runs a function while an exception is propagating.
template <class Function>
void whileAnExceptionPropagates(Function function) {
    struct Runner {
        Function& function;
        ~Runner() { function(); }
    };
    EXPECT_THROW(
        {
            const Runner runner{function};
            throw std::runtime_error("propagating");
        },
        std::runtime_error);
}

TEST_F(SharedLibrary, OpenDropsAFailedLoadWhileAnotherExceptionPropagates) {
    EXPECT_CALL(loader_, load).WillOnce(Return(nullptr));
    whileAnExceptionPropagates([&] { library_.open(description("I", "S", "C")); });
    EXPECT_EQ(library_.loaded, 0);
    expectBuiltInEntries();
}

TEST_F(SharedLibrary, OpenReplacesAMissingEntryByTheBuiltInWhileAnotherExceptionPropagates) {
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    expectSymbol("S", nullptr);
    expectSymbol("C", addressOf(countCall));
    whileAnExceptionPropagates([&] { library_.open(description("I", "S", "C")); });
    EXPECT_EQ(library_.loaded, 1);
    EXPECT_EQ(library_.initialize, &initializeFive);
    EXPECT_EQ(library_.cleanup, &countCall);
    calls = 0;
    library_.stop();
    EXPECT_EQ(calls, 0);
}

TEST_F(SharedLibrary, CloseDropsItsFailureWhileAnotherExceptionPropagates) {
    makeLoaded();
    EXPECT_CALL(loader_, unload).WillOnce(Return(false));
    whileAnExceptionPropagates([&] { library_.close(); });
    EXPECT_EQ(library_.loaded, 1);
    expectBuiltInEntries();
}

}  // namespace
