// Binding the iSCSI discovery library, which stays loaded once it was found: each case runs in a
// process of its own.
#include "tests/adapters/iscsi_adapter_test.h"
#include "tests/support/program_run.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const FoundSession kFailed{kDiscoveryFailed, kUntouched, kUntouched};

class IscsiLibraryTest : public testing::Test {
  protected:
    IscsiLibraryTest() = default;

    static void expectSuccess(const std::wstring& name) {
        const ProgramRun run = runTest(L"IscsiLibraryCase.DISABLED_" + name);
        EXPECT_EQ(run.exitCode, 0u) << run.output;
    }
};

TEST_F(IscsiLibraryTest, MissingLibrary) {
    expectSuccess(L"MissingLibrary");
}

TEST_F(IscsiLibraryTest, MissingMappingsFunction) {
    expectSuccess(L"MissingMappingsFunction");
}

TEST_F(IscsiLibraryTest, MissingSessionsFunction) {
    expectSuccess(L"MissingSessionsFunction");
}

TEST_F(IscsiLibraryTest, BoundOnFirstUse) {
    expectSuccess(L"BoundOnFirstUse");
}

class IscsiLibraryCase : public testing::Test {
  protected:
    IscsiLibraryCase() = default;

    WorkFolder folder;
    LogFile log;
};

TEST_F(IscsiLibraryCase, DISABLED_MissingLibrary) {
    ASSERT_FALSE(isLoaded(L"iscsidsc.dll"));
    EXPECT_EQ(findSession(), kFailed);
    EXPECT_THAT(log.take(), ElementsAre(kMappingsFailed));
    EXPECT_EQ(GetISCSIAdapterInfoEx(3, 0, 1, nullptr, 0, nullptr, 0), 0xFFFFFFFCu);
    EXPECT_THAT(log.take(), ElementsAre(kMappingsFailed));
}

TEST_F(IscsiLibraryCase, DISABLED_MissingMappingsFunction) {
    const IscsiLibrary library(kMappingsFunction);
    library->setMappings({mapping()});
    EXPECT_EQ(findSession(), kFailed);
    EXPECT_THAT(log.take(), ElementsAre(kMappingsFailed));
    EXPECT_THAT(library->calls(), IsEmpty());
}

TEST_F(IscsiLibraryCase, DISABLED_MissingSessionsFunction) {
    const IscsiLibrary library(kSessionsFunction);
    library->setMappings({mapping()});
    EXPECT_EQ(findSession(), kFailed);
    EXPECT_THAT(log.take(), ElementsAre(kSessionsFailed));
    EXPECT_EQ(library->calls().size(), 2u);
}

/// The library is looked for when it is needed, again and again as long as it is missing.
TEST_F(IscsiLibraryCase, DISABLED_BoundOnFirstUse) {
    EXPECT_EQ(findSession(), kFailed);
    const IscsiLibrary library;
    EXPECT_EQ(findSession(), (FoundSession{kNoMappings, kUntouched, kUntouched}));
    EXPECT_THAT(log.take(), ElementsAre(kMappingsFailed));
}

}  // namespace
}  // namespace quista::test
