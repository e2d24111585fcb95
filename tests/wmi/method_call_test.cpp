// Calling the method of an instance that was found: inputs, outputs, failures and what they keep.
#include "wmi/method_call.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/console.h"
#include "tests/support/console_capture.h"
#include "tests/support/text.h"
#include "tests/wmi/fake_object.h"
#include "tests/wmi/method_call_fixture.h"
#include "tests/wmi/recorded_services.h"
#include "wmi/property.h"
#include "wmi/query.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const wchar_t* kPath = L"Operations.InstanceName=\"A\\\\B\"";
constexpr unsigned long kFailedCode = WBEM_E_FAILED;

/// What a call that breaks off leaves, besides class, method and path.
void expectKeptTexts(const AllocationScope& scope, const wchar_t* method) {
    EXPECT_THAT(scope.survivingTexts(), ElementsAre(L"Operations", method, kPath));
    EXPECT_EQ(scope.survivors().size(), 3u);
}

// ---- Methods with inputs

class CallWithInputTest : public MethodCallTest {
  protected:
    /// A failing call: its status, its line and the WMI objects that it keeps.
    void expectBreakOff(const LogLine& line, unsigned keptObjects) {
        const LiveObjectsCheck check(host, {.objects = keptObjects});
        const AllocationScope scope;
        EXPECT_EQ(call(L"SetPolicy"), kWmiFailure);
        EXPECT_THAT(log.take(), ElementsAre(line));
        expectKeptTexts(scope, L"SetPolicy");
    }
};

TEST_F(CallWithInputTest, ResultIsTheDriversStatus) {
    setResult(L"SetPolicy", L"Status", 7);
    EXPECT_EQ(call(L"SetPolicy"), 7u);
    setResult(L"SetPolicy", L"Status", static_cast<LONG>(0xE0000008));
    EXPECT_EQ(call(L"SetPolicy"), 0xE0000008u);
    EXPECT_FALSE(log.exists());
}

TEST_F(CallWithInputTest, EverythingIsReleased) {
    const LiveObjectsCheck check(host);
    const AllocationScope scope;
    EXPECT_EQ(call(L"SetPolicy"), 0u);
    EXPECT_THAT(scope.survivors(), IsEmpty());
    EXPECT_EQ(policy.type(), VT_I4) << "the value stays the caller's";
}

TEST_F(CallWithInputTest, StepsAreTakenInOrder) {
    EXPECT_EQ(call(L"SetPolicy"), 0u);
    EXPECT_THAT(
        trace(),
        ElementsAre(L"IWbemServices::CreateInstanceEnum()", L"IEnumWbemClassObject::Next()",
                    L"IWbemClassObject::Get(InstanceName)", L"IWbemServices::GetObject(Operations)",
                    L"IWbemClassObject::GetMethod(SetPolicy)", L"IWbemClassObject::SpawnInstance()",
                    L"IWbemClassObject::Put(LoadBalancePolicy)",
                    L"IWbemServices::ExecMethod(SetPolicy)", L"IWbemClassObject::GetObjectText()",
                    L"IWbemClassObject::Get(Status)"));
}

TEST_F(CallWithInputTest, ConnectionIsCalledWithTheClassAndThePath) {
    const RecordedServices services;
    EXPECT_EQ(call(L"SetPolicy"), 0u);
    ASSERT_EQ(services.calls().size(), 3u);
    EXPECT_EQ(services.calls()[0],
              (ServiceCall{L"CreateInstanceEnum", L"Operations", L"", 0x31, L"", L""}));
    EXPECT_EQ(services.calls()[1], (ServiceCall{L"GetObject", L"Operations", L"", 0, L"", L""}));
    const ServiceCall& execution = services.calls()[2];
    EXPECT_EQ(execution.method, L"ExecMethod");
    EXPECT_EQ(execution.target, kPath);
    EXPECT_EQ(execution.detail, L"SetPolicy");
    EXPECT_EQ(execution.flags, 0);
    EXPECT_THAT(narrow(execution.input), HasSubstr("LoadBalancePolicy = 5"));
}

TEST_F(CallWithInputTest, PolicyIsPutUnderItsOwnType) {
    EXPECT_EQ(call(L"SetPolicy"), 0u);
    for (const simulator::CallRecord& made : host->trace()) {
        if (made.method != L"Put") continue;
        EXPECT_EQ(made.valueType, VT_I4);
        EXPECT_EQ(made.cimType, 0);
        return;
    }
    ADD_FAILURE() << "nothing was put";
}

TEST_F(CallWithInputTest, NamesAndCountAreNotLookedAt) {
    VARIANT* values[] = {&policy.get()};
    BSTR names[] = {SysAllocString(L"Weight")};
    const RecordedServices services;
    EXPECT_EQ(CallMethodForInstance(L"Operations", L"SetPolicy", names, values, -1, L"\"E\""), 0u);
    EXPECT_EQ(CallMethodForInstance(L"Operations", L"SetPolicy", nullptr, values, 0, L"\"E\""), 0u);
    for (const std::size_t execution : {2u, 5u}) {
        EXPECT_THAT(narrow(services.calls().at(execution).input),
                    HasSubstr("LoadBalancePolicy = 5"));
    }
    SysFreeString(names[0]);
}

TEST_F(CallWithInputTest, PolicyObjectIsPassedOn) {
    host.loadClasses(L"lbpolicy");
    host.add(MofObject(L"DSM_LB_Operations").text(L"InstanceName", L"MPIO\\Disk_0"));
    MofObject policyObject(L"DSM_Load_Balance_Policy");
    policyObject.number(L"LoadBalancePolicy", 5);
    host.add(MofObject(L"DSM_QueryLBPolicy")
                 .text(L"InstanceName", L"MPIO\\Disk_0")
                 .object(L"LoadBalancePolicy", policyObject));
    ComRef<IEnumWbemClassObject> disks;
    ComRef<IWbemClassObject> disk;
    UniqueVariant embedded;
    ASSERT_EQ(enumerateClass(L"DSM_QueryLBPolicy", disks), S_OK);
    ASSERT_EQ(nextInstance(disks.get(), disk), S_OK);
    ASSERT_EQ(getProperty(disk.get(), L"LoadBalancePolicy", embedded), S_OK);
    ASSERT_EQ(embedded.type(), VT_UNKNOWN);
    host->setMethodResult(L"DSM_LB_Operations", L"DsmSetLoadBalancePolicy", L"Status",
                          Value::bits(VT_I4, 9).get());

    const LiveObjectsCheck check(host);
    const RecordedServices services;
    VARIANT* values[] = {&embedded.get(), nullptr};
    EXPECT_EQ(CallMethodForInstance(L"DSM_LB_Operations", L"DSMSetLoadBalancePolicy", nullptr,
                                    values, 2, L"\"MPIO\\\\Disk_0\""),
              9u);
    EXPECT_EQ(services.calls().back().target, L"DSM_LB_Operations.InstanceName=\"MPIO\\\\Disk_0\"");
    EXPECT_THAT(narrow(services.calls().back().input),
                HasSubstr("instance of DSM_Load_Balance_Policy"));
    EXPECT_EQ(embedded.type(), VT_UNKNOWN);
}

TEST_F(CallWithInputTest, FailedClassObjectBreaksOff) {
    host.failGetObject(L"Operations", kFailed);
    expectBreakOff({"CallMethodForInstance::GetObject", kFailedCode}, 0);
}

TEST_F(CallWithInputTest, MissingClassObjectBreaksOff) {
    host.failGetObject(L"Operations", S_OK);
    expectBreakOff({"CallMethodForInstance::GetMethod", 0x80004003}, 0);
}

TEST_F(CallWithInputTest, FailedSignatureBreaksOff) {
    failObject(L"GetMethod", kFailed);
    expectBreakOff({"CallMethodForInstance::GetMethod", kFailedCode}, 1);
}

TEST_F(CallWithInputTest, UnknownMethodBreaksOff) {
    const LiveObjectsCheck check(host, {.objects = 1});
    const AllocationScope scope;
    EXPECT_EQ(call(L"Unknown"), kWmiFailure);
    EXPECT_THAT(log.take(),
                ElementsAre(LogLine{"CallMethodForInstance::GetMethod", WBEM_E_NOT_FOUND}));
    expectKeptTexts(scope, L"Unknown");
}

TEST_F(CallWithInputTest, FailedSpawnBreaksOff) {
    failObject(L"SpawnInstance", kFailed);
    expectBreakOff({"CallMethodForInstance:IWbemClassObject::SpawnInstance", kFailedCode}, 2);
}

TEST_F(CallWithInputTest, SpawnWithoutAnInstanceBreaksOff) {
    failObject(L"SpawnInstance", S_OK);
    expectBreakOff({"CallMethodForInstance:IWbemClassObject::SpawnInstance", 0x80004003}, 2);
}

TEST_F(CallWithInputTest, FailedPutIsLoggedAsTheExecution) {
    failObject(L"Put", kFailed, L"LoadBalancePolicy");
    expectBreakOff({"CallMethodForInstance:IWbemServices::ExecMethod", kFailedCode}, 3);
}

TEST_F(CallWithInputTest, MethodWithAnotherInputFailsAtThePut) {
    EXPECT_EQ(call(L"SetWeight"), kWmiFailure);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{"CallMethodForInstance:IWbemServices::ExecMethod",
                                                WBEM_E_NOT_FOUND}));
}

TEST_F(CallWithInputTest, ValueThatDoesNotFitFailsAtThePut) {
    policy = Value::text(L"five");
    EXPECT_EQ(call(L"SetPolicy"), kWmiFailure);
    const LogLines lines = log.take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].place, "CallMethodForInstance:IWbemServices::ExecMethod");
}

TEST_F(CallWithInputTest, FailedExecutionReportsSuccess) {
    setResult(L"SetPolicy", L"Status", 7);
    for (const HRESULT result :
         {kFailed, static_cast<HRESULT>(WBEM_S_TIMEDOUT), HRESULT{S_FALSE}}) {
        host->clearFaults();
        host.failMethod(L"Operations", L"SetPolicy", result);
        const LiveObjectsCheck check(host);
        const AllocationScope scope;
        EXPECT_EQ(call(L"SetPolicy"), 0u);
        EXPECT_FALSE(log.exists());
        EXPECT_THAT(scope.survivors(), IsEmpty()) << "the call goes on to its end";
    }
}

TEST_F(CallWithInputTest, MissingOutputBreaksOff) {
    host->setMethodWithoutOutput(L"Operations", L"SetPolicy");
    expectBreakOff({"CallMethodForInstance:IWbemObject::gServices->ExecMethod", 0}, 3);
}

TEST_F(CallWithInputTest, FailedObjectTextBreaksOff) {
    failObject(L"GetObjectText", kFailed);
    expectBreakOff({"CallMethodForInstance:IWbemObject::GetObjectText", kFailedCode}, 4);
}

TEST_F(CallWithInputTest, MissingStatusFailsWithoutALine) {
    const LiveObjectsCheck check(host);
    const AllocationScope scope;
    EXPECT_EQ(call(L"SetQuietly"), kWmiFailure);
    EXPECT_FALSE(log.exists());
    EXPECT_THAT(scope.survivors(), IsEmpty()) << "the call goes on to its end";
}

TEST_F(CallWithInputTest, UnreadableStatusFailsWithoutALine) {
    for (const HRESULT result : {kFailed, HRESULT{S_FALSE}}) {
        host->clearFaults();
        failObject(L"Get", result, L"Status");
        const LiveObjectsCheck check(host);
        EXPECT_EQ(call(L"SetPolicy"), kWmiFailure);
        EXPECT_FALSE(log.exists());
    }
}

TEST_F(CallWithInputTest, StatusIsTakenBitByBit) {
    host.replaceValue(L"", L"Status", Value::bits(VT_NULL).get(), 1, 1);
    host.replaceValue(L"", L"Status", Value::bits(VT_UI1, 0xFE).get(), 2, 1);
    EXPECT_EQ(call(L"SetPolicy"), 0u);
    EXPECT_EQ(call(L"SetPolicy"), 0xFEu);
    EXPECT_FALSE(log.exists());
}

// ---- Methods without inputs

class CallWithoutInputTest : public MethodCallTest {
  protected:
    void expectBreakOff(const LogLine& line, unsigned keptObjects) {
        const LiveObjectsCheck check(host, {.objects = keptObjects});
        const AllocationScope scope;
        EXPECT_EQ(call(L"Refresh"), kWmiFailure);
        EXPECT_THAT(log.take(), ElementsAre(line));
        expectKeptTexts(scope, L"Refresh");
    }
};

TEST_F(CallWithoutInputTest, ResultIsTheReturnCode) {
    setResult(L"Refresh", L"ReturnCode", static_cast<LONG>(0xE0000008));
    const LiveObjectsCheck check(host);
    const AllocationScope scope;
    EXPECT_EQ(call(L"Refresh"), 0xE0000008u);
    EXPECT_FALSE(log.exists());
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

TEST_F(CallWithoutInputTest, StepsAreTakenInOrder) {
    EXPECT_EQ(call(L"Refresh"), 0u);
    EXPECT_THAT(
        trace(),
        ElementsAre(L"IWbemServices::CreateInstanceEnum()", L"IEnumWbemClassObject::Next()",
                    L"IWbemClassObject::Get(InstanceName)", L"IWbemServices::GetObject(Operations)",
                    L"IWbemClassObject::GetMethod(Refresh)", L"IWbemServices::ExecMethod(Refresh)",
                    L"IWbemClassObject::GetObjectText()", L"IWbemClassObject::Get(ReturnCode)"));
}

TEST_F(CallWithoutInputTest, NoInputIsPassed) {
    const RecordedServices services;
    EXPECT_EQ(CallMethodForInstance(L"Operations", L"Refresh", nullptr, nullptr, 0, L"\"E\""), 0u)
        << "the values are not looked at";
    const ServiceCall& execution = services.calls().back();
    EXPECT_EQ(execution.target, L"Operations.InstanceName=\"E\"");
    EXPECT_EQ(execution.detail, L"Refresh");
    EXPECT_EQ(execution.flags, 0);
    EXPECT_EQ(execution.input, L"");
}

TEST_F(CallWithoutInputTest, FailedExecutionBreaksOff) {
    host.failMethod(L"Operations", L"Refresh", kFailed);
    expectBreakOff({"CallMethodForInstance::ExecMethod", kFailedCode}, 1);
    host->clearFaults();
    host.failMethod(L"Operations", L"Refresh", WBEM_S_TIMEDOUT);
    expectBreakOff({"CallMethodForInstance::ExecMethod", WBEM_S_TIMEDOUT}, 1);
}

TEST_F(CallWithoutInputTest, ExecutionWithResultOneFailsWithoutALine) {
    host.failMethod(L"Operations", L"Refresh", S_FALSE);
    EXPECT_EQ(call(L"Refresh"), kWmiFailure);
    EXPECT_FALSE(log.exists());
}

TEST_F(CallWithoutInputTest, MissingOutputBreaksOff) {
    host.failMethod(L"Operations", L"Refresh", S_OK);
    expectBreakOff({"CallMethodForInstance::GetObjectText", 0}, 1);
}

TEST_F(CallWithoutInputTest, FailedObjectTextBreaksOff) {
    failObject(L"GetObjectText", kFailed);
    expectBreakOff({"CallMethodForInstance::GetObjectText", kFailedCode}, 2);
}

TEST_F(CallWithoutInputTest, MissingReturnCodeBreaksOff) {
    const LiveObjectsCheck check(host, {.objects = 2});
    const AllocationScope scope;
    EXPECT_EQ(call(L"RefreshQuietly"), kWmiFailure);
    EXPECT_THAT(log.take(),
                ElementsAre(LogLine{"CallMethodForInstance::Get(ReturnCode)", WBEM_E_NOT_FOUND}));
    // The object's text is kept too.
    EXPECT_THAT(scope.survivingTexts(),
                ElementsAre(L"Operations", L"RefreshQuietly", kPath, testing::_));
    EXPECT_EQ(scope.survivors().size(), 4u);
}

TEST_F(CallWithoutInputTest, ReturnCodeIsTakenBitByBit) {
    host.replaceValue(L"", L"ReturnCode", Value::bits(VT_NULL).get(), 1, 1);
    host.replaceValue(L"", L"ReturnCode", Value::boolean(VARIANT_TRUE).get(), 2, 1);
    EXPECT_EQ(call(L"Refresh"), 0u);
    EXPECT_EQ(call(L"Refresh"), 0xFFFFu);
    EXPECT_FALSE(log.exists());
}

// ---- Console trace

class CallTraceTest : public MethodCallTest {
  protected:
    CallTraceTest() { gConsoleTrace = 1; }
    ~CallTraceTest() override { gConsoleTrace = 0; }

    std::string printedBy(const wchar_t* method) {
        ConsoleCapture capture;
        EXPECT_EQ(call(method), 7u);
        return capture.stop();
    }
};

TEST_F(CallTraceTest, OutputOfAMethodWithoutInputsIsPrinted) {
    setResult(L"Refresh", L"ReturnCode", 7);
    const RecordedServices services;
    const std::string printed = printedBy(L"Refresh");
    std::string expected =
        narrow(L"The Refresh method returned:\n" + services.calls().back().output + L"\n");
    EXPECT_THAT(expected, HasSubstr("ReturnCode = 7"));
    for (std::size_t at = 0; (at = expected.find('\n', at)) != std::string::npos; at += 2) {
        expected.insert(at, 1, '\r');
    }
    EXPECT_EQ(printed, expected);
}

TEST_F(CallTraceTest, OutputOfAMethodWithInputsIsNot) {
    setResult(L"SetPolicy", L"Status", 7);
    EXPECT_EQ(printedBy(L"SetPolicy"), "");
}

TEST_F(CallTraceTest, NothingIsPrintedWhenTheTraceIsOff) {
    gConsoleTrace = 0;
    setResult(L"Refresh", L"ReturnCode", 7);
    EXPECT_EQ(printedBy(L"Refresh"), "");
}

TEST_F(CallTraceTest, FailureIsPrintedAsItIsLogged) {
    host.failMethod(L"Operations", L"Refresh", kFailed);
    ConsoleCapture capture;
    EXPECT_EQ(call(L"Refresh"), kWmiFailure);
    EXPECT_EQ(capture.stop(),
              "Error 80041001 in CallMethodForInstance::ExecMethod: WBEM_E_FAILED\r\n");
}

}  // namespace
}  // namespace quista::test
