// The DSM's event log level, and how its parameters are put together with the counters.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/keys/parameters_test.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

const std::string kGetNext = "GetKorvadsmParameters: IEnumWbemClassObject::Next";
const std::string kSetNext = "SetKorvadsmParameters: IEnumWbemClassObject::Next";

class DsmParametersTest : public ParametersTest {
  protected:
    bool countersWereLookedFor() const {
        return countCalls(L"CreateInstanceEnum MPIO_REGISTERED_DSM") != 0;
    }
    /// The level of the first KORVADSM instance.
    static unsigned long storedLevel() {
        return Value::ofProperty(kDsmClass, L"EventLogLevel").get().ulVal;
    }
};

// ---- Get

TEST_F(DsmParametersTest, Get_FillsAllFieldsButTheFirst) {
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 130, 6, 9));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(unchanged());
}

TEST_F(DsmParametersTest, Get_IgnoresTheSelector) {
    for (const unsigned selector : {0u, 1u, 2u, 4u, 31u, 0x80000000u, 0xFFFFFFFFu}) {
        fill(0, 0, 0, 0);
        EXPECT_EQ(get(selector), DSM_SUCCESS);
        EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 130, 6, 9)) << selector;
    }
}

TEST_F(DsmParametersTest, Get_ReadsTheFirstInstance) {
    host.add(dsm(L"KORVADSM\\1", {}, 3));
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_EQ(record()->EventLogLevel, 2u);
}

TEST_F(DsmParametersTest, Get_CallsWmiInOrder) {
    EXPECT_EQ(get(), DSM_SUCCESS);
    const std::vector<std::wstring> made = calls();
    ASSERT_GE(made.size(), 4u);
    EXPECT_THAT(
        std::vector(made.begin(), made.begin() + 4),
        ElementsAre(L"CreateInstanceEnum KORVADSM", L"Next KORVADSM", L"Get KORVADSM.EventLogLevel",
                    L"CreateInstanceEnum MPIO_REGISTERED_DSM"));
}

TEST_F(DsmParametersTest, Get_EnumerationCannotStart_GoesStraightToTheCounters) {
    host.failEnumeration(kDsmClass, E_ACCESSDENIED);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, kUnwritten, 130, 6, 9));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DsmParametersTest, Get_NoEnumerator_15) {
    host.failEnumeration(kDsmClass, S_OK);
    EXPECT_EQ(get(), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"GetKorvadsmParameters: enumerator is NULL",
                                                 DSM_WMI_PARSING_ERROR}));
    EXPECT_THAT(fields(), testing::Each(kUnwritten));
    EXPECT_THAT(debug.texts(), IsEmpty());
    EXPECT_FALSE(countersWereLookedFor());
}

TEST_F(DsmParametersTest, Get_NextFails_ItsResultIsReturned) {
    for (const unsigned long result : {0x80070005ul, 0x80041001ul, 0x40004ul}) {
        host.failNext(kDsmClass, asResult(result));
        EXPECT_EQ(get(), result);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kGetNext, result}));
        host->clearFaults();
    }
    EXPECT_THAT(fields(), testing::Each(kUnwritten));
    EXPECT_THAT(debug.texts(), IsEmpty());
    EXPECT_FALSE(countersWereLookedFor());
}

TEST_F(DsmParametersTest, Get_NoInstance_TheEndsResultIsReturned) {
    host->removeInstances(kWmi, kDsmClass);
    EXPECT_EQ(get(), kEnd);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kGetNext, kEnd}));
}

TEST_F(DsmParametersTest, Get_ClassMissing) {
    host->removeClass(kWmi, kDsmClass);
    EXPECT_EQ(get(), kInvalidClass);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{kGetNext, kInvalidClass}));
    host->setUnknownClassAtCreation(true);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(log.lines(), IsEmpty());
}

// Whether the level could be read does not matter; what cannot be read is 0.
TEST_F(DsmParametersTest, Get_UnreadableLevelIsZero) {
    host.failGet(kDsmClass, L"EventLogLevel", E_ACCESSDENIED);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 0, 130, 6, 9));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DsmParametersTest, Get_CountersFail_LineAndDebuggerLine) {
    host->removeInstances(kWmi, kRegistrationClass);
    EXPECT_EQ(get(), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"GetDSMCounters: IEnumWbemClassObject::Next", kEnd},
                            LogLine{"Cannot get DSMCounters", DSM_WMI_PARSING_ERROR}));
    EXPECT_THAT(debug.texts(), ElementsAre(L"Cannot get dsmcounters"));
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, kUnwritten, kUnwritten, kUnwritten));
}

TEST_F(DsmParametersTest, Get_NoSession) {
    closeSession();
    EXPECT_EQ(get(), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"GetDSMCounters: IEnumWbemClassObject::Next", kNoObject},
                            LogLine{"Cannot get DSMCounters", DSM_WMI_PARSING_ERROR}));
    EXPECT_THAT(fields(), testing::Each(kUnwritten));
}

TEST_F(DsmParametersTest, Get_KeepsNothing) {
    get();
    const AllocationScope scope;
    const LiveObjectsCheck live(host);
    EXPECT_EQ(get(), DSM_SUCCESS);
    host.failNext(kDsmClass, E_FAIL);
    get();
    host->clearFaults();
    host.failGet(kCounterClass, L"RetryCount", E_FAIL);
    get();
    host->clearFaults();
    EXPECT_THAT(scope.survivingTexts(), IsEmpty());
}

// ---- Set

TEST_F(DsmParametersTest, Set_WritesTheLevel) {
    fill(7, 130, 6, 9);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"EventLogLevel = 2;", L"EventLogLevel = 7;"));
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 7, 130, 6, 9));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DsmParametersTest, Set_IgnoresTheSelector) {
    for (const unsigned selector : {0u, 1u, 2u, 4u, 31u, 0x80000000u, 0xFFFFFFFFu}) {
        fill(selector & 0xFF, 130, 6, 9);
        host->clearTrace();
        EXPECT_EQ(set(selector), DSM_SUCCESS);
        EXPECT_EQ(storedLevel(), selector & 0xFF);
        EXPECT_EQ(methodCalls().size(), 1u) << selector;
    }
}

TEST_F(DsmParametersTest, Set_WritesTheFirstInstanceOnly) {
    host.add(dsm(L"KORVADSM\\1", {1, 2, 3, 4, 5, 6, 7, 8}, 2));
    remember();
    fill(0xFFFFFFFF, 130, 6, 9);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"EventLogLevel = 2;", L"EventLogLevel = 4294967295;"));
}

TEST_F(DsmParametersTest, Set_CallsWmiInOrder) {
    EXPECT_EQ(set(), DSM_SUCCESS);
    const std::vector<std::wstring> made = callsWithProperties();
    ASSERT_GE(made.size(), 5u);
    EXPECT_THAT(
        std::vector(made.begin(), made.begin() + 5),
        ElementsAre(L"CreateInstanceEnum KORVADSM", L"Next KORVADSM", L"Put KORVADSM.EventLogLevel",
                    L"PutInstance KORVADSM", L"CreateInstanceEnum MPIO_REGISTERED_DSM"));
}

TEST_F(DsmParametersTest, Set_EnumerationCannotStart_GoesStraightToTheCounters) {
    host.failEnumeration(kDsmClass, E_ACCESSDENIED);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_EQ(methodCalls().size(), 1u);
    EXPECT_EQ(countCalls(L"PutInstance KORVADSM"), 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DsmParametersTest, Set_NoEnumerator_15) {
    host.failEnumeration(kDsmClass, S_OK);
    EXPECT_EQ(set(), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"SetKorvadsmParameters: enumerator is NULL",
                                                 DSM_WMI_PARSING_ERROR}));
    EXPECT_FALSE(countersWereLookedFor());
}

TEST_F(DsmParametersTest, Set_NextFails_ItsResultIsReturned) {
    for (const unsigned long result : {0x80070005ul, 0x80041001ul, 0x40004ul}) {
        host.failNext(kDsmClass, asResult(result));
        EXPECT_EQ(set(), result);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kSetNext, result}));
        host->clearFaults();
    }
    host->removeInstances(kWmi, kDsmClass);
    EXPECT_EQ(set(), kEnd);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kSetNext, kEnd}));
    EXPECT_FALSE(countersWereLookedFor());
}

TEST_F(DsmParametersTest, Set_AFailedPutOfTheLevelIsNotReported) {
    host.failPut(kDsmClass, L"EventLogLevel", E_ACCESSDENIED);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_EQ(countCalls(L"PutInstance KORVADSM"), 1u);
    EXPECT_EQ(methodCalls().size(), 1u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DsmParametersTest, Set_AFailedPutInstanceIsNotReported) {
    failPutInstance(kDsmClass, 0x80041003);
    fill(7, 130, 6, 9);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_EQ(storedLevel(), 2u);
    EXPECT_EQ(methodCalls().size(), 1u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

// The level stays written, and no line tells more than the counters' own.
TEST_F(DsmParametersTest, Set_CountersFail) {
    host->removeInstances(kWmi, kRegistrationClass);
    fill(7, 130, 6, 9);
    EXPECT_EQ(set(), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(storedLevel(), 7u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"GetDSMCounters: IEnumWbemClassObject::Next", kEnd}));
    EXPECT_THAT(debug.texts(), Not(Contains(L"Cannot get dsmcounters")));
}

TEST_F(DsmParametersTest, Set_NoSession) {
    closeSession();
    EXPECT_EQ(set(), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"GetDSMCounters: IEnumWbemClassObject::Next", kNoObject}));
}

TEST_F(DsmParametersTest, Set_KeepsNothing) {
    fill(2, 130, 6, 9);
    set();
    const AllocationScope scope;
    const LiveObjectsCheck live(host);
    EXPECT_EQ(set(), DSM_SUCCESS);
    host.failMethod(kMethodsClass, L"SetDsmCounters", E_FAIL);
    set();
    host->clearFaults();
    host.failGetObject(kMethodsClass, E_FAIL);
    set();
    host->clearFaults();
    EXPECT_THAT(scope.survivingTexts(), IsEmpty());
}

}  // namespace
}  // namespace quista::test
