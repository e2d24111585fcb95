// The stand-ins on the sample hosts: every path of every LUN has an adapter there.
#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include <list>
#include <map>

#include "quista/luns.h"
#include "tests/adapters/fc_adapter_test.h"
#include "tests/adapters/iscsi_adapter_map_test.h"
#include "tests/adapters/iscsi_adapter_test.h"
#include "tests/support/library_test.h"

namespace quista::test {
namespace {

constexpr unsigned kFibreChannel = 1;
constexpr unsigned kIscsi = 2;

class AdaptersOfSampleHostTest : public LibraryTest {
  protected:
    AdaptersOfSampleHostTest() = default;

    void loadHost(const std::wstring& name, bool knowsAdapters = true) {
        host.load(name);
        EXPECT_EQ(fibreChannel->readHost(), knowsAdapters);
        EXPECT_EQ(iscsi->readHost(), knowsAdapters);
        openSession();
    }

    /// The adapter of each path, by port, bus and target. Paths to several LUNs come but once.
    std::map<std::vector<unsigned>, FoundAdapter> adaptersOfPaths() {
        std::map<std::vector<unsigned>, FoundAdapter> adapters;
        std::list<IWbemClassObject*> luns;
        long count = 0;
        EXPECT_EQ(KORVADSMGetAllDiskInfoEx(luns, count), 0u);
        for (IWbemClassObject* lun : luns) {
            _KORVADSM_DISKINFO* disk = nullptr;
            ParseDiskInfoKORVA(lun, &disk);
            lun->Release();
            if (disk == nullptr) continue;
            for (unsigned long i = 0; i < disk->NumberPaths; ++i) {
                const _KORVADSM_PATHINFO& path = disk->Paths[i];
                adapters[{path.PortNumber, path.ScsiPathId, path.TargetId}] = adapterOf(path);
            }
            CoTaskMemFree(disk);
        }
        return adapters;
    }

    HbaLibrary fibreChannel;
    IscsiLibrary iscsi;

  private:
    static FoundAdapter adapterOf(const _KORVADSM_PATHINFO& path) {
        if (path.Protocol == kFibreChannel) {
            return findFcAdapter(path.PortNumber, path.ScsiPathId, path.TargetId);
        }
        EXPECT_EQ(path.Protocol, kIscsi);
        const FoundSession found = findSession(path.PortNumber, path.ScsiPathId, path.TargetId);
        return {static_cast<unsigned long>(found.status), found.address, found.name};
    }
};

TEST_F(AdaptersOfSampleHostTest, Standard) {
    loadHost(L"standard");
    const std::string adapter = "fc-hba-0";
    const std::string initiator = "MS-iSCSI-Initiator-0000_0";
    const FoundAdapter fabricA{0, "21:00:00:24:ff:3c:5a:10", adapter};
    const FoundAdapter fabricB{0, "21:00:00:24:ff:3c:5a:11", adapter};
    const std::map<std::vector<unsigned>, FoundAdapter> expected = {
        {{2, 0, 0}, fabricA},
        {{2, 0, 1}, fabricA},
        {{3, 0, 0}, fabricB},
        {{3, 0, 1}, fabricB},
        {{4, 0, 0}, {0, "192.168.10.101", initiator}},
        {{4, 0, 1}, {0, "192.168.20.101", initiator}},
        {{4, 0, 2}, {0, "fd4b:5600:10::101", initiator}},
        {{4, 0, 3}, {0, "fd4b:5600:10::101", initiator}},
        {{4, 0, 4}, {0, "192.168.10.101", initiator}},
        {{4, 0, 5}, {0, "fd4b:5600:10::101", initiator}}};
    EXPECT_EQ(adaptersOfPaths(), expected);
}

/// The lookup of a path and the list of adapters call the software initiator by the same name.
TEST_F(AdaptersOfSampleHostTest, OneNameForTheInitiator) {
    loadHost(L"standard");
    AdapterMap adapters;
    EXPECT_EQ(adapters.read(), 0u);
    EXPECT_THAT(adapters.descriptions(), testing::ElementsAre(L"MS-iSCSI-Initiator-0000_0"));
    EXPECT_EQ(adapters.at(0).PortalCount, 3u);
    EXPECT_EQ(findSession(4, 0, 0).name, "MS-iSCSI-Initiator-0000_0");
}

/// Failed paths have adapters too.
TEST_F(AdaptersOfSampleHostTest, Degraded) {
    loadHost(L"degraded");
    const auto adapters = adaptersOfPaths();
    EXPECT_EQ(adapters.size(), 16u);
    for (const auto& [path, adapter] : adapters) {
        EXPECT_EQ(adapter.status, 0u);
        EXPECT_NE(adapter.address, path[0] == 4 ? kUntouched : kNothing);
        EXPECT_EQ(adapter.name, path[0] == 4 ? "MS-iSCSI-Initiator-0000_0" : "fc-hba-0");
    }
}

TEST_F(AdaptersOfSampleHostTest, HostsWithoutAdapters) {
    loadHost(L"empty");
    EXPECT_EQ(findFcAdapter(2, 0, 0), (FoundAdapter{kError, kNothing, kNothing}));
    EXPECT_EQ(findSession(4), (FoundSession{kNoMappings, kUntouched, kUntouched}));
}

/// A host on which nothing is installed does not say anything of adapters.
TEST_F(AdaptersOfSampleHostTest, BareHost) {
    loadHost(L"bare", false);
    EXPECT_EQ(findFcAdapter(2, 0, 0), (FoundAdapter{kError, kNothing, kNothing}));
    EXPECT_EQ(findSession(4), (FoundSession{kNoMappings, kUntouched, kUntouched}));
}

/// What was read of one host gives way to the next.
TEST_F(AdaptersOfSampleHostTest, ReadAgain) {
    loadHost(L"standard");
    EXPECT_TRUE(fibreChannel->readHost());
    EXPECT_TRUE(iscsi->readHost());
    EXPECT_EQ(findFcAdapter(3, 0, 1).name, "fc-hba-0");
    host->clear();
    EXPECT_TRUE(fibreChannel->readHost());
    EXPECT_TRUE(iscsi->readHost());
    EXPECT_EQ(findFcAdapter(3, 0, 1).status, kError);
    EXPECT_EQ(findSession(4, 0, 1).status, kNoMappings);
}

TEST(StandinTest, NoHostToRead) {
    const HbaLibrary fibreChannel;
    const IscsiLibrary iscsi;
    EXPECT_FALSE(fibreChannel->readHost());
    EXPECT_FALSE(iscsi->readHost());
}

}  // namespace
}  // namespace quista::test
