// The DSM's counters are read from MPIO's registration of the DSM.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/keys/parameters_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const wchar_t* kFound = L"GetDSMCounters - found an instance";
constexpr const wchar_t* kHere = L"GetDSMCounters is here";
constexpr const wchar_t* kCannot = L"Cannot get dsmcounters";

const LogLine kFailed{"Cannot get DSMCounters", DSM_WMI_PARSING_ERROR};
const LogLine kMissing{"GetKorvadsmParameters:: dsmParametersObj is missing",
                       DSM_WMI_PARSING_ERROR};
const std::string kNextPlace = "GetDSMCounters: IEnumWbemClassObject::Next";
const std::string kCountersPlace = "GetDsmCounters::Get could not get dsmCounters";

class DsmCountersGetTest : public ParametersTest {
  protected:
    /// The counters cannot be read: 15, and nothing of the record is written but the level.
    void expectFailure(const LogLines& lines, const std::vector<std::wstring>& debugLines) {
        debug.clear();
        EXPECT_EQ(get(), DSM_WMI_PARSING_ERROR);
        EXPECT_EQ(log.take(), lines);
        EXPECT_EQ(debug.texts(), debugLines);
        EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, kUnwritten, kUnwritten, kUnwritten));
    }
};

TEST_F(DsmCountersGetTest, TheVendorsEntryIsReadInOrder) {
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 130, 6, 9));
    const std::vector<std::wstring> made = calls();
    ASSERT_GE(made.size(), 3u);
    EXPECT_THAT(std::vector(made.begin() + 3, made.end()),
                ElementsAre(L"CreateInstanceEnum MPIO_REGISTERED_DSM", L"Next MPIO_REGISTERED_DSM",
                            L"Get MPIO_REGISTERED_DSM.DsmParameters", L"Get DSM_PARAMETERS.DsmName",
                            L"Get DSM_PARAMETERS.DsmName", L"Get DSM_PARAMETERS.DsmContext",
                            L"Get DSM_PARAMETERS.DsmCounters", L"Get DSM_COUNTERS.PDORemovePeriod",
                            L"Get DSM_COUNTERS.RetryCount", L"Get DSM_COUNTERS.RetryInterval"));
}

TEST_F(DsmCountersGetTest, DebuggerLines) {
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(debug.texts(), ElementsAre(kFound, kHere));
}

TEST_F(DsmCountersGetTest, TheFirstEntryOfTheNameIsTaken) {
    registerDsms({entry(L"x", 1, counters(1, 1, 1)), entry(kVendorDsm, 2, counters(21, 22, 23)),
                  entry(kVendorDsm, 3, counters(31, 32, 33))});
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 21, 22, 23));
}

TEST_F(DsmCountersGetTest, EntriesAreSoughtInTheFirstInstanceOnly) {
    registerDsms({entry(L"Another DSM", 1, counters(1, 1, 1))});
    host.add(registration({entry(kVendorDsm, 2, counters(21, 22, 23))}, L"second"));
    expectFailure({kMissing, kFailed}, {kCannot});
}

TEST_F(DsmCountersGetTest, TheNameMustBeTheSame) {
    for (const wchar_t* name : {L"", L"data korva dsm", L"Data KORVA DSM ", L" Data KORVA DSM",
                                L"Data KORVA DS", L"Data KORVA DSM 2"}) {
        registerDsms({entry(name, 1, counters(1, 2, 3))});
        expectFailure({kMissing, kFailed}, {kCannot});
    }
}

TEST_F(DsmCountersGetTest, EntriesWithoutReadableNameArePassedOver) {
    registerDsms({entry(kVendorDsm, 1, counters(1, 1, 1)),
                  entry(L"", 2, counters(2, 2, 2)).null(L"DsmName"),
                  entry(kVendorDsm, 3, counters(21, 22, 23))});
    host.failGet(kEntryClass, L"DsmName", E_ACCESSDENIED, 1, 1);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 21, 22, 23));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DsmCountersGetTest, NumberOfEntriesIsTheArrays) {
    host->removeInstances(kWmi, kRegistrationClass);
    host.add(registration({entry(kVendorDsm, 1, counters(21, 22, 23))}).number(L"NumberDSMs", 0));
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 21, 22, 23));
}

TEST_F(DsmCountersGetTest, LongListsAreSearchedToTheEnd) {
    std::vector<MofObject> entries(300, entry(L"Another DSM", 1, counters(1, 1, 1)));
    entries.push_back(entry(kVendorDsm, 2, counters(21, 22, 23)));
    registerDsms(entries);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 21, 22, 23));
}

// ---- The registration cannot be had

// An enumeration that cannot start is logged under the place of its first step.
TEST_F(DsmCountersGetTest, EnumerationFails) {
    host.failEnumeration(kRegistrationClass, E_ACCESSDENIED);
    expectFailure({{kNextPlace, 0x80070005}, kFailed}, {kCannot});
}

TEST_F(DsmCountersGetTest, NextFails) {
    host.failNext(kRegistrationClass, E_ACCESSDENIED);
    expectFailure({{kNextPlace, 0x80070005}, kFailed}, {kCannot});
}

TEST_F(DsmCountersGetTest, NoInstance) {
    host->removeInstances(kWmi, kRegistrationClass);
    expectFailure({{kNextPlace, kEnd}, kFailed}, {kCannot});
}

TEST_F(DsmCountersGetTest, ClassMissing) {
    host->removeClass(kWmi, kRegistrationClass);
    expectFailure({{kNextPlace, kInvalidClass}, kFailed}, {kCannot});
    host->setUnknownClassAtCreation(true);
    expectFailure({{kNextPlace, kInvalidClass}, kFailed}, {kCannot});
}

TEST_F(DsmCountersGetTest, UnreadableParameters) {
    host.failGet(kRegistrationClass, L"DsmParameters", E_ACCESSDENIED);
    expectFailure({{"GetDsmCounters::Get(DsmParameters)", 0x80070005}, kFailed}, {kCannot});
}

// Nothing is done with it, so nothing is logged for it either.
TEST_F(DsmCountersGetTest, ParametersThatAreNoArrayOfObjects) {
    const auto refused = [&](const Value& value) {
        host.replaceValue(kRegistrationClass, L"DsmParameters", value);
        expectFailure({kFailed}, {kCannot});
        host->clearFaults();
    };
    refused(Value::null());
    refused(Value::number(1));
    refused(Value::text(kVendorDsm));
    refused(Value::object(nullptr));
    refused(Value::array(VT_BSTR, 2));
    refused(Value::array(VT_UI1, 2));
}

// ---- The entry cannot be had

TEST_F(DsmCountersGetTest, NoEntryAtAll) {
    host.replaceValue(kRegistrationClass, L"DsmParameters", Value::objects({}));
    expectFailure({kMissing, kFailed}, {kCannot});
}

TEST_F(DsmCountersGetTest, ElementsThatAreNoObjectsOfWmi) {
    host.replaceValue(kRegistrationClass, L"DsmParameters",
                      Value::objects({nullptr, foreignObject()}));
    expectFailure({kMissing, kFailed}, {kCannot});
}

TEST_F(DsmCountersGetTest, UnreadableContext) {
    host.failGet(kEntryClass, L"DsmContext", E_ACCESSDENIED);
    expectFailure({{kCountersPlace, 0x80070005}, kFailed}, {kFound, kCannot});
    EXPECT_EQ(countCalls(L"Get DSM_PARAMETERS.DsmCounters"), 0u);
}

TEST_F(DsmCountersGetTest, UnreadableCounters) {
    host.failGet(kEntryClass, L"DsmCounters", E_ACCESSDENIED);
    expectFailure({{kCountersPlace, 0x80070005}, kFailed}, {kFound, kCannot});
}

TEST_F(DsmCountersGetTest, CountersThatAreNoObject) {
    const auto refused = [&](const Value& value) {
        host.replaceValue(kEntryClass, L"DsmCounters", value);
        expectFailure({{kCountersPlace, kNoObject}, kFailed}, {kFound, kCannot});
        host->clearFaults();
    };
    refused(Value::null());
    refused(Value::number(1));
    refused(Value::object(nullptr));
    refused(Value::object(foreignObject()));
}

// ---- The counters themselves

TEST_F(DsmCountersGetTest, UnreadableCountersAreZero) {
    for (const wchar_t* property : {L"PDORemovePeriod", L"RetryCount", L"RetryInterval"}) {
        host.failGet(kCounterClass, property, E_ACCESSDENIED);
        EXPECT_EQ(get(), DSM_SUCCESS);
        host->clearFaults();
        const std::wstring name = property;
        EXPECT_THAT(fields(),
                    ElementsAre(kUnwritten, 2, name == L"PDORemovePeriod" ? 0 : 130,
                                name == L"RetryCount" ? 0 : 6, name == L"RetryInterval" ? 0 : 9));
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DsmCountersGetTest, CountersAreRawValuesOf32Bits) {
    host.replaceValue(kCounterClass, L"PDORemovePeriod", Value::number(-1));
    host.replaceValue(kCounterClass, L"RetryCount", Value::byte(200));
    host.replaceValue(kCounterClass, L"RetryInterval", Value::null());
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(fields(), ElementsAre(kUnwritten, 2, 0xFFFFFFFF, 200, 0));
}

}  // namespace
}  // namespace quista::test
