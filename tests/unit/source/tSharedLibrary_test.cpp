#include "source/tSharedLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/support/exceptions.h"
#include "tests/support/loader.h"

namespace {

using support::caughtReport;
using support::whileUnwinding;
using testing::_;
using testing::InSequence;
using testing::Return;
using testing::StrEq;

/// A loader that fails the test on every call that was not expected.
class tMockLoader : public support::tLoader {
public:
    MOCK_METHOD(nLibrary::tHandle, load, (const char* path, std::uint32_t& osError), (override));
    MOCK_METHOD(bool, unload, (nLibrary::tHandle library, std::uint32_t& osError), (override));
    MOCK_METHOD(void*, symbol, (nLibrary::tHandle library, const char* name, std::uint32_t& osError), (override));
};

int calls = 0;
std::int32_t initializeFive() { return 5; }
void countCall() { ++calls; }
void countCallTwice() { calls += 2; }

template <class Function>
void* addressOf(Function function) {
    return reinterpret_cast<void*>(function);
}

class tSharedLibraryTest : public testing::Test {
protected:
    static zuerr::PlatformStatus statusWith(std::int32_t code) {
        zuerr::PlatformStatus status;
        status.code = code;
        return status;
    }

    void expectReport() const {
        EXPECT_STREQ(status_.file.data(), "zukest/quarks/library");
        EXPECT_STREQ(status_.component.data(), "zuZiptraR") << "the component's field is nine characters long";
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
    testing::StrictMock<tMockLoader> loader_;
    tSharedLibrary library_;
    zuerr::PlatformStatus status_;
};

TEST_F(tSharedLibraryTest, IsInitiallyNotLoadedAndItsEntriesAreHarmless) {
    EXPECT_EQ(library_.loaded, 0);
    expectBuiltInEntries();
}

TEST_F(tSharedLibraryTest, IsAPlainValueThatUnloadsNothingOnDestruction) {
    makeLoaded();
    const tSharedLibrary copy = library_;
    EXPECT_EQ(copy.loaded, 1);
    EXPECT_EQ(copy.handle, &module_);
}

struct tCase {
    const char* operation = nullptr;
    bool isLoaded = false;      ///< before
    std::int32_t status = 0;    ///< before: 0, a warning or a failure
    std::optional<bool> works;  ///< whether the system call succeeds; empty if it must not be made
    std::int32_t codeAfter = 0;
    std::int32_t lineAfter = 0;  ///< of the report
    bool isLoadedAfter = false;
};

constexpr tCase cases[] = {
    {"load", false, 0, true, 0, 0, true},          {"load", false, 0, false, -52005, 134, false},
    {"load", false, -1, {}, -1, 0, false},         {"load", false, 5, true, 5, 0, true},
    {"load", false, 5, false, -52005, 134, false}, {"unload", true, 0, true, 0, 0, false},
    {"unload", true, 0, false, -52005, 225, true}, {"unload", true, -1, {}, -1, 0, true},
    {"unload", true, 5, true, 5, 0, false},        {"unload", true, 5, false, -52005, 225, true},
    {"unload", false, 0, {}, 0, 0, false},         {"symbol", true, 0, true, 0, 0, true},
    {"symbol", true, 0, false, -52005, 299, true}, {"symbol", true, -1, {}, -1, 0, true},
    {"symbol", true, 5, true, 5, 0, true},         {"symbol", true, 5, false, -52005, 299, true},
    {"symbol", false, 0, {}, -52005, 280, false},  {"symbol", false, -1, {}, -1, 0, false},
    {"symbol", false, 5, {}, -52005, 280, false},
};

TEST_F(tSharedLibraryTest, CallsReportThroughTheStatusAndDoNothingIfItContainsAnError) {
    for (const tCase& row : cases) {
        const std::string operation = row.operation;
        SCOPED_TRACE(operation + (row.isLoaded ? ", loaded, " : ", not loaded, ") + std::to_string(row.status));
        library_ = {};
        if (row.isLoaded) makeLoaded();
        status_ = statusWith(row.status);
        const bool works = row.works.value_or(false);
        if (operation == "load") {
            if (row.works) EXPECT_CALL(loader_, load(StrEq("a.dll"), _)).WillOnce(Return(works ? &module_ : nullptr));
            library_.load("a.dll", status_);
        } else if (operation == "unload") {
            if (row.works) EXPECT_CALL(loader_, unload(&module_, _)).WillOnce(Return(works));
            library_.unload(status_);
        } else {
            void* const address = works ? &calls : nullptr;
            if (row.works) expectSymbol("Entry", address);
            EXPECT_EQ(library_.symbol("Entry", status_), address);
        }
        EXPECT_EQ(library_.loaded, row.isLoadedAfter ? 1 : 0);
        if (row.isLoadedAfter) {
            EXPECT_EQ(library_.handle, &module_);
        }
        EXPECT_EQ(status_.code, row.codeAfter);
        EXPECT_EQ(status_.line, row.lineAfter);
        if (row.codeAfter == -52005) expectReport();
        testing::Mock::VerifyAndClearExpectations(&loader_);
    }
}

TEST_F(tSharedLibraryTest, OpenLoadsFirstAndThenFindsInitializeStopAndCleanup) {
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

TEST_F(tSharedLibraryTest, OpenWithoutEntryNamesSucceedsWithHarmlessEntries) {
    expectLoad();
    library_.open(description("", "", ""));
    EXPECT_EQ(library_.loaded, 1);
    expectBuiltInEntries();
}

TEST_F(tSharedLibraryTest, OpenStartsFromTheBuiltInsWhateverTheEntriesWereBefore) {
    library_.stop = countCall;
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    library_.open(description("I", "", ""));
    EXPECT_EQ(library_.initialize, &initializeFive);
    calls = 0;
    library_.stop();
    EXPECT_EQ(calls, 0);
}

TEST_F(tSharedLibraryTest, OpenThrowsTheReportOfAFailedLoad) {
    EXPECT_CALL(loader_, load).WillOnce(Return(nullptr));
    EXPECT_EQ(caughtReport([this] { library_.open(description("I", "S", "C")); }),
              R"(-52005 {"file":"zukest/quarks/library","line":134,"component":"zuZiptraR"})");
    EXPECT_EQ(library_.loaded, 0);
    expectBuiltInEntries();
}

TEST_F(tSharedLibraryTest, OpenThrowsLine299ForAMissingEntryAndLeavesTheLibraryLoadedWithTheEntriesItHad) {
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    expectSymbol("S", nullptr);
    EXPECT_EQ(caughtReport([this] { library_.open(description("I", "S", "C")); }),
              R"(-52005 {"file":"zukest/quarks/library","line":299,"component":"zuZiptraR"})");
    EXPECT_EQ(library_.loaded, 1);
    expectBuiltInEntries();
}

TEST_F(tSharedLibraryTest, OpenStoresNoEntryWhenTheLastOneIsMissing) {
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    expectSymbol("S", addressOf(countCall));
    expectSymbol("C", nullptr);
    EXPECT_THROW(library_.open(description("I", "S", "C")), zuerr::Exception);
    expectBuiltInEntries();
}

TEST_F(tSharedLibraryTest, CloseUnloadsAndRestoresTheBuiltIns) {
    makeLoaded();
    library_.initialize = initializeFive;
    library_.stop = countCall;
    library_.cleanup = countCall;
    EXPECT_CALL(loader_, unload(&module_, _)).WillOnce(Return(true));
    library_.close();
    EXPECT_EQ(library_.loaded, 0);
    expectBuiltInEntries();
}

TEST_F(tSharedLibraryTest, CloseIsHarmlessIfNothingWasLoaded) {
    library_.close();
    expectBuiltInEntries();
}

TEST_F(tSharedLibraryTest, CloseThrowsLine225AndChangesNothingWhenTheSystemRefuses) {
    makeLoaded();
    library_.initialize = initializeFive;
    EXPECT_CALL(loader_, unload).WillOnce(Return(false));
    EXPECT_EQ(caughtReport([this] { library_.close(); }),
              R"(-52005 {"file":"zukest/quarks/library","line":225,"component":"zuZiptraR"})");
    EXPECT_EQ(library_.loaded, 1);
    EXPECT_EQ(library_.initialize, &initializeFive);
}

TEST_F(tSharedLibraryTest, OpenIgnoresAFailedLoadWhileAnotherExceptionPropagates) {
    EXPECT_CALL(loader_, load).WillOnce(Return(nullptr));
    whileUnwinding([&] { library_.open(description("I", "S", "C")); });
    EXPECT_EQ(library_.loaded, 0);
    expectBuiltInEntries();
}

TEST_F(tSharedLibraryTest, OpenUsesTheBuiltInForAMissingEntryWhileAnotherExceptionPropagates) {
    expectLoad();
    expectSymbol("I", addressOf(initializeFive));
    expectSymbol("S", nullptr);
    expectSymbol("C", addressOf(countCall));
    whileUnwinding([&] { library_.open(description("I", "S", "C")); });
    EXPECT_EQ(library_.loaded, 1);
    EXPECT_EQ(library_.initialize, &initializeFive);
    EXPECT_EQ(library_.cleanup, &countCall);
    calls = 0;
    library_.stop();
    EXPECT_EQ(calls, 0);
}

TEST_F(tSharedLibraryTest, CloseIgnoresItsFailureWhileAnotherExceptionPropagates) {
    makeLoaded();
    EXPECT_CALL(loader_, unload).WillOnce(Return(false));
    whileUnwinding([&] { library_.close(); });
    EXPECT_EQ(library_.loaded, 1);
    expectBuiltInEntries();
}

}  // namespace
