// What the parsers print on the console while the trace is on, which no export can switch on: the
// program holds the library's objects.
#include "frame/console.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/mpio_test.h"
#include "tests/mpio/values.h"
#include "tests/support/console_capture.h"

namespace quista::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class MpioConsoleTest : public MpioTest {
  protected:
    ~MpioConsoleTest() override { gConsoleTrace = 0; }

    std::string printedByDiskList(unsigned char trace) {
        const DiskRecord record(1);
        return printed(trace, [&] { DSMGetAllLunsEx(record.get()); });
    }
    std::string printedByDescriptorList(unsigned char trace) {
        const DescriptorRecord record(1);
        return printed(trace, [&] { DSMGetMpioDescr(record.get()); });
    }

  private:
    template <typename Call>
    static std::string printed(unsigned char trace, Call call) {
        ConsoleCapture console;
        gConsoleTrace = trace;
        call();
        gConsoleTrace = 0;
        return console.stop();
    }
};

TEST_F(MpioConsoleTest, DriveThatIsNoArrayIsWarnedOf) {
    host.add(diskInfo({drive(L"s-1")}));
    openSession();
    const Value drives = Value::ofProperty(kDiskClass, L"DriveInfo");
    EXPECT_EQ(printedByDiskList(1), "") << "an array needs no warning";
    host.replaceValue(kDiskClass, L"DriveInfo", Value::object(elementOf(drives, 0)));
    EXPECT_EQ(printedByDiskList(1), "WARNING: LunInfo is not an array!\r\n");
    EXPECT_EQ(printedByDiskList(0), "");
}

TEST_F(MpioConsoleTest, PathCountUnlikeThePathsIsWarnedOf) {
    openSession();
    host.add(descriptor(L"disk", {path(1), path(2)}).number(L"NumberPdos", 5));
    EXPECT_THAT(printedByDescriptorList(1),
                StartsWith("WARNING: Inconsistent information: NumberPdos=5, number of Pdo "
                           "object=2\r\nError 00000001 in DSMGetMpioDescr: "));
    EXPECT_EQ(printedByDescriptorList(0), "");
}

TEST_F(MpioConsoleTest, MatchingPathCountIsNotWarnedOf) {
    openSession();
    host.add(descriptor(L"disk", {path(1), path(2)}));
    EXPECT_THAT(printedByDescriptorList(1), Not(HasSubstr("WARNING")));
}

TEST_F(MpioConsoleTest, PathsThatAreNoArrayAreAnError) {
    openSession();
    host.add(descriptor(L"disk", {path(1)}).null(L"PdoInformation"));
    EXPECT_THAT(printedByDescriptorList(1),
                StartsWith("ERROR: PdoInformation is not an ARRAY!!\r\nError 00000007 in "));
    EXPECT_EQ(printedByDescriptorList(0), "");
}

}  // namespace
}  // namespace quista::test
