// MPIO's controllers as the parser reads them, seen in the block of DSMGetControllerConfig.
#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/presence_test.h"
#include "tests/mpio/values.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class ControllerTest : public PresenceTest {};

/// Whether an entry holds nothing but zeros.
bool isZero(const _MPIO_CONTROLLER_INFO& entry) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&entry);
    return std::all_of(bytes, bytes + sizeof entry, [](unsigned char byte) { return byte == 0; });
}

TEST_F(ControllerTest, PropertiesFillTheEntriesInOrder) {
    openWith({controller(kOtherDsm, 4, 1), controller(kVendorDsm, 5, 2)});
    const LiveObjectsCheck live(host);
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(read.block->NumberControllers, 2u);
    const auto& entries = read.block->ControllerInfo;
    EXPECT_EQ(fieldText(entries[0].AssociatedDsm), kOtherDsm);
    EXPECT_EQ(entries[0].ControllerState, 4u);
    EXPECT_EQ(entries[0].IdentifierType, 1u);
    EXPECT_EQ(fieldText(entries[1].AssociatedDsm), kVendorDsm);
    EXPECT_EQ(entries[1].ControllerState, 5u);
    EXPECT_EQ(entries[1].IdentifierType, 2u);
    EXPECT_TRUE(std::all_of(std::begin(entries) + 2, std::end(entries), isZero));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ControllerTest, ReadsInOrderAndStopsAtTheFirstInstance) {
    host.add(configuration({controller(kOtherDsm)}, L"first"));
    openWith({controller(kVendorDsm)});
    EXPECT_EQ(fieldText(readConfiguration().block->ControllerInfo[0].AssociatedDsm), kOtherDsm);
    EXPECT_THAT(calls(), ElementsAre(L"CreateInstanceEnum MPIO_CONTROLLER_CONFIGURATION",
                                     L"Next MPIO_CONTROLLER_CONFIGURATION",
                                     L"Get MPIO_CONTROLLER_CONFIGURATION.NumberControllers",
                                     L"Get MPIO_CONTROLLER_CONFIGURATION.ControllerInfo",
                                     L"Get MPIO_CONTROLLER_INFO.AssociatedDsm",
                                     L"Get MPIO_CONTROLLER_INFO.ControllerState",
                                     L"Get MPIO_CONTROLLER_INFO.IdentifierType"));
}

TEST_F(ControllerTest, IdentifierAndReservedFieldStayZero) {
    openWith({controller(kVendorDsm).numbers(L"Identifier", {1, 2, 3, 4})});
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    const _MPIO_CONTROLLER_INFO& entry = read.block->ControllerInfo[0];
    EXPECT_EQ(entry.IdentifierLength, 0u);
    EXPECT_THAT(entry.Identifier, testing::Each(0));
    EXPECT_EQ(entry.Reserved, 0u);
}

TEST_F(ControllerTest, BlockHasItsFullSizeAndIsZeroed) {
    openWith({});
    host.replaceValue(kConfigurationClass, L"ControllerInfo", Value::null());
    const AllocationScope allocations;
    allocations->fillBlocks(0xA5);
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(allocations->requests(kConfigurationSize), 1u);
    EXPECT_THAT(allocations.survivors(), ElementsAre(kConfigurationSize));
    EXPECT_TRUE(std::all_of(std::begin(read.block->ControllerInfo),
                            std::end(read.block->ControllerInfo), isZero));
}

TEST_F(ControllerTest, CountIsCopiedAsReported) {
    host.add(configuration({controller(kVendorDsm)}).unsignedNumber(L"NumberControllers", 4000000));
    openSession();
    EXPECT_EQ(readConfiguration().block->NumberControllers, 4000000u);
}

TEST_F(ControllerTest, LongNameFillsItsFieldWithoutTerminator) {
    const std::wstring longest(63, L'n');
    openWith({controller(longest), controller(longest + L"o"), controller(longest + L"opq")});
    const AllocationScope allocations;
    allocations->guardBlocks(kConfigurationSize, kConfigurationSize);
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(fieldText(read.block->ControllerInfo[0].AssociatedDsm), longest);
    EXPECT_EQ(fieldText(read.block->ControllerInfo[1].AssociatedDsm), longest + L"o");
    EXPECT_EQ(fieldText(read.block->ControllerInfo[2].AssociatedDsm), longest + L"o");
    EXPECT_EQ(read.block->ControllerInfo[2].IdentifierType, 1u) << "the next field is its own";
}

TEST_F(ControllerTest, NameThatIsNoTextIsEmpty) {
    openWith({controller(kVendorDsm).null(L"AssociatedDsm"), controller(kOtherDsm)});
    EXPECT_EQ(fieldText(readConfiguration().block->ControllerInfo[0].AssociatedDsm), L"");
    for (const auto& make : {Value::number(7), Value::boolean(true), Value::array(VT_I4, 4)}) {
        host->clearFaults();
        host.replaceValue(kControllerClass, L"AssociatedDsm", make);
        const ReadConfiguration read = readConfiguration();
        ASSERT_EQ(read.status, DSM_SUCCESS);
        EXPECT_EQ(fieldText(read.block->ControllerInfo[1].AssociatedDsm), L"");
    }
}

TEST_F(ControllerTest, NumbersWithoutValueAreZero) {
    openWith({controller(kVendorDsm).null(L"ControllerState").null(L"IdentifierType")});
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(read.block->ControllerInfo[0].ControllerState, 0u);
    EXPECT_EQ(read.block->ControllerInfo[0].IdentifierType, 0u);
}

TEST_F(ControllerTest, SingleObjectIsOneEntry) {
    openWith({controller(kOtherDsm), controller(kVendorDsm)});
    const Value controllers = Value::ofProperty(kConfigurationClass, L"ControllerInfo");
    host.replaceValue(kConfigurationClass, L"ControllerInfo",
                      Value::object(elementOf(controllers, 1)));
    const LiveObjectsCheck live(host);
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(read.block->NumberControllers, 2u);
    EXPECT_EQ(fieldText(read.block->ControllerInfo[0].AssociatedDsm), kVendorDsm);
    EXPECT_TRUE(isZero(read.block->ControllerInfo[1]));
    EXPECT_EQ(DSMIsLoaded(), 1) << "the one entry is counted";
}

TEST_F(ControllerTest, SingleObjectThatCannotBeReadIsStillSuccess) {
    openWith({controller(kVendorDsm)});
    const Value controllers = Value::ofProperty(kConfigurationClass, L"ControllerInfo");
    host.replaceValue(kConfigurationClass, L"ControllerInfo",
                      Value::object(elementOf(controllers, 0)));
    host.failGet(kControllerClass, L"ControllerState", asResult(kNotFound));
    const ReadConfiguration read = readConfiguration();
    EXPECT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(fieldText(read.block->ControllerInfo[0].AssociatedDsm), kVendorDsm);
    EXPECT_EQ(read.block->ControllerInfo[0].IdentifierType, 0u) << "not read after the failure";
    EXPECT_THAT(log.lines(),
                ElementsAre(controllerFailure("ControllerInfo::Get(ControllerState)", kNotFound)));
}

// A value without an object counts as one that cannot be read.
TEST_F(ControllerTest, SingleObjectThatIsNoneIsUnreadable) {
    openWith({});
    for (IUnknown* object : {static_cast<IUnknown*>(nullptr), foreignObject()}) {
        host->clearFaults();
        host.replaceValue(kConfigurationClass, L"ControllerInfo", Value::object(object));
        const LiveObjectsCheck live(host);
        EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR);
        EXPECT_THAT(
            log.take(),
            ElementsAre(controllerFailure("MPIOControllerConfig::Get(ControllerInfo)", kNoObject),
                        controllerEnd()));
    }
}

TEST_F(ControllerTest, NoValueIsSuccessWithoutEntries) {
    openWithValue(Value::null());
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(read.block->NumberControllers, 1u);
    EXPECT_TRUE(isZero(read.block->ControllerInfo[0]));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ControllerTest, EmptyArrayIsAFailureThatNobodyLogs) {
    openWith({});
    for (const auto& empty : {Value::objects({}), Value::objects({}, 5)}) {
        host->clearFaults();
        host.replaceValue(kConfigurationClass, L"ControllerInfo", empty);
        EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR);
        EXPECT_EQ(readConfiguration().block, nullptr);
    }
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(calls(), Not(Contains(L"Get MPIO_CONTROLLER_INFO.AssociatedDsm")));
}

TEST_F(ControllerTest, OtherTypesAreAFailure) {
    openWith({controller(kVendorDsm)});
    for (const auto& value : {Value::text(L"text"), Value::number(1), Value::boolean(true),
                              Value::array(VT_I4, 3), Value()}) {
        host->clearFaults();
        host.replaceValue(kConfigurationClass, L"ControllerInfo", value);
        const LiveObjectsCheck live(host);
        EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR) << value.get().vt;
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ControllerTest, ArrayNeedNotBeginAtZero) {
    openWith({controller(kOtherDsm), controller(kVendorDsm)});
    const Value stored = Value::ofProperty(kConfigurationClass, L"ControllerInfo");
    host.replaceValue(kConfigurationClass, L"ControllerInfo",
                      Value::objects({elementOf(stored, 1), elementOf(stored, 0)}, -7));
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(fieldText(read.block->ControllerInfo[0].AssociatedDsm), kVendorDsm);
    EXPECT_EQ(fieldText(read.block->ControllerInfo[1].AssociatedDsm), kOtherDsm);
}

TEST_F(ControllerTest, ElementThatIsNoObjectFails) {
    openWith({controller(kVendorDsm)});
    for (IUnknown* object : {static_cast<IUnknown*>(nullptr), foreignObject()}) {
        host->clearFaults();
        host.replaceValue(kConfigurationClass, L"ControllerInfo", Value::objects({object}));
        EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR);
        EXPECT_THAT(log.take(), ElementsAre(controllerFailure("ControllerInfo::Get(AssociatedDsm)",
                                                              kNoObject)));
    }
}

class ControllerCapacityTest : public PresenceTest,
                               public testing::WithParamInterface<std::size_t> {};

TEST_P(ControllerCapacityTest, NoMoreThanTheTableHoldsIsFetched) {
    std::vector<MofObject> controllers;
    for (std::size_t i = 0; i < GetParam(); ++i) {
        controllers.push_back(controller(L"DSM " + std::to_wstring(i)));
    }
    openWith(controllers);
    const LiveObjectsCheck live(host);
    const AllocationScope allocations;
    allocations->guardBlocks(kConfigurationSize, kConfigurationSize);
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(read.block->NumberControllers, GetParam());
    EXPECT_EQ(fieldText(read.block->ControllerInfo[63].AssociatedDsm), L"DSM 63");
    EXPECT_TRUE(isZero(read.block->ControllerInfo[64])) << "the table holds 64";
}

INSTANTIATE_TEST_SUITE_P(Presence, ControllerCapacityTest, testing::Values(64u, 65u, 66u, 200u));

TEST_F(ControllerTest, ElementsAfterAFailedOneAreNotReleased) {
    openWith({controller(L"0"), controller(L"1"), controller(L"2"), controller(L"3")});
    host.failGet(kControllerClass, L"IdentifierType", asResult(kNotFound), 2, 1);
    // Two entries after the failed one; with each goes the array's reference to the same object.
    const LiveObjectsCheck live(host, {.objects = 2});
    EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(countCalls(L"Get MPIO_CONTROLLER_INFO.AssociatedDsm"), 2u);
    EXPECT_THAT(log.lines(),
                ElementsAre(controllerFailure("ControllerInfo::Get(IdentifierType)", kNotFound)));
}

TEST_F(ControllerTest, InstanceThatCannotBeReadIsPassedOver) {
    host.add(configuration({controller(kOtherDsm)}, L"first"));
    host.add(configuration({controller(L"second")}, L"second"));
    openWith({controller(kVendorDsm)});
    host.failGet(kConfigurationClass, L"NumberControllers", asResult(kNotFound), 1, 1);
    host.failGet(kConfigurationClass, L"ControllerInfo", asResult(0x80041001), 1, 1);
    const LiveObjectsCheck live(host);
    const ReadConfiguration read = readConfiguration();
    ASSERT_EQ(read.status, DSM_SUCCESS);
    EXPECT_EQ(fieldText(read.block->ControllerInfo[0].AssociatedDsm), kVendorDsm);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(controllerFailure("MPIOControllerConfig::Get(NumberControllers)", kNotFound),
                    controllerFailure("MPIOControllerConfig::Get(ControllerInfo)", 0x80041001)));
}

TEST_F(ControllerTest, NoInstanceEndsInAFailure) {
    openSession();
    EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(controllerEnd()));
}

TEST_F(ControllerTest, MissingClassIsTheResultOfNext) {
    openSession();
    host->removeClass(kWmi, kConfigurationClass);
    EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.take(), ElementsAre(controllerEnd(kInvalidClass)));
    host->setUnknownClassAtCreation(true);
    EXPECT_EQ(readConfiguration().status, DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(controllerFailure(
                                 "MPIOControllerConfig::CreateInstanceEnum", kInvalidClass)));
}

TEST_F(ControllerTest, FailedCallKeepsItsBlockAndTheCallersPointer) {
    openSession();
    const AllocationScope allocations;
    auto* const before = reinterpret_cast<_MPIO_CONTROLLER_CONFIGURATION*>(0x1234);
    _MPIO_CONTROLLER_CONFIGURATION* config = before;
    EXPECT_EQ(DSMGetControllerConfig(&config), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(DSMGetControllerConfig(nullptr), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(config, before);
    EXPECT_THAT(allocations.survivors(), ElementsAre(kConfigurationSize, kConfigurationSize));
}

}  // namespace
}  // namespace quista::test
