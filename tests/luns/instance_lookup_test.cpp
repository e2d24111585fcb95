// A LUN's instance name and policy by its serial number.
#include "tests/luns/instance_lookup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNext = "KORVA_GetInstance_for_Serial: IEnumWbemClassObject::Next";
constexpr const char* kQueryS1 =
    "ExecQuery SELECT * FROM KORVADSM_LUNINFO WHERE SerialNumber = \"S1\"";
constexpr std::size_t kScratchBlock = 2048;

// ---- Name and policy

class InstanceLookupTest : public LunsTest {};

TEST_F(InstanceLookupTest, NamePolicyAndPathsComeFromTheInstance) {
    openWith({lunWith(L"S0", {}), lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2)})});
    InstanceLookup lookup(2);
    EXPECT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.name(), L"\"MPIO\\\\Disk&Ven_KORVA\\\\S1\"");
    EXPECT_EQ(lookup.policy(), 3u);
    ASSERT_NE(lookup.descriptor(), nullptr);
    EXPECT_EQ(lookup.descriptor()->NumberPdos, 2u);
    EXPECT_EQ(lookup.diskInfo()->LoadBalancePolicy, 3u);
    EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next"));
    EXPECT_EQ(reads(), lookupReads(2)) << "the serial number is not read";
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(InstanceLookupTest, FirstInstanceIsTakenWithoutAComparison) {
    openWith({namedLun(L"a", L"s1"), namedLun(L"b", L"S1")});
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.name(), L"\"a\"");
}

TEST_F(InstanceLookupTest, PolicyIsTheWholeNumber) {
    openWith({lunWith(L"S1", {}).number(L"KorvaDSMLoadBalancePolicy", 0x01020305)});
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.policy(), 0x01020305u);
    EXPECT_EQ(lookup.diskInfo()->LoadBalancePolicy, 0x01020305u);
}

TEST_F(InstanceLookupTest, UnreadablePolicyIsZeroAndNotLogged) {
    openWith({lunWith(L"S1", {iscsiPath(1)})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        host->clearFaults();
        host.failGet(kLunClass, L"KorvaDSMLoadBalancePolicy", resultOf(code));
        InstanceLookup lookup(1);
        EXPECT_EQ(lookup.run(L"S1"), 0u);
        EXPECT_EQ(lookup.policy(), 0u);
        EXPECT_EQ(lookup.diskInfo()->LoadBalancePolicy, 0u);
        EXPECT_EQ(lookup.descriptor()->NumberPdos, 1u);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(InstanceLookupTest, UnreadableNameGives27AndStillFillsTheDescriptor) {
    openWith({lunWith(L"S1", {iscsiPath(1)})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        host->clearFaults();
        host.failGet(kLunClass, L"InstanceName", resultOf(code));
        InstanceLookup lookup(1);
        EXPECT_EQ(lookup.run(L"S1"), 27u);
        EXPECT_TRUE(lookup.nameUntouched());
        EXPECT_EQ(lookup.policy(), 3u);
        ASSERT_NE(lookup.descriptor(), nullptr);
        EXPECT_EQ(lookup.descriptor()->PdoInformation[0].PathIdentifier, 0x77040002u);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(InstanceLookupTest, NameDoublesBackslashesAlone) {
    openWith({namedLun(L"a\\b\\\\c\"d", L"S1")});
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.name(), L"\"a\\\\b\\\\\\\\c\"d\"");
}

TEST_F(InstanceLookupTest, NameThatFillsTheBufferIsWhole) {
    const std::wstring name(253, L'n');
    openWith({namedLun(name, L"S1")});
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.name(), L"\"" + name + L"\"");
}

TEST_F(InstanceLookupTest, LongerNameIsCutInsideItsQuotes) {
    openWith({namedLun(std::wstring(3000, L'n'), L"S1")});
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.name(), L"\"" + std::wstring(253, L'n') + L"\"");
}

TEST_F(InstanceLookupTest, NameThatIsNoTextIsEmpty) {
    openWith({lunWith(L"S1", {})});
    host.replaceValue(kLunClass, L"InstanceName", Value::bits(VT_I4, 5).get());
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_EQ(lookup.name(), L"\"\"");
}

// ---- No instance

TEST_F(InstanceLookupTest, NoLunGives27) {
    openWith({lunWith(L"S1", {})});
    InstanceLookup lookup(1);
    EXPECT_EQ(lookup.run(L"S2"), 27u);
    EXPECT_TRUE(lookup.nameUntouched());
    EXPECT_TRUE(lookup.policyUntouched());
    EXPECT_TRUE(lookup.diskInfoUntouched());
    EXPECT_EQ(lookup.descriptor(), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kNext, 1}));
}

TEST_F(InstanceLookupTest, AnyFailureOfNextGives27) {
    openWith({lunWith(L"S1", {})});
    for (const unsigned long code : {0x80041002ul, 0x00040004ul, 0x80041010ul, 0x80004005ul}) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failNext(kLunClass, resultOf(code));
        InstanceLookup lookup(0);
        EXPECT_EQ(lookup.run(L"S1"), 27u);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kNext, code}));
    }
}

TEST_F(InstanceLookupTest, FailedQueryGives27WithoutALine) {
    openWith({lunWith(L"S1", {})});
    for (const unsigned long code : kFailures) {
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failQuery(kLunClass, resultOf(code));
        InstanceLookup lookup(0);
        EXPECT_EQ(lookup.run(L"S1"), 27u);
        EXPECT_TRUE(lookup.policyUntouched());
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(InstanceLookupTest, DoubleQuoteMakesTheQueryInvalid) {
    openWith({lunWith(L"S\"1", {})});
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S\"1"), 27u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(InstanceLookupTest, NoSessionIsAFailedQuery) {
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S1"), 27u);
    EXPECT_TRUE(lookup.nameUntouched());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(InstanceLookupTest, NoMemoryForTheScratchBlockGives7) {
    openWith({lunWith(L"S1", {})});
    const AllocationScope memory;
    memory->failBlocks(kScratchBlock);
    InstanceLookup lookup(0);
    EXPECT_EQ(lookup.run(L"S1"), 7u);
    EXPECT_TRUE(lookup.policyUntouched());
    EXPECT_THAT(queries(), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"KORVA_GetInstance_for_Serial", 7}));
}

TEST_F(InstanceLookupTest, DescriptorIsAllThatSurvives) {
    openWith({lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2)})});
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    InstanceLookup lookup(2);
    EXPECT_EQ(lookup.run(L"S1"), 0u);
    EXPECT_THAT(memory.survivors(), ElementsAre(descriptorBlockSize(2)));
}

}  // namespace
}  // namespace quista::test
