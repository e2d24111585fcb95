// All LUNs as live objects.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <list>

#include "tests/luns/luns_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kAllLuns = "ExecQuery SELECT * FROM KORVADSM_LUNINFO";
constexpr const char* kObjectsNext = "KORVADSMGetAllDiskInfoEx: IEnumWbemClassObject::Next";
constexpr const char* kObjectsQuery =
    "KORVADSMGetAllDiskInfoEx : ExecQuery(SELECT * FROM KORVADSM_LUNINFO)";

/// The caller's list, which releases what it was given.
struct ObjectList {
    std::list<IWbemClassObject*> objects;
    long count = 77;

    ObjectList() = default;
    ObjectList(const ObjectList&) = delete;
    ObjectList& operator=(const ObjectList&) = delete;
    ~ObjectList() {
        for (IWbemClassObject* object : objects) {
            if (object != nullptr) object->Release();
        }
    }
};

std::wstring serialOf(IWbemClassObject* lun) {
    Value serial;
    EXPECT_EQ(lun->Get(L"SerialNumber", 0, &serial.get(), nullptr, nullptr), S_OK);
    return serial.get().bstrVal;
}

class LunObjectsTest : public LunsTest {};

TEST_F(LunObjectsTest, EveryInstanceIsAppended) {
    openWith({lunWith(L"S1", {}), lunWith(L"S2", {})});
    ObjectList list;
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), 0u);
    EXPECT_EQ(list.count, 2);
    ASSERT_EQ(list.objects.size(), 2u);
    EXPECT_THAT(queries(), ElementsAre(kAllLuns, "Next", "Next", "Next"));
    EXPECT_THAT(reads(), IsEmpty());
    EXPECT_EQ(serialOf(list.objects.front()), L"S1");
    EXPECT_EQ(serialOf(list.objects.back()), L"S2");
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kObjectsNext, 1}));
}

TEST_F(LunObjectsTest, CallerOwnsOneReferenceToEach) {
    openWith({lunWith(L"S1", {}), lunWith(L"S2", {})});
    const LiveObjectsCheck objects(host);
    ObjectList list;
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), 0u);
    for (IWbemClassObject* object : list.objects) {
        EXPECT_EQ(object->AddRef(), 2u);
        EXPECT_EQ(object->Release(), 1u);
    }
}

TEST_F(LunObjectsTest, RepeatedSerialNumbersAreKept) {
    openWith({namedLun(L"a", L"S1"), namedLun(L"b", L"S1")});
    ObjectList list;
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), 0u);
    EXPECT_EQ(list.count, 2);
}

TEST_F(LunObjectsTest, NoLunsAreASuccess) {
    openWith({});
    ObjectList list;
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), 0u);
    EXPECT_EQ(list.count, 0);
    EXPECT_THAT(list.objects, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kObjectsNext, 1}));
}

TEST_F(LunObjectsTest, ListIsNotEmptiedFirst) {
    openWith({lunWith(L"S1", {})});
    ObjectList list;
    list.objects.push_back(nullptr);
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), 0u);
    EXPECT_EQ(list.count, 1);
    ASSERT_EQ(list.objects.size(), 2u);
    EXPECT_EQ(list.objects.front(), nullptr);
    EXPECT_EQ(serialOf(list.objects.back()), L"S1");
}

TEST_F(LunObjectsTest, FailedQueryGives14) {
    openWith({lunWith(L"S1", {})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failQuery(kLunClass, resultOf(code));
        ObjectList list;
        EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), 14u);
        EXPECT_EQ(list.count, 0);
        EXPECT_THAT(list.objects, IsEmpty());
        EXPECT_EQ(log.take(), failureOf(kObjectsQuery, code));
    }
}

TEST_F(LunObjectsTest, NoSessionIsAFailedQuery) {
    ObjectList list;
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), 14u);
    EXPECT_EQ(list.count, 0);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kObjectsQuery, kNullPointer}));
}

struct ObjectsEnd {
    unsigned long result;
    unsigned long statusOfLongerList;
};

class LunObjectsEndTest : public LunObjectsTest, public testing::WithParamInterface<ObjectsEnd> {};

TEST_P(LunObjectsEndTest, StatusIsForcedToSuccessWhenCountAndListAgree) {
    openWith({lunWith(L"S1", {}), lunWith(L"S2", {})});
    host.failNext(kLunClass, resultOf(GetParam().result), 2);
    const LiveObjectsCheck objects(host);
    ObjectList list;
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), 0u);
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.objects.size(), 1u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kObjectsNext, GetParam().result}));
}

TEST_P(LunObjectsEndTest, StatusFollowsTheResultOfNextWhenTheListWasNotEmpty) {
    openWith({lunWith(L"S1", {}), lunWith(L"S2", {})});
    host.failNext(kLunClass, resultOf(GetParam().result), 2);
    const LiveObjectsCheck objects(host);
    ObjectList list;
    list.objects.push_back(nullptr);
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(list.objects, list.count), GetParam().statusOfLongerList);
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.objects.size(), 2u) << "what was found stays in the list";
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kObjectsNext, GetParam().result}));
}

INSTANTIATE_TEST_SUITE_P(All, LunObjectsEndTest,
                         testing::Values(ObjectsEnd{1, 0}, ObjectsEnd{0x80041002, 22},
                                         ObjectsEnd{0x00040004, 43}, ObjectsEnd{0x80041010, 0},
                                         ObjectsEnd{0x80004005, 0}));

}  // namespace
}  // namespace quista::test
