// The policies that a LUN supports: entries by array position, counts, and texts that name the
// serial number.
#include <cstddef>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/policies_test.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/import_patch.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNext =
    "KORVADsmCallGetDiskPoliciesforLUN: IEnumWbemClassObject::Next failed for SerialNo S1";
constexpr const char* kEnumerate =
    "KORVADsmCallGetDiskPoliciesforLUN:IWbemServices::CreateInstanceEnum failed for SerialNo S1";
constexpr const char* kName =
    "KORVADSMCallGetDiskPoliciesForLun: IwbemClassObject::Get failed for SerialNo S1:";
constexpr const char* kCount =
    "KORVADsmCallGetDiskPoliciesforLUN: IEnumWbemClassObject::Get SupportedLBPoliciesCount failed "
    "for SerialNumber S1";
constexpr const char* kTable =
    "KORVADsmCallGetDiskPoliciesforLUN: SerialNumber S1 - Memory allocation error for "
    "SupportedPolicies";
constexpr const char* kArray =
    "KORVADsmCallGetDiskPoliciesforLUN: IEnumWbemClassObject::Get Support_LB_Policies failed for "
    "SerialNumber S1";
constexpr const char* kPolicy =
    "KORVADsmCallGetDiskPoliciesforLUN: IEnumWbemClassObject::Get LoadBalancePolicy for "
    "SerialNumber S1";
constexpr const char* kBlock =
    "KORVADsmCallGetDiskPoliciesforLUN: SerialNumber S1 Memory allocation error LBalancePolicy";
const LogLine kMissing{
    "KORVADsmCallGetDiskPoliciesForLUN: missing some load balance policies for SerialNumber S1",
    DSM_WMI_PARSING_ERROR};

constexpr std::size_t kPolicyBlock = 4;

/// A record with room for a number of policies and not a byte more. It frees every entry that was
/// written.
class PolicyList {
  public:
    explicit PolicyList(std::size_t entries)
        : entries_(entries), buffer_(kEntries + entries * sizeof(unsigned long*)) {}
    ~PolicyList() {
        for (std::size_t i = 0; i < entries_; ++i) {
            if (!entryUntouched(i)) CoTaskMemFree(entry(i));
        }
    }
    PolicyList(const PolicyList&) = delete;
    PolicyList& operator=(const PolicyList&) = delete;

    _LBP_DESCRIPTOR_LIST* get() const { return buffer_.as<_LBP_DESCRIPTOR_LIST>(); }
    unsigned long count() const { return get()->Count; }
    unsigned long policy(std::size_t index) const { return *entry(index); }
    bool entryUntouched(std::size_t index) const {
        return buffer_.untouched(kEntries + index * sizeof(unsigned long*), sizeof(unsigned long*));
    }
    bool untouched() const { return buffer_.untouched(); }
    /// Frees as a caller of the library does, and forgets what was written.
    void freeAsCaller() {
        LBPDescFree(get());
        buffer_.fill();
    }

  private:
    static constexpr std::size_t kEntries = offsetof(_LBP_DESCRIPTOR_LIST, Descriptor);

    unsigned long* entry(std::size_t index) const {
        unsigned long** entries = get()->Descriptor;
        return entries[index];
    }

    std::size_t entries_;
    GuardedBuffer buffer_;
};

constexpr std::size_t kTableRoom = 1019;

/// Has no memory for a table of that many entries.
void* callocWithoutTable(std::size_t count, std::size_t size) {
    return count == kTableRoom ? nullptr : std::calloc(count, size);
}

class SupportedPoliciesTest : public PoliciesTest {
  protected:
    void openWithPolicies(const std::vector<int>& numbers) {
        addAndOpen({supportedPolicies(L"D\\1", numbers)});
    }
    /// A call that leaves the record as it was.
    void expectUntouched(unsigned long status, const LogLines& lines) {
        const LiveObjectsCheck live(host);
        const AllocationScope scope;
        const PolicyList list(3);
        EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), status);
        EXPECT_TRUE(list.untouched());
        expectLog(lines);
        EXPECT_THAT(scope.survivors(), IsEmpty());
    }
};

TEST_F(SupportedPoliciesTest, EntriesFollowTheArray) {
    openWithPolicies({1, 7, 3});
    const LiveObjectsCheck live(host);
    const AllocationScope scope;
    PolicyList list(3);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    ASSERT_EQ(list.count(), 3u);
    EXPECT_EQ(list.policy(0), 1u);
    EXPECT_EQ(list.policy(1), 7u);
    EXPECT_EQ(list.policy(2), 3u);
    expectLog({});
    EXPECT_THAT(scope.survivors(), ElementsAre(kPolicyBlock, kPolicyBlock, kPolicyBlock));
    list.freeAsCaller();
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

TEST_F(SupportedPoliciesTest, StepsAreTakenInOrder) {
    addAndOpen({supportedPolicies(L"other", {4}), supportedPolicies(L"D\\1", {1, 2})});
    const PolicyList list(2);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    EXPECT_THAT(calls(), ElementsAre(L"ExecQuery KORVADSM_LUNINFO", L"Next KORVADSM_LUNINFO",
                                     L"Get KORVADSM_LUNINFO.SerialNumber",
                                     L"Get KORVADSM_LUNINFO.InstanceName",
                                     L"CreateInstanceEnum DSM_QuerySupportedLBPolicies",
                                     L"Next DSM_QuerySupportedLBPolicies",
                                     L"Get DSM_QuerySupportedLBPolicies.InstanceName",
                                     L"Next DSM_QuerySupportedLBPolicies",
                                     L"Get DSM_QuerySupportedLBPolicies.InstanceName",
                                     L"Get DSM_QuerySupportedLBPolicies.SupportedLBPoliciesCount",
                                     L"Get DSM_QuerySupportedLBPolicies.Supported_LB_Policies",
                                     L"Get DSM_Load_Balance_Policy.LoadBalancePolicy",
                                     L"Get DSM_Load_Balance_Policy.LoadBalancePolicy"));
}

TEST_F(SupportedPoliciesTest, SevenPoliciesFitTheDeclaredRecord) {
    openWithPolicies({1, 2, 3, 4, 5, 6, 7});
    const PolicyList list(7);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    EXPECT_EQ(list.count(), 7u);
    EXPECT_EQ(list.policy(6), 7u);
}

TEST_F(SupportedPoliciesTest, MorePoliciesGoIntoTheRoomThatTheCallerMade) {
    openWithPolicies({1, 2, 3, 4, 5, 6, 7, 8, 9});
    PolicyList list(9);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    EXPECT_EQ(list.count(), 9u);
    EXPECT_EQ(list.policy(8), 9u);
    const AllocationScope scope;
    list.freeAsCaller();
}

TEST_F(SupportedPoliciesTest, NoPolicies) {
    openWithPolicies({});
    const LiveObjectsCheck live(host);
    const PolicyList list(0);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    EXPECT_EQ(list.count(), 0u);
    expectLog({});
}

TEST_F(SupportedPoliciesTest, NamesAreComparedEscapedAndWithTheirCase) {
    addAndOpen({supportedPolicies(L"d\\1", {4}), supportedPolicies(L"D\\\\1", {5})});
    expectUntouched(DSM_WMI_FAILURE, {{kNext, kEnd}});
}

// ---- Gaps

TEST_F(SupportedPoliciesTest, UnreadablePolicyLeavesAGap) {
    openWithPolicies({1, 2, 3});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failGet(kPolicyClass, L"LoadBalancePolicy", resultOf(code), 2, 1);
        const LiveObjectsCheck live(host);
        const PolicyList list(3);
        EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
        EXPECT_EQ(list.count(), 2u);
        EXPECT_EQ(list.policy(0), 1u);
        EXPECT_TRUE(list.entryUntouched(1));
        EXPECT_EQ(list.policy(2), 3u);
        LogLines lines = failureOf(kPolicy, code);
        lines.push_back(kMissing);
        expectLog(lines);
    }
}

TEST_F(SupportedPoliciesTest, PoliciesBeyondTheArrayCountAsUnreadable) {
    addAndOpen({supportedPolicies(L"D\\1", {6}).number(L"SupportedLBPoliciesCount", 3)});
    const PolicyList list(3);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    EXPECT_EQ(list.count(), 1u);
    EXPECT_EQ(list.policy(0), 6u);
    EXPECT_TRUE(list.entryUntouched(1));
    EXPECT_TRUE(list.entryUntouched(2));
    expectLog({{kPolicy, kNullPointer}, {kPolicy, kNullPointer}, kMissing});
}

TEST_F(SupportedPoliciesTest, PoliciesBeyondTheCountAreNotRead) {
    addAndOpen({supportedPolicies(L"D\\1", {6, 7, 1}).number(L"SupportedLBPoliciesCount", 1)});
    const LiveObjectsCheck live(host);
    const PolicyList list(1);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    EXPECT_EQ(list.count(), 1u);
    EXPECT_EQ(list.policy(0), 6u);
    expectLog({});
}

TEST_F(SupportedPoliciesTest, MissingAndForeignObjectsCountAsUnreadable) {
    openWithPolicies({1, 2});
    host.replaceValue(kSupportedClass, L"Supported_LB_Policies",
                      Value::objects({nullptr, foreignObject().get()}).get());
    const PolicyList list(2);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    EXPECT_EQ(list.count(), 0u);
    EXPECT_TRUE(list.entryUntouched(0));
    EXPECT_TRUE(list.entryUntouched(1));
    expectLog({{kPolicy, kNullPointer}, {kPolicy, kNullPointer}, kMissing});
}

TEST_F(SupportedPoliciesTest, ValueThatIsNoArrayOfObjectsHasNone) {
    openWithPolicies({1});
    std::vector<Value> values;
    values.push_back(Value::bits(VT_NULL));
    values.push_back(Value::bits(VT_I4, 1));
    values.push_back(Value::longs({1}));
    for (const Value& value : values) {
        host->clearFaults();
        host.replaceValue(kSupportedClass, L"Supported_LB_Policies", value.get());
        const PolicyList list(1);
        EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
        EXPECT_EQ(list.count(), 0u);
        EXPECT_TRUE(list.entryUntouched(0));
        expectLog({{kPolicy, kNullPointer}, kMissing});
    }
}

TEST_F(SupportedPoliciesTest, PolicyIsTheRawNumber) {
    openWithPolicies({1, 2});
    host.replaceValue(kPolicyClass, L"LoadBalancePolicy", Value::bits(VT_NULL).get(), 1, 1);
    host.replaceValue(kPolicyClass, L"LoadBalancePolicy", Value::bits(VT_I4, -1).get(), 2, 1);
    const PolicyList list(2);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_SUCCESS);
    EXPECT_EQ(list.count(), 2u);
    EXPECT_EQ(list.policy(0), 0u);
    EXPECT_EQ(list.policy(1), 0xFFFFFFFFu);
}

// ---- Memory

TEST_F(SupportedPoliciesTest, PolicyWithoutMemoryLeavesAGap) {
    openWithPolicies({1, 2, 3});
    AllocationScope scope;
    scope->failBlocks(kPolicyBlock, 2, 1);
    const PolicyList list(3);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_NO_MEMORY);
    EXPECT_EQ(list.count(), 2u);
    EXPECT_EQ(list.policy(0), 1u);
    EXPECT_TRUE(list.entryUntouched(1));
    EXPECT_EQ(list.policy(2), 3u);
    expectLog({{kBlock, DSM_NO_MEMORY}, kMissing});
}

TEST_F(SupportedPoliciesTest, NoPolicyWithoutMemory) {
    openWithPolicies({1, 2});
    AllocationScope scope;
    scope->failBlocks(kPolicyBlock);
    const LiveObjectsCheck live(host);
    const PolicyList list(2);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_NO_MEMORY);
    EXPECT_EQ(list.count(), 0u);
    expectLog({{kBlock, DSM_NO_MEMORY}, {kBlock, DSM_NO_MEMORY}, kMissing});
}

TEST_F(SupportedPoliciesTest, TableWithoutMemory) {
    const ImportPatch patch("calloc", &callocWithoutTable);
    addAndOpen({supportedPolicies(L"D\\1", {1}).number(L"SupportedLBPoliciesCount", kTableRoom)});
    expectUntouched(DSM_NO_MEMORY, {{kTable, DSM_NO_MEMORY}});
    EXPECT_EQ(countCalls(L"Get DSM_QuerySupportedLBPolicies.Supported_LB_Policies"), 0u);
}

// ---- Failures

TEST_F(SupportedPoliciesTest, UnknownSerialNumber) {
    openWithPolicies({1});
    const PolicyList list(1);
    EXPECT_EQ(KORVADSMGetDiskPolicies(unknownSerial, list.get()), DSM_SERIAL_NOT_FOUND);
    EXPECT_TRUE(list.untouched());
    expectLog(kUnknownSerial);
    EXPECT_EQ(countCalls(L"CreateInstanceEnum DSM_QuerySupportedLBPolicies"), 0u);
}

TEST_F(SupportedPoliciesTest, NoSerialNumberIsOneThatNoLunHas) {
    openWithPolicies({1});
    const PolicyList list(1);
    EXPECT_EQ(KORVADSMGetDiskPolicies(nullptr, list.get()), DSM_SERIAL_NOT_FOUND);
    EXPECT_TRUE(list.untouched());
    LBPDescFree(nullptr);
}

TEST_F(SupportedPoliciesTest, LookupWithoutMemory) {
    openWithPolicies({1});
    AllocationScope scope;
    scope->failBlocks(2048);
    const PolicyList list(1);
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, list.get()), DSM_NO_MEMORY);
    EXPECT_TRUE(list.untouched());
    expectLog({{"GetInstance_for_SerialNo", DSM_NO_MEMORY}});
}

TEST_F(SupportedPoliciesTest, WithoutASession) {
    expectUntouched(DSM_WMI_FAILURE, {{"GetInstance_for_SerialNo", kNullPointer}});
}

TEST_F(SupportedPoliciesTest, EnumerationWithoutAnEnumerator) {
    openWithPolicies({1});
    host.failEnumeration(kSupportedClass, S_OK);
    expectUntouched(DSM_WMI_FAILURE, {{kEnumerate, kNullPointer}});
}

TEST_F(SupportedPoliciesTest, NoInstanceOfTheLun) {
    addAndOpen({supportedPolicies(L"other", {1})});
    expectUntouched(DSM_WMI_FAILURE, {{kNext, kEnd}});
}

TEST_F(SupportedPoliciesTest, FailuresThatLeaveTheListAlone) {
    openWithPolicies({1});
    const std::pair<const wchar_t*, std::pair<unsigned long, const char*>> reads[] = {
        {L"InstanceName", {DSM_WMI_FAILURE, kName}},
        {L"SupportedLBPoliciesCount", {DSM_SUCCESS, kCount}},
        {L"Supported_LB_Policies", {DSM_SUCCESS, kArray}},
    };
    for (const auto& [property, outcome] : reads) {
        for (const unsigned long code : kFailures) {
            host->clearFaults();
            host.failGet(kSupportedClass, property, resultOf(code));
            expectUntouched(outcome.first, failureOf(outcome.second, code));
        }
    }
}

/// After the failure of a step of the lookup.
Outcome afterFailureInLookup(const std::wstring& call) {
    const LogLine next{"GetInstance_for_SerialNo: IEnumWbemClassObject::Next", kEnd};
    const LogLine unknown{"GetInstance_for_SerialNo", DSM_SERIAL_NOT_FOUND};
    if (call.starts_with(L"ExecQuery")) {
        return {DSM_WMI_FAILURE, {{"GetInstance_for_SerialNo", kResult}}};
    }
    if (call.starts_with(L"Next")) return {DSM_SERIAL_NOT_FOUND, {{next.place, kResult}, unknown}};
    if (call.ends_with(L".InstanceName")) return {DSM_SERIAL_NOT_FOUND, {unknown}};
    return {DSM_SERIAL_NOT_FOUND,
            {{"ParseLunInfoSerialNumber::Get(SerialNumber)", kResult}, next, unknown}};
}

Outcome afterFailureInPolicies(const std::wstring& call, unsigned) {
    if (call.find(kLunClass) != std::wstring::npos) return afterFailureInLookup(call);
    if (call.starts_with(L"CreateInstanceEnum")) return {DSM_WMI_FAILURE, {{kEnumerate, kResult}}};
    if (call.starts_with(L"Next")) return {DSM_WMI_FAILURE, {{kNext, kResult}}};
    if (call.ends_with(L".InstanceName")) return {DSM_WMI_FAILURE, {{kName, kResult}}};
    if (call.ends_with(L".SupportedLBPoliciesCount")) return {DSM_SUCCESS, {{kCount, kResult}}};
    if (call.ends_with(L".Supported_LB_Policies")) return {DSM_SUCCESS, {{kArray, kResult}}};
    if (call.starts_with(L"QueryInterface")) {
        return {DSM_SUCCESS, {{kPolicy, kNullPointer}, kMissing}};
    }
    return {DSM_SUCCESS, {{kPolicy, kResult}, kMissing}};
}

TEST_F(SupportedPoliciesTest, EachCallFails) {
    addAndOpen({supportedPolicies(L"other", {4}), supportedPolicies(L"D\\1", {1, 2, 3})});
    failEachCall(
        [&] {
            const PolicyList list(3);
            return KORVADSMGetDiskPolicies(serial, list.get());
        },
        afterFailureInPolicies);
}

// ---- Freeing

TEST_F(SupportedPoliciesTest, FreeingTakesTheFirstCountEntriesAndChangesNothing) {
    const AllocationScope scope;
    const PolicyList list(3);
    unsigned long** entries = list.get()->Descriptor;
    for (std::size_t i = 0; i < 3; ++i) {
        entries[i] = static_cast<unsigned long*>(CoTaskMemAlloc(kPolicyBlock));
    }
    const std::vector<unsigned long*> before(entries, entries + 3);
    list.get()->Count = 2;
    LBPDescFree(list.get());
    EXPECT_EQ(scope.survivors().size(), 1u) << "the entry beyond the count stays";
    EXPECT_EQ(list.count(), 2u);
    EXPECT_EQ(std::vector<unsigned long*>(entries, entries + 3), before);
    for (std::size_t i = 0; i < 2; ++i) entries[i] = nullptr;
}

TEST_F(SupportedPoliciesTest, FreeingNothing) {
    _LBP_DESCRIPTOR_LIST list{};
    LBPDescFree(&list);
    EXPECT_EQ(list.Count, 0u);
    list.Count = 2;
    LBPDescFree(&list);
    EXPECT_EQ(list.Count, 2u);
}

}  // namespace
}  // namespace quista::test
