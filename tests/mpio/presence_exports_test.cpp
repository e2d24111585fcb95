// Whether MPIO is present and the vendor's DSM loaded and installed, with the listing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/presence_test.h"
#include "tests/mpio/values.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string listed(const std::string& dsm) {
    return " \t\"" + dsm + "\"\r\n";
}

class PresenceExportsTest : public PresenceTest {};

TEST_F(PresenceExportsTest, NullPointersAreRefused) {
    openWith({controller(kVendorDsm)});
    EXPECT_EQ(DSMIsMPIOPresent(nullptr), DSM_INVALID_PARAMETERS);
    EXPECT_EQ(KORVADSMIsInstalled(nullptr), DSM_INVALID_PARAMETERS);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PresenceExportsTest, VendorsDsmIsPresentLoadedAndInstalled) {
    openWith({controller(kOtherDsm), controller(kVendorDsm)});
    const LiveObjectsCheck live(host);
    const AllocationScope allocations;
    EXPECT_EQ(isPresent(), (Flag{DSM_SUCCESS, 1}));
    EXPECT_EQ(DSMIsLoaded(), 1);
    EXPECT_EQ(isRegistered(), 1);
    EXPECT_EQ(isInstalled(), (Flag{DSM_SUCCESS, 1}));
    EXPECT_THAT(allocations.survivors(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PresenceExportsTest, OtherDsmsArePresentOnly) {
    openWith({controller(kOtherDsm), controller(L"Data KORVA")});
    EXPECT_EQ(isPresent(), (Flag{DSM_SUCCESS, 1}));
    EXPECT_EQ(DSMIsLoaded(), 0);
    EXPECT_EQ(isRegistered(), 0);
    EXPECT_EQ(isInstalled(), (Flag{DSM_SUCCESS, 0}));
}

TEST_F(PresenceExportsTest, UnreadableConfigurationIsNotPresent) {
    openSession();
    EXPECT_EQ(isPresent(), (Flag{DSM_WMI_PARSING_ERROR, 0}));
    EXPECT_EQ(DSMIsLoaded(), 0);
    EXPECT_EQ(isRegistered(), 0);
    EXPECT_THAT(log.take(), ElementsAre(controllerEnd(), controllerEnd(), controllerEnd()));
    EXPECT_EQ(isInstalled(), (Flag{DSM_WMI_PARSING_ERROR, 0}));
    EXPECT_THAT(log.lines(), ElementsAre(controllerEnd(), controllerEnd())) << "it reads twice";
}

TEST_F(PresenceExportsTest, EmptyArrayIsNotPresent) {
    openWithValue(Value::objects({}));
    EXPECT_EQ(isPresent(), (Flag{DSM_WMI_PARSING_ERROR, 0}));
    EXPECT_EQ(isInstalled(), (Flag{DSM_WMI_PARSING_ERROR, 0}));
}

TEST_F(PresenceExportsTest, NoValueIsPresentWithoutDsm) {
    openWithValue(Value::null());
    EXPECT_EQ(isPresent(), (Flag{DSM_SUCCESS, 1}));
    EXPECT_EQ(DSMIsLoaded(), 0);
    EXPECT_EQ(isRegistered(), 0);
    EXPECT_EQ(isInstalled(), (Flag{DSM_SUCCESS, 0}));
}

TEST_F(PresenceExportsTest, WithoutMemoryNothingIsWrittenOrRead) {
    openWith({controller(kVendorDsm)});
    const AllocationScope allocations;
    allocations->failBlocks(kConfigurationSize);
    EXPECT_EQ(isPresent(), (Flag{DSM_NO_MEMORY, Flag::kUntouched}));
    EXPECT_EQ(isInstalled(), (Flag{DSM_NO_MEMORY, Flag::kUntouched}));
    EXPECT_EQ(DSMIsLoaded(), 0);
    EXPECT_EQ(isRegistered(), 0);
    auto* const before = reinterpret_cast<_MPIO_CONTROLLER_CONFIGURATION*>(0x1234);
    _MPIO_CONTROLLER_CONFIGURATION* config = before;
    EXPECT_EQ(DSMGetControllerConfig(&config), DSM_NO_MEMORY);
    EXPECT_EQ(config, before);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PresenceExportsTest, InstalledNeedsTheMemoryOfBothReadings) {
    openWith({controller(kVendorDsm)});
    const AllocationScope allocations;
    allocations->failBlocks(kConfigurationSize, 2, 1);
    EXPECT_EQ(isInstalled(), (Flag{DSM_SUCCESS, 0}));
}

TEST_F(PresenceExportsTest, InstalledNeedsBothReadings) {
    openWith({controller(kVendorDsm)});
    host.failGet(kConfigurationClass, L"NumberControllers", asResult(kNotFound), 1, 1);
    EXPECT_EQ(isInstalled(), (Flag{DSM_WMI_PARSING_ERROR, 0}))
        << "the second reading finds the DSM, the first decides the status";
    host->clearFaults();
    host.failGet(kConfigurationClass, L"NumberControllers", asResult(kNotFound), 2, 1);
    EXPECT_EQ(isInstalled(), (Flag{DSM_SUCCESS, 0}));
}

TEST_F(PresenceExportsTest, FailedEntryUnloadsThoseBeforeIt) {
    openWith({controller(kVendorDsm), controller(kOtherDsm)});
    host.failGet(kControllerClass, L"AssociatedDsm", asResult(kNotFound), 2, 1);
    EXPECT_EQ(DSMIsLoaded(), 0) << "after a failure no entry counts";
}

TEST_F(PresenceExportsTest, BlocksAreFreedAlsoAfterFailures) {
    openSession();
    const AllocationScope allocations;
    isPresent();
    DSMIsLoaded();
    EXPECT_THAT(allocations.survivors(), IsEmpty());
    isInstalled();
    EXPECT_THAT(allocations.survivors(), ElementsAre(kConfigurationSize))
        << "the failed configuration call within it keeps its block";
}

struct NamedDsm {
    std::wstring name;
    bool isVendors;
};

class DsmNameTest : public PresenceTest, public testing::WithParamInterface<NamedDsm> {};

TEST_P(DsmNameTest, IsComparedAsASubstringWithCase) {
    openWith({controller(L""), controller(GetParam().name)});
    const unsigned char expected = GetParam().isVendors ? 1 : 0;
    EXPECT_EQ(DSMIsLoaded(), expected);
    EXPECT_EQ(isRegistered(), expected);
    EXPECT_EQ(isInstalled(), (Flag{DSM_SUCCESS, expected}));
}

INSTANTIATE_TEST_SUITE_P(
    Presence, DsmNameTest,
    testing::Values(NamedDsm{L"The Data KORVA DSM for MPIO", true},
                    NamedDsm{L"XData KORVA DSMX", true}, NamedDsm{L"data korva dsm", false},
                    NamedDsm{L"DATA KORVA DSM", false}, NamedDsm{L"Data  KORVA DSM", false},
                    NamedDsm{L"Data KORVA DS", false}, NamedDsm{L"", false},
                    NamedDsm{std::wstring(50, L'x') + L"Data KORVA DSM", true},
                    // Names are cut to their field before they are compared.
                    NamedDsm{std::wstring(51, L'x') + L"Data KORVA DSM", false},
                    NamedDsm{std::wstring(64, L'x') + L"Data KORVA DSM", false}));

class ListingTest : public PresenceTest {
  protected:
    unsigned char answer = 0xA5;

    std::string listing() {
        return printed([this] { answer = KORVADSMIsLoaded(); });
    }
};

TEST_F(ListingTest, NamesEveryController) {
    openWith({controller(L"first"), controller(kVendorDsm), controller(L""), controller(L"last")});
    EXPECT_EQ(listing(), listed("first") + listed("Data KORVA DSM") + listed("") + listed("last"));
    EXPECT_EQ(answer, 1);
}

TEST_F(ListingTest, GoesByTheReportedCount) {
    host.add(configuration({controller(L"one"), controller(kVendorDsm)})
                 .number(L"NumberControllers", 4));
    openSession();
    EXPECT_EQ(listing(), listed("one") + listed("Data KORVA DSM") + listed("") + listed(""));
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(DSMIsLoaded(), 1);
}

TEST_F(ListingTest, ReportedCountMayHideControllers) {
    host.add(configuration({controller(L"one"), controller(kVendorDsm)})
                 .number(L"NumberControllers", 1));
    openSession();
    EXPECT_EQ(listing(), listed("one"));
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(DSMIsLoaded(), 1) << "which goes by the entries that were parsed";
    EXPECT_EQ(isInstalled(), (Flag{DSM_SUCCESS, 0}));
}

TEST_F(ListingTest, CountAboveTheBlockIsBounded) {
    std::string expected = listed("Data KORVA DSM");
    for (int i = 1; i < 65; ++i) expected += listed("");
    for (const unsigned count : {65u, 66u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        host->removeInstances(kWmi, kConfigurationClass);
        host.add(
            configuration({controller(kVendorDsm)}).unsignedNumber(L"NumberControllers", count));
        openSession();
        const AllocationScope allocations;
        allocations->guardBlocks(kConfigurationSize, kConfigurationSize);
        EXPECT_EQ(listing(), expected) << count;
        EXPECT_EQ(answer, 1);
    }
}

TEST_F(ListingTest, NameWithoutTerminatorEndsWithItsField) {
    const std::string name(80, 'n');
    openWith({controller(std::wstring(80, L'n'), 0x410041, 0x420042), controller(L"next")});
    EXPECT_EQ(listing(), listed(name.substr(0, 64)) + listed("next"));
}

TEST_F(ListingTest, IsPrintedByInstalledToo) {
    openWith({controller(kOtherDsm), controller(kVendorDsm)});
    unsigned char installed = 0;
    EXPECT_EQ(printed([&] { KORVADSMIsInstalled(&installed); }),
              listed("Microsoft DSM") + listed("Data KORVA DSM"));
}

TEST_F(ListingTest, NothingElseIsPrinted) {
    openWith({controller(kVendorDsm)});
    EXPECT_EQ(printed([] {
                  isPresent();
                  DSMIsLoaded();
                  readConfiguration();
              }),
              "");
    host.failEnumeration(kConfigurationClass, E_FAIL);
    EXPECT_EQ(listing(), "");
    EXPECT_EQ(answer, 0);
}

class NoSessionPresenceTest : public PresenceTest {};

TEST_F(NoSessionPresenceTest, EveryCallFailsAtTheEnumeration) {
    const LogLine refused =
        controllerFailure("MPIOControllerConfig::CreateInstanceEnum", kNoObject);
    EXPECT_EQ(isPresent(), (Flag{DSM_WMI_PARSING_ERROR, 0}));
    EXPECT_THAT(log.take(), ElementsAre(refused));
    EXPECT_EQ(DSMIsLoaded(), 0);
    EXPECT_THAT(log.take(), ElementsAre(refused));
    EXPECT_EQ(isRegistered(), 0);
    EXPECT_THAT(log.take(), ElementsAre(refused));
    EXPECT_EQ(isInstalled(), (Flag{DSM_WMI_PARSING_ERROR, 0}));
    EXPECT_THAT(log.take(), ElementsAre(refused, refused));
    EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.take(), ElementsAre(refused));
}

}  // namespace
}  // namespace quista::test
