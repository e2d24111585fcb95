#include "tests/luns/instance_lookup.h"

namespace quista::test {

unsigned long InstanceLookup::run(std::wstring& serial, _DSM_DISKINFO* diskInfo) {
    _MPIO_GET_DESCRIPTOR* descriptor = nullptr;
    const unsigned long status =
        KORVA_GetInstance_for_Serial(serial.data(), name_.as<wchar_t>(), &descriptor,
                                     policy_.as<_DSM_LOAD_BALANCE_TYPE>(), diskInfo);
    descriptor_.reset(descriptor);
    return status;
}

std::vector<std::string> lookupReads(std::size_t paths) {
    constexpr const char* kPathReads[] = {"path.PathId",
                                          "path.ScsiAddress",
                                          "address.PortNumber",
                                          "address.ScsiPathId",
                                          "address.TargetId",
                                          "address.Lun",
                                          "path.PathState",
                                          "path.PrimaryPath",
                                          "path.Protocol",
                                          "path.TargetFcpNodename",
                                          "path.TargetFcpPortname",
                                          "path.Proxy",
                                          "path.TargetIPv4Address"};
    std::vector<std::string> result = {"LUN.KorvaDSMLoadBalancePolicy", "LUN.InstanceName",
                                       "LUN.NumberOfPaths", "LUN.Paths"};
    for (std::size_t i = 0; i < paths; ++i) {
        result.insert(result.end(), std::begin(kPathReads), std::end(kPathReads));
    }
    result.push_back("LUN.KorvaDSMLoadBalancePolicy");
    return result;
}

}  // namespace quista::test
