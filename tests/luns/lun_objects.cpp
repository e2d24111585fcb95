#include "tests/luns/lun_objects.h"

namespace quista::test {

namespace {

MofObject scsiAddress(int port, int bus, int target, int lun) {
    MofObject address(L"SCSI_ADDR");
    address.number(L"PortNumber", port).number(L"ScsiPathId", bus);
    return address.number(L"TargetId", target).number(L"Lun", lun);
}

}  // namespace

MofObject fibreChannelPath(std::int32_t dsmId) {
    MofObject path(kPathClass);
    path.number(L"DsmId", dsmId).number(L"PathId", 0x77020001);
    path.object(L"ScsiAddress", scsiAddress(2, 0, 1, 5));
    path.number(L"PathState", 1).number(L"Protocol", 1);
    path.boolean(L"Proxy", false).boolean(L"PrimaryPath", true);
    path.number(L"PathWeight", 17).number(L"ALUASupport", 3).number(L"TargetPortGroupState", 1);
    path.numbers(L"TargetFcpNodename", {0x50, 0x0A, 0x09, 0x80, 0x00, 0x01, 0x02, 0x03});
    path.numbers(L"TargetFcpPortname", {0x50, 0x0A, 0x09, 0x81, 0x10, 0x11, 0x12, 0x13});
    return path.text(L"TargetAdapterName", L"0c");
}

MofObject iscsiPath(std::int32_t dsmId) {
    MofObject path(kPathClass);
    path.number(L"DsmId", dsmId).number(L"PathId", 0x77040002);
    path.object(L"ScsiAddress", scsiAddress(4, 0, 3, 6));
    path.number(L"PathState", 2).number(L"Protocol", 2);
    path.boolean(L"Proxy", true).boolean(L"PrimaryPath", false);
    path.number(L"PathWeight", 18).number(L"ALUASupport", 1).number(L"TargetPortGroupState", 2);
    path.number(L"TargetPortalGroupId", 1001).number(L"TargetTCPPortNumber", 3260);
    path.number(L"TargetIPv4Address", 0x0100A8C0);
    path.text(L"TargetiSCSINodeName", L"iqn.2026-01.example:storage1");
    return path.text(L"TargetiSCSIAdapterName", L"e0a");
}

MofObject iscsiPathOverIPv6(std::int32_t dsmId) {
    MofObject path = iscsiPath(dsmId);
    path.number(L"TargetIPv4Address", 0);
    return path.numbers(L"TargetIPv6Address",
                        {0xFE, 0x80, 0, 0, 0, 0, 0, 0, 2, 2, 0xB3, 0xFF, 0xFE, 0x1E, 0x83, 0x29});
}

MofObject pathInState(std::int32_t dsmId, int state) {
    return fibreChannelPath(dsmId).number(L"PathState", state);
}

MofObject lunWith(const std::wstring& serial, const std::vector<MofObject>& paths) {
    return namedLun(L"MPIO\\Disk&Ven_KORVA\\" + serial, serial, paths);
}

MofObject namedLun(const std::wstring& instanceName, const std::wstring& serial,
                   const std::vector<MofObject>& paths) {
    MofObject lun(kLunClass);
    lun.text(L"InstanceName", instanceName).boolean(L"Active", true);
    lun.text(L"FilerName", L"storage1").text(L"KORVAVersionString", L"KORVA Release 9.1.2");
    lun.number(L"KORVAVersion", 0x00090102).text(L"LunPath", L"/vol/vol1/lun1");
    lun.text(L"SerialNumber", serial).number(L"LunSize", 1099511627776);
    lun.number(L"LunState", 0x00010203).number(L"CFMode", 1).number(L"clusterType", 2);
    lun.number(L"KorvaDSMLoadBalancePolicy", 3);
    lun.numbers(L"ReservationKey", {0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18});
    lun.number(L"NumberOfPaths", static_cast<std::int64_t>(paths.size()));
    return lun.objects(L"Paths", paths);
}

}  // namespace quista::test
