// The DSM's counters are written through the method SetDsmCounters.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/keys/parameters_test.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const wchar_t* kFound = L"GetDSMCounters - found an instance";
constexpr const wchar_t* kTrying =
    L"SetODSMCounters - trying to set dsmparms, pdorp: 11, retryc: 22, retryi: 33";

std::wstring hexadecimal(unsigned long number) {
    wchar_t text[9];
    swprintf(text, std::size(text), L"%lx", number);
    return text;
}
std::wstring fetched(unsigned long result) {
    return L"ParseDsmParameters - gServices->GetObject returned 0x" + hexadecimal(result);
}
std::wstring put(unsigned long result) {
    return L"ParseDsmParameters - Put returned 0x" + hexadecimal(result);
}
std::wstring executed(unsigned long result) {
    return L"ParseDsmParameters - ExecMethod returned 0x" + hexadecimal(result);
}

class DsmCountersSetTest : public ParametersTest {
  protected:
    DsmCountersSetTest() { fill(2, 11, 22, 33); }

    /// The call ends with this status and sends these lines to the debugger behind the first two.
    void expectTrace(unsigned long status, std::vector<std::wstring> lines) {
        debug.clear();
        EXPECT_EQ(set(), status);
        lines.insert(lines.begin(), {kFound, kTrying});
        EXPECT_THAT(debug.texts(), ElementsAreArray(lines));
        EXPECT_THAT(log.lines(), IsEmpty());
    }

    /// Declares the methods' class anew, with another context or none of the parameters.
    void redeclareMethods(const std::wstring& parameters) {
        host->removeClass(kWmi, kMethodsClass);
        host.loadText(
            L"class MPIO_WMI_METHODS { [key] string InstanceName; boolean Active; "
            L"[Implemented, WmiMethodId(1)] void SetDSMCounters(" +
            parameters + L"); };");
        host.add(methodsInstance());
    }
};

TEST_F(DsmCountersSetTest, TheMethodOfTheRegistrationsDriverObjectIsCalled) {
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_THAT(
        methodCalls(),
        ElementsAre(L"MPIO_WMI_METHODS.InstanceName=\"ROOT\\\\MPIO\\\\0000_0\" SetDsmCounters"));
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 11, 22, 33));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DsmCountersSetTest, WmiIsCalledInOrder) {
    EXPECT_EQ(set(), DSM_SUCCESS);
    const std::vector<std::wstring> made = callsWithProperties();
    ASSERT_GE(made.size(), 4u);
    EXPECT_THAT(
        std::vector(made.begin() + 4, made.end()),
        ElementsAre(L"CreateInstanceEnum MPIO_REGISTERED_DSM", L"Next MPIO_REGISTERED_DSM",
                    L"Get MPIO_REGISTERED_DSM.DsmParameters", L"Get DSM_PARAMETERS.DsmName",
                    L"Get DSM_PARAMETERS.DsmName", L"Get DSM_PARAMETERS.DsmContext",
                    L"Get DSM_PARAMETERS.DsmCounters", L"Put DSM_COUNTERS.PDORemovePeriod",
                    L"Put DSM_COUNTERS.RetryCount", L"Put DSM_COUNTERS.RetryInterval",
                    L"GetObject MPIO_WMI_METHODS", L"GetMethod MPIO_WMI_METHODS",
                    L"SpawnInstance __PARAMETERS", L"Put __PARAMETERS.DSMcontext",
                    L"Put __PARAMETERS.DsmCounters", L"Get MPIO_REGISTERED_DSM.InstanceName",
                    L"ExecMethod MPIO_WMI_METHODS"));
}

TEST_F(DsmCountersSetTest, DebuggerLines) {
    expectTrace(DSM_SUCCESS, {fetched(0), put(0), put(0), executed(0)});
}

TEST_F(DsmCountersSetTest, TheDebuggerSeesSignedNumbers) {
    fill(2, 0xFFFFFFFF, 0x80000000, 0x7FFFFFFF);
    EXPECT_EQ(set(), DSM_SUCCESS);
    ASSERT_GE(debug.texts().size(), 2u);
    EXPECT_EQ(debug.texts()[1],
              L"SetODSMCounters - trying to set dsmparms, pdorp: -1, retryc: -2147483648, "
              L"retryi: 2147483647");
}

// ---- What arrives

TEST_F(DsmCountersSetTest, WhatWasSetIsReadBack) {
    EXPECT_EQ(set(), DSM_SUCCESS);
    fill(0, 0, 0, 0);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 11, 22, 33));
}

TEST_F(DsmCountersSetTest, EachFieldChangesItsOwnCounterOfTheVendorsEntryOnly) {
    fill(2, 11, 6, 9);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"PDORemovePeriod = 130;", L"PDORemovePeriod = 11;"));
    remember();
    fill(2, 11, 0, 9);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"RetryCount = 6;", L"RetryCount = 0;"));
    remember();
    fill(2, 11, 0, 0xFFFFFFFF);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"RetryInterval = 9;", L"RetryInterval = 4294967295;"));
}

// The entry's own object goes back, so the counters that the record does not have keep their
// values.
TEST_F(DsmCountersSetTest, TheOtherCountersAreWrittenBack) {
    registerDsms({entry(kVendorDsm, 5, counters(130, 6, 9))});
    EXPECT_EQ(set(), DSM_SUCCESS);
    const std::string held = narrow(host->dump());
    EXPECT_THAT(held, HasSubstr("PathVerifyEnabled = 101;"));
    EXPECT_THAT(held, HasSubstr("PathVerificationPeriod = 102;"));
    EXPECT_THAT(held, HasSubstr("Reserved32 = 106;"));
    EXPECT_THAT(held, HasSubstr("Reserved64 = \"107\";"));
}

// ---- The registration or the entry cannot be had: 15, as for reading

TEST_F(DsmCountersSetTest, WithoutRegistrationNothingIsTried) {
    const auto expectLine = [&](const LogLine& line, const std::vector<std::wstring>& debugLines) {
        debug.clear();
        host->clearTrace();
        EXPECT_EQ(set(), DSM_WMI_PARSING_ERROR);
        EXPECT_THAT(log.take(), ElementsAre(line));
        EXPECT_EQ(debug.texts(), debugLines);
        EXPECT_EQ(countCalls(L"GetObject MPIO_WMI_METHODS"), 0u);
        host->clearFaults();
    };
    const std::string nextPlace = "GetDSMCounters: IEnumWbemClassObject::Next";
    host.failEnumeration(kRegistrationClass, E_FAIL);
    expectLine({nextPlace, 0x80004005}, {});
    host.failNext(kRegistrationClass, E_FAIL);
    expectLine({nextPlace, 0x80004005}, {});
    host.failGet(kRegistrationClass, L"DsmParameters", E_FAIL);
    expectLine({"GetDsmCounters::Get(DsmParameters)", 0x80004005}, {});
    host.failGet(kEntryClass, L"DsmName", E_FAIL);
    expectLine({"GetKorvadsmParameters:: dsmParametersObj is missing", DSM_WMI_PARSING_ERROR}, {});
    host.failGet(kEntryClass, L"DsmContext", E_FAIL);
    expectLine({"GetDsmCounters::Get could not get dsmCounters", 0x80004005}, {kFound});
    host.failGet(kEntryClass, L"DsmCounters", E_FAIL);
    expectLine({"GetDsmCounters::Get could not get dsmCounters", 0x80004005}, {kFound});
}

TEST_F(DsmCountersSetTest, ParametersThatAreNoArrayOfObjects_NoLine) {
    host.replaceValue(kRegistrationClass, L"DsmParameters", Value::number(1));
    EXPECT_EQ(set(), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(debug.texts(), IsEmpty());
}

// ---- Puts that fail do not stop it

TEST_F(DsmCountersSetTest, ACounterThatCannotBePutKeepsItsValue) {
    fill(2, 130, 22, 9);
    for (const wchar_t* property : {L"PDORemovePeriod", L"RetryInterval"}) {
        host.failPut(kCounterClass, property, E_ACCESSDENIED);
    }
    record()->PDORemovePeriod = 77;
    record()->RetryInterval = 78;
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"RetryCount = 6;", L"RetryCount = 22;"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

// The driver refuses what is missing; it is asked nevertheless.
TEST_F(DsmCountersSetTest, FailedPutsOfTheParametersDoNotStopTheCall) {
    constexpr unsigned long kInvalidParameter = 0x80041008;
    host.failPut(L"__PARAMETERS", L"DSMcontext", E_ACCESSDENIED);
    expectTrace(kInvalidParameter,
                {fetched(0), put(0x80070005), put(0), executed(kInvalidParameter)});
    host->clearFaults();
    host.failPut(L"__PARAMETERS", L"DsmCounters", E_OUTOFMEMORY);
    expectTrace(kInvalidParameter,
                {fetched(0), put(0), put(0x8007000e), executed(kInvalidParameter)});
    EXPECT_TRUE(unchanged());
}

// The type of the context is given, not left to the declaration: a declaration of another type
// refuses it, although the number would fit.
TEST_F(DsmCountersSetTest, TheContextIsPutAsUnsigned64BitNumber) {
    registerDsms({entry(kVendorDsm, 5, counters(130, 6, 9))});
    expectTrace(DSM_SUCCESS, {fetched(0), put(0), put(0), executed(0)});
    redeclareMethods(L"[in, id(0)] sint64 DSMcontext, [in, id(1)] DSM_COUNTERS DsmCounters");
    debug.clear();
    set();
    ASSERT_GE(debug.texts().size(), 4u);
    EXPECT_EQ(debug.texts()[3], put(0x80041005));
}

// ---- Failures that stop it

TEST_F(DsmCountersSetTest, ClassCannotBeFetched) {
    host.failGetObject(kMethodsClass, E_ACCESSDENIED);
    expectTrace(0x80070005, {fetched(0x80070005)});
    host->clearFaults();
    host->removeClass(kWmi, kMethodsClass);
    expectTrace(kNotFound, {fetched(kNotFound)});
    EXPECT_THAT(methodCalls(), IsEmpty());
}

TEST_F(DsmCountersSetTest, ClassWithoutObject) {
    host.failGetObject(kMethodsClass, S_OK);
    expectTrace(kNoObject, {fetched(0)});
}

TEST_F(DsmCountersSetTest, MethodCannotBeLookedUp) {
    const auto failLookup = [&](HRESULT result) {
        host.fail(L"IWbemClassObject", L"GetMethod", result, kMethodsClass);
    };
    failLookup(E_ACCESSDENIED);
    expectTrace(0x80070005, {fetched(0)});
    host->clearFaults();
    failLookup(S_OK);
    expectTrace(kNoObject, {fetched(0)});
    host->clearFaults();
    redeclareMethods(L"");
    expectTrace(kNoObject, {fetched(0)});
    EXPECT_THAT(methodCalls(), IsEmpty());
}

TEST_F(DsmCountersSetTest, InputCannotBeSpawned) {
    host.fail(L"IWbemClassObject", L"SpawnInstance", E_OUTOFMEMORY);
    expectTrace(0x8007000E, {fetched(0)});
    host->clearFaults();
    host.fail(L"IWbemClassObject", L"SpawnInstance", S_OK);
    expectTrace(kNoObject, {fetched(0)});
    EXPECT_THAT(methodCalls(), IsEmpty());
}

TEST_F(DsmCountersSetTest, TheMethodsResultIsTheStatus) {
    for (const unsigned long result : {0x80041001ul, 0x80041004ul, 0x40004ul, 1ul}) {
        host.failMethod(kMethodsClass, L"SetDsmCounters", asResult(result));
        expectTrace(result, {fetched(0), put(0), put(0), executed(result)});
        host->clearFaults();
    }
}

TEST_F(DsmCountersSetTest, TheMethodsResultOutweighsEarlierFailures) {
    host.failPut(L"__PARAMETERS", L"DSMcontext", E_ACCESSDENIED);
    host.failMethod(kMethodsClass, L"SetDsmCounters", E_FAIL);
    expectTrace(0x80004005, {fetched(0), put(0x80070005), put(0), executed(0x80004005)});
}

// ---- The object that the method is called on

TEST_F(DsmCountersSetTest, NoInstanceOfTheRegistrationsName) {
    host->removeInstances(kWmi, kMethodsClass);
    host.add(methodsInstance(L"another driver object"));
    expectTrace(kNotFound, {fetched(0), put(0), put(0), executed(kNotFound)});
}

TEST_F(DsmCountersSetTest, UnreadableInstanceName_TheBareClassIsAddressed) {
    host.failGet(kRegistrationClass, L"InstanceName", E_ACCESSDENIED);
    EXPECT_NE(set(), DSM_SUCCESS) << "the method belongs to instances";
    EXPECT_THAT(methodCalls(), ElementsAre(L"MPIO_WMI_METHODS SetDsmCounters"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
}  // namespace quista::test
