// The descriptor and the path information that the lookup by serial number fills.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/instance_lookup.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLunPlace = "IWbemClassObject::Get(Lun)";

class LunDescriptorTest : public LunsTest {};

TEST_F(LunDescriptorTest, EntriesHoldIdentifierAndScsiAddress) {
    openWith({lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2)})});
    const AllocationScope memory;
    memory->fillBlocks(0x5A);
    memory->guardBlocks(descriptorBlockSize(2), descriptorBlockSize(2));
    InstanceLookup lookup(2);
    ASSERT_EQ(lookup.run(L"S1"), 0u);
    const _MPIO_GET_DESCRIPTOR& descriptor = *lookup.descriptor();
    EXPECT_EQ(descriptor.NumberPdos, 2u);
    EXPECT_THAT(descriptor.DeviceName, Each(0)) << "the vendor's class has no device name";
    const _PDO_INFORMATION& first = descriptor.PdoInformation[0];
    EXPECT_EQ(first.PathIdentifier, 0x77020001u);
    EXPECT_EQ(first.ScsiAddress.PortNumber, 2u);
    EXPECT_EQ(first.ScsiAddress.ScsiPathId, 0u);
    EXPECT_EQ(first.ScsiAddress.TargetId, 1u);
    EXPECT_EQ(first.ScsiAddress.Lun, 5u);
    EXPECT_THAT(first.Reserved, Each(0));
    const _PDO_INFORMATION& second = descriptor.PdoInformation[1];
    EXPECT_EQ(second.PathIdentifier, 0x77040002u);
    EXPECT_EQ(second.ScsiAddress.PortNumber, 4u);
    EXPECT_EQ(second.ScsiAddress.TargetId, 3u);
    EXPECT_EQ(second.ScsiAddress.Lun, 6u);
    EXPECT_EQ(descriptor.PdoInformation[2].PathIdentifier, 0u) << "the entry beyond the last path";
}

TEST_F(LunDescriptorTest, LargePathIdentifierIsNotSignExtended) {
    openWith({lunWith(L"S1", {fibreChannelPath(1).number(L"PathId", 0xFFFFFFFE)})});
    InstanceLookup lookup(1);
    ASSERT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.descriptor()->PdoInformation[0].PathIdentifier, 0xFFFFFFFEull);
}

TEST_F(LunDescriptorTest, DiskInfoHoldsWhatThePathsReport) {
    MofObject iscsi = iscsiPath(2);
    iscsi.numbers(L"TargetFcpNodename", {1, 2, 3, 4, 5, 6, 7, 8});
    openWith({lunWith(L"S1", {fibreChannelPath(1).number(L"TargetIPv4Address", 9), iscsi})});
    InstanceLookup lookup(2);
    ASSERT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.path(0).PathState, 1u);
    EXPECT_EQ(lookup.path(0).Protocol, 1u);
    EXPECT_EQ(lookup.path(0).PrimaryPath, 1u);
    EXPECT_EQ(lookup.path(0).Proxy, 0u);
    EXPECT_THAT(lookup.path(0).TargetFcpNodename,
                ElementsAre(0x50, 0x0A, 0x09, 0x80, 0x00, 0x01, 0x02, 0x03));
    EXPECT_THAT(lookup.path(0).TargetFcpPortname,
                ElementsAre(0x50, 0x0A, 0x09, 0x81, 0x10, 0x11, 0x12, 0x13));
    EXPECT_EQ(lookup.path(0).TargetIPv4Address, 9u) << "whatever the protocol";
    EXPECT_EQ(lookup.path(1).PathState, 2u);
    EXPECT_EQ(lookup.path(1).Protocol, 2u);
    EXPECT_EQ(lookup.path(1).PrimaryPath, 0u);
    EXPECT_EQ(lookup.path(1).Proxy, 1u);
    EXPECT_THAT(lookup.path(1).TargetFcpNodename, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_EQ(lookup.path(1).TargetIPv4Address, 0x0100A8C0u);
}

TEST_F(LunDescriptorTest, ReservedWordsAreNotWritten) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)})});
    InstanceLookup lookup(1);
    ASSERT_EQ(lookup.run(L"S1"), 0u);
    constexpr std::size_t kPath = 400;
    constexpr std::pair<std::size_t, std::size_t> kReserved[] = {
        {0, 396},        {kPath, 4},       {kPath + 8, 16}, {kPath + 28, 4},
        {kPath + 36, 4}, {kPath + 44, 16}, {kPath + 77, 3}};
    for (const auto& [offset, length] : kReserved) {
        EXPECT_TRUE(lookup.diskInfoUntouched(offset, length)) << offset;
    }
}

TEST_F(LunDescriptorTest, FlagsAreOneForTrueAlone) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)})});
    const std::pair<Value, unsigned> values[] = {{Value::boolean(-1), 1u},
                                                 {Value::boolean(0), 0u},
                                                 {Value::boolean(1), 0u},
                                                 {Value::bits(VT_NULL), 0u}};
    for (const auto& [value, flag] : values) {
        host->clearFaults();
        host.replaceValue(kPathClass, L"Proxy", value.get());
        host.replaceValue(kPathClass, L"PrimaryPath", value.get());
        InstanceLookup lookup(1);
        ASSERT_EQ(lookup.run(L"S1"), 0u);
        EXPECT_EQ(lookup.path(0).Proxy, flag);
        EXPECT_EQ(lookup.path(0).PrimaryPath, flag);
    }
}

TEST_F(LunDescriptorTest, EveryPropertyIsReadWithoutDiskInfoToo) {
    openWith({lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2)})});
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.runWithoutDiskInfo(L"S1"), 0u);
    EXPECT_EQ(reads(), lookupReads(2));
    EXPECT_EQ(lookup.descriptor()->PdoInformation[1].PathIdentifier, 0x77040002u);
    EXPECT_TRUE(lookup.diskInfoUntouched());
}

TEST_F(LunDescriptorTest, NoPathsGiveAnEmptyDescriptor) {
    openWith({lunWith(L"S1", {})});
    const AllocationScope memory;
    memory->guardBlocks(descriptorBlockSize(0), descriptorBlockSize(0));
    InstanceLookup lookup(0);
    ASSERT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.descriptor()->NumberPdos, 0u);
    EXPECT_EQ(lookup.diskInfo()->LoadBalancePolicy, 3u);
}

TEST_F(LunDescriptorTest, FewerObjectsThanCountedLeaveEntriesEmpty) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)}).number(L"NumberOfPaths", 3)});
    InstanceLookup lookup(3);
    ASSERT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.descriptor()->NumberPdos, 3u);
    EXPECT_EQ(lookup.descriptor()->PdoInformation[0].PathIdentifier, 0x77020001u);
    EXPECT_EQ(lookup.descriptor()->PdoInformation[1].PathIdentifier, 0u);
    EXPECT_TRUE(lookup.diskInfoUntouched(480, 160));
}

TEST_F(LunDescriptorTest, MoreObjectsThanTheBlockHoldsAreReleased) {
    openWith({lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2), iscsiPath(3), iscsiPath(4)})
                  .number(L"NumberOfPaths", 2)});
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    memory->guardBlocks(descriptorBlockSize(2), descriptorBlockSize(2));
    InstanceLookup lookup(2);
    ASSERT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.descriptor()->NumberPdos, 2u);
    EXPECT_EQ(lookup.descriptor()->PdoInformation[2].PathIdentifier, 0x77040002u)
        << "the block holds one more than the count";
    EXPECT_EQ(lookup.path(1).Protocol, 2u);
    EXPECT_EQ(reads(), lookupReads(3));
}

TEST_F(LunDescriptorTest, NoMemoryForTheDescriptorLeavesNone) {
    openWith({lunWith(L"S1", {iscsiPath(2)})});
    const AllocationScope memory;
    memory->failBlocks(descriptorBlockSize(1));
    InstanceLookup lookup(1);
    EXPECT_EQ(lookup.run(L"S1"), 0u) << "the status is that of the name";
    EXPECT_EQ(lookup.descriptor(), nullptr);
    EXPECT_TRUE(lookup.diskInfoUntouched());
    EXPECT_EQ(reads().back(), "LUN.NumberOfPaths");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LunDescriptorTest, UnreadableCountLeavesNoDescriptor) {
    openWith({lunWith(L"S1", {iscsiPath(2)})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failGet(kLunClass, L"NumberOfPaths", resultOf(code));
        InstanceLookup lookup(1);
        EXPECT_EQ(lookup.run(L"S1"), 0u);
        EXPECT_EQ(lookup.descriptor(), nullptr);
        EXPECT_TRUE(lookup.diskInfoUntouched());
        EXPECT_EQ(log.take(), failureOf("IWbemClassObject::Get(NumberPdos)", code));
    }
}

TEST_F(LunDescriptorTest, UnreadablePathsLeaveTheirCount) {
    openWith({lunWith(L"S1", {iscsiPath(2)})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failGet(kLunClass, L"Paths", resultOf(code));
        InstanceLookup lookup(1);
        EXPECT_EQ(lookup.run(L"S1"), 0u);
        ASSERT_NE(lookup.descriptor(), nullptr);
        EXPECT_EQ(lookup.descriptor()->NumberPdos, 1u);
        EXPECT_TRUE(lookup.diskInfoUntouched());
        EXPECT_EQ(log.take(), failureOf("IWbemClassObject::Get(PdoInformation)", code));
    }
}

TEST_F(LunDescriptorTest, PathsThatAreNoArrayOfObjectsLeaveTheirCount) {
    openWith({lunWith(L"S1", {iscsiPath(2)})});
    const Value values[] = {Value::bits(VT_NULL), Value::text(L"x"), Value::longs({1})};
    for (const Value& value : values) {
        SCOPED_TRACE(value.type());
        host->clearFaults();
        host.replaceValue(kLunClass, L"Paths", value.get());
        InstanceLookup lookup(1);
        EXPECT_EQ(lookup.run(L"S1"), 0u);
        ASSERT_NE(lookup.descriptor(), nullptr);
        EXPECT_EQ(lookup.descriptor()->NumberPdos, 1u);
        EXPECT_TRUE(lookup.diskInfoUntouched());
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(LunDescriptorTest, NullAndForeignElementsEndTheDescriptor) {
    openWith({lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2)})});
    const auto paths = pathsOf(onlyLun().get());
    const ObjectReference<IUnknown> foreign = foreignObject();
    for (IUnknown* element : {static_cast<IUnknown*>(nullptr), foreign.get()}) {
        SCOPED_TRACE(element != nullptr ? "foreign" : "null");
        host->clearFaults();
        host.replaceValue(kLunClass, L"Paths", Value::objects({paths[0].get(), element}).get());
        InstanceLookup lookup(2);
        EXPECT_EQ(lookup.run(L"S1"), 0u);
        EXPECT_EQ(lookup.descriptor()->PdoInformation[0].PathIdentifier, 0x77020001u);
        EXPECT_EQ(lookup.descriptor()->PdoInformation[1].PathIdentifier, 0u);
        EXPECT_THAT(log.take(),
                    ElementsAre(LogLine{"IWbemClassObject::Get(PathId)", kNullPointer}));
    }
}

TEST_F(LunDescriptorTest, ScsiAddressThatIsNoObjectEndsTheDescriptor) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)})});
    const ObjectReference<IUnknown> foreign = foreignObject();
    const Value values[] = {Value::bits(VT_NULL), Value::object(nullptr),
                            Value::object(foreign.get()), Value::text(L"x")};
    for (const Value& value : values) {
        SCOPED_TRACE(value.type());
        host->clearFaults();
        host.replaceValue(kPathClass, L"ScsiAddress", value.get());
        InstanceLookup lookup(1);
        EXPECT_EQ(lookup.run(L"S1"), 0u);
        EXPECT_EQ(lookup.descriptor()->PdoInformation[0].PathIdentifier, 0x77020001u);
        EXPECT_THAT(log.take(),
                    ElementsAre(LogLine{"IWbemClassObject::Get(ScsiAddress)", kNullPointer}));
    }
}

// ---- Failing reads of a path

struct PathRead {
    const wchar_t* className;
    const wchar_t* property;
    const char* place;
};

class UnreadableEntryTest : public LunsTest, public testing::WithParamInterface<PathRead> {};

TEST_P(UnreadableEntryTest, EndsTheDescriptorButNotTheLookup) {
    const auto& [className, property, place] = GetParam();
    openWith({lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2), iscsiPath(3)})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host->clearTrace();
        host.failGet(className, property, resultOf(code), 2);
        InstanceLookup lookup(3);
        EXPECT_EQ(lookup.run(L"S1"), 0u);
        EXPECT_EQ(lookup.name(), L"\"MPIO\\\\Disk&Ven_KORVA\\\\S1\"");
        ASSERT_NE(lookup.descriptor(), nullptr);
        EXPECT_EQ(lookup.descriptor()->PdoInformation[0].PathIdentifier, 0x77020001u);
        EXPECT_EQ(lookup.descriptor()->PdoInformation[2].PathIdentifier, 0u);
        EXPECT_TRUE(lookup.diskInfoUntouched(560, 80)) << "the third path";
        EXPECT_TRUE(reads().back().ends_with("." + narrow(property)));
        EXPECT_EQ(log.take(), failureOf(place, code));
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, UnreadableEntryTest,
    testing::Values(
        PathRead{kPathClass, L"PathId", "IWbemClassObject::Get(PathId)"},
        PathRead{kPathClass, L"ScsiAddress", "IWbemClassObject::Get(ScsiAddress)"},
        PathRead{kAddressClass, L"PortNumber", "IWbemClassObject::Get(PortNumber)"},
        PathRead{kAddressClass, L"ScsiPathId", "IWbemClassObject::Get(ScsiPathId)"},
        PathRead{kAddressClass, L"TargetId", "IWbemClassObject::Get(TargetId)"},
        PathRead{kAddressClass, L"Lun", kLunPlace}, PathRead{kPathClass, L"PathState", kLunPlace},
        PathRead{kPathClass, L"PrimaryPath", kLunPlace},
        PathRead{kPathClass, L"Protocol", kLunPlace},
        PathRead{kPathClass, L"TargetFcpNodename", "ParsePathInfoKORVA::Get(TargetFcpNodename)"},
        PathRead{kPathClass, L"TargetFcpPortname", "ParsePathInfoKORVA::Get(TargetFcpPortname)"},
        PathRead{kPathClass, L"Proxy", "ParsePathInfoKORVA::Get(ProxyPathInfo)"},
        PathRead{kPathClass, L"TargetIPv4Address", "ParsePathInfoKORVA::Get(TargetIPv4Address)"}),
    [](const auto& test) { return narrow(test.param.property); });

}  // namespace
}  // namespace quista::test
