// Every WMI call of the exports fails in turn, with results of all kinds: whatever is not S_OK is a
// failure, and each leaves the lines, status and objects of its step.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/each_call_fails.h"

namespace quista::test {
namespace {

class FailingCallsTest : public EachCallFailsTest {
  protected:
    FailingCallsTest() {
        host.add(diskInfo({drive(L"s-1"), drive(L"s-2")}));
        host.add(descriptor(L"disk0", {path(1), path(2)}));
        host.add(descriptor(L"disk1", {path(3), path(4)}));
        openSession();
    }
};

/// The property of a call such as "Get MPIO_DRIVE_INFO.SerialNumber".
std::string propertyOf(const std::wstring& call) {
    const std::wstring property = call.substr(call.find(L'.') + 1);
    return {property.begin(), property.end()};
}

Outcome afterFailureInCount(const std::wstring& call, unsigned) {
    const LogLine next{"ParseDisksInfo: IEnumWbemClassObject::Next", kResult};
    if (call.starts_with(L"CreateInstanceEnum")) {
        return {
            DSM_WMI_FAILURE, {{"DSMGetNumberMpioLUNs:CreateInstanceEnum(DSM_DISKS)", kResult}}, {}};
    }
    if (call.starts_with(L"Next")) return {DSM_WMI_PARSING_ERROR, {next}, {}};
    return {DSM_WMI_PARSING_ERROR,
            {{"DSMGetNumberMpioLUNs::Get(NumberDisks)", kResult}, {next.place, kEnd}},
            {}};
}

Outcome afterFailureInDiskList(const std::wstring& call, unsigned) {
    const LogLine failed{"DSMGetAllLuns", DSM_WMI_PARSING_ERROR};
    const std::string next = "ParseDisksInfo: IEnumWbemClassObject::Next";
    if (call.starts_with(L"CreateInstanceEnum")) {
        return {DSM_WMI_FAILURE,
                {{"ParseDisksInfo:CreateInstanceEnum(DSM_DISKS)", kResult}, failed},
                {}};
    }
    if (call.starts_with(L"Next")) return {DSM_WMI_PARSING_ERROR, {{next, kResult}, failed}, {}};
    const std::string property = propertyOf(call);
    if (property == "DsmName") return {};
    if (call == L"QueryInterface MPIO_DRIVE_INFO") {
        return {
            DSM_WMI_PARSING_ERROR, {{"ParseLunInfo::Get(SerialNumber)", kNoObject}, failed}, {}};
    }
    if (property == "NumberDrives") {
        return {DSM_WMI_PARSING_ERROR,
                {{"ParseDisksInfo::Get(NumberDisks)", kResult}, {next, kEnd}, failed},
                {}};
    }
    if (property == "DriveInfo") {
        return {DSM_WMI_PARSING_ERROR,
                {{"ParseDisksInfo::Get(LunInfo)", kResult}, {next, kEnd}, failed},
                {.objects = 1}};
    }
    return {DSM_WMI_PARSING_ERROR, {{"ParseLunInfo::Get(" + property + ")", kResult}, failed}, {}};
}

Outcome afterFailureInDescriptorList(const std::wstring& call, unsigned occurrence) {
    if (call.starts_with(L"CreateInstanceEnum")) {
        return {DSM_WMI_FAILURE, {{"DSMGetMpioDescr:CreateInstanceEnum", kResult}}, {}};
    }
    if (call.starts_with(L"Next")) {
        return {occurrence == 1 ? DSM_WMI_FAILURE : DSM_SUCCESS,
                {{"DSMGetMpioDescr: IEnumWbemClassObject::Next", kResult}},
                {}};
    }
    const std::string property = propertyOf(call);
    // Read twice per descriptor: for the size of its block, then for the record.
    if (property == "NumberPdos" && occurrence % 2 == 1) {
        return {DSM_WMI_FAILURE,
                {{"DSMGetMpioDescr", DSM_NO_MPIO_PATHS}},
                {.enumerators = 1, .objects = 1}};
    }
    const auto parsingError = [](const std::string& place, unsigned long code) -> Outcome {
        return {DSM_WMI_PARSING_ERROR,
                {{place, code}, {"DSMGetMpioDescr", DSM_NO_MEMORY}},
                {.objects = 1}};
    };
    if (call == L"QueryInterface PDO_INFORMATION") {
        return parsingError("ParsePdoInfo::Get(PathIdentifier)", kNoObject);
    }
    if (call == L"QueryInterface PDOSCSI_ADDR") {
        return parsingError("ParsePdoInfo::Get(ScsiAddress)", kNoObject);
    }
    const bool ofDescriptor = call.starts_with(L"Get MPIO_GET_DESCRIPTOR");
    const std::string parser = ofDescriptor ? "ParseMpioDescr::Get(" : "ParsePdoInfo::Get(";
    return parsingError(parser + property + ")", kResult);
}

TEST_F(FailingCallsTest, Count) {
    failEachCall(
        [] {
            unsigned long count = 0;
            return DSMGetNumberMpioLUNs(&count);
        },
        afterFailureInCount);
}

TEST_F(FailingCallsTest, DiskList) {
    failEachCall(
        [] {
            const DiskRecord record(2);
            return DSMGetAllLunsEx(record.get());
        },
        afterFailureInDiskList);
}

TEST_F(FailingCallsTest, DescriptorList) {
    failEachCall(
        [] {
            const DescriptorRecord record(2);
            return DSMGetMpioDescr(record.get());
        },
        afterFailureInDescriptorList);
}

/// A call that claims success and delivers nothing is a failure for want of an object.
TEST_F(FailingCallsTest, SuccessWithoutEnumerator) {
    host.failEnumeration(kDiskClass, S_OK);
    const LiveObjectsCheck live(host);
    const DiskRecord record(2);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_FAILURE);
    EXPECT_THAT(log.lines(), testing::ElementsAre(
                                 LogLine{"ParseDisksInfo:CreateInstanceEnum(DSM_DISKS)", kNoObject},
                                 LogLine{"DSMGetAllLuns", DSM_WMI_PARSING_ERROR}));
}

TEST_F(FailingCallsTest, SuccessWithoutInstance) {
    host.failNext(kDescriptorClass, S_OK);
    const LiveObjectsCheck live(host);
    const DescriptorRecord record(2);
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_FAILURE);
    EXPECT_EQ(record.count(), 0u);
    EXPECT_THAT(log.lines(), testing::ElementsAre(LogLine{
                                 "DSMGetMpioDescr: IEnumWbemClassObject::Next", kNoObject}));
}

}  // namespace
}  // namespace quista::test
