// The number of paths of one LUN.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/luns_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kQueryS1 =
    "ExecQuery SELECT * FROM KORVADSM_LUNINFO WHERE SerialNumber = \"S1\"";
constexpr const char* kCountNext = "DSMGetNoPaths: IEnumWbemClassObject::Next";

struct EnumerationEnd {
    unsigned long result;
    unsigned long status;
};

class PathCountTest : public LunsTest {
  protected:
    unsigned long count(std::wstring serial) {
        numberOfPaths = -99;
        return DSMGetNoPaths(serial.data(), &numberOfPaths);
    }

    int numberOfPaths = -99;
};

TEST_F(PathCountTest, CountIsThePropertyOfTheLun) {
    openWith({lunWith(L"S0", {}), lunWith(L"S1", {iscsiPath(2)}).number(L"NumberOfPaths", 0x1234)});
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    EXPECT_EQ(count(L"S1"), 0u);
    EXPECT_EQ(numberOfPaths, 0x1234);
    EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next"));
    EXPECT_THAT(reads(), ElementsAre("LUN.SerialNumber", "LUN.NumberOfPaths"));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(memory.survivors(), IsEmpty());
}

TEST_F(PathCountTest, NoLunGives1) {
    openWith({lunWith(L"S1", {})});
    EXPECT_EQ(count(L"S2"), 1u);
    EXPECT_EQ(numberOfPaths, -99);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kCountNext, 1}));
}

TEST_F(PathCountTest, LunThatDiffersInCaseLeavesItsCount) {
    openWith({namedLun(L"a", L"lun").number(L"NumberOfPaths", 5),
              namedLun(L"b", L"Lun").number(L"NumberOfPaths", 6)});
    EXPECT_EQ(count(L"LUN"), 1u);
    EXPECT_EQ(numberOfPaths, 6) << "the count of the last LUN examined";
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kCountNext, 1}));
}

TEST_F(PathCountTest, EnumerationThatBreaksOffKeepsTheLastCount) {
    openWith({namedLun(L"a", L"s1").number(L"NumberOfPaths", 5)});
    host.failNext(kLunClass, resultOf(0x80041002), 2);
    EXPECT_EQ(count(L"S1"), 22u);
    EXPECT_EQ(numberOfPaths, 5);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kCountNext, 0x80041002}));
}

TEST_F(PathCountTest, SearchGoesOnBehindALunThatDiffers) {
    openWith({namedLun(L"a", L"s1").number(L"NumberOfPaths", 5),
              namedLun(L"b", L"S1").number(L"NumberOfPaths", 6),
              namedLun(L"c", L"S1").number(L"NumberOfPaths", 7)});
    EXPECT_EQ(count(L"S1"), 0u);
    EXPECT_EQ(numberOfPaths, 6);
    EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next", "Next"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PathCountTest, DoubleQuoteMakesTheQueryInvalid) {
    openWith({lunWith(L"S\"1", {})});
    EXPECT_EQ(count(L"S\"1"), 1u);
    EXPECT_EQ(numberOfPaths, -99);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PathCountTest, FailedQueryGives1WithoutALine) {
    openWith({lunWith(L"S1", {})});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failQuery(kLunClass, resultOf(code));
        EXPECT_EQ(count(L"S1"), 1u);
        EXPECT_EQ(numberOfPaths, -99);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(PathCountTest, NoSessionIsAFailedQuery) {
    EXPECT_EQ(count(L"S1"), 1u);
    EXPECT_EQ(numberOfPaths, -99);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PathCountTest, UnreadableSerialNumberEndsTheSearch) {
    openWith({namedLun(L"a", L"S1"), namedLun(L"b", L"S1")});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host->clearTrace();
        host.failGet(kLunClass, L"SerialNumber", resultOf(code), 1, 1);
        EXPECT_EQ(count(L"S1"), 1u);
        EXPECT_EQ(numberOfPaths, -99);
        EXPECT_THAT(reads(), ElementsAre("LUN.SerialNumber"));
        EXPECT_EQ(log.take(), failureOf("ParseLunInfo::Get(SerialNumber)", code));
    }
}

TEST_F(PathCountTest, UnreadableCountEndsTheSearchWithoutALine) {
    openWith({namedLun(L"a", L"S1"), namedLun(L"b", L"S1")});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host->clearTrace();
        host.failGet(kLunClass, L"NumberOfPaths", resultOf(code), 1, 1);
        EXPECT_EQ(count(L"S1"), 1u);
        EXPECT_EQ(numberOfPaths, -99);
        EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next"));
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(PathCountTest, StatusFollowsTheResultOfNext) {
    openWith({lunWith(L"S1", {})});
    const EnumerationEnd ends[] = {
        {1, 1}, {0x80041002, 22}, {0x00040004, 1}, {0x80041010, 1}, {0x80004005, 1}};
    for (const auto& [result, status] : ends) {
        SCOPED_TRACE(result);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failNext(kLunClass, resultOf(result));
        EXPECT_EQ(count(L"S1"), status);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kCountNext, result}));
    }
}

TEST_F(PathCountTest, SerialNumberThatIsNoTextIsAnEmptyOne) {
    openWith({lunWith(L"S1", {iscsiPath(1)})});
    for (const Value& value : {Value::bits(VT_NULL), Value::bits(VT_I4, 1)}) {
        host->clearFaults();
        host.replaceValue(kLunClass, L"SerialNumber", value.get());
        EXPECT_EQ(count(L"S1"), 1u);
        EXPECT_EQ(numberOfPaths, 1);
    }
}

TEST_F(PathCountTest, CountOfAnotherTypeIsItsRawValue) {
    openWith({lunWith(L"S1", {})});
    const std::pair<Value, int> values[] = {
        {Value::bits(VT_NULL), 0}, {Value::bits(VT_I4, -3), -3}, {Value::bits(VT_UI1, 200), 200}};
    for (const auto& [value, number] : values) {
        host->clearFaults();
        host.replaceValue(kLunClass, L"NumberOfPaths", value.get());
        EXPECT_EQ(count(L"S1"), 0u);
        EXPECT_EQ(numberOfPaths, number);
    }
}

}  // namespace
}  // namespace quista::test
