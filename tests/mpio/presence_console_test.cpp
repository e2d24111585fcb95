// What the presence exports print while the trace is on, which no export can switch on: the program
// holds the library's objects.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/console.h"
#include "tests/mpio/presence_test.h"
#include "tests/mpio/values.h"

namespace quista::test {
namespace {

class PresenceConsoleTest : public PresenceTest {
  protected:
    ~PresenceConsoleTest() override { gConsoleTrace = 0; }

    static std::string traced(const std::function<void()>& call) {
        return printed([&] {
            gConsoleTrace = 1;
            call();
            gConsoleTrace = 0;
        });
    }
    static std::string present() {
        unsigned char flag = 0;
        return traced([&] { DSMIsMPIOPresent(&flag); });
    }
    static std::string loaded() {
        return traced([] { DSMIsLoaded(); });
    }
    static std::string registered() {
        return traced([] { KORVADSMIsLoaded(); });
    }
    static std::string installed() {
        unsigned char flag = 0;
        return traced([&] { KORVADSMIsInstalled(&flag); });
    }
    static std::string configured() {
        return traced([] { readConfiguration(); });
    }
};

constexpr const char* kListing = " \t\"Data KORVA DSM\"\r\n";
constexpr const char* kNoConfiguration =
    "DSMGetControllerConfig: Failed ParseMPIOControllerConfig()\r\n";

/// The text of the answer stands between blanks of its own: both lines hold two blanks in a row.
TEST_F(PresenceConsoleTest, LoadedDsm) {
    openWith({controller(kVendorDsm)});
    EXPECT_EQ(present(), "MPIO driver is installed\r\n");
    EXPECT_EQ(loaded(), "MPIO driver is loaded, KORVADSM driver is  loaded\r\n");
    EXPECT_EQ(registered(), kListing);
    EXPECT_EQ(installed(), "MPIO driver is installed\r\n" + std::string(kListing) +
                               "KORVADSM driver is installed\r\n");
    EXPECT_EQ(configured(), "");
}

TEST_F(PresenceConsoleTest, OtherDsm) {
    openWith({controller(L"other")});
    EXPECT_EQ(loaded(), "MPIO driver is loaded, KORVADSM driver is not  loaded\r\n");
    EXPECT_EQ(installed(),
              "MPIO driver is installed\r\n \t\"other\"\r\n"
              "KORAVDSM is not registered with MPIO\r\n");
}

/// An empty array fails without a line of the log, which would be on the console as well.
TEST_F(PresenceConsoleTest, FailedParse) {
    openWithValue(Value::objects({}));
    EXPECT_EQ(present(), "DSMIsInstalled: Failed ParseMPIOControllerConfig()\r\n");
    EXPECT_EQ(loaded(),
              "DSMIsLoaded: Failed ParseMPIOControllerConfig()\r\n"
              "MPIO driver is loaded, KORVADSM driver is not  loaded\r\n");
    EXPECT_EQ(registered(), kNoConfiguration);
    EXPECT_EQ(installed(), "KORVADSMIsInstalled: Failed ParseMPIOControllerConfig()\r\n" +
                               std::string(kNoConfiguration) +
                               "KORAVDSM is not registered with MPIO\r\n");
    EXPECT_EQ(configured(), kNoConfiguration);
}

TEST_F(PresenceConsoleTest, NoMemory) {
    openWith({controller(kVendorDsm)});
    const std::string noMemory = ": Failed to Allocate 11444 bytes\r\n";
    const AllocationScope allocations;
    allocations->failBlocks(kConfigurationSize);
    EXPECT_EQ(present(), "DSMIsInstalled" + noMemory);
    EXPECT_EQ(loaded(), "DSMIsLoaded" + noMemory);
    EXPECT_EQ(registered(), "KORVADSMGetControllerConfig" + noMemory);
    EXPECT_EQ(installed(), "KORVADSMIsInstalled" + noMemory);
    EXPECT_EQ(configured(), "KORVADSMGetControllerConfig" + noMemory);
}

TEST_F(PresenceConsoleTest, NoValueTellsTheReportedCount) {
    openWithValue(Value::null());
    EXPECT_EQ(present(),
              "No MPIO_CONTROLLER_INFO instances, NumberControllers=1\r\n"
              "MPIO driver is installed\r\n");
}

TEST_F(PresenceConsoleTest, SingleObjectIsWarnedOf) {
    openWith({controller(kVendorDsm)});
    const Value controllers = Value::ofProperty(kConfigurationClass, L"ControllerInfo");
    host.replaceValue(kConfigurationClass, L"ControllerInfo",
                      Value::object(elementOf(controllers, 0)));
    EXPECT_EQ(configured(), "WARNING: ControllerInfo is not an array!\r\n");
}

TEST_F(PresenceConsoleTest, TraceSwitchDoesNotAffectTheListing) {
    openWith({controller(kVendorDsm)});
    EXPECT_EQ(printed([] { KORVADSMIsLoaded(); }), kListing);
}

TEST_F(PresenceConsoleTest, VersionWithoutRecord) {
    EXPECT_EQ(traced([] { DSMGetVersion(nullptr); }), "ERROR: Version is NULL\r\n");
    EXPECT_EQ(printed([] { DSMGetVersion(nullptr); }), "");
}

}  // namespace
}  // namespace quista::test
