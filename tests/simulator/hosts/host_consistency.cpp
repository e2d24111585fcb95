#include "tests/simulator/hosts/host_consistency.h"

#include <algorithm>
#include <cwctype>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <set>

#include "tests/simulator/hosts/host_records.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {

using simulator::CimInstance;
using simulator::CimInstancePtr;
using simulator::CimProperty;
using simulator::CimValue;
using simulator::Repository;

namespace {

constexpr wchar_t kVendorDsm[] = L"Data KORVA DSM";

/// Calls `visit(instance)` for the instance and for everything embedded in it.
template <class Visitor>
void visitObjects(const CimInstance& instance, const Visitor& visit) {
    visit(instance);
    for (const CimValue& value : instance.values()) {
        if (const CimInstancePtr* object = value.asObject()) visitObjects(**object, visit);
        if (const CimValue::Array* elements = value.asArray()) {
            for (const CimValue& element : *elements) {
                if (const CimInstancePtr* object = element.asObject()) {
                    visitObjects(**object, visit);
                }
            }
        }
    }
}

template <class Visitor>
void visitHost(const Repository& host, const Visitor& visit) {
    for (const std::wstring_view nameSpace : {kWmi, kCimv2}) {
        for (const CimInstancePtr& instance : host.allInstances(nameSpace)) {
            visitObjects(*instance, visit);
        }
    }
}

/// The qualifier names the property that counts the array's elements.
void expectCountMatches(const CimInstance& instance, const CimProperty& property) {
    const simulator::CimQualifier* counter = property.qualifiers.find(L"WmiSizeIs");
    if (counter == nullptr) return;
    const std::wstring* counterName = counter->value.asText();
    ASSERT_NE(counterName, nullptr);
    EXPECT_EQ(numberOf(instance, *counterName), objectsOf(instance, property.name).size())
        << shown(instance.className()) << "." << shown(property.name);
}

void expectTextFits(const CimInstance& instance, const CimProperty& property) {
    const simulator::CimQualifier* limit = property.qualifiers.find(L"MaxLen");
    if (limit == nullptr) return;
    const std::int64_t* length = limit->value.asSigned();
    ASSERT_NE(length, nullptr);
    const std::wstring text = textOrNull(instance, property.name).value_or(L"");
    EXPECT_LE(text.size(), static_cast<std::size_t>(*length))
        << shown(instance.className()) << "." << shown(property.name);
}

void expectDeclarationsKept(const Repository& host) {
    visitHost(host, [](const CimInstance& instance) {
        for (const CimProperty& property : instance.definition().properties) {
            expectCountMatches(instance, property);
            expectTextFits(instance, property);
        }
    });
}

bool isZero(const std::vector<std::uint8_t>& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

/// A world-wide name of the format that registered vendors use (NAA 5).
bool isWorldWideName(const std::vector<std::uint8_t>& name) {
    return name.size() == 8 && name.front() >> 4 == 5;
}

void expectFibreChannelTarget(const VendorPath& path) {
    EXPECT_TRUE(isWorldWideName(path.nodeName));
    EXPECT_TRUE(isWorldWideName(path.portName));
    EXPECT_NE(path.nodeName, path.portName);
    EXPECT_FALSE(path.fcAdapter.empty());
    EXPECT_EQ(path.tcpPort, 0u);
    EXPECT_EQ(path.ipv4Address, 0u);
    EXPECT_TRUE(isZero(path.ipv6Address));
    EXPECT_TRUE(path.iscsiNode.empty() && path.iscsiAdapter.empty());
}

void expectIscsiTarget(const VendorPath& path) {
    EXPECT_EQ(path.tcpPort, 3260u);
    EXPECT_EQ(path.ipv6Address.size(), 16u);
    EXPECT_NE(path.ipv4Address != 0, !isZero(path.ipv6Address)) << "one address, and only one";
    EXPECT_TRUE(path.iscsiNode.starts_with(L"iqn.2001-04.com.example:"));
    EXPECT_FALSE(path.iscsiAdapter.empty());
    EXPECT_TRUE(path.fcAdapter.empty());
    EXPECT_TRUE(isZero(path.nodeName) && isZero(path.portName));
}

void expectVendorAgrees(const VendorLun& lun, const MpioDisk& disk) {
    EXPECT_EQ(lun.instanceName, disk.instanceName);
    EXPECT_EQ(lun.serialNumber, disk.serialNumber);
    EXPECT_EQ(lun.policy, disk.policy);
    ASSERT_EQ(lun.paths.size(), disk.paths.size());
    ASSERT_EQ(lun.paths.size(), disk.policyPaths.size());
    for (std::size_t i = 0; i < lun.paths.size(); ++i) {
        const VendorPath& path = lun.paths[i];
        EXPECT_EQ(path.pathId, disk.paths[i].pathId);
        EXPECT_EQ(path.address, disk.paths[i].address);
        EXPECT_EQ(path.state, disk.paths[i].state);
        EXPECT_EQ(path.weight, disk.policyPaths[i].weight);
        EXPECT_EQ(path.isPrimary, disk.policyPaths[i].isPrimary);
        ASSERT_NE(path.isFibreChannel(), path.isIscsi());
        path.isFibreChannel() ? expectFibreChannelTarget(path) : expectIscsiTarget(path);
    }
}

void expectDiskComplete(const Repository& host, const MpioDisk& disk, std::size_t index) {
    EXPECT_EQ(disk.name, L"MPIO Disk" + std::to_wstring(index));
    EXPECT_EQ(disk.deviceName, L"\\Device\\MPIODisk" + std::to_wstring(index));
    EXPECT_EQ(disk.numberPaths, disk.paths.size());
    ASSERT_EQ(disk.paths.size(), disk.policyPaths.size());
    for (std::size_t i = 0; i < disk.paths.size(); ++i) {
        EXPECT_EQ(disk.paths[i].pathId, disk.policyPaths[i].pathId);
    }
    EXPECT_THAT(disk.supportedPolicies, testing::Contains(disk.policy));
    EXPECT_TRUE(std::is_sorted(disk.supportedPolicies.begin(), disk.supportedPolicies.end()));

    const auto operations = host.instances(kWmi, L"DSM_LB_Operations");
    EXPECT_TRUE(std::any_of(operations.begin(), operations.end(), [&](const auto& instance) {
        return textOf(*instance, L"InstanceName") == disk.instanceName;
    })) << "no operations for the disk";
}

/// Every DSM is registered, and every controller that a path leads to is known under its DSM.
void expectFrameworkKnows(const Repository& host, const std::vector<MpioDisk>& disks) {
    std::set<std::wstring> registered;
    for (const auto& registration : host.instances(kWmi, L"MPIO_REGISTERED_DSM")) {
        for (const auto& dsm : objectsOf(*registration, L"DsmParameters")) {
            registered.insert(textOf(*dsm, L"DsmName"));
        }
    }
    EXPECT_THAT(registered, testing::Contains(kVendorDsm));

    std::map<std::vector<std::uint8_t>, std::wstring> dsmOfController;
    for (const auto& configuration : host.instances(kWmi, L"MPIO_CONTROLLER_CONFIGURATION")) {
        for (const auto& controller : objectsOf(*configuration, L"ControllerInfo")) {
            dsmOfController[bytesOf(*controller, L"Identifier")] =
                textOf(*controller, L"AssociatedDsm");
        }
    }
    for (const MpioDisk& disk : disks) {
        EXPECT_THAT(registered, testing::Contains(disk.dsmName));
        for (const MpioPath& path : disk.paths) {
            EXPECT_EQ(dsmOfController[path.controller], disk.dsmName) << shown(disk.name);
        }
    }
}

/// A path identifier stands for one nexus and a nexus for one path identifier; nothing else
/// repeats.
void expectIdentifiersUnique(const std::vector<VendorLun>& luns,
                             const std::vector<MpioDisk>& disks) {
    std::set<std::int64_t> dsmIds;
    for (const VendorLun& lun : luns) {
        for (const VendorPath& path : lun.paths) {
            EXPECT_TRUE(dsmIds.insert(path.dsmId).second) << "DsmId " << path.dsmId << " repeats";
        }
    }

    std::set<std::wstring> serials;
    std::set<ScsiAddress> addresses;
    std::map<std::uint64_t, ScsiAddress> nexusOfPathId;
    std::map<ScsiAddress, std::uint64_t> pathIdOfNexus;
    for (const MpioDisk& disk : disks) {
        if (disk.serialNumber) {
            EXPECT_TRUE(serials.insert(*disk.serialNumber).second);
        }
        std::set<std::uint64_t> pathIds;
        for (const MpioPath& path : disk.paths) {
            ScsiAddress nexus = path.address;
            nexus.lun = 0;
            EXPECT_TRUE(addresses.insert(path.address).second) << shown(disk.name);
            EXPECT_TRUE(pathIds.insert(path.pathId).second) << shown(disk.name);
            EXPECT_EQ(nexusOfPathId.try_emplace(path.pathId, nexus).first->second, nexus);
            EXPECT_EQ(pathIdOfNexus.try_emplace(nexus, path.pathId).first->second, path.pathId);
        }
    }
}

/// Windows spells the instance name of an MPIO disk in upper case and without its index.
std::wstring pnpDeviceId(const std::wstring& instanceName) {
    std::wstring identifier = instanceName.substr(0, instanceName.rfind(L'_'));
    for (wchar_t& character : identifier) {
        character = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(character)));
    }
    return identifier;
}

/// The serial number in clear: the iSCSI DSM of Windows wraps it into hexadecimal pairs.
std::optional<std::wstring> clearSerialNumber(const MpioDisk& disk) {
    if (disk.dsmName != L"Microsoft iSCSI DSM") return disk.serialNumber;
    const std::wstring wrapped = disk.serialNumber.value_or(L"");
    EXPECT_TRUE(wrapped.ends_with(L'"'));
    std::wstring clear;
    for (std::size_t i = 7; i + 1 < wrapped.size(); i += 2) {
        clear += static_cast<wchar_t>(std::stoi(wrapped.substr(i, 2), nullptr, 16));
    }
    return clear;
}

void expectWindowsAgrees(const std::vector<WindowsDisk>& windows, const MpioDisk& disk,
                         const VendorLun* lun) {
    const auto found = std::find_if(windows.begin(), windows.end(), [&](const WindowsDisk& drive) {
        return drive.pnpDeviceId == pnpDeviceId(disk.instanceName);
    });
    ASSERT_NE(found, windows.end()) << shown(disk.name);
    EXPECT_EQ(found->deviceId, L"\\\\.\\PHYSICALDRIVE" + std::to_wstring(found->index));
    EXPECT_EQ(found->serialNumber, clearSerialNumber(disk));
    if (lun != nullptr) {
        EXPECT_EQ(found->size, lun->size);
    }
}

void expectOneReservationKey(const Repository& host, const std::vector<VendorLun>& luns) {
    const auto drivers = host.instances(kWmi, L"KORVADSM");
    ASSERT_EQ(drivers.size(), 1u);
    const std::vector<std::uint8_t> key = bytesOf(*drivers.front(), L"ReservationKey");
    EXPECT_EQ(key.size(), 8u);
    for (const VendorLun& lun : luns) {
        EXPECT_EQ(lun.reservationKey, key);
    }
}

}  // namespace

void expectConsistent(const Repository& host) {
    const std::vector<VendorLun> luns = vendorLuns(host);
    const std::vector<MpioDisk> disks = mpioDisks(host);
    const std::vector<WindowsDisk> windows = windowsDisks(host);

    std::size_t vendorDisks = 0;
    for (std::size_t i = 0; i < disks.size(); ++i) {
        SCOPED_TRACE("MPIO disk " + std::to_string(i));
        const bool isVendors = disks[i].dsmName == kVendorDsm;
        const VendorLun* lun = nullptr;
        if (isVendors) {
            ASSERT_LT(vendorDisks, luns.size());
            lun = &luns[vendorDisks++];
            expectVendorAgrees(*lun, disks[i]);
        }
        expectDiskComplete(host, disks[i], i);
        expectWindowsAgrees(windows, disks[i], lun);
    }
    EXPECT_EQ(vendorDisks, luns.size()) << "LUNs that MPIO does not list";

    expectDeclarationsKept(host);
    expectFrameworkKnows(host, disks);
    expectIdentifiersUnique(luns, disks);
    expectOneReservationKey(host, luns);
}

std::vector<std::wstring> nullProperties(const Repository& host) {
    std::set<std::wstring> names;
    visitHost(host, [&](const CimInstance& instance) {
        const auto& properties = instance.definition().properties;
        for (std::size_t i = 0; i < properties.size(); ++i) {
            if (!instance.values()[i].isNull()) continue;
            names.insert(instance.className() + L"." + properties[i].name);
        }
    });
    return {names.begin(), names.end()};
}

}  // namespace quista::test
