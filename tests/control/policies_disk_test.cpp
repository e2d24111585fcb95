// Setting the policy of one LUN: the search for MPIO's instance, the changed policy object, and
// what becomes of the method's status.
#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/policies_test.h"
#include "tests/support/console_capture.h"
#include "tests/support/debug_output.h"
#include "tests/support/program_run.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kNext = "KORVADsmCallSetDiskPolicyMethod: IEnumWbemClassObject::Next";
constexpr const char* kEnumerate =
    "KORVADsmCallSetDiskPolicyMethod:IWbemServices::CreateInstanceEnum";
constexpr const char* kFoundMatch = "KorvadsmCallSetDiskPolicyMethod: Found a match/n";
/// Characters of an instance name that fit between its quotes.
constexpr std::size_t kInstanceNameRoom = 253;
constexpr unsigned long kFailover = 1;
constexpr unsigned long kRoundRobin = 2;

class DiskPolicyTest : public PoliciesTest {
  protected:
    DiskPolicyTest() { setStatus(0); }

    void openWithDisk(const std::vector<int>& primary = {0, 1, 0}) {
        addAndOpen({queriedPolicy(L"D\\1", primary), operations(L"D\\1")});
    }
    void setStatus(unsigned long status) {
        host->clearMethodResults();
        setMethodResult(kOperationsClass, L"DsmSetLoadBalancePolicy", L"Status", status);
    }
    /// Sets the policy without a word on the test's own output.
    unsigned long set(unsigned long number) {
        _DSM_LOAD_BALANCE_TYPE policy{number};
        const ConsoleCapture console;
        return KORVADSMSetDiskPolicy(serial, &policy);
    }
    void expectOutcome(unsigned long number, unsigned long status, const LogLines& lines) {
        const LiveObjectsCheck live(host);
        const AllocationScope scope;
        EXPECT_EQ(set(number), status);
        expectLog(lines);
        EXPECT_THAT(scope.survivors(), IsEmpty());
    }
    std::size_t executions() const {
        return countCalls(L"ExecMethod DSM_LB_Operations.DSMSetLoadBalancePolicy");
    }
};

TEST_F(DiskPolicyTest, StepsAreTakenInOrder) {
    openWithDisk({0, 1});
    expectOutcome(kFailover, DSM_SUCCESS, {});
    EXPECT_THAT(
        calls(),
        ElementsAre(
            L"ExecQuery KORVADSM_LUNINFO", L"Next KORVADSM_LUNINFO",
            L"Get KORVADSM_LUNINFO.SerialNumber", L"Get KORVADSM_LUNINFO.InstanceName",
            L"CreateInstanceEnum DSM_QueryLBPolicy", L"Next DSM_QueryLBPolicy",
            L"Get DSM_QueryLBPolicy.InstanceName", L"Get DSM_QueryLBPolicy.LoadBalancePolicy",
            L"Get DSM_Load_Balance_Policy.LoadBalancePolicy",
            L"Put DSM_Load_Balance_Policy.LoadBalancePolicy",
            L"Get DSM_Load_Balance_Policy.DSMPathCount", L"Get DSM_Load_Balance_Policy.DSM_Paths",
            L"Get MPIO_DSM_Path.PrimaryPath", L"Put MPIO_DSM_Path.PrimaryPath",
            L"Get MPIO_DSM_Path.PrimaryPath", L"Put MPIO_DSM_Path.PrimaryPath",
            L"Put DSM_Load_Balance_Policy.DSM_Paths", L"CreateInstanceEnum DSM_LB_Operations",
            L"Next DSM_LB_Operations", L"Get DSM_LB_Operations.InstanceName",
            L"GetObject DSM_LB_Operations", L"GetMethod DSM_LB_Operations.DSMSetLoadBalancePolicy",
            L"SpawnInstance __PARAMETERS", L"Put __PARAMETERS.LoadBalancePolicy",
            L"ExecMethod DSM_LB_Operations.DSMSetLoadBalancePolicy", L"GetObjectText __PARAMETERS",
            L"Get __PARAMETERS.Status"));
}

TEST_F(DiskPolicyTest, OtherPoliciesLeaveThePathsAlone) {
    openWithDisk();
    for (const unsigned long policy : {0ul, 2ul, 3ul, 4ul, 5ul, 6ul, 7ul, 0x101ul}) {
        host->clearTrace();
        EXPECT_EQ(set(policy), DSM_SUCCESS);
        EXPECT_EQ(countCalls(L"Get DSM_Load_Balance_Policy.DSMPathCount"), 0u);
        EXPECT_EQ(countCalls(L"Put MPIO_DSM_Path.PrimaryPath"), 0u);
        EXPECT_EQ(executions(), 1u);
    }
}

// ---- What the caller and the debugger see

TEST_F(DiskPolicyTest, MatchIsPrintedWhateverTheTraceSays) {
    openWithDisk();
    _DSM_LOAD_BALANCE_TYPE policy{kRoundRobin};
    ConsoleCapture console;
    EXPECT_EQ(KORVADSMSetDiskPolicy(serial, &policy), DSM_SUCCESS);
    EXPECT_EQ(console.stop(), kFoundMatch);
    EXPECT_EQ(policy.Policy, kRoundRobin);
}

TEST_F(DiskPolicyTest, NothingIsPrintedWithoutAMatch) {
    addAndOpen({queriedPolicy(L"other", {1})});
    _DSM_LOAD_BALANCE_TYPE policy{kRoundRobin};
    ConsoleCapture console;
    EXPECT_EQ(KORVADSMSetDiskPolicy(serial, &policy), DSM_WMI_FAILURE);
    EXPECT_EQ(console.stop(), "");
}

TEST_F(DiskPolicyTest, DebuggerHearsOfEveryInstanceUpToTheMatch) {
    addAndOpen({queriedPolicy(L"a\\b", {1}), queriedPolicy(L"D\\1", {1}),
                queriedPolicy(L"behind", {1}), operations(L"D\\1")});
    const DebugOutputCapture debugger;
    EXPECT_EQ(set(kRoundRobin), DSM_SUCCESS);
    EXPECT_THAT(
        debugger.texts(),
        ElementsAre(L"KorvadsmCallSetDiskPolicyMethod lun instancename: \"D\\\\1\", querylbpinst: "
                    L"\"a\\\\b\"",
                    L"KorvadsmCallSetDiskPolicyMethod lun instancename: \"D\\\\1\", querylbpinst: "
                    L"\"D\\\\1\""));
    EXPECT_EQ(countCalls(L"Next DSM_QueryLBPolicy"), 2u);
}

TEST_F(DiskPolicyTest, NamesAreComparedEscapedAndWithTheirCase) {
    addAndOpen({queriedPolicy(L"d\\1", {1}), queriedPolicy(L"D\\\\1", {1})});
    expectOutcome(kRoundRobin, DSM_WMI_FAILURE, {{kNext, kEnd}});
}

// ---- Names

TEST_F(DiskPolicyTest, LongNamesMatchAsFarAsTheyFit) {
    const auto setOnDisk = [&](std::size_t length) {
        const std::wstring name(length, L'n');
        host->removeInstances(kWmi, kLunClass);
        host->removeInstances(kWmi, kQueryClass);
        host->removeInstances(kWmi, kOperationsClass);
        for (const MofObject& instance :
             {namedLun(name, L"S1"), queriedPolicy(name, {1}), operations(name)}) {
            host.add(instance);
        }
        return set(kRoundRobin);
    };
    openWithDisk();
    EXPECT_EQ(setOnDisk(kInstanceNameRoom), DSM_SUCCESS);
    expectLog({});
    for (const std::size_t length : {kInstanceNameRoom + 1, std::size_t{3000}}) {
        EXPECT_EQ(setOnDisk(length), DSM_WMI_FAILURE) << length;
        expectLog({{kNext, kEnd}});
    }
}

TEST_F(DiskPolicyTest, NoSerialNumberIsOneThatNoLunHas) {
    openWithDisk();
    _DSM_LOAD_BALANCE_TYPE policy{kRoundRobin};
    EXPECT_EQ(KORVADSMSetDiskPolicy(nullptr, &policy), DSM_WMI_FAILURE);
    EXPECT_EQ(executions(), 0u);
}

TEST_F(DiskPolicyTest, NumberThatCannotBeReadIsPutAllTheSame) {
    openWithDisk();
    host.failGet(kPolicyClass, L"LoadBalancePolicy", E_FAIL);
    host->clearTrace();
    EXPECT_EQ(set(kRoundRobin), DSM_SUCCESS);
    EXPECT_EQ(countCalls(L"Put DSM_Load_Balance_Policy.LoadBalancePolicy"), 1u);
    EXPECT_EQ(executions(), 0u) << "WMI refuses a value without a type";
    expectLog({});
}

// ---- Status

TEST_F(DiskPolicyTest, StatusOfTheMethodIsMapped) {
    openWithDisk();
    const std::pair<unsigned long, unsigned long> outcomes[] = {
        {0, DSM_SUCCESS},
        {1, DSM_SUCCESS},
        {13, DSM_SUCCESS},
        {14, DSM_WMI_FAILURE},
        {0x103, DSM_SUCCESS},
        {0x3FFFFFFF, DSM_SUCCESS},
        {0x40000000, DSM_ERROR},
        {0x80000000, DSM_ERROR},
        {0xC0000001, DSM_ERROR},
        {0xE0000007, DSM_ERROR},
        {0xE0000008, DSM_FILER_VERSION_INCOMPATIBLE},
        {0xE0000009, DSM_ERROR},
        {0xFFFFFFFF, DSM_ERROR},
    };
    for (const auto& [code, status] : outcomes) {
        SCOPED_TRACE(code);
        setStatus(code);
        expectOutcome(kRoundRobin, status, {});
        expectOutcome(kFailover, status, {});
    }
}

TEST_F(DiskPolicyTest, FailedExecutionReportsSuccess) {
    openWithDisk();
    host.failMethod(kOperationsClass, L"DSMSetLoadBalancePolicy", resultOf(0x80004005));
    expectOutcome(kRoundRobin, DSM_SUCCESS, {});
}

// ---- The serial number

TEST_F(DiskPolicyTest, UnknownSerialNumberMatchesNoInstance) {
    addAndOpen({queriedPolicy(L"D\\1", {1}), queriedPolicy(L"", {1}), operations(L"D\\1")});
    _DSM_LOAD_BALANCE_TYPE policy{kRoundRobin};
    const DebugOutputCapture debugger;
    const LiveObjectsCheck live(host);
    EXPECT_EQ(KORVADSMSetDiskPolicy(unknownSerial, &policy), DSM_WMI_FAILURE);
    LogLines lines = kUnknownSerial;
    lines.push_back({kNext, kEnd});
    expectLog(lines);
    EXPECT_THAT(
        debugger.texts(),
        ElementsAre(L"KorvadsmCallSetDiskPolicyMethod lun instancename: , querylbpinst: \"D\\\\1\"",
                    L"KorvadsmCallSetDiskPolicyMethod lun instancename: , querylbpinst: \"\""));
    EXPECT_EQ(executions(), 0u);
}

TEST_F(DiskPolicyTest, WithoutASession) {
    expectOutcome(kRoundRobin, DSM_WMI_FAILURE,
                  {{"GetInstance_for_SerialNo", kNullPointer}, {kEnumerate, kNullPointer}});
}

// ---- Failures

TEST_F(DiskPolicyTest, NoInstanceOfTheLun) {
    addAndOpen({queriedPolicy(L"other", {1}), operations(L"D\\1")});
    expectOutcome(kRoundRobin, DSM_WMI_FAILURE, {{kNext, kEnd}});
}

TEST_F(DiskPolicyTest, EnumerationWithoutAnEnumerator) {
    openWithDisk();
    host.failEnumeration(kQueryClass, S_OK);
    expectOutcome(kRoundRobin, DSM_WMI_FAILURE, {{kEnumerate, kNullPointer}});
}

TEST_F(DiskPolicyTest, FailedPutOfThePolicyReportsSuccess) {
    openWithDisk();
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failPut(kPolicyClass, L"LoadBalancePolicy", resultOf(code));
        expectOutcome(kFailover, DSM_SUCCESS, {});
    }
    EXPECT_EQ(executions(), 0u);
}

TEST_F(DiskPolicyTest, MissingPolicyObjectEndsLikeAFailedPut) {
    openWithDisk();
    std::vector<Value> values;
    values.push_back(Value::bits(VT_NULL));
    values.push_back(Value::bits(VT_I4, 3));
    values.push_back(Value::object(nullptr));
    values.push_back(Value::object(foreignObject().get()));
    for (const Value& value : values) {
        SCOPED_TRACE(value.type());
        host->clearFaults();
        host.replaceValue(kQueryClass, L"LoadBalancePolicy", value.get());
        expectOutcome(kFailover, DSM_SUCCESS, {});
    }
    EXPECT_EQ(executions(), 0u);
}

TEST_F(DiskPolicyTest, PolicyObjectOfAnotherInstanceIsNotUsed) {
    addAndOpen({queriedPolicy(L"other", {1}), queriedPolicy(L"D\\1", {1}), operations(L"D\\1")});
    host.failGet(kQueryClass, L"LoadBalancePolicy", resultOf(kNotFoundCode), 2, 1);
    expectOutcome(kRoundRobin, DSM_SUCCESS, {});
    EXPECT_EQ(executions(), 0u);
}

TEST_F(DiskPolicyTest, PathsAreReadUnderFailoverAlone) {
    openWithDisk();
    const std::pair<const wchar_t*, const wchar_t*> reads[] = {
        {kPolicyClass, L"DSMPathCount"},
        {kPolicyClass, L"DSM_Paths"},
        {kPolicyPathClass, L"PrimaryPath"},
    };
    for (const auto& [className, property] : reads) {
        host->clearFaults();
        host.fail(L"IWbemClassObject", L"", resultOf(0x80041001), className, property);
        expectOutcome(kFailover, DSM_WMI_FAILURE, {});
        expectOutcome(kRoundRobin, DSM_SUCCESS, {});
    }
}

TEST_F(DiskPolicyTest, PathsThatAreNoWmiObjects) {
    openWithDisk();
    for (const bool foreign : {false, true}) {
        const ObjectReference<IUnknown> stranger = foreignObject();
        host->clearFaults();
        host.replaceValue(kPolicyClass, L"DSM_Paths",
                          Value::objects({foreign ? stranger.get() : nullptr}).get());
        expectOutcome(kFailover, DSM_WMI_FAILURE, {});
    }
}

TEST_F(DiskPolicyTest, InstancesOfOtherLunsThatAreSearchedStayAlive) {
    addAndOpen(
        {queriedPolicy(L"D\\1", {1}), operations(L"a"), operations(L"b"), operations(L"D\\1")});
    const LiveObjectsCheck live(host, {.objects = 2});
    const AllocationScope scope;
    EXPECT_EQ(set(kFailover), DSM_SUCCESS);
    EXPECT_THAT(scope.survivingTexts(), ElementsAre(L"DSM_LB_Operations.InstanceName=\"a\"",
                                                    L"DSM_LB_Operations.InstanceName=\"b\""));
}

// ---- Every call

/// The lookup's own lines, then the search that finds nothing.
Outcome afterFailureInLookup(const std::wstring& call) {
    const LogLine next{"GetInstance_for_SerialNo: IEnumWbemClassObject::Next", kEnd};
    const LogLine unknown{"GetInstance_for_SerialNo", DSM_SERIAL_NOT_FOUND};
    const LogLine end{kNext, kEnd};
    if (call.starts_with(L"ExecQuery")) {
        return {DSM_WMI_FAILURE, {{"GetInstance_for_SerialNo", kResult}, end}};
    }
    if (call.starts_with(L"Next")) return {DSM_WMI_FAILURE, {{next.place, kResult}, unknown, end}};
    if (call.ends_with(L".InstanceName")) return {DSM_WMI_FAILURE, {unknown, end}};
    return {DSM_WMI_FAILURE,
            {{"ParseLunInfoSerialNumber::Get(SerialNumber)", kResult}, next, unknown, end}};
}

Outcome afterFailureInQuery(const std::wstring& call, unsigned occurrence) {
    if (call.starts_with(L"CreateInstanceEnum")) return {DSM_WMI_FAILURE, {{kEnumerate, kResult}}};
    if (call.starts_with(L"Next")) return {DSM_WMI_FAILURE, {{kNext, kResult}}};
    if (call.ends_with(L".InstanceName")) {
        return {DSM_WMI_FAILURE, {{"IWbemClassObject::Get", kResult}}};
    }
    // The policy object of the other instance is not needed, and without its own the call ends.
    EXPECT_LE(occurrence, 2u);
    return {DSM_SUCCESS, {}};
}

/// A call that breaks off keeps what it had obtained: objects, and the texts of class, method and
/// path.
Outcome afterFailureInMethod(const std::wstring& call) {
    if (call.starts_with(L"CreateInstanceEnum")) return {DSM_WMI_FAILURE, {}};
    // The enumeration is asked again.
    if (call.starts_with(L"Next")) return {DSM_SUCCESS, {}};
    if (call.ends_with(L".InstanceName")) {
        return {DSM_WMI_FAILURE, {{"CallMethodForInstance::Get", kResult}}, {.enumerators = 1}, 2};
    }
    if (call.starts_with(L"GetObjectText")) {
        return {DSM_WMI_FAILURE,
                {{"CallMethodForInstance:IWbemObject::GetObjectText", kResult}},
                {.objects = 4},
                3};
    }
    if (call.starts_with(L"GetObject")) {
        return {DSM_WMI_FAILURE, {{"CallMethodForInstance::GetObject", kResult}}, {}, 3};
    }
    if (call.starts_with(L"GetMethod")) {
        return {
            DSM_WMI_FAILURE, {{"CallMethodForInstance::GetMethod", kResult}}, {.objects = 1}, 3};
    }
    if (call.starts_with(L"SpawnInstance")) {
        return {DSM_WMI_FAILURE,
                {{"CallMethodForInstance:IWbemClassObject::SpawnInstance", kResult}},
                {.objects = 2},
                3};
    }
    if (call.starts_with(L"Put")) {
        return {DSM_WMI_FAILURE,
                {{"CallMethodForInstance:IWbemServices::ExecMethod", kResult}},
                {.objects = 3},
                3};
    }
    if (call.starts_with(L"ExecMethod")) return {DSM_SUCCESS, {}};
    return {DSM_WMI_FAILURE, {}};
}

Outcome afterFailure(const std::wstring& call, unsigned occurrence) {
    const auto isOf = [&](const wchar_t* className) {
        return call.find(std::wstring(L" ") + className) != std::wstring::npos;
    };
    if (isOf(kLunClass)) return afterFailureInLookup(call);
    if (isOf(kQueryClass)) return afterFailureInQuery(call, occurrence);
    if (isOf(kOperationsClass) || isOf(L"__PARAMETERS")) return afterFailureInMethod(call);
    const bool isOfPolicyNumber = call.ends_with(L".LoadBalancePolicy");
    const bool isOfObject = call == L"QueryInterface DSM_Load_Balance_Policy";
    return {isOfPolicyNumber || isOfObject ? DSM_SUCCESS : DSM_WMI_FAILURE, {}};
}

TEST_F(DiskPolicyTest, EachCallFails) {
    addAndOpen(
        {queriedPolicy(L"other", {1}), queriedPolicy(L"D\\1", {0, 1, 0}), operations(L"D\\1")});
    failEachCall([&] { return set(kFailover); }, afterFailure);
}

// ---- No way out

/// Exit status of a process that was still asking for instances.
constexpr unsigned kStillSearching = 77;

/// Lets processes that are started in its life put their temporary files into a folder.
class TemporaryFilesIn {
  public:
    explicit TemporaryFilesIn(const std::wstring& folder) {
        former_.resize(GetEnvironmentVariableW(L"TMP", former_.data(), MAX_PATH));
        SetEnvironmentVariableW(L"TMP", folder.c_str());
    }
    ~TemporaryFilesIn() { SetEnvironmentVariableW(L"TMP", former_.c_str()); }
    TemporaryFilesIn(const TemporaryFilesIn&) = delete;
    TemporaryFilesIn& operator=(const TemporaryFilesIn&) = delete;

  private:
    std::wstring former_ = std::wstring(MAX_PATH, L'\0');
};

TEST_F(DiskPolicyTest, DISABLED_SetWithoutOperations) {
    addAndOpen({queriedPolicy(L"D\\1", {1}), operations(L"other")});
    host->endProcessAfterNextCalls(50, kStillSearching);
    _DSM_LOAD_BALANCE_TYPE policy{kRoundRobin};
    const unsigned long status = KORVADSMSetDiskPolicy(serial, &policy);
    std::printf("came back with %lu\n", status);
}

TEST_F(DiskPolicyTest, WithoutAnInstanceOfTheOperationsTheCallNeverReturns) {
    // The process leaves its folder behind, so that goes into the test's own.
    const TemporaryFilesIn files(folder.path());
    const ProgramRun run = runTest(L"DiskPolicyTest.DISABLED_SetWithoutOperations");
    EXPECT_EQ(run.exitCode, kStillSearching) << run.output;
    EXPECT_THAT(run.output, HasSubstr(kFoundMatch));
    EXPECT_THAT(run.output, Not(HasSubstr("came back")));
}

}  // namespace
}  // namespace quista::test
