// The persistent reservation key is read from the LUN with a serial number.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/keys/keys_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kNextPlace = "KORVADSMGetPRKey: IEnumWbemClassObject::Next";
// Kept: the place names the function that sets the key.
const std::string kElementPlace = "KORVADSMSetPRKey::Get(ReservationKey)";

MofObject lun(const std::wstring& serialNumber, const std::vector<std::int64_t>& key) {
    return MofObject(kLunClass)
        .text(L"InstanceName", L"LUN " + serialNumber)
        .text(L"SerialNumber", serialNumber)
        .numbers(L"ReservationKey", key);
}

class LunKeyTest : public KeysTest {
  protected:
    LunKeyTest() {
        host.add(lun(L"kvA7-1", {1, 2, 3, 4, 5, 6, 7, 8}));
        host.add(lun(L"kvA7-2", {0, 255, 128, 0, 127, 1, 0, 0}));
        openSession();
    }

    unsigned long get(std::wstring serialNumber = L"kvA7-2") {
        return KORVADSMGetPRKey(key.data(), serialNumber.data());
    }
    /// Gets the key while the LUN's has another form.
    unsigned long getFrom(const Value& value) {
        host.replaceValue(kLunClass, L"ReservationKey", value);
        return get();
    }
    std::vector<unsigned> bytes(std::size_t count = 8) const {
        return {key.data(), key.data() + count};
    }

    GuardedBuffer key{8};
};

TEST_F(LunKeyTest, AllBytesArriveAsTheyAre) {
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(bytes(), ElementsAre(0, 255, 128, 0, 127, 1, 0, 0));
    EXPECT_EQ(get(L"kvA7-1"), DSM_SUCCESS);
    EXPECT_THAT(bytes(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LunKeyTest, TheLunIsFoundByAQuery) {
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(calls(), ElementsAre(L"ExecQuery KORVADSM_LUNINFO", L"Next KORVADSM_LUNINFO",
                                     L"Get KORVADSM_LUNINFO.ReservationKey"));
    EXPECT_EQ(host->trace().front().detail,
              L"SELECT * FROM KORVADSM_LUNINFO WHERE SerialNumber = \"kvA7-2\"");
}

TEST_F(LunKeyTest, TheFirstOfSeveralIsTaken) {
    host.add(lun(L"kvA7-2", {9, 9, 9, 9, 9, 9, 9, 9}).text(L"InstanceName", L"another"));
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_THAT(bytes(), ElementsAre(0, 255, 128, 0, 127, 1, 0, 0));
}

TEST_F(LunKeyTest, ALongerArrayGivesItsFirstBytes) {
    EXPECT_EQ(getFrom(Value::array(VT_UI1, 16)), DSM_SUCCESS);
    EXPECT_THAT(bytes(), testing::Each(0u));
}

TEST_F(LunKeyTest, NothingIsKept) {
    get();
    const AllocationScope scope;
    const LiveObjectsCheck live(host);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_EQ(get(L"unknown"), DSM_ERROR);
    EXPECT_EQ(getFrom(Value::array(VT_UI1, 7)), DSM_ERROR);
    host->clearFaults();
    EXPECT_THAT(scope.survivingTexts(), IsEmpty());
}

// ---- Failures

TEST_F(LunKeyTest, QueryFails_NoLine) {
    host.failQuery(kLunClass, E_ACCESSDENIED);
    EXPECT_EQ(get(), DSM_ERROR);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(key.untouched());
}

TEST_F(LunKeyTest, SerialNumberThatBreaksTheQuery_NoLine) {
    EXPECT_EQ(get(L"kv\"A7"), DSM_ERROR);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(key.untouched());
}

TEST_F(LunKeyTest, UnknownSerialNumber_TheEndIsLogged) {
    for (const wchar_t* serialNumber : {L"unknown", L"", L"kvA7-"}) {
        EXPECT_EQ(get(serialNumber), DSM_ERROR);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kNextPlace, kEnd}));
    }
    EXPECT_EQ(KORVADSMGetPRKey(key.data(), nullptr), DSM_ERROR);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{kNextPlace, kEnd}));
    EXPECT_TRUE(key.untouched());
}

TEST_F(LunKeyTest, NextFails) {
    host.failNext(kLunClass, E_ACCESSDENIED);
    EXPECT_EQ(get(), DSM_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kNextPlace, 0x80070005}));
    EXPECT_TRUE(key.untouched());
}

TEST_F(LunKeyTest, GetFails) {
    host.failGet(kLunClass, L"ReservationKey", E_ACCESSDENIED);
    EXPECT_EQ(get(), DSM_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"KORVADSMGetPRKey::Get(ReservationKey)", 0x80070005}));
    EXPECT_TRUE(key.untouched());
}

TEST_F(LunKeyTest, ShorterArray_TheBytesReadSoFarStay) {
    host->removeInstances(kWmi, kLunClass);
    host.add(lun(L"kvA7-2", {21, 22, 23, 24, 25, 26, 27, 28}));
    Value five = Value::array(VT_UI1, 5);
    for (LONG i = 0; i < 5; ++i) {
        BYTE byte = static_cast<BYTE>(31 + i);
        ASSERT_EQ(SafeArrayPutElement(five.get().parray, &i, &byte), S_OK);
    }
    EXPECT_EQ(getFrom(five), DSM_ERROR);
    EXPECT_THAT(bytes(5), ElementsAre(31, 32, 33, 34, 35));
    EXPECT_TRUE(key.untouched(5, 3));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kElementPlace, kBadIndex}));
}

TEST_F(LunKeyTest, EmptyArray_TheFirstElementFails) {
    EXPECT_EQ(getFrom(Value::array(VT_UI1, 0)), DSM_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kElementPlace, kBadIndex}));
    EXPECT_TRUE(key.untouched());
}

TEST_F(LunKeyTest, ArrayThatBeginsAtOne_HasNoElementZero) {
    EXPECT_EQ(getFrom(Value::array(VT_UI1, 8, 1)), DSM_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kElementPlace, kBadIndex}));
    EXPECT_TRUE(key.untouched());
}

TEST_F(LunKeyTest, NoByteArray_TheFirstElementFails) {
    const auto refused = [&](const Value& value) {
        EXPECT_EQ(getFrom(value), DSM_ERROR);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kElementPlace, kInvalidArgument}));
        host->clearFaults();
    };
    refused(Value::null());
    refused(Value::number(8));
    refused(Value::text(L"ABCDEFGH"));
    refused(Value::array(VT_I2, 8));
    refused(Value::array(VT_R8, 8));
    EXPECT_TRUE(key.untouched());
}

TEST_F(LunKeyTest, NoSession_NoLine) {
    closeSession();
    EXPECT_EQ(get(), DSM_ERROR);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(key.untouched());
}

}  // namespace
}  // namespace quista::test
