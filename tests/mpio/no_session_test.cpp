// Without an open session the exports answer as if WMI had refused the enumeration.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/mpio_test.h"
#include "tests/support/debug_output.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NoSessionTest : public MpioTest {
  protected:
    DebugOutputCapture debugger;
};

TEST_F(NoSessionTest, CountFails) {
    const GuardedBuffer count(sizeof(unsigned long));
    EXPECT_EQ(DSMGetNumberMpioLUNs(count.as<unsigned long>()), DSM_WMI_FAILURE);
    EXPECT_TRUE(count.untouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{
                                 "DSMGetNumberMpioLUNs:CreateInstanceEnum(DSM_DISKS)", kNoObject}));
    EXPECT_THAT(debugger.texts(), ElementsAre(L"ParseDisksInfo: CreateInstanceEnum(DSM_DISKS).\n"));
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(NoSessionTest, DiskListFails) {
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_FAILURE);
    EXPECT_TRUE(record.untouched());
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParseDisksInfo:CreateInstanceEnum(DSM_DISKS)", kNoObject},
                            LogLine{"DSMGetAllLuns", DSM_WMI_PARSING_ERROR}));
    EXPECT_THAT(debugger.texts(),
                ElementsAre(L"ParseDisksInfo::CreateInstanceEnum(DSM_DISKS).\n",
                            L"DSMGetAllLuns: failed to get disks info from WMI/DSM.\n"));
}

TEST_F(NoSessionTest, DescriptorListFails) {
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_EQ(record.count(), 0u);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"DSMGetMpioDescr:CreateInstanceEnum", kNoObject}));
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(NoSessionTest, ClosedSessionIsNone) {
    host.add(diskInfo({drive(L"s-1")}));
    ASSERT_EQ(openSession(), DSM_SUCCESS);
    closeSession();
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_FAILURE);
    EXPECT_TRUE(record.untouched());
}

}  // namespace
}  // namespace quista::test
