// Whether a path is the last available one of its LUN.
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/luns_test.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Reads of a path report under this place too.
constexpr const char* kPlace = "IsLastPath: NumberOfPaths";
constexpr int kUntouched = -99;

class LastPathTest : public LunsTest {
  protected:
    unsigned long ask(unsigned long long pathId) {
        isLast = kUntouched;
        return IsLastAvlblPath(pathId, &isLast);
    }

    int isLast = kUntouched;
};

TEST_F(LastPathTest, OtherPathInState1Or2IsAvailable) {
    for (const int state : {1, 2}) {
        host->removeInstances(kWmi, kLunClass);
        openWith({lunWith(L"S1", {pathInState(1, 1), pathInState(2, state)})});
        EXPECT_EQ(ask(1), 0u);
        EXPECT_EQ(isLast, 0);
        closeSession();
    }
}

TEST_F(LastPathTest, OtherPathsInOtherStatesAreNotAvailable) {
    for (const int state : {0, 3, 4, 5, 255}) {
        SCOPED_TRACE(state);
        host->removeInstances(kWmi, kLunClass);
        openWith({lunWith(L"S1", {pathInState(1, 1), pathInState(2, state)})});
        EXPECT_EQ(ask(1), 0u);
        EXPECT_EQ(isLast, 1);
        closeSession();
    }
}

TEST_F(LastPathTest, OnlyPathIsTheLast) {
    openWith({lunWith(L"S1", {pathInState(1, 1)})});
    EXPECT_EQ(ask(1), 0u);
    EXPECT_EQ(isLast, 1);
}

TEST_F(LastPathTest, StateOfThePathItselfDoesNotMatter) {
    openWith({lunWith(L"S1", {pathInState(1, 3), pathInState(2, 3)})});
    EXPECT_EQ(ask(1), 0u);
    EXPECT_EQ(isLast, 1);
}

TEST_F(LastPathTest, PathsOfOtherLunsDoNotCount) {
    openWith({lunWith(L"S1", {pathInState(1, 1), pathInState(2, 1)}),
              lunWith(L"S2", {pathInState(3, 1), pathInState(4, 3)})});
    EXPECT_EQ(ask(3), 0u);
    EXPECT_EQ(isLast, 1);
}

TEST_F(LastPathTest, ReadsEndWithTheFirstAvailablePath) {
    openWith({lunWith(L"S0", {pathInState(9, 1)}),
              lunWith(L"S1", {pathInState(1, 3), pathInState(2, 1), pathInState(3, 1)}),
              lunWith(L"S2", {pathInState(4, 1)})});
    const LiveObjectsCheck objects(host);
    EXPECT_EQ(ask(2), 0u);
    EXPECT_EQ(isLast, 0);
    EXPECT_THAT(queries(), ElementsAre("CreateInstanceEnum KORVADSM_LUNINFO", "Next", "Next"))
        << "the enumeration stops at the LUN of the path";
    EXPECT_THAT(reads(),
                ElementsAre("LUN.NumberOfPaths", "LUN.Paths", "path.DsmId",                // S0
                            "LUN.NumberOfPaths", "LUN.Paths", "path.DsmId", "path.DsmId",  // found
                            "path.DsmId", "path.PathState",   // path 1, not available
                            "path.DsmId",                     // the path itself
                            "path.DsmId", "path.PathState"))  // path 3, available
        << "the paths are walked twice";
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LastPathTest, UnknownPathGives12) {
    openWith({lunWith(L"S1", {pathInState(1, 1)}), lunWith(L"S2", {})});
    const LiveObjectsCheck objects(host);
    EXPECT_EQ(ask(7), 12u);
    EXPECT_EQ(isLast, 0);
    EXPECT_THAT(queries(),
                ElementsAre("CreateInstanceEnum KORVADSM_LUNINFO", "Next", "Next", "Next"));
    EXPECT_THAT(log.lines(), IsEmpty()) << "the end of this enumeration leaves no line";
}

TEST_F(LastPathTest, NoLunsGive12) {
    openWith({});
    EXPECT_EQ(ask(1), 12u);
    EXPECT_EQ(isLast, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LastPathTest, IdentifierIsWidenedWithItsSign) {
    openWith({lunWith(L"S1", {pathInState(-5, 1), pathInState(2, 3)})});
    EXPECT_EQ(ask(0xFFFFFFFFFFFFFFFB), 0u);
    EXPECT_EQ(isLast, 1);
    EXPECT_EQ(ask(0xFFFFFFFB), 12u) << "all 64 bits are compared";
    EXPECT_EQ(isLast, 0);
    EXPECT_EQ(ask(0x100000002), 12u);
    EXPECT_EQ(isLast, 0);
}

TEST_F(LastPathTest, PathsOfTheSameIdentifierAreAllSkipped) {
    openWith({lunWith(L"S1", {pathInState(1, 1), pathInState(1, 1), pathInState(2, 3)})});
    EXPECT_EQ(ask(1), 0u);
    EXPECT_EQ(isLast, 1);
}

TEST_F(LastPathTest, LowByteOfTheStateCounts) {
    openWith({lunWith(L"S1", {pathInState(1, 1), pathInState(2, 3)})});
    host.replaceValue(kPathClass, L"PathState", Value::bits(VT_I4, 0x0302).get());
    EXPECT_EQ(ask(1), 0u);
    EXPECT_EQ(isLast, 0);
}

// ---- Counts and objects

TEST_F(LastPathTest, PathsBeyondTheCountAreNotLookedAt) {
    openWith({lunWith(L"S1", {pathInState(1, 1), pathInState(2, 3), pathInState(3, 1)})
                  .number(L"NumberOfPaths", 2)});
    const LiveObjectsCheck objects(host);
    EXPECT_EQ(ask(1), 0u);
    EXPECT_EQ(isLast, 1) << "path 3 would be available";
    EXPECT_EQ(ask(3), 12u);
    EXPECT_EQ(isLast, 0);
}

TEST_F(LastPathTest, CountOfZeroHidesAllPaths) {
    openWith({lunWith(L"S1", {pathInState(1, 1)}).number(L"NumberOfPaths", 0)});
    EXPECT_EQ(ask(1), 12u);
}

TEST_F(LastPathTest, FewerObjectsThanCountedAreAccepted) {
    openWith(
        {lunWith(L"S1", {pathInState(1, 1), pathInState(2, 3)}).number(L"NumberOfPaths", 300)});
    EXPECT_EQ(ask(1), 0u);
    EXPECT_EQ(isLast, 1);
}

TEST_F(LastPathTest, NegativeCountIsALargeOne) {
    openWith({lunWith(L"S1", {pathInState(1, 1), pathInState(2, 3)})});
    host.replaceValue(kLunClass, L"NumberOfPaths", Value::bits(VT_I4, -1).get());
    const LiveObjectsCheck objects(host);
    EXPECT_EQ(ask(1), 0u);
    EXPECT_EQ(isLast, 1);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LastPathTest, PathsThatAreNoArrayOfObjectsAreNone) {
    openWith({lunWith(L"S1", {pathInState(1, 1)})});
    const Value values[] = {Value::bits(VT_NULL), Value::text(L"x"), Value::longs({1})};
    for (const Value& value : values) {
        SCOPED_TRACE(value.type());
        host->clearFaults();
        host.replaceValue(kLunClass, L"Paths", value.get());
        EXPECT_EQ(ask(1), 12u);
        EXPECT_EQ(isLast, 0);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(LastPathTest, NullAndForeignElementsAreUnreadable) {
    openWith({lunWith(L"S1", {pathInState(1, 1), pathInState(2, 1)})});
    const auto paths = pathsOf(onlyLun().get());
    const ObjectReference<IUnknown> foreign = foreignObject();
    for (IUnknown* element : {static_cast<IUnknown*>(nullptr), foreign.get()}) {
        SCOPED_TRACE(element != nullptr ? "foreign" : "null");
        host->clearFaults();
        host.replaceValue(kLunClass, L"Paths", Value::objects({element, paths[1].get()}).get());
        const LiveObjectsCheck objects(host);
        EXPECT_EQ(ask(2), 14u);
        EXPECT_EQ(isLast, 1);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kPlace, kNullPointer}));
    }
}

// ---- Failures

TEST_F(LastPathTest, FailedEnumerationGives1WithoutALine) {
    openWith({lunWith(L"S1", {pathInState(1, 1)})});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failEnumeration(kLunClass, resultOf(code));
        EXPECT_EQ(ask(1), 1u);
        EXPECT_EQ(isLast, kUntouched);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(LastPathTest, NoSessionIsAFailedEnumeration) {
    EXPECT_EQ(ask(1), 1u);
    EXPECT_EQ(isLast, kUntouched);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LastPathTest, AnyFailureOfNextEndsTheSearchWithoutALine) {
    openWith({lunWith(L"S1", {pathInState(1, 1)}), lunWith(L"S2", {pathInState(2, 1)})});
    for (const unsigned long code : {0x80041002ul, 0x00040004ul, 0x80041010ul, 0x80004005ul}) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failNext(kLunClass, resultOf(code), 2);
        EXPECT_EQ(ask(2), 12u);
        EXPECT_EQ(isLast, 0);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

struct FailingRead {
    const char* name;
    const wchar_t* className;
    const wchar_t* property;
    unsigned occurrence;
    const char* place;
    int isLast;
};

class UnreadableLastPathTest : public LastPathTest,
                               public testing::WithParamInterface<FailingRead> {};

TEST_P(UnreadableLastPathTest, Gives14) {
    const FailingRead& read = GetParam();
    openWith({lunWith(L"S1", {pathInState(1, 3), pathInState(2, 3), pathInState(3, 1)}),
              lunWith(L"S2", {pathInState(2, 1), pathInState(4, 1)})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host->clearTrace();
        host.failGet(read.className, read.property, resultOf(code), read.occurrence);
        EXPECT_EQ(ask(2), 14u);
        EXPECT_EQ(isLast, read.isLast);
        EXPECT_THAT(queries(), ElementsAre("CreateInstanceEnum KORVADSM_LUNINFO", "Next"));
        EXPECT_EQ(log.take(), failureOf(read.place, code));
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, UnreadableLastPathTest,
    testing::Values(FailingRead{"Count", kLunClass, L"NumberOfPaths", 1, kPlace, kUntouched},
                    FailingRead{"Paths", kLunClass, L"Paths", 1, "IsLastPath: Paths", kUntouched},
                    FailingRead{"IdentifierOfTheFirst", kPathClass, L"DsmId", 1, kPlace, 1},
                    FailingRead{"IdentifierOfTheSecond", kPathClass, L"DsmId", 2, kPlace, 1},
                    FailingRead{"IdentifierInTheSecondWalk", kPathClass, L"DsmId", 3, kPlace, 1},
                    FailingRead{"State", kPathClass, L"PathState", 1, kPlace, 1},
                    FailingRead{"StateOfALaterPath", kPathClass, L"PathState", 2, kPlace, 1}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace quista::test
