// DSMGetMpioDescr: descriptors in order, the count, and what each way out leaves behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/mpio_test.h"
#include "tests/mpio/values.h"
#include "tests/support/debug_output.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const LogLine kEndOfList{"DSMGetMpioDescr: IEnumWbemClassObject::Next", kEnd};
const LogLine kParseFailed{"DSMGetMpioDescr", DSM_NO_MEMORY};
constexpr unsigned long kBelowZero = 0xFFFFFFFF;

class DescriptorListTest : public MpioTest {
  protected:
    void addDescriptors(int descriptors) {
        for (int i = 0; i < descriptors; ++i) {
            host.add(descriptor(L"disk" + std::to_wstring(i), {path(100), path(101)}));
        }
    }

    DebugOutputCapture debugger;
};

TEST_F(DescriptorListTest, EveryDiskHasADescriptor) {
    host.add(descriptor(L"\\Device\\MPIODisk0", {path(1, {2, 0, 1, 7}), path(2, {3, 1, 5, 7})}));
    host.add(descriptor(L"\\Device\\MPIODisk1", {path(3, {4, 0, 0, 255})}));
    openSession();
    const LiveObjectsCheck live(host);
    const DescriptorRecord record(2);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_SUCCESS);
    ASSERT_EQ(record.count(), 2u);
    EXPECT_EQ(record.at(0).NumberPdos, 2u);
    EXPECT_EQ(fieldText(record.at(0).DeviceName), L"\"\\Device\\MPIODisk0\"");
    EXPECT_EQ(record.at(0).PdoInformation[0].PathIdentifier, 1u);
    EXPECT_EQ(record.at(0).PdoInformation[1].PathIdentifier, 2u);
    EXPECT_EQ(record.at(0).PdoInformation[1].ScsiAddress.TargetId, 5);
    EXPECT_EQ(record.at(1).NumberPdos, 1u);
    EXPECT_EQ(fieldText(record.at(1).DeviceName), L"\"\\Device\\MPIODisk1\"");
    EXPECT_EQ(record.at(1).PdoInformation[0].ScsiAddress.Lun, 255);
    EXPECT_THAT(log.lines(), ElementsAre(kEndOfList));
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(DescriptorListTest, ReadsComeInOrder) {
    addDescriptors(1);
    openSession();
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_SUCCESS);
    EXPECT_THAT(
        calls(),
        ElementsAre(
            L"CreateInstanceEnum MPIO_GET_DESCRIPTOR", L"Next MPIO_GET_DESCRIPTOR",
            L"Get MPIO_GET_DESCRIPTOR.NumberPdos", L"Get MPIO_GET_DESCRIPTOR.NumberPdos",
            L"Get MPIO_GET_DESCRIPTOR.DeviceName", L"Get MPIO_GET_DESCRIPTOR.PdoInformation",
            L"Get PDO_INFORMATION.PathIdentifier", L"Get PDO_INFORMATION.ScsiAddress",
            L"Get PDOSCSI_ADDR.PortNumber", L"Get PDOSCSI_ADDR.ScsiPathId",
            L"Get PDOSCSI_ADDR.TargetId", L"Get PDOSCSI_ADDR.Lun",
            L"Get PDO_INFORMATION.PathIdentifier", L"Get PDO_INFORMATION.ScsiAddress",
            L"Get PDOSCSI_ADDR.PortNumber", L"Get PDOSCSI_ADDR.ScsiPathId",
            L"Get PDOSCSI_ADDR.TargetId", L"Get PDOSCSI_ADDR.Lun", L"Next MPIO_GET_DESCRIPTOR"));
}

TEST_F(DescriptorListTest, OnlyTheDescriptorsSurviveTheCall) {
    addDescriptors(2);
    openSession();
    {
        DescriptorRecord warmUp(2);
        DSMGetMpioDescr(warmUp.get());
    }
    const DescriptorRecord record(2);
    const AllocationScope scope;
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_SUCCESS);
    EXPECT_THAT(scope.survivors(), ElementsAre(blockSize(2), blockSize(2)));
}

TEST_F(DescriptorListTest, NoDiskIsAWmiFailureWithoutDescriptors) {
    openSession();
    const LiveObjectsCheck live(host);
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_EQ(record.count(), 0u);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(), ElementsAre(kEndOfList));
}

TEST_F(DescriptorListTest, FailedEnumerationIsAWmiFailureWithoutDescriptors) {
    addDescriptors(1);
    openSession();
    host.failEnumeration(kDescriptorClass, E_ACCESSDENIED);
    const LiveObjectsCheck live(host);
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_EQ(record.count(), 0u);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetMpioDescr:CreateInstanceEnum", 0x80070005}));
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(DescriptorListTest, InstancesOfSubclassesAreNotListed) {
    host.loadText(L"class Derived_DESCRIPTOR : MPIO_GET_DESCRIPTOR {};");
    host.add(MofObject(L"Derived_DESCRIPTOR").text(L"InstanceName", L"d"));
    openSession();
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_EQ(record.count(), 0u);
}

// ---- The class is missing

TEST_F(DescriptorListTest, MissingClassIsNotSupported) {
    openSession();
    host->removeClass(kWmi, kDescriptorClass);
    const LiveObjectsCheck live(host);
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_NOT_SUPPORTED);
    EXPECT_EQ(record.count(), 0u);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetMpioDescr", kInvalidClass},
                            LogLine{"DSMGetMpioDescr: IEnumWbemClassObject::Next", kInvalidClass}));
}

TEST_F(DescriptorListTest, ClassMissingAtOnceIsAWmiFailure) {
    openSession();
    host->removeClass(kWmi, kDescriptorClass);
    host->setUnknownClassAtCreation(true);
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_EQ(record.count(), 0u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetMpioDescr:CreateInstanceEnum", kInvalidClass}));
}

TEST_F(DescriptorListTest, ClassThatGoesMissingLeavesTheDescriptorsSoFar) {
    addDescriptors(2);
    openSession();
    host.failNext(kDescriptorClass, asResult(kInvalidClass), 2, 1);
    const LiveObjectsCheck live(host);
    const DescriptorRecord record(2);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_NOT_SUPPORTED);
    ASSERT_EQ(record.count(), 1u);
    EXPECT_EQ(record.at(0).NumberPdos, 2u);
    EXPECT_TRUE(record.untouchedFrom(1));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetMpioDescr", kInvalidClass},
                            LogLine{"DSMGetMpioDescr: IEnumWbemClassObject::Next", kInvalidClass}));
}

// ---- Ways out that break off

TEST_F(DescriptorListTest, UnreadablePathCountBreaksOff) {
    addDescriptors(2);
    openSession();
    host.failGet(kDescriptorClass, L"NumberPdos", E_FAIL, 1, 1);
    const LiveObjectsCheck live(host, {.enumerators = 1, .objects = 1});
    const DescriptorRecord record(2);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_TRUE(record.countUntouched());
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"DSMGetMpioDescr", DSM_NO_MPIO_PATHS}));
    EXPECT_EQ(countCalls(L"Next MPIO_GET_DESCRIPTOR"), 1u);
}

TEST_F(DescriptorListTest, BreakingOffLeavesTheDescriptorsSoFar) {
    addDescriptors(3);
    openSession();
    host.failGet(kDescriptorClass, L"NumberPdos", E_FAIL, 3, 1);  // two reads per descriptor
    const LiveObjectsCheck live(host, {.enumerators = 1, .objects = 1});
    DescriptorRecord record(3);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_TRUE(record.countUntouched());
    EXPECT_EQ(fieldText(record.at(0).DeviceName), L"\"disk0\"");
    EXPECT_TRUE(record.untouchedFrom(1));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"DSMGetMpioDescr", DSM_NO_MPIO_PATHS}));
    record.free(1);
}

TEST_F(DescriptorListTest, NoMemoryForADescriptorBreaksOff) {
    host.add(descriptor(L"disk", {path(1), path(2), path(3)}));
    openSession();
    const AllocationScope scope;
    scope->failBlocks(200 + 64 * 3);
    const LiveObjectsCheck live(host, {.enumerators = 1, .objects = 1});
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_NULL_MPIO_DESCRIPTOR);
    EXPECT_EQ(scope->requests(200 + 64 * 3), 1u);
    EXPECT_TRUE(record.countUntouched());
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"DSMGetMpioDescr", DSM_NULL_MPIO_DESCRIPTOR}));
    EXPECT_EQ(countCalls(L"Get MPIO_GET_DESCRIPTOR.DeviceName"), 0u);
}

TEST_F(DescriptorListTest, NoMemoryForALaterDescriptorBreaksOff) {
    addDescriptors(3);
    openSession();
    const AllocationScope scope;
    scope->failBlocks(blockSize(2), 2, 1);
    const LiveObjectsCheck live(host, {.enumerators = 1, .objects = 1});
    DescriptorRecord record(3);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_NULL_MPIO_DESCRIPTOR);
    EXPECT_TRUE(record.countUntouched());
    EXPECT_EQ(fieldText(record.at(0).DeviceName), L"\"disk0\"");
    EXPECT_TRUE(record.untouchedFrom(1));
    record.free(1);
}

TEST_F(DescriptorListTest, PathCountBeyondAllMemoryBreaksOff) {
    host.add(descriptor(L"disk", {path(1)}).number(L"NumberPdos", 0xFFFFFFFF));
    openSession();
    const AllocationScope scope;
    scope->failBlocks(blockSize(0xFFFFFFFF));
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_NULL_MPIO_DESCRIPTOR);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"DSMGetMpioDescr", DSM_NULL_MPIO_DESCRIPTOR}));
}

// ---- A descriptor that cannot be parsed

TEST_F(DescriptorListTest, ParseFailureFreesAllDescriptors) {
    addDescriptors(3);
    openSession();
    host.failGet(kDescriptorClass, L"DeviceName", E_FAIL, 3, 1);
    const AllocationScope scope;
    const LiveObjectsCheck live(host, {.objects = 1});
    const DescriptorRecord record(4);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(record.count(), kBelowZero);
    EXPECT_EQ(scope->requests(blockSize(2)), 3u);
    EXPECT_THAT(scope.survivors(), testing::Not(testing::Contains(blockSize(2))));
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_FALSE(record.untouchedFrom(i)) << "the freed pointers stay in the list";
    }
    EXPECT_TRUE(record.untouchedFrom(3));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParseMpioDescr::Get(DeviceName)", 0x80004005}, kParseFailed));
    EXPECT_EQ(countCalls(L"Next MPIO_GET_DESCRIPTOR"), 3u);
}

TEST_F(DescriptorListTest, EmptyPathArrayIsAParseFailure) {
    host.add(descriptor(L"disk", {}));
    openSession();
    const LiveObjectsCheck live(host, {.objects = 1});
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(record.count(), kBelowZero);
    EXPECT_THAT(log.lines(), ElementsAre(kParseFailed));
}

TEST_F(DescriptorListTest, PathsThatAreNoArrayAreAWmiFailure) {
    addDescriptors(1);
    openSession();
    host.replaceValue(kDescriptorClass, L"PdoInformation", Value::null());
    const LiveObjectsCheck live(host, {.objects = 1});
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_EQ(record.count(), kBelowZero);
    EXPECT_THAT(log.lines(), ElementsAre(kParseFailed));
}

// ---- Other failures of Next

TEST_F(DescriptorListTest, FailureOfTheFirstNextIsAWmiFailure) {
    addDescriptors(1);
    openSession();
    host.failNext(kDescriptorClass, E_FAIL);
    const LiveObjectsCheck live(host);
    const DescriptorRecord record(1);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_EQ(record.count(), 0u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetMpioDescr: IEnumWbemClassObject::Next", 0x80004005}));
}

TEST_F(DescriptorListTest, FailureOfALaterNextLeavesTheDescriptorsSoFar) {
    addDescriptors(2);
    openSession();
    host.failNext(kDescriptorClass, E_FAIL, 2, 1);
    const LiveObjectsCheck live(host);
    const DescriptorRecord record(2);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.count(), 1u);
    EXPECT_TRUE(record.untouchedFrom(1));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetMpioDescr: IEnumWbemClassObject::Next", 0x80004005}));
}

TEST_F(DescriptorListTest, TimeOutEndsTheList) {
    addDescriptors(2);
    openSession();
    host.failNext(kDescriptorClass, asResult(0x40004), 2, 1);
    const DescriptorRecord record(2);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.count(), 1u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetMpioDescr: IEnumWbemClassObject::Next", 0x40004}));
}

}  // namespace
}  // namespace quista::test
