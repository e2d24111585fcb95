// The class files: what they declare, and that they compile the way class repair compiles them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {

using simulator::CimClassPtr;
using simulator::CimDeclaredType;
using simulator::CimMethod;
using simulator::CimParameter;
using simulator::CimProperty;
using simulator::CimType;
using simulator::Repository;

namespace {

const std::vector<std::wstring> kAllClassFiles = {L"classes/pdo.mof",   L"classes/lbpolicy.mof",
                                                  L"classes/mpio.mof",  L"classes/korvadsm.mof",
                                                  L"classes/iscsi.mof", L"classes/disks.mof"};

std::wstring typeText(const CimDeclaredType& type) {
    std::wstring text(type.base == CimType::object ? std::wstring_view(type.className)
                                                   : simulator::typeName(type.base));
    return text + (type.isArray ? L"[]" : L"");
}

/// Every property as `name:type`, a key with an asterisk behind it.
std::string propertiesOf(const Repository& repository, std::wstring_view nameSpace,
                         std::wstring_view className) {
    const CimClassPtr definition = repository.findClass(nameSpace, className);
    if (definition == nullptr) return "no such class";
    std::wstring text;
    for (const CimProperty& property : definition->properties) {
        if (!text.empty()) text += L' ';
        text += property.name + L':' + typeText(property.type) + (property.isKey() ? L"*" : L"");
    }
    return shown(text);
}

/// Every parameter of a void method as `in name:type` or `out name:type`.
std::string parametersOf(const Repository& repository, std::wstring_view className,
                         std::wstring_view methodName) {
    const CimClassPtr definition = repository.findClass(kWmi, className);
    const CimMethod* method = definition ? definition->findMethod(methodName) : nullptr;
    if (method == nullptr || method->returnType) return "no such void method";
    std::wstring text;
    for (const CimParameter& parameter : method->parameters) {
        if (!text.empty()) text += L", ";
        text += (parameter.isIn ? L"in " : L"") + std::wstring(parameter.isOut ? L"out " : L"");
        text += parameter.name + L':' + typeText(parameter.type);
    }
    return shown(text);
}

}  // namespace

TEST(ClassFiles, PdoFile_OnItsOwn_DeclaresThePathsOfADisk) {
    const Repository classes = loadHostFiles({L"classes/pdo.mof"});
    EXPECT_EQ(propertiesOf(classes, kWmi, L"PDOSCSI_ADDR"),
              "PortNumber:uint8 ScsiPathId:uint8 TargetId:uint8 Lun:uint8");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"PDO_INFORMATION"),
              "ScsiAddress:PDOSCSI_ADDR DeviceState:uint32 PathIdentifier:uint64 "
              "IdentifierType:uint32 IdentifierLength:uint32 Identifier:uint8[] Pad:uint8[]");
}

TEST(ClassFiles, PolicyFile_DeclaresTheLoadBalanceClasses) {
    const Repository classes = loadHostFiles({L"classes/pdo.mof", L"classes/lbpolicy.mof"});
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_DSM_Path"),
              "DsmPathId:uint64 Reserved:uint64 PathWeight:uint32 PrimaryPath:uint32");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"DSM_Load_Balance_Policy"),
              "Version:uint32 LoadBalancePolicy:uint32 DSMPathCount:uint32 Reserved:uint32 "
              "DSM_Paths:MPIO_DSM_Path[]");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"DSM_QueryLBPolicy"),
              "InstanceName:string* Active:boolean LoadBalancePolicy:DSM_Load_Balance_Policy");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"DSM_QuerySupportedLBPolicies"),
              "InstanceName:string* Active:boolean SupportedLBPoliciesCount:uint32 Reserved:uint32 "
              "Supported_LB_Policies:DSM_Load_Balance_Policy[]");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"DSM_LB_Operations"),
              "InstanceName:string* Active:boolean");
    EXPECT_EQ(parametersOf(classes, L"DSM_LB_Operations", L"DsmSetLoadBalancePolicy"),
              "in LoadBalancePolicy:DSM_Load_Balance_Policy, out Status:uint32");
}

TEST(ClassFiles, MpioFile_AfterTheOtherTwo_DeclaresDisksAndControllers) {
    const Repository classes =
        loadHostFiles({L"classes/pdo.mof", L"classes/lbpolicy.mof", L"classes/mpio.mof"});
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_CONTROLLER_CONFIGURATION"),
              "InstanceName:string* Active:boolean NumberControllers:uint32 "
              "ControllerInfo:MPIO_CONTROLLER_INFO[]");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_CONTROLLER_INFO"),
              "IdentifierType:uint32 IdentifierLength:uint32 Identifier:uint8[] "
              "ControllerState:uint32 Pad:uint32 AssociatedDsm:string");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_DISK_INFO"),
              "InstanceName:string* Active:boolean NumberDrives:uint32 "
              "DriveInfo:MPIO_DRIVE_INFO[]");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_DRIVE_INFO"),
              "NumberPaths:uint32 Name:string SerialNumber:string DsmName:string");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_GET_DESCRIPTOR"),
              "InstanceName:string* Active:boolean NumberPdos:uint32 DeviceName:string "
              "PdoInformation:PDO_INFORMATION[]");
}

TEST(ClassFiles, MpioFile_AfterTheOtherTwo_DeclaresTimersAndRegistrations) {
    const Repository classes =
        loadHostFiles({L"classes/pdo.mof", L"classes/lbpolicy.mof", L"classes/mpio.mof"});
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_TIMERS_COUNTERS"),
              "InstanceName:string* Active:boolean PathVerifyEnabled:uint32 "
              "PathVerificationPeriod:uint32 PDORemovePeriod:uint32 RetryCount:uint32 "
              "RetryInterval:uint32");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_REGISTERED_DSM"),
              "InstanceName:string* Active:boolean NumberDSMs:uint32 "
              "DsmParameters:DSM_PARAMETERS[]");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"DSM_PARAMETERS"),
              "DsmName:string DsmContext:uint64 DsmVersion:DSM_VERSION DsmCounters:DSM_COUNTERS");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"DSM_VERSION"),
              "MajorVersion:uint32 MinorVersion:uint32 ProductBuild:uint32 QfeNumber:uint32");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"DSM_COUNTERS"),
              "PathVerifyEnabled:uint32 PathVerificationPeriod:uint32 PDORemovePeriod:uint32 "
              "RetryCount:uint32 RetryInterval:uint32 Reserved32:uint32 Reserved64:uint64");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MPIO_WMI_METHODS"),
              "InstanceName:string* Active:boolean");
    EXPECT_EQ(parametersOf(classes, L"MPIO_WMI_METHODS", L"SetDsmCounters"),
              "in DSMcontext:uint64, in DsmCounters:DSM_COUNTERS");
}

TEST(ClassFiles, DriverFile_OnItsOwn_DeclaresSettingsLunsAndPaths) {
    const Repository classes = loadHostFiles({L"classes/korvadsm.mof"});
    EXPECT_EQ(propertiesOf(classes, kWmi, L"KORVADSM"),
              "InstanceName:string* Active:boolean DefaultLoadBalancePolicy:uint32 "
              "ReservationKey:uint8[] EventLogLevel:uint32");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"KORVADSM_LUNINFO"),
              "InstanceName:string* Active:boolean FilerName:string KORVAVersionString:string "
              "KORVAVersion:uint32 LunPath:string SerialNumber:string LunSize:uint64 "
              "LunState:uint32 CFMode:uint8 clusterType:uint8 KorvaDSMLoadBalancePolicy:uint32 "
              "ReservationKey:uint8[] NumberOfPaths:uint32 Paths:KORVADSM_PATHINFO[]");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"KORVADSM_PATHINFO"),
              "DsmId:sint32 PathId:uint32 ScsiAddress:SCSI_ADDR PathState:uint8 Protocol:uint8 "
              "Proxy:boolean PrimaryPath:boolean PathWeight:uint32 ALUASupport:uint32 "
              "TargetPortGroupState:uint32 TargetFcpNodename:uint8[] TargetFcpPortname:uint8[] "
              "TargetPortalGroupId:uint32 TargetTCPPortNumber:uint32 TargetIPv4Address:uint32 "
              "TargetIPv6Address:uint8[] TargetAdapterName:string TargetiSCSINodeName:string "
              "TargetiSCSIAdapterName:string");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"SCSI_ADDR"),
              "PortNumber:uint8 ScsiPathId:uint8 TargetId:uint8 Lun:uint8");
}

TEST(ClassFiles, DriverFile_OnItsOwn_DeclaresThePathOperations) {
    const Repository classes = loadHostFiles({L"classes/korvadsm.mof"});
    for (const wchar_t* method :
         {L"SetActive", L"SetPassive", L"SetEnabled", L"SetDisabled", L"UpdateRTPG"}) {
        EXPECT_EQ(parametersOf(classes, L"KORVADSM_LUNINFO", method),
                  "in DsmID:sint32, out ReturnCode:uint32")
            << shown(method);
    }
    EXPECT_EQ(parametersOf(classes, L"KORVADSM_LUNINFO", L"SetWeight"),
              "in DsmID:sint32, in Weight:uint32, out ReturnCode:uint32");
}

TEST(ClassFiles, IscsiFile_DeclaresAdaptersAndPortals) {
    const Repository classes = loadHostFiles({L"classes/iscsi.mof"});
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MSiSCSI_PortalInfoClass"),
              "InstanceName:string* Active:boolean PortalInfoCount:uint32 "
              "PortalInformation:ISCSI_PortalInfo[]");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"ISCSI_PortalInfo"),
              "Index:uint32 PortalType:uint8 Protocol:uint8 Reserved1:uint8 Reserved2:uint8 "
              "IPAddr:ISCSI_IP_Address Port:uint32 PortalTag:uint16");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"ISCSI_IP_Address"),
              "Type:uint32 IpV4Address:uint32 IpV6Address:uint8[] IpV6FlowInfo:uint32 "
              "IpV6ScopeId:uint32 TextAddress:string");
    EXPECT_EQ(propertiesOf(classes, kWmi, L"MSiSCSI_HBAInformation"),
              "InstanceName:string* Active:boolean UniqueAdapterId:uint64 IntegratedTCPIP:boolean "
              "RequiresBinaryIpAddresses:boolean VersionMin:uint8 VersionMax:uint8 "
              "MultifunctionDevice:boolean CacheValid:boolean NumberOfPorts:uint32 Status:uint32 "
              "FunctionalitySupported:uint32 GenerationalGuid:uint8[] MaxCDBLength:uint32 "
              "BiDiScsiCommands:boolean VendorID:string VendorModel:string VendorVersion:string "
              "FirmwareVersion:string AsicVersion:string OptionRomVersion:string "
              "SerialNumber:string DriverName:string");
}

TEST(ClassFiles, DiskFile_DeclaresTheDisksOfWindows) {
    const Repository classes = loadHostFiles({L"classes/disks.mof"});
    EXPECT_EQ(propertiesOf(classes, kCimv2, L"Win32_DiskDrive"),
              "DeviceID:string* Index:uint32 PNPDeviceID:string Size:uint64");
    EXPECT_EQ(propertiesOf(classes, kCimv2, L"Win32_PhysicalMedia"),
              "Tag:string* SerialNumber:string");
    EXPECT_TRUE(classes.classes(kWmi).empty());
}

TEST(ClassFiles, FilesOfClassRepair_AskToBeCompiledAgain) {
    for (const wchar_t* file : {L"classes/pdo.mof", L"classes/lbpolicy.mof", L"classes/mpio.mof",
                                L"classes/korvadsm.mof"}) {
        EXPECT_TRUE(hasAutoRecover(file)) << shown(file);
    }
}

TEST(ClassFiles, AllFiles_ReadTwice_GiveTheSameClasses) {
    std::vector<std::wstring> twice = kAllClassFiles;
    twice.insert(twice.end(), kAllClassFiles.begin(), kAllClassFiles.end());
    EXPECT_EQ(loadHostFiles(twice), loadHostFiles(kAllClassFiles));
}

TEST(ClassFiles, AllFiles_HoldNoInstances) {
    const Repository classes = loadHostFiles(kAllClassFiles);
    EXPECT_TRUE(classes.allInstances(kWmi).empty());
    EXPECT_TRUE(classes.allInstances(kCimv2).empty());
}

}  // namespace quista::test
