// Finding the LUN that owns a path: what is read, in which order, and what is taken for a match.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/paths_test.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const wchar_t* kFirst = L"KORVADSM_LUNINFO.InstanceName=\"MPIO\\\\Disk&Ven_KORVA\\\\S1\"";
constexpr const wchar_t* kSecond =
    L"KORVADSM_LUNINFO.InstanceName=\"MPIO\\\\Disk&Ven_KORVA\\\\S2\"";

class PathSearchTest : public PathsTest {
  protected:
    /// The driver itself knows the path by its identifier, which some hosts here do not give it.
    PathSearchTest() { setReturnCode(L"UpdateRTPG", 0); }

    /// Ends without a match, the enumeration having come to its end.
    void expectNotFound(unsigned long long pathId) {
        const LiveObjectsCheck live(host);
        host->clearTrace();
        EXPECT_EQ(KORVADSMEnablePath(pathId), DSM_PATH_NOT_FOUND);
        expectLog({{kPathNext, kEnd}});
        EXPECT_THAT(executed(), IsEmpty());
    }
    /// Finds the LUN with this object path and calls its method.
    void expectFound(unsigned long long pathId, const std::wstring& objectPath) {
        const LiveObjectsCheck live(host);
        host->clearTrace();
        EXPECT_EQ(KORVADSMUpdateTPG(static_cast<unsigned long>(pathId)), DSM_SUCCESS);
        expectLog({});
        EXPECT_THAT(executed(), ElementsAre(objectPath));
    }
};

TEST_F(PathSearchTest, StepsAreTakenInOrder) {
    openWith({lunOfPaths(L"S1", {1}), lunOfPaths(L"S2", {2, 3, 4})});
    EXPECT_EQ(KORVADSMEnablePath(3), DSM_SUCCESS);
    EXPECT_THAT(calls(),
                ElementsAre(L"CreateInstanceEnum KORVADSM_LUNINFO", L"Next KORVADSM_LUNINFO",
                            L"Get KORVADSM_LUNINFO.NumberOfPaths", L"Get KORVADSM_LUNINFO.Paths",
                            L"Get KORVADSM_LUNINFO.KORVADSMLoadBalancePolicy",
                            L"Get KORVADSM_PATHINFO.DsmId", L"Next KORVADSM_LUNINFO",
                            L"Get KORVADSM_LUNINFO.NumberOfPaths", L"Get KORVADSM_LUNINFO.Paths",
                            L"Get KORVADSM_LUNINFO.KORVADSMLoadBalancePolicy",
                            L"Get KORVADSM_PATHINFO.DsmId", L"Get KORVADSM_PATHINFO.DsmId",
                            L"Get KORVADSM_LUNINFO.InstanceName", L"GetObject KORVADSM_LUNINFO",
                            L"GetMethod KORVADSM_LUNINFO.SetEnabled", L"SpawnInstance __PARAMETERS",
                            L"Put __PARAMETERS.DsmID", L"ExecMethod KORVADSM_LUNINFO.SetEnabled",
                            L"GetObjectText __PARAMETERS", L"Get __PARAMETERS.ReturnCode"));
    expectLog({});
}

TEST_F(PathSearchTest, NoLunIsNotFound) {
    openWith({});
    expectNotFound(1);
}

TEST_F(PathSearchTest, UnknownIdentifierIsNotFound) {
    openWith({lunOfPaths(L"S1", {1, 2}), lunOfPaths(L"S2", {})});
    expectNotFound(3);
}

TEST_F(PathSearchTest, BackslashesAreDoubledAndNothingElse) {
    host.add(namedLun(L"a\\b\\\\c&{d}'e", L"S1",
                      {MofObject(kPathClass).number(L"DsmId", 1).number(L"PathState", 1)}));
    openSession();
    expectFound(1, L"KORVADSM_LUNINFO.InstanceName=\"a\\\\b\\\\\\\\c&{d}'e\"");
}

TEST_F(PathSearchTest, LongNameIsWhole) {
    const std::wstring name(3000, L'n');
    host.add(
        namedLun(name, L"S1", {MofObject(kPathClass).number(L"DsmId", 1).number(L"PathState", 1)}));
    openSession();
    expectFound(1, L"KORVADSM_LUNINFO.InstanceName=\"" + name + L"\"");
}

TEST_F(PathSearchTest, FirstLunWithTheIdentifierIsUsed) {
    openWith({lunOfPaths(L"S0", {9}), lunOfPaths(L"S2", {1, 5}), lunOfPaths(L"S1", {5})});
    expectFound(5, kSecond);
    EXPECT_EQ(countCalls(L"Next KORVADSM_LUNINFO"), 2u);
}

TEST_F(PathSearchTest, LunsOfEveryCallAreFresh) {
    openWith({lunOfPaths(L"S1", {1})});
    expectFound(1, kFirst);
    host->removeInstances(kWmi, kLunClass);
    expectNotFound(1);
}

// ---- Identifiers

TEST_F(PathSearchTest, IdentifierIsComparedInItsWholeWidth) {
    openWith({lunOfPaths(L"S1", {1})});
    expectNotFound(0x100000001);
    expectNotFound(0xFFFFFFFF00000001);
}

TEST_F(PathSearchTest, IdentifierWidensWithItsSign) {
    openWith({lunOfPaths(L"S1", {static_cast<std::int32_t>(0x80000001)})});
    expectNotFound(0x80000001);
    EXPECT_EQ(KORVADSMEnablePath(0xFFFFFFFF80000001), DSM_SUCCESS);
    EXPECT_THAT(executed(), ElementsAre(kFirst));
}

TEST_F(PathSearchTest, RefreshNeverReachesANegativeIdentifier) {
    openWith({lunOfPaths(L"S1", {static_cast<std::int32_t>(0x80000001), -1})});
    for (const unsigned long pathId : {0x80000001ul, 0xFFFFFFFFul}) {
        EXPECT_EQ(KORVADSMUpdateTPG(pathId), DSM_PATH_NOT_FOUND);
        expectLog({{kPathNext, kEnd}});
    }
    EXPECT_THAT(executed(), IsEmpty());
}

TEST_F(PathSearchTest, UnreadableIdentifierIsZero) {
    openWith({lunOfPaths(L"S1", {1})});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failGet(kPathClass, L"DsmId", resultOf(code));
        expectFound(0, kFirst);
        expectNotFound(1);
    }
}

TEST_F(PathSearchTest, IdentifierWithoutValueIsZero) {
    openWith({lunWith(L"S1", {MofObject(kPathClass).number(L"PathState", 1)})});
    expectFound(0, kFirst);
}

// ---- Paths

TEST_F(PathSearchTest, ObjectsBeyondTheNumberOfPathsAreNotFetched) {
    openWith({lunOfPaths(L"S1", {1, 2, 3}).number(L"NumberOfPaths", 2)});
    expectFound(2, kFirst);
    expectNotFound(3);
    EXPECT_EQ(countCalls(L"Get KORVADSM_PATHINFO.DsmId"), 2u);
}

TEST_F(PathSearchTest, NumberBeyondTheObjectsIsBoundByThem) {
    openWith({lunOfPaths(L"S1", {1, 2}).number(L"NumberOfPaths", 1000),
              lunOfPaths(L"S2", {3}).number(L"NumberOfPaths", 0xFFFFFFFF)});
    expectFound(2, kFirst);
    expectFound(3, kSecond);
    expectNotFound(4);
}

TEST_F(PathSearchTest, NumberWithoutValueIsNone) {
    openWith({lunOfPaths(L"S1", {1}).null(L"NumberOfPaths"), lunOfPaths(L"S2", {1})});
    expectFound(1, kSecond);
}

TEST_F(PathSearchTest, PathsThatAreNoArrayOfObjectsAreNone) {
    std::vector<Value> values;
    values.push_back(Value::bits(VT_NULL));
    values.push_back(Value::bits(VT_I4, 1));
    values.push_back(Value::text(L"paths"));
    values.push_back(Value::longs({1}));
    values.push_back(Value::texts({L"1"}));
    values.push_back(Value::matrix(VT_UNKNOWN, 1, 1));
    openWith({lunOfPaths(L"S1", {1}), lunOfPaths(L"S2", {1})});
    for (const Value& value : values) {
        SCOPED_TRACE(value.type());
        host->clearFaults();
        host.replaceValue(kLunClass, L"Paths", value.get(), 1, 1);
        expectFound(1, kSecond);
    }
}

TEST_F(PathSearchTest, MissingObjectHasIdentifierZero) {
    openWith({lunOfPaths(L"S1", {1}), lunOfPaths(L"S2", {2})});
    host.replaceValue(kLunClass, L"Paths", Value::objects({nullptr}).get(), 1, 1);
    expectFound(0, kFirst);
}

TEST_F(PathSearchTest, ForeignObjectHasIdentifierZero) {
    openWith({lunOfPaths(L"S1", {1}), lunOfPaths(L"S2", {2})});
    host.replaceValue(kLunClass, L"Paths", Value::objects({foreignObject().get()}).get(), 1, 1);
    expectFound(0, kFirst);
}

TEST_F(PathSearchTest, ArrayMayBeginAnywhere) {
    openWith({lunOfPaths(L"S1", {1})});
    host.replaceValue(kLunClass, L"Paths", Value::objects({nullptr}, 17).get(), 1, 1);
    expectFound(0, kFirst);
}

// ---- Failures

TEST_F(PathSearchTest, FailedEnumerationIsNotFound) {
    openWith({lunOfPaths(L"S1", {1})});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failEnumeration(kLunClass, resultOf(code));
        const LiveObjectsCheck live(host);
        EXPECT_EQ(KORVADSMEnablePath(1), DSM_PATH_NOT_FOUND);
        expectLog(failureOf("CallMethodforITL::CreateInstanceEnum", code));
    }
}

TEST_F(PathSearchTest, EnumerationWithoutAnEnumeratorIsNotFound) {
    openWith({lunOfPaths(L"S1", {1})});
    host.failEnumeration(kLunClass, S_OK);
    EXPECT_EQ(KORVADSMEnablePath(1), DSM_PATH_NOT_FOUND);
    expectLog({{"CallMethodforITL::CreateInstanceEnum", kNullPointer}});
}

TEST_F(PathSearchTest, FailedNextIsNotFound) {
    openWith({lunOfPaths(L"S1", {1}), lunOfPaths(L"S2", {2})});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failNext(kLunClass, resultOf(code), 2);
        const LiveObjectsCheck live(host);
        host->clearTrace();
        EXPECT_EQ(KORVADSMEnablePath(2), DSM_PATH_NOT_FOUND);
        expectLog({{kPathNext, code}});
        EXPECT_EQ(countCalls(L"Next KORVADSM_LUNINFO"), 2u) << "it is not called again";
    }
}

TEST_F(PathSearchTest, MissingClassIsNotFound) {
    openWith({});
    host->removeClass(kWmi, kLunClass);
    EXPECT_EQ(KORVADSMEnablePath(1), DSM_PATH_NOT_FOUND);
    expectLog({{kPathNext, 0x80041010}});
    host->setUnknownClassAtCreation(true);
    EXPECT_EQ(KORVADSMEnablePath(1), DSM_PATH_NOT_FOUND);
    expectLog({{"CallMethodforITL::CreateInstanceEnum", 0x80041010}});
}

TEST_F(PathSearchTest, UnreadableLunEndsTheCallAtOnce) {
    openWith({lunOfPaths(L"S1", {1}), lunOfPaths(L"S2", {2})});
    const std::pair<const wchar_t*, const char*> reads[] = {
        {L"NumberOfPaths", "CallMethodforITL: NumberOfPaths"},
        {L"Paths", "CallMethodforITL: Paths"},
        {L"KORVADSMLoadBalancePolicy", "CallMethodforITL: Paths"},
    };
    for (const auto& [property, place] : reads) {
        for (const unsigned long code : kFailures) {
            host->clearFaults();
            host.failGet(kLunClass, property, resultOf(code));
            const LiveObjectsCheck live(host);
            host->clearTrace();
            EXPECT_EQ(KORVADSMEnablePath(2), DSM_WMI_FAILURE);
            expectLog(failureOf(place, code));
            EXPECT_EQ(countCalls(L"Next KORVADSM_LUNINFO"), 1u);
            EXPECT_EQ(calls().back(), std::wstring(L"Get KORVADSM_LUNINFO.") + property);
        }
    }
}

TEST_F(PathSearchTest, UnreadableNameFailsForWantOfAnObjectPath) {
    openWith({lunOfPaths(L"S1", {1})});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failGet(kLunClass, L"InstanceName", resultOf(code));
        const LiveObjectsCheck live(host);
        host->clearTrace();
        EXPECT_EQ(KORVADSMEnablePath(1), DSM_WMI_FAILURE);
        expectLog(failureOf("CallMethodforITL::Get", code));
        EXPECT_THAT(executed(), ElementsAre(L"")) << "the method is called all the same";
    }
}

TEST_F(PathSearchTest, UnreadableNameIsCarriedOnToTheStepsAfterIt) {
    openWith({lunOfPaths(L"S1", {1})});
    host.failGet(kLunClass, L"InstanceName", resultOf(kNotFoundCode));
    host.failGetObject(kLunClass, resultOf(0x80004005));
    EXPECT_EQ(KORVADSMEnablePath(1), DSM_WMI_FAILURE);
    expectLog(
        {{"CallMethodforITL::Get", kNotFoundCode}, {"CallMethodforITL::GetObject", 0x80004005}});
}

TEST_F(PathSearchTest, UnreadableNameDoesNotLiftTheGuard) {
    openWith({lunOfPaths(L"S1", {1}).number(L"KorvaDSMLoadBalancePolicy", 5)});
    host.failGet(kLunClass, L"InstanceName", resultOf(kNotFoundCode));
    EXPECT_EQ(KORVADSMMakeActivePath(1), DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE);
    expectLog({{"CallMethodforITL::Get", kNotFoundCode}});
}

}  // namespace
}  // namespace quista::test
