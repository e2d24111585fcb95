// The persistent reservation key is written to the DSM driver.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/keys/keys_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kPutPlace = "KORVADSMSetPRKey::Put(ReservationKey)";

class DriverKeyTest : public KeysTest {
  protected:
    DriverKeyTest() {
        host.add(dsm(L"KORVADSM\\0", {1, 2, 3, 4, 5, 6, 7, 8}));
        host.add(dsm(L"KORVADSM\\1", {11, 12, 13, 14, 15, 16, 17, 18}));
        openSession();
        remember();
    }

    unsigned long set(std::string key = std::string("\x00\x80\xff\x7f\x00\x01\x02\x00", 8)) {
        return KORVADSMSetPRKey(key.data());
    }
    /// What the driver has for a key.
    std::vector<unsigned> stored(LONG length = 8) const {
        const Value value = Value::ofProperty(kDsmClass, L"ReservationKey");
        std::vector<unsigned> bytes(static_cast<std::size_t>(length));
        for (LONG i = 0; i < length; ++i) {
            EXPECT_EQ(
                SafeArrayGetElement(value.get().parray, &i, &bytes[static_cast<std::size_t>(i)]),
                S_OK);
        }
        return bytes;
    }
    /// Sets the key while the driver's own has another form.
    unsigned long setOver(const Value& value) {
        host.replaceValue(kDsmClass, L"ReservationKey", value);
        return set();
    }
};

TEST_F(DriverKeyTest, AllBytesArriveAsTheyAre) {
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_THAT(stored(), ElementsAre(0x00, 0x80, 0xff, 0x7f, 0x00, 0x01, 0x02, 0x00));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DriverKeyTest, OnlyTheFirstInstanceIsWritten) {
    EXPECT_EQ(set("ABCDEFGH"), DSM_SUCCESS);
    EXPECT_THAT(stored(), ElementsAre('A', 'B', 'C', 'D', 'E', 'F', 'G', 'H'));
    host->removeInstances(kWmi, kDsmClass);
    host.add(dsm(L"KORVADSM\\0", {65, 66, 67, 68, 69, 70, 71, 72}));
    host.add(dsm(L"KORVADSM\\1", {11, 12, 13, 14, 15, 16, 17, 18}));
    remember();
    EXPECT_EQ(set("ABCDEFGH"), DSM_SUCCESS);
    EXPECT_TRUE(unchanged());
}

TEST_F(DriverKeyTest, TheInstanceIsReadChangedAndWrittenBack) {
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_THAT(callsWithProperties(),
                ElementsAre(L"CreateInstanceEnum KORVADSM", L"Next KORVADSM",
                            L"Get KORVADSM.ReservationKey", L"Put KORVADSM.ReservationKey",
                            L"PutInstance KORVADSM"));
}

TEST_F(DriverKeyTest, NoMoreThanEightBytesAreRead) {
    const GuardedBuffer key(8);
    EXPECT_EQ(KORVADSMSetPRKey(key.as<char>()), DSM_SUCCESS);
    EXPECT_THAT(stored(), testing::Each(GuardedBuffer::kPattern));
    EXPECT_TRUE(key.untouched());
}

TEST_F(DriverKeyTest, NothingIsKept) {
    set();
    const AllocationScope scope;
    const LiveObjectsCheck live(host);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_EQ(setOver(Value::array(VT_UI1, 7)), DSM_ERROR);
    host->clearFaults();
    EXPECT_THAT(scope.survivingTexts(), IsEmpty());
}

// ---- Failures

TEST_F(DriverKeyTest, EnumerationFails_NoLine) {
    host.failEnumeration(kDsmClass, E_ACCESSDENIED);
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.lines(), IsEmpty());
}

// Kept: the place is not formatted.
TEST_F(DriverKeyTest, NextFails_PlaceIsUnformatted) {
    const std::string place = "KORVADSMSetPRKey: IEnumWbemClassObject::Next returned 0x%x";
    host.failNext(kDsmClass, E_ACCESSDENIED);
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{place, 0x80070005}));

    host->clearFaults();
    host->removeInstances(kWmi, kDsmClass);
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{place, kEnd}));

    host->removeClass(kWmi, kDsmClass);
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{place, kInvalidClass}));
}

TEST_F(DriverKeyTest, GetFails) {
    host.failGet(kDsmClass, L"ReservationKey", E_OUTOFMEMORY);
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"KORVADSMSetPRKey::Get(ReservationKey)", 0x8007000E}));
    EXPECT_TRUE(unchanged());
}

TEST_F(DriverKeyTest, ShorterArray_TheElementBehindItFails) {
    for (const ULONG length : {0u, 1u, 7u}) {
        EXPECT_EQ(setOver(Value::array(VT_UI1, length)), DSM_ERROR);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kPutPlace, kBadIndex}));
        host->clearFaults();
    }
    EXPECT_TRUE(unchanged());
    EXPECT_EQ(countCalls(L"Put KORVADSM"), 0u);
}

TEST_F(DriverKeyTest, LongerArray_KeepsWhatLiesBehindTheKey) {
    const Value ten = Value::array(VT_UI1, 10);
    for (LONG i = 0; i < 10; ++i) {
        BYTE byte = static_cast<BYTE>(31 + i);
        ASSERT_EQ(SafeArrayPutElement(ten.get().parray, &i, &byte), S_OK);
    }
    EXPECT_EQ(setOver(ten), DSM_SUCCESS);
    host->clearFaults();
    EXPECT_THAT(stored(10), ElementsAre(0x00, 0x80, 0xff, 0x7f, 0x00, 0x01, 0x02, 0x00, 39, 40));
}

TEST_F(DriverKeyTest, ArrayThatBeginsAtOne_HasNoElementZero) {
    EXPECT_EQ(setOver(Value::array(VT_UI1, 8, 1)), DSM_ERROR);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{kPutPlace, kBadIndex}));
    EXPECT_TRUE(unchanged());
}

TEST_F(DriverKeyTest, NoByteArray_TheFirstElementFails) {
    const auto refused = [&](const Value& value) {
        EXPECT_EQ(setOver(value), DSM_ERROR);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kPutPlace, kInvalidArgument}));
        host->clearFaults();
    };
    refused(Value::null());
    refused(Value::number(8));
    refused(Value::text(L"ABCDEFGH"));
    refused(Value::array(VT_I2, 8));
    refused(Value::array(VT_I4, 8));
    refused(Value::array(VT_BSTR, 8));
    EXPECT_TRUE(unchanged());
    EXPECT_EQ(countCalls(L"Put KORVADSM"), 0u);
}

TEST_F(DriverKeyTest, KeyWithoutValue_IsNoByteArray) {
    host->removeInstances(kWmi, kDsmClass);
    host.add(dsm(L"KORVADSM\\0", {}).null(L"ReservationKey"));
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kPutPlace, kInvalidArgument}));
}

TEST_F(DriverKeyTest, PutFails) {
    host.failPut(kDsmClass, L"ReservationKey", E_FAIL);
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kPutPlace, 0x80004005}));
    EXPECT_EQ(countCalls(L"PutInstance KORVADSM"), 0u);
}

TEST_F(DriverKeyTest, PutInstanceFails) {
    failPutInstance(kDsmClass, 0x80041003);
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"KORVADSMSetPRKey::PutInstance(ReservationKey)", 0x80041003}));
    EXPECT_TRUE(unchanged());
}

TEST_F(DriverKeyTest, AnyResultButZeroIsAFailure) {
    failPutInstance(kDsmClass, 0x40004);
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"KORVADSMSetPRKey::PutInstance(ReservationKey)", 0x40004}));
}

TEST_F(DriverKeyTest, NoSession_NoLine) {
    closeSession();
    EXPECT_EQ(set(), DSM_ERROR);
    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
}  // namespace quista::test
