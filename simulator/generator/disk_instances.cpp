#include "simulator/generator/disk_instances.h"

#include <array>
#include <string_view>

#include "simulator/generator/host_instances.h"
#include "simulator/generator/instance_text.h"
#include "simulator/mof/mof_text.h"

namespace quista::simulator {
namespace {

constexpr unsigned kProtocolFibreChannel = 1;
constexpr unsigned kProtocolIscsi = 2;
constexpr unsigned kImplicitAlua = 1;
constexpr unsigned kGroupActiveOptimized = 0;
constexpr unsigned kGroupActiveNonOptimized = 1;
constexpr unsigned kIscsiTcpPort = 3260;

/// The text of every path, as an array.
template <class Function>
std::wstring pathArray(const LunPlan& lun, Function textOf) {
    std::vector<std::wstring> elements;
    elements.reserve(lun.paths.size());
    for (const PathPlan& path : lun.paths) {
        elements.push_back(textOf(path));
    }
    return arrayOf(elements);
}

std::wstring scsiAddress(std::wstring_view className, const PathPlan& path) {
    return instanceOf(className, {{L"PortNumber", numberText(path.port)},
                                  {L"ScsiPathId", numberText(path.bus)},
                                  {L"TargetId", numberText(path.target)},
                                  {L"Lun", numberText(path.lun)}});
}

std::wstring vendorPath(const PathPlan& path) {
    const bool isFibreChannel = path.transport == Transport::fibreChannel;
    const std::array<std::uint8_t, 8> noName{};
    const unsigned groupState = path.isProxy ? kGroupActiveNonOptimized : kGroupActiveOptimized;
    const std::wstring interfaceName =
        mofString(L"load:" + numberText(path.port) + L"." + numberText(path.target));
    const std::wstring noText = mofString(L"");
    return instanceOf(
        L"KORVADSM_PATHINFO",
        {{L"DsmId", numberText(path.dsmId)},
         {L"PathId", numberText(path.pathId)},
         {L"ScsiAddress", scsiAddress(L"SCSI_ADDR", path)},
         {L"PathState", numberText(path.state)},
         {L"Protocol", numberText(isFibreChannel ? kProtocolFibreChannel : kProtocolIscsi)},
         {L"Proxy", booleanText(path.isProxy)},
         {L"PrimaryPath", booleanText(path.isPrimary)},
         {L"PathWeight", numberText(path.weight)},
         {L"ALUASupport", numberText(kImplicitAlua)},
         {L"TargetPortGroupState", numberText(groupState)},
         {L"TargetFcpNodename", bytesText(isFibreChannel ? kStorageNode : noName)},
         {L"TargetFcpPortname", bytesText(path.targetPortName)},
         {L"TargetPortalGroupId", numberText(isFibreChannel ? 0 : 1)},
         {L"TargetTCPPortNumber", numberText(isFibreChannel ? 0 : kIscsiTcpPort)},
         {L"TargetIPv4Address", numberText(path.ipv4Address)},
         {L"TargetIPv6Address", bytesText(path.ipv6Address)},
         {L"TargetAdapterName", isFibreChannel ? interfaceName : noText},
         {L"TargetiSCSINodeName", isFibreChannel ? noText : mofString(kStorageIqn)},
         {L"TargetiSCSIAdapterName", isFibreChannel ? noText : interfaceName}});
}

std::wstring pdoInformation(const PathPlan& path) {
    return instanceOf(L"PDO_INFORMATION", {{L"ScsiAddress", scsiAddress(L"PDOSCSI_ADDR", path)},
                                           {L"DeviceState", numberText(path.state)},
                                           {L"PathIdentifier", numberText(path.pathId)},
                                           {L"IdentifierType", numberText(1)},
                                           {L"IdentifierLength", numberText(kStorageNode.size())},
                                           {L"Identifier", bytesText(kStorageIdentifier)},
                                           {L"Pad", bytesText(std::array<std::uint8_t, 4>{})}});
}

std::wstring policyPath(const PathPlan& path) {
    return instanceOf(L"MPIO_DSM_Path", {{L"DsmPathId", numberText(path.pathId)},
                                         {L"Reserved", numberText(0)},
                                         {L"PathWeight", numberText(path.weight)},
                                         {L"PrimaryPath", numberText(path.isPrimary ? 1 : 0)}});
}

std::wstring policyObject(unsigned policy, std::size_t pathCount, const std::wstring& paths) {
    return instanceOf(L"DSM_Load_Balance_Policy", {{L"Version", numberText(1)},
                                                   {L"LoadBalancePolicy", numberText(policy)},
                                                   {L"DSMPathCount", numberText(pathCount)},
                                                   {L"Reserved", numberText(0)},
                                                   {L"DSM_Paths", paths}});
}

std::wstring supportedPolicies() {
    std::vector<std::wstring> policies;
    for (unsigned policy = 1; policy <= kPolicies; ++policy) {
        policies.push_back(policyObject(policy, 0, arrayOf({})));
    }
    return arrayOf(policies);
}

}  // namespace

std::wstring vendorInstance(const LunPlan& lun) {
    return namedInstance(L"KORVADSM_LUNINFO", lun.instanceName,
                         {{L"FilerName", mofString(kStorageSystem)},
                          {L"KORVAVersionString", mofString(L"KORVA Release 9.4.2")},
                          {L"KORVAVersion", L"0x00090402"},
                          {L"LunPath", mofString(lun.lunPath)},
                          {L"SerialNumber", mofString(lun.serialNumber)},
                          {L"LunSize", numberText(lun.size)},
                          {L"LunState", numberText(0)},
                          {L"CFMode", numberText(1)},
                          {L"clusterType", numberText(1)},
                          {L"KorvaDSMLoadBalancePolicy", numberText(lun.policy)},
                          {L"ReservationKey", bytesText(kReservationKey)},
                          {L"NumberOfPaths", numberText(lun.paths.size())},
                          {L"Paths", pathArray(lun, vendorPath)}});
}

std::wstring mpioInstances(const LunPlan& lun) {
    return namedInstance(L"MPIO_GET_DESCRIPTOR", lun.instanceName,
                         {{L"NumberPdos", numberText(lun.paths.size())},
                          {L"DeviceName", mofString(L"\\Device\\MPIODisk" + numberText(lun.index))},
                          {L"PdoInformation", pathArray(lun, pdoInformation)}}) +
           namedInstance(L"DSM_QueryLBPolicy", lun.instanceName,
                         {{L"LoadBalancePolicy", policyObject(lun.policy, lun.paths.size(),
                                                              pathArray(lun, policyPath))}}) +
           namedInstance(L"DSM_QuerySupportedLBPolicies", lun.instanceName,
                         {{L"SupportedLBPoliciesCount", numberText(kPolicies)},
                          {L"Reserved", numberText(0)},
                          {L"Supported_LB_Policies", supportedPolicies()}}) +
           namedInstance(L"DSM_LB_Operations", lun.instanceName, {});
}

std::wstring windowsInstances(const LunPlan& lun) {
    const std::wstring device = mofString(L"\\\\.\\PHYSICALDRIVE" + numberText(lun.index));
    return instanceOf(L"Win32_DiskDrive", {{L"DeviceID", device},
                                           {L"Index", numberText(lun.index)},
                                           {L"PNPDeviceID", mofString(lun.pnpDeviceId)},
                                           {L"Size", numberText(lun.size)}}) +
           L";\n\n" +
           instanceOf(L"Win32_PhysicalMedia",
                      {{L"Tag", device}, {L"SerialNumber", mofString(lun.serialNumber)}}) +
           L";\n\n";
}

}  // namespace quista::simulator
