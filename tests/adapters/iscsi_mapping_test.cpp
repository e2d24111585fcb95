// Which target mapping carries a path, and what the adapter is called.
#include "tests/adapters/iscsi_adapter_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

constexpr const wchar_t* kAddress = L"192.168.10.20";
const FoundSession kFound{0, "192.168.10.20", "initiator"};
const FoundSession kUnmatched{0, kUntouched, kUntouched};

class IscsiMappingTest : public IscsiAdapterTest {
  protected:
    IscsiMappingTest() = default;

    FoundSession findDevice(const std::wstring& osDeviceName, unsigned port = 3) {
        IscsiMapping path = mapping();
        path.osDeviceName = osDeviceName;
        setPath(path, {kAddress});
        return findSession(port);
    }
    std::string nameOf(const std::wstring& initiator) {
        setPath(mapping(initiator), {kAddress});
        return findSession().name;
    }
};

TEST_F(IscsiMappingTest, SizesFirstThenRecords) {
    setPath(mapping(), {kAddress});
    EXPECT_EQ(findSession(), kFound);
    const std::vector<std::string> calls = library->calls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[0], "ReportActiveIScsiTargetMappingsW sizing");
    EXPECT_THAT(calls[1], testing::StartsWith("ReportActiveIScsiTargetMappingsW size 1520 "));
    EXPECT_EQ(calls[2], "GetIScsiSessionListW sizing");
    EXPECT_THAT(calls[3], testing::StartsWith("GetIScsiSessionListW size 4160 "));
    EXPECT_FALSE(log.exists());
}

TEST_F(IscsiMappingTest, DeviceNames) {
    for (const wchar_t* name :
         {L"\\\\.\\scsi3:", L"\\\\.\\SCSI3:", L"\\\\.\\Scsi3:", L"\\.\\scsi3:", L"\\.\\SCSI3:",
          L"\\\\.\\scsi003:", L"\\\\.\\scsi3:rest"}) {
        EXPECT_EQ(findDevice(name), kFound) << testing::PrintToString(name);
    }
}

/// The colon ends the number and is not required.
TEST_F(IscsiMappingTest, DeviceNamesWithoutColon) {
    for (const wchar_t* name : {L"\\\\.\\scsi3", L"\\\\.\\SCSI3rest", L"\\.\\scsi3 "}) {
        EXPECT_EQ(findDevice(name), kFound) << testing::PrintToString(name);
    }
}

TEST_F(IscsiMappingTest, DeviceNamesOfAnotherForm) {
    for (const wchar_t* name :
         {L"", L"scsi3:", L".\\scsi3:", L"\\\\\\.\\scsi3:", L"\\\\.\\scsi:", L"\\\\.\\scsiport3:",
          L"\\device\\ScsiPort3", L"\\\\.\\scs3:", L"x\\\\.\\scsi3:", L"/.\\scsi3:"}) {
        EXPECT_EQ(findDevice(name), kUnmatched) << testing::PrintToString(name);
    }
}

TEST_F(IscsiMappingTest, WholePortNumber) {
    EXPECT_EQ(findDevice(L"\\\\.\\scsi31:", 3), kUnmatched);
    EXPECT_EQ(findDevice(L"\\\\.\\scsi31:", 31), kFound);
    EXPECT_EQ(findDevice(L"\\\\.\\scsi0:", 0), kFound);
}

/// A device name may fill its field of 260 characters.
TEST_F(IscsiMappingTest, DeviceNameWithoutTerminator) {
    EXPECT_EQ(findDevice(L"\\\\.\\scsi3:" + std::wstring(250, L'9')), kFound);
    EXPECT_EQ(findDevice(L"\\\\.\\scsi" + std::wstring(252, L'0') + L"3"), kUnmatched);
}

TEST_F(IscsiMappingTest, AllThreeNumbersCount) {
    setPath(mapping(), {kAddress});
    EXPECT_EQ(findSession(3, 0, 1), kFound);
    EXPECT_EQ(findSession(4, 0, 1), kUnmatched);
    EXPECT_EQ(findSession(3, 1, 1), kUnmatched);
    EXPECT_EQ(findSession(3, 0, 0), kUnmatched);
}

TEST_F(IscsiMappingTest, UnreadableMappingsAreSkipped) {
    IscsiMapping strange = mapping(L"strange", {9, 9});
    strange.osDeviceName = L"\\device\\ScsiPort3";
    IscsiMapping other = mapping(L"other", {8, 8});
    other.osDeviceName = L"\\\\.\\scsi4:";
    library->setMappings({strange, other, mapping()});
    library->setSessions({{{9, 9}, {L"1.1.1.1"}}, {{1, 2}, {kAddress}}});
    EXPECT_EQ(findSession(), kFound);
}

TEST_F(IscsiMappingTest, FirstMatchingMapping) {
    library->setMappings({mapping(), mapping(L"second", {5, 6})});
    library->setSessions({{{5, 6}, {L"10.0.0.1"}}, {{1, 2}, {kAddress}}});
    EXPECT_EQ(findSession(), kFound);
}

// ---- The adapter's name

TEST_F(IscsiMappingTest, SoftwareInitiator) {
    for (const wchar_t* name :
         {L"Root\\SCSIADAPTER\\0000_0", L"Root\\ISCSIPRT\\0000_0", L"ROOT\\ISCSIPRT\\0000_0"}) {
        debug.clear();
        EXPECT_EQ(nameOf(name), "MS-iSCSI-Initiator-0000_0");
        EXPECT_THAT(debug.texts(), ElementsAre(name, L"MS-iSCSI-Initiator-0000_0"));
    }
}

/// Only those three spellings are the software initiator's.
TEST_F(IscsiMappingTest, OtherInitiators) {
    EXPECT_EQ(nameOf(L"ROOT\\SCSIADAPTER\\0000_0"), "ROOT\\SCSIADAPTER\\0000_0");
    EXPECT_EQ(nameOf(L"root\\iscsiprt\\0000_0"), "root\\iscsiprt\\0000_0");
    EXPECT_EQ(nameOf(L"Root\\ISCSIPRT\\0000_1"), "Root\\ISCSIPRT\\0000_1");
    EXPECT_EQ(nameOf(L"Root\\ISCSIPRT\\0000_0 "), "Root\\ISCSIPRT\\0000_0 ");
    EXPECT_EQ(nameOf(L"PCI\\VEN_1077&DEV_4022_0"), "PCI\\VEN_1077&DEV_4022_0");
}

TEST_F(IscsiMappingTest, InitiatorNames) {
    EXPECT_EQ(nameOf(L""), kUntouched);
    EXPECT_EQ(nameOf(L"Gr\u00F6\u00DFe"),
              "Gr\xF6\xDF"
              "e");
    EXPECT_EQ(nameOf(L"\u65E5"), "?");
    EXPECT_EQ(nameOf(std::wstring(255, L'i')), std::string(255, 'i'));
    // A name that fills its field loses its last character.
    EXPECT_EQ(nameOf(std::wstring(256, L'i')), std::string(255, 'i'));
    EXPECT_EQ(debug.texts().back(), std::wstring(255, L'i'));
}

/// Without a mapping the initiator is unknown, and no session is looked for.
TEST_F(IscsiMappingTest, NoMatch) {
    setPath(mapping(L"initiator", {0, 0}), {kAddress});
    EXPECT_EQ(findSession(9), kUnmatched);
    EXPECT_THAT(debug.texts(), ElementsAre(L"", L""));
    EXPECT_EQ(library->calls().size(), 4u);
    EXPECT_FALSE(log.exists());
}

}  // namespace
}  // namespace quista::test
