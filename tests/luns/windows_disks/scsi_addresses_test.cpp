// The SCSI addresses of a LUN's paths, by its serial number.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quista/status.h"
#include "tests/luns/instance_lookup.h"
#include "tests/luns/luns_test.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

using Quad = std::vector<unsigned>;

constexpr std::size_t addressBlockSize(std::size_t paths) {
    return 8 + 4 * paths;
}

MofObject pathAt(std::int32_t dsmId, unsigned port, unsigned bus, unsigned target, unsigned lun) {
    return fibreChannelPath(dsmId).object(L"ScsiAddress", MofObject(kAddressClass)
                                                              .number(L"PortNumber", port)
                                                              .number(L"ScsiPathId", bus)
                                                              .number(L"TargetId", target)
                                                              .number(L"Lun", lun));
}

class ScsiAddressesTest : public LunsTest {
  protected:
    PDO_SCSI_ADDRESS* const untouched = reinterpret_cast<PDO_SCSI_ADDRESS*>(0x1234);
    PDO_SCSI_ADDRESS* addresses = untouched;

    ~ScsiAddressesTest() override { free(); }

    unsigned long get(std::wstring serial) { return get_scsi_addresses(serial.data(), &addresses); }
    void free() {
        if (addresses != untouched) CoTaskMemFree(addresses);
        addresses = untouched;
    }
    Quad at(std::size_t index) const {
        const _MPIO_SCSI_ADDRESS& address = addresses->ScsiAddress[index];
        return {address.PortNumber, address.ScsiPathId, address.TargetId, address.Lun};
    }
};

TEST_F(ScsiAddressesTest, AddressesComeInTheOrderOfThePaths) {
    openWith({lunWith(
        L"S1", {pathAt(1, 9, 8, 7, 6), pathAt(2, 1, 2, 3, 4), pathAt(3, 255, 254, 253, 252)})});
    const LiveObjectsCheck live(host);
    ASSERT_EQ(get(L"S1"), DSM_SUCCESS);
    EXPECT_EQ(addresses->NumberPdos, 3u);
    EXPECT_EQ(at(0), (Quad{9, 8, 7, 6}));
    EXPECT_EQ(at(1), (Quad{1, 2, 3, 4}));
    EXPECT_EQ(at(2), (Quad{255, 254, 253, 252}));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ScsiAddressesTest, LunIsFoundBySerialNumber) {
    openWith({lunWith(L"S1", {pathAt(1, 1, 1, 1, 1)}), lunWith(L"S2", {pathAt(2, 2, 2, 2, 2)})});
    ASSERT_EQ(get(L"S2"), DSM_SUCCESS);
    EXPECT_EQ(at(0), (Quad{2, 2, 2, 2}));
}

TEST_F(ScsiAddressesTest, BlockIsSizedByThePathsAndTheDescriptorKept) {
    for (const std::size_t paths : {0u, 1u, 5u, 32u}) {
        std::vector<MofObject> list;
        for (std::size_t i = 0; i < paths; ++i)
            list.push_back(pathAt(static_cast<int>(i), 1, 2, 3, 4));
        host->removeInstances(kWmi, kLunClass);
        openWith({lunWith(L"S1", list)});
        const AllocationScope allocations;
        allocations->guardBlocks(addressBlockSize(paths), addressBlockSize(paths));
        ASSERT_EQ(get(L"S1"), DSM_SUCCESS);
        EXPECT_EQ(addresses->NumberPdos, paths);
        EXPECT_THAT(allocations.survivors(), Contains(addressBlockSize(paths)));
        free();
        EXPECT_THAT(allocations.survivors(), testing::ElementsAre(descriptorBlockSize(paths)));
    }
}

TEST_F(ScsiAddressesTest, EntriesBeyondThePathsAreZero) {
    openWith({lunWith(L"S1", {pathAt(1, 9, 8, 7, 6)}).number(L"NumberOfPaths", 3)});
    ASSERT_EQ(get(L"S1"), DSM_SUCCESS);
    EXPECT_EQ(addresses->NumberPdos, 3u);
    EXPECT_EQ(at(0), (Quad{9, 8, 7, 6}));
    EXPECT_EQ(at(1), (Quad{0, 0, 0, 0}));
    EXPECT_EQ(at(2), (Quad{0, 0, 0, 0}));
}

TEST_F(ScsiAddressesTest, CountBelowThePathsLimitsThem) {
    openWith({lunWith(L"S1", {pathAt(1, 1, 1, 1, 1), pathAt(2, 2, 2, 2, 2), pathAt(3, 3, 3, 3, 3)})
                  .number(L"NumberOfPaths", 1)});
    const AllocationScope allocations;
    allocations->guardBlocks(addressBlockSize(1), addressBlockSize(1));
    ASSERT_EQ(get(L"S1"), DSM_SUCCESS);
    EXPECT_EQ(addresses->NumberPdos, 1u);
    EXPECT_EQ(at(0), (Quad{1, 1, 1, 1}));
}

TEST_F(ScsiAddressesTest, StatusOfTheLookupIsPassedOn) {
    EXPECT_EQ(get(L"S1"), DSM_SERIAL_NOT_FOUND) << "no session";
    openWith({lunWith(L"S1", {pathAt(1, 1, 1, 1, 1)})});
    EXPECT_EQ(get(L"S2"), DSM_SERIAL_NOT_FOUND);
    EXPECT_THAT(log.take(),
                Contains(LogLine{"KORVA_GetInstance_for_Serial: IEnumWbemClassObject::Next", 1}));
    const AllocationScope allocations;
    allocations->failBlocks(2048, 1, 1);
    EXPECT_EQ(get(L"S1"), DSM_NO_MEMORY);
    EXPECT_THAT(log.take(), Contains(LogLine{"KORVA_GetInstance_for_Serial", DSM_NO_MEMORY}));
    EXPECT_EQ(addresses, untouched);
}

TEST_F(ScsiAddressesTest, NoDescriptorHasATextOfItsOwn) {
    openWith({lunWith(L"S1", {pathAt(1, 1, 1, 1, 1)})});
    {
        const AllocationScope allocations;
        allocations->failBlocks(descriptorBlockSize(1), 1, 1);
        EXPECT_EQ(get(L"S1"), DSM_NULL_MPIO_DESCRIPTOR);
    }
    EXPECT_EQ(log.take().back(), (LogLine{"get_iscsi_addresses", DSM_NULL_MPIO_DESCRIPTOR}));
    host.failGet(kLunClass, L"NumberOfPaths", resultOf(0x80041002));
    EXPECT_EQ(get(L"S1"), DSM_NULL_MPIO_DESCRIPTOR);
    EXPECT_EQ(log.take(), (LogLines{{"IWbemClassObject::Get(NumberPdos)", 0x80041002},
                                    {"get_iscsi_addresses", DSM_NULL_MPIO_DESCRIPTOR}}));
    EXPECT_EQ(addresses, untouched);
}

TEST_F(ScsiAddressesTest, WithoutMemoryForTheBlockNothingIsWritten) {
    openWith({lunWith(L"S1", std::vector<MofObject>(20, pathAt(1, 1, 1, 1, 1)))});
    const AllocationScope allocations;
    allocations->failBlocks(addressBlockSize(20));
    EXPECT_EQ(get(L"S1"), DSM_NO_MEMORY);
    EXPECT_EQ(addresses, untouched);
    EXPECT_THAT(log.lines(), IsEmpty());
}

/// The lookup's status does not depend on the descriptor's parser: what was filled is handed out.
TEST_F(ScsiAddressesTest, FailedPathLeavesTheAddressesBeforeIt) {
    openWith({lunWith(L"S1", {pathAt(1, 1, 1, 1, 1), pathAt(2, 2, 2, 2, 2)})});
    host.failGet(kAddressClass, L"TargetId", resultOf(0x80041002), 2, 1);
    ASSERT_EQ(get(L"S1"), DSM_SUCCESS);
    EXPECT_EQ(addresses->NumberPdos, 2u);
    EXPECT_EQ(at(0), (Quad{1, 1, 1, 1}));
    EXPECT_EQ(at(1), (Quad{2, 2, 0, 0}));
}

/// Every call but those that find the LUN may fail without harm to the status.
TEST_F(ScsiAddressesTest, EveryCallFailsInTurn) {
    openWith({lunWith(L"S1", {pathAt(1, 1, 1, 1, 1), pathAt(2, 2, 2, 2, 2)})});
    ASSERT_EQ(get(L"S1"), DSM_SUCCESS);
    const std::vector<simulator::CallRecord> clean = host->trace();
    ASSERT_GT(clean.size(), 20u);
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const simulator::CallRecord& call = clean[i];
        const bool isGet = call.method == L"Get";
        const auto end = clean.begin() + static_cast<std::ptrdiff_t>(i) + 1;
        const auto occurrence = static_cast<unsigned>(
            std::count_if(clean.begin(), end, [&](const simulator::CallRecord& other) {
                return other.method == call.method && other.className == call.className &&
                       other.detail == call.detail;
            }));
        unsigned long expected = DSM_SUCCESS;
        if (call.method == L"ExecQuery" || call.method == L"Next" ||
            call.detail == L"InstanceName") {
            expected = DSM_SERIAL_NOT_FOUND;
        } else if (call.detail == L"NumberOfPaths") {
            expected = DSM_NULL_MPIO_DESCRIPTOR;
        }
        for (const unsigned long result : kFailures) {
            SCOPED_TRACE(testing::Message() << i << " gives 0x" << std::hex << result);
            free();
            host->clearFaults();
            host.fail(call.interfaceName, call.method, resultOf(result), call.className,
                      isGet ? call.detail : L"", occurrence, 1);
            const LiveObjectsCheck live(host);
            EXPECT_EQ(get(L"S1"), expected) << testing::PrintToString(call.detail);
            EXPECT_EQ(addresses == untouched, expected != DSM_SUCCESS);
        }
    }
}

}  // namespace
}  // namespace quista::test
