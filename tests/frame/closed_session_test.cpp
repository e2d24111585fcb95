// Without an open session every call answers as if WMI had answered 0x80004003, and none crashes.
#include "quista/luns.h"
#include "quista/mpio.h"
#include "tests/frame/session_test.h"
#include "tests/support/guarded_buffer.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

constexpr unsigned long kNoSession = static_cast<unsigned long>(E_POINTER);

class ClosedSessionTest : public testing::Test {
  protected:
    ClosedSessionTest() { EXPECT_EQ(DSMUninitialize(), 0u); }

    LocalMachine machine;
    WorkFolder folder;
    LogFile log;
    wchar_t serial[10] = L"SN0001";
};

TEST_F(ClosedSessionTest, CheckForKORVADSMClasses) {
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), DSM_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"DSMCheckForKORVADSMLUNINFO()", kNoSession}));
}

TEST_F(ClosedSessionTest, GetNumberMpioLUNs) {
    unsigned long count = 77;
    EXPECT_EQ(DSMGetNumberMpioLUNs(&count), DSM_WMI_FAILURE);
    EXPECT_EQ(count, 77u);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(LogLine{"DSMGetNumberMpioLUNs:CreateInstanceEnum(DSM_DISKS)", kNoSession}));
}

TEST_F(ClosedSessionTest, GetAllLunsEx) {
    const GuardedBuffer disks(sizeof(_DSM_DISKS));
    EXPECT_EQ(DSMGetAllLunsEx(disks.as<_DSM_DISKS>()), DSM_WMI_FAILURE);
    EXPECT_TRUE(disks.untouched());
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParseDisksInfo:CreateInstanceEnum(DSM_DISKS)", kNoSession},
                            LogLine{"DSMGetAllLuns", 15}));
}

TEST_F(ClosedSessionTest, GetMpioDescr) {
    _MPIO_DESCRIPTOR_LIST list{77, {nullptr}};
    EXPECT_EQ(DSMGetMpioDescr(&list), DSM_WMI_FAILURE);
    EXPECT_EQ(list.NumberDescriptors, 0u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetMpioDescr:CreateInstanceEnum", kNoSession}));
}

TEST_F(ClosedSessionTest, KorvaGetAllLunsEx) {
    const GuardedBuffer disks(sizeof(_KORVADSM_DISKS));
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.as<_KORVADSM_DISKS>()), DSM_WMI_FAILURE);
    EXPECT_EQ(disks.as<_KORVADSM_DISKS>()->NumberDisks, 0u);
    EXPECT_TRUE(disks.untouched(4, disks.size() - 4));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"CreateInstanceEnum(KORVADSM_DISKS)", kNoSession}));
}

TEST_F(ClosedSessionTest, CallGetDiskInfo) {
    _KORVADSM_DISKINFO* disk = nullptr;
    EXPECT_EQ(CallGetDiskInfoKORVA(serial, &disk), DSM_SERIAL_NOT_FOUND);
    EXPECT_EQ(disk, nullptr);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(ClosedSessionTest, GetDiskInfo) {
    _KORVADSM_DISKINFO unused{};
    _KORVADSM_DISKINFO* disk = &unused;
    EXPECT_EQ(DSMGetDiskInfoKORVA(serial, &disk), DSM_SERIAL_NOT_FOUND);
    EXPECT_EQ(disk, nullptr);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(ClosedSessionTest, GetAllDiskInfoEx) {
    std::list<IWbemClassObject*> luns;
    long count = 77;
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(luns, count), DSM_WMI_FAILURE);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(luns.empty());
    EXPECT_THAT(
        log.lines(),
        ElementsAre(LogLine{"KORVADSMGetAllDiskInfoEx : ExecQuery(SELECT * FROM KORVADSM_LUNINFO)",
                            kNoSession}));
}

TEST_F(ClosedSessionTest, GetNoPaths) {
    int paths = 77;
    EXPECT_EQ(DSMGetNoPaths(serial, &paths), DSM_ERROR);
    EXPECT_EQ(paths, 77);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(ClosedSessionTest, GetInstanceForSerial) {
    const GuardedBuffer name(260 * sizeof(wchar_t));
    _MPIO_GET_DESCRIPTOR* descriptor = nullptr;
    _DSM_LOAD_BALANCE_TYPE policy{77};
    EXPECT_EQ(
        KORVA_GetInstance_for_Serial(serial, name.as<wchar_t>(), &descriptor, &policy, nullptr),
        DSM_SERIAL_NOT_FOUND);
    EXPECT_TRUE(name.untouched());
    EXPECT_EQ(policy.Policy, 77u);
    EXPECT_EQ(descriptor, nullptr);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(ClosedSessionTest, IsLastAvailablePath) {
    int isLast = 77;
    EXPECT_EQ(IsLastAvlblPath(1, &isLast), DSM_ERROR);
    EXPECT_EQ(isLast, 77);
    EXPECT_THAT(log.lines(), ElementsAre());
}

}  // namespace
}  // namespace quista::test
