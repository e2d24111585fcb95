#include "cli/model.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string_view>

#include "quista/records/lun_records.h"

namespace quista::cli {
namespace {

template <std::size_t Size>
void setText(wchar_t (&field)[Size], std::wstring_view text) {
    std::copy_n(text.begin(), std::min(text.size(), Size), field);
}

// A LUN record with room for `paths` path records, zeroed as the library's blocks are.
class Record {
  public:
    explicit Record(std::size_t paths = 1)
        : block_(std::calloc(1, sizeof(_KORVADSM_DISKINFO) + paths * sizeof(_KORVADSM_PATHINFO)),
                 &std::free) {}

    _KORVADSM_DISKINFO* operator->() const {
        return static_cast<_KORVADSM_DISKINFO*>(block_.get());
    }
    _KORVADSM_PATHINFO& path(std::size_t index) const {
        _KORVADSM_PATHINFO* paths = (*this)->Paths;
        return paths[index];
    }
    Lun lun(unsigned long status = DSM_SUCCESS) const { return lunFrom(*operator->(), status); }

  private:
    std::unique_ptr<void, decltype(&std::free)> block_;
};

TEST(ModelTest, QuotesAreTakenOffNames) {
    Record record;
    setText(record->LunPath, L"\"/vol/db01/lun0\"");
    EXPECT_EQ(record.lun().lunPath, "/vol/db01/lun0");

    _KORVADSM_PATHINFO path{};
    path.Protocol = 1;
    setText(path.TargetAdapterName, L"\"alpha-a:fc0\"");
    EXPECT_EQ(pathFrom(path).targetAdapter, "alpha-a:fc0");
}

TEST(ModelTest, OnlyTheOuterQuotesAreTakenOff) {
    Record record;
    setText(record->LunPath, L"\"\"odd\"name\"\"");
    EXPECT_EQ(record.lun().lunPath, "\"odd\"name\"");
}

TEST(ModelTest, EmptyAndPlaceholderTextsAreNoTexts) {
    Record record;
    setText(record->LunPath, L"\"\"");
    setText(record->FilerName, L"Invalid Entry");
    const Lun lun = record.lun();
    EXPECT_FALSE(lun.lunPath);
    EXPECT_FALSE(lun.storageSystem);
    EXPECT_FALSE(lun.storageVersion);
}

TEST(ModelTest, UnreadableSerialNumberKeepsItsText) {
    Record record;
    setText(record->SerialNumber, L"Invalid Entry");
    EXPECT_FALSE(record.lun().serialNumber);
    EXPECT_EQ(record.lun().serialText, "Invalid Entry");
}

TEST(ModelTest, MissingSerialNumberIsADash) {
    const Record record;
    EXPECT_FALSE(record.lun().serialNumber);
    EXPECT_EQ(record.lun().serialText, "-");
}

TEST(ModelTest, UnterminatedTextsEndAtTheirLimit) {
    Record record;
    const std::wstring text(130, L'x');
    setText(record->FilerName, text);
    setText(record->KORVAVersionString, text);
    setText(record->SerialNumber, text);
    record->LunSize = 0xFFFFFFFFFFFFFFFF;
    const Lun lun = record.lun();
    EXPECT_EQ(lun.storageSystem, std::string(65, 'x'));
    EXPECT_EQ(lun.storageVersion, std::string(65, 'x'));
    EXPECT_EQ(lun.serialNumber, std::string(65, 'x'));
}

TEST(ModelTest, NamesThatFillTheirFieldsEndThere) {
    Record record;
    std::fill(std::begin(record->LunPath), std::end(record->LunPath), L'p');
    std::fill(std::begin(record->InstanceName), std::end(record->InstanceName), L'i');
    EXPECT_EQ(record.lun().lunPath, std::string(257, 'p'));
    EXPECT_EQ(record.lun().instanceName, std::string(256, 'i'));
}

TEST(ModelTest, InstanceNameHasItsBackslashesSingle) {
    Record record;
    setText(record->InstanceName, L"MPIO\\\\Disk&Ven_X\\\\1&7f_0");
    EXPECT_EQ(record.lun().instanceName, "MPIO\\Disk&Ven_X\\1&7f_0");
}

TEST(ModelTest, FibreChannelPathHasWwns) {
    _KORVADSM_PATHINFO record{};
    record.Protocol = 3;  // both bits: filled as Fibre Channel
    record.TargetFcpNodename[0] = 0x50;
    record.TargetFcpPortname[7] = 0x01;
    record.TargetIPv4Address = 1;
    const Path path = pathFrom(record);
    ASSERT_TRUE(path.fc);
    EXPECT_FALSE(path.iscsi);
    EXPECT_EQ(path.fc->nodeName[0], 0x50);
    EXPECT_EQ(path.fc->portName[7], 0x01);
}

TEST(ModelTest, IscsiPathHasIpv4OrIpv6) {
    _KORVADSM_PATHINFO record{};
    record.Protocol = 2;
    record.TargetIPv4Address = 0x150AA8C0;
    record.TargetTCPPortNumber = 3260;
    setText(record.TargetiSCSINodeName, L"\"iqn.2001-04.com.example:beta\"");
    const Path ipv4 = pathFrom(record);
    ASSERT_TRUE(ipv4.iscsi);
    EXPECT_EQ(ipv4.iscsi->address, "192.168.10.21");
    EXPECT_FALSE(ipv4.iscsi->isIpv6);
    EXPECT_EQ(ipv4.iscsi->tcpPort, 3260u);
    EXPECT_EQ(ipv4.iscsi->nodeName, "iqn.2001-04.com.example:beta");

    record.TargetIPv4Address = 0;
    record.TargetIPv6Address[15] = 1;
    EXPECT_EQ(pathFrom(record).iscsi->address, "::1");
    EXPECT_TRUE(pathFrom(record).iscsi->isIpv6);
}

TEST(ModelTest, PathWithoutProtocolHasNoTarget) {
    const Path path = pathFrom(_KORVADSM_PATHINFO{});
    EXPECT_FALSE(path.fc);
    EXPECT_FALSE(path.iscsi);
    EXPECT_FALSE(path.targetAdapter);
}

TEST(ModelTest, StatesOneAndTwoAreAvailable) {
    Path path;
    for (const int state : {0, 1, 2, 3, 4, 255}) {
        path.state = static_cast<std::uint8_t>(state);
        EXPECT_EQ(path.isAvailable(), state == 1 || state == 2) << state;
    }
}

TEST(ModelTest, RecordsThatNothingFilledAreNoPaths) {
    Record record(3);
    record->NumberPaths = 3;
    record.path(0).DsmId = 0x101;
    record.path(1).PathState = 1;  // an identifier of 0 is one, too
    const Lun lun = record.lun();
    EXPECT_EQ(lun.pathsReported, 3u);
    EXPECT_EQ(lun.paths.size(), 2u);
    EXPECT_FALSE(lun.hasAllPaths());
}

// The block has room for the low 8 bits of the count alone, and the one record of the type.
TEST(ModelTest, CountBeyondTheBlockIsNotBelieved) {
    Record record(0);
    record->NumberPaths = 256;
    record.path(0).DsmId = 7;
    const Lun lun = record.lun();
    EXPECT_EQ(lun.pathsReported, 256u);
    ASSERT_EQ(lun.paths.size(), 1u);
    EXPECT_EQ(lun.paths[0].id, 7u);
}

TEST(ModelTest, FailedRecordHasNotAllPaths) {
    const Record record;
    EXPECT_TRUE(record.lun().hasAllPaths());
    EXPECT_FALSE(record.lun(DSM_WMI_FAILURE).hasAllPaths());
}

}  // namespace
}  // namespace quista::cli
