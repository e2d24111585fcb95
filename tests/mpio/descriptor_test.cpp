// One descriptor: its block, its device name and how many paths it takes in.
#include <windows.h>

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/mpio_test.h"
#include "tests/mpio/values.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

const LogLine kEndOfList{"DSMGetMpioDescr: IEnumWbemClassObject::Next", kEnd};
const LogLine kParseFailed{"DSMGetMpioDescr", DSM_NO_MEMORY};
constexpr std::size_t kMaximumPaths = 1000;

class DescriptorTest : public MpioTest {
  protected:
    DescriptorTest() { openSession(); }

    /// Lists a host with this descriptor alone, its block between a fill and a guard page.
    unsigned long list(const MofObject& only) {
        host->removeInstances(kWmi, kDescriptorClass);
        host.add(only);
        const AllocationScope scope;
        scope->fillBlocks(0x5A);
        scope->guardBlocks(blockSize(0));
        return DSMGetMpioDescr(record.get());
    }
    /// The device name that the library makes of a text.
    std::wstring deviceName(const std::wstring& text) {
        EXPECT_EQ(list(descriptor(text, {path(1)})), DSM_SUCCESS);
        return storedName();
    }
    std::wstring deviceNameOf(const Value& value) {
        host->clearFaults();
        host.replaceValue(kDescriptorClass, L"DeviceName", value);
        EXPECT_EQ(list(descriptor(L"disk", {path(1)})), DSM_SUCCESS);
        return storedName();
    }
    /// The paths of the descriptor up to the end of its block.
    const _PDO_INFORMATION* paths() const { return record.at(0).PdoInformation; }

    DescriptorRecord record{1};

  private:
    std::wstring storedName() {
        const std::wstring name = fieldText(record.at(0).DeviceName);
        EXPECT_EQ(paths()[0].PathIdentifier, 1u) << "what follows the name is whole";
        EXPECT_TRUE(std::all_of(record.at(0).DeviceName + name.size(),
                                std::end(record.at(0).DeviceName),
                                [](wchar_t character) { return character == L'\0'; }));
        record.free(1);
        return name;
    }
};

bool isZero(const _PDO_INFORMATION& entry) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&entry);
    return std::all_of(bytes, bytes + sizeof entry, [](unsigned char byte) { return byte == 0; });
}

// ---- The block

TEST_F(DescriptorTest, BlockHasRoomForOnePathMoreThanTheCount) {
    host.add(descriptor(L"disk", {path(1), path(2)}));
    const AllocationScope scope;
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_SUCCESS);
    EXPECT_EQ(scope->requests(200 + 64 * 2), 1u);
}

TEST_F(DescriptorTest, BlockIsZeroWhereNothingIsStored) {
    ASSERT_EQ(list(descriptor(L"disk", {path(1), path(2)})), DSM_SUCCESS);
    EXPECT_EQ(record.at(0).NumberPdos, 2u);
    EXPECT_EQ(paths()[1].PathIdentifier, 2u);
    EXPECT_TRUE(isZero(paths()[2]));
}

TEST_F(DescriptorTest, CountIsThePropertyNotTheArray) {
    ASSERT_EQ(list(descriptor(L"disk", {path(1)}).number(L"NumberPdos", 3)), DSM_SUCCESS);
    EXPECT_EQ(record.at(0).NumberPdos, 3u);
    EXPECT_EQ(paths()[0].PathIdentifier, 1u);
    for (std::size_t i = 1; i <= 3; ++i) EXPECT_TRUE(isZero(paths()[i])) << "path " << i;
    EXPECT_THAT(log.lines(), ElementsAre(kEndOfList));
}

TEST_F(DescriptorTest, PathsBeyondTheBlocksRoomAreReleasedUnread) {
    const LiveObjectsCheck live(host);
    ASSERT_EQ(
        list(descriptor(L"disk", {path(1), path(2), path(3), path(4)}).number(L"NumberPdos", 1)),
        DSM_SUCCESS);
    EXPECT_EQ(record.at(0).NumberPdos, 1u);
    EXPECT_EQ(paths()[0].PathIdentifier, 1u);
    EXPECT_EQ(paths()[1].PathIdentifier, 2u);
    EXPECT_EQ(countCalls(L"Get PDO_INFORMATION.PathIdentifier"), 2u);
}

TEST_F(DescriptorTest, CountOfZeroTakesOnePath) {
    ASSERT_EQ(list(descriptor(L"disk", {path(1), path(2)}).number(L"NumberPdos", 0)), DSM_SUCCESS);
    EXPECT_EQ(record.at(0).NumberPdos, 0u);
    EXPECT_EQ(paths()[0].PathIdentifier, 1u);
    EXPECT_EQ(countCalls(L"Get PDO_INFORMATION.PathIdentifier"), 1u);
}

TEST_F(DescriptorTest, CountWithoutValueIsZero) {
    ASSERT_EQ(list(descriptor(L"disk", {path(1)}).null(L"NumberPdos")), DSM_SUCCESS);
    EXPECT_EQ(record.at(0).NumberPdos, 0u);
    EXPECT_EQ(paths()[0].PathIdentifier, 1u);
}

TEST_F(DescriptorTest, CountIsReadAgainButTheRoomStays) {
    host.replaceValue(kDescriptorClass, L"NumberPdos", Value::number(9), 2, 1);
    ASSERT_EQ(list(descriptor(L"disk", {path(1), path(2), path(3)}).number(L"NumberPdos", 1)),
              DSM_SUCCESS);
    EXPECT_EQ(record.at(0).NumberPdos, 9u);
    EXPECT_EQ(countCalls(L"Get PDO_INFORMATION.PathIdentifier"), 2u);
}

TEST_F(DescriptorTest, PathsBeyondAThousandAreNotFetched) {
    std::vector<MofObject> many;
    for (std::size_t i = 0; i < kMaximumPaths + 5; ++i) many.push_back(path(i + 1));
    const LiveObjectsCheck live(host);
    ASSERT_EQ(list(descriptor(L"disk", many)), DSM_SUCCESS);
    EXPECT_EQ(record.at(0).NumberPdos, kMaximumPaths + 5);
    EXPECT_EQ(paths()[kMaximumPaths - 1].PathIdentifier, kMaximumPaths);
    for (std::size_t i = kMaximumPaths; i <= kMaximumPaths + 5; ++i) {
        EXPECT_TRUE(isZero(paths()[i])) << "path " << i;
    }
    EXPECT_EQ(countCalls(L"Get PDO_INFORMATION.PathIdentifier"), kMaximumPaths);
    EXPECT_THAT(log.lines(), ElementsAre(kEndOfList));
}

// ---- DeviceName

TEST_F(DescriptorTest, DeviceNameKeepsItsQuotes) {
    EXPECT_EQ(deviceName(L"\\Device\\MPIODisk0"), L"\"\\Device\\MPIODisk0\"");
    EXPECT_EQ(deviceName(L"a \"quoted\" name"), L"\"a \"quoted\" name\"");
    EXPECT_EQ(deviceName(L""), L"\"\"");
}

TEST_F(DescriptorTest, DeviceNameThatFillsTheFieldHasNoTerminator) {
    EXPECT_EQ(deviceName(std::wstring(61, L'd')), L'"' + std::wstring(61, L'd') + L'"');
    EXPECT_EQ(deviceName(std::wstring(62, L'd')), L'"' + std::wstring(62, L'd') + L'"');
}

TEST_F(DescriptorTest, LongerDeviceNameLosesItsEnd) {
    for (const std::size_t length : {63u, 64u, 65u, 5000u}) {
        EXPECT_EQ(deviceName(std::wstring(length, L'd')), L'"' + std::wstring(63, L'd'));
    }
}

TEST_F(DescriptorTest, DeviceNameThatIsNoTextBecomesItsText) {
    EXPECT_EQ(deviceNameOf(Value::null()), L"<null>");
    EXPECT_EQ(deviceNameOf(Value::number(26)), L"26 (0x1A)");
    EXPECT_EQ(deviceNameOf(Value::boolean(true)), L"TRUE");
    EXPECT_EQ(deviceNameOf(Value::characters({1, -2})), L"1,-2");
    EXPECT_EQ(deviceNameOf(Value()), L"Invalid Entry");
    EXPECT_EQ(deviceNameOf(Value::array(VT_UI1, 3)), L"") << "byte arrays have no text";
    EXPECT_EQ(deviceNameOf(Value::characters(std::vector<SHORT>(500, 7))).size(), 64u);
}

// ---- Failures

TEST_F(DescriptorTest, UnreadableCountIsAParsingError) {
    host.failGet(kDescriptorClass, L"NumberPdos", E_FAIL, 2, 1);
    EXPECT_EQ(list(descriptor(L"disk", {path(1)})), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParseMpioDescr::Get(NumberPdos)", 0x80004005}, kParseFailed));
    EXPECT_EQ(countCalls(L"Get MPIO_GET_DESCRIPTOR.DeviceName"), 0u);
}

TEST_F(DescriptorTest, UnreadableDeviceNameIsAParsingError) {
    host.failGet(kDescriptorClass, L"DeviceName", E_FAIL);
    EXPECT_EQ(list(descriptor(L"disk", {path(1)})), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParseMpioDescr::Get(DeviceName)", 0x80004005}, kParseFailed));
    EXPECT_EQ(countCalls(L"Get MPIO_GET_DESCRIPTOR.PdoInformation"), 0u);
}

TEST_F(DescriptorTest, UnreadablePathsAreAParsingError) {
    host.failGet(kDescriptorClass, L"PdoInformation", E_FAIL);
    EXPECT_EQ(list(descriptor(L"disk", {path(1)})), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"ParseMpioDescr::Get(PdoInformation)", 0x80004005},
                                         kParseFailed));
}

TEST_F(DescriptorTest, PathsOfAnotherTypeAreAWmiFailure) {
    host.add(descriptor(L"other", {path(1)}));
    const Value array = Value::ofProperty(kDescriptorClass, L"PdoInformation");
    std::vector<Value> values;
    values.push_back(Value());
    values.push_back(Value::null());
    values.push_back(Value::number(1));
    values.push_back(Value::text(L"paths"));
    values.push_back(Value::object(elementOf(array, 0)));
    values.push_back(Value::array(VT_BSTR, 2));
    values.push_back(Value::array(VT_DISPATCH, 2));
    values.push_back(Value::array(VT_VARIANT, 2));
    for (const Value& value : values) {
        SCOPED_TRACE(value.get().vt);
        host->clearFaults();
        host.replaceValue(kDescriptorClass, L"PdoInformation", value);
        const LiveObjectsCheck live(host, {.objects = 1});
        EXPECT_EQ(list(descriptor(L"disk", {path(1)})), DSM_WMI_FAILURE);
        EXPECT_EQ(record.count(), 0xFFFFFFFFu);
        EXPECT_THAT(log.take(), ElementsAre(kParseFailed));
    }
}

TEST_F(DescriptorTest, EmptyArrayIsAParsingError) {
    host.replaceValue(kDescriptorClass, L"PdoInformation", Value::objects({}));
    EXPECT_EQ(list(descriptor(L"disk", {path(1)})), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(kParseFailed));
}

}  // namespace
}  // namespace quista::test
