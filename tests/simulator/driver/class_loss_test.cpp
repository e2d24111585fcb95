// Classes that WMI loses, and the instances that drivers publish again when the classes are back.
#include <gmock/gmock.h>

#include "tests/simulator/driver/driver_fixture.h"
#include "tests/simulator/hosts/host_consistency.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {
namespace {

using simulator::LoadError;

constexpr const wchar_t* kLunClass = L"KORVADSM_LUNINFO";

std::wstring classFile(const std::wstring& name) {
    const std::string folder = QUISTA_HOSTS_FOLDER;
    return std::wstring(folder.begin(), folder.end()) + L"/classes/" + name + L".mof";
}

class ClassLossTest : public DriverTest {
  protected:
    std::size_t count(const wchar_t* className) {
        return host().countInstances(L"root\\wmi", className);
    }

    HRESULT compile(const std::wstring& name) {
        void* compiler = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_MofCompiler, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IMofCompiler, &compiler),
                  S_OK);
        const ComOwner<IMofCompiler> owned(static_cast<IMofCompiler*>(compiler));
        std::wstring file = classFile(name);
        std::wstring nameSpace = L"root\\wmi";
        return owned->CompileFile(file.data(), nameSpace.data(), nullptr, nullptr, nullptr, 0, 0, 0,
                                  nullptr);
    }

    void lose(const std::wstring& name) {
        LoadError error;
        EXPECT_TRUE(host().removeClassesOf(classFile(name), error)) << shown(error.reason);
    }

    HRESULT check(const wchar_t* className) {
        return wmi().GetObject(Text(className), 0, nullptr, nullptr, nullptr);
    }
};

TEST_F(ClassLossTest, VendorsClasses_AreGoneUntilTheyAreCompiled) {
    lose(L"korvadsm");
    for (const wchar_t* name : {kLunClass, L"KORVADSM", L"KORVADSM_PATHINFO", L"SCSI_ADDR"}) {
        EXPECT_EQ(check(name), wbem(WBEM_E_NOT_FOUND)) << shown(name);
    }
    EXPECT_EQ(count(kLunClass), 0u);
    EXPECT_EQ(compile(L"korvadsm"), S_OK);
    EXPECT_EQ(check(kLunClass), S_OK);
    EXPECT_EQ(count(kLunClass), 7u);
    expectConsistent(repository());
}

TEST_F(ClassLossTest, MpiosClasses_ComeBackFileByFile) {
    lose(L"mpio");
    lose(L"lbpolicy");
    lose(L"pdo");
    EXPECT_EQ(count(L"MPIO_DISK_INFO"), 0u);
    EXPECT_EQ(compile(L"mpio"), wbem(WBEM_E_INVALID_SYNTAX)) << "pdo.mof has to come first";
    EXPECT_EQ(compile(L"pdo"), S_OK);
    EXPECT_EQ(compile(L"lbpolicy"), S_OK);
    EXPECT_EQ(count(L"DSM_QueryLBPolicy"), 9u);
    EXPECT_EQ(count(L"MPIO_DISK_INFO"), 0u);
    EXPECT_EQ(compile(L"mpio"), S_OK);
    expectConsistent(repository());
}

TEST_F(ClassLossTest, Instances_ComeBackAsTheyWere) {
    ASSERT_EQ(run(0, L"SetDisabled", 0x101), kSuccess);
    const simulator::Repository before = repository();
    ASSERT_TRUE(host().removeClass(L"root\\wmi", kLunClass));
    EXPECT_EQ(compile(L"korvadsm"), S_OK);
    const auto instancesOf = [](const simulator::Repository& host) {
        std::vector<simulator::CimInstance> all;
        for (const auto& each : host.instances(kWmi, kLunClass)) all.push_back(*each);
        return all;
    };
    EXPECT_EQ(instancesOf(repository()), instancesOf(before));
    EXPECT_THAT(states(0), testing::ElementsAre(4, 1, 2, 2));
    EXPECT_EQ(run(0, L"SetEnabled", 0x101), kSuccess);
}

TEST_F(ClassLossTest, EmbeddedClassesLostFirst_InstancesComeBackAllTheSame) {
    for (const wchar_t* name : {L"SCSI_ADDR", L"KORVADSM_PATHINFO", kLunClass}) {
        ASSERT_TRUE(host().removeClass(L"root\\wmi", name));
    }
    EXPECT_EQ(compile(L"korvadsm"), S_OK);
    EXPECT_EQ(count(kLunClass), 7u);
    expectConsistent(repository());
}

TEST_F(ClassLossTest, DamagedHost_SurvivesBeingWrittenAndRead) {
    lose(L"korvadsm");
    const std::wstring text = host().dump();
    host().clear();
    load(text);
    EXPECT_EQ(check(kLunClass), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(compile(L"korvadsm"), S_OK);
    EXPECT_EQ(count(kLunClass), 7u);
    expectConsistent(repository());
}

TEST_F(ClassLossTest, NothingIsLeftAsideAfterTheRepair) {
    lose(L"korvadsm");
    EXPECT_FALSE(repository().allInstances(L"root\\simulator\\wmi").empty());
    EXPECT_EQ(compile(L"korvadsm"), S_OK);
    EXPECT_TRUE(repository().allInstances(L"root\\simulator\\wmi").empty());
    EXPECT_TRUE(repository().classes(L"root\\simulator\\wmi").empty());
}

TEST_F(ClassLossTest, ClientDeletesTheClass_IsTheSameLoss) {
    EXPECT_EQ(wmi().DeleteClass(Text(kLunClass), 0, nullptr, nullptr), S_OK);
    EXPECT_EQ(compile(L"korvadsm"), S_OK);
    EXPECT_EQ(count(kLunClass), 7u);
}

TEST_F(ClassLossTest, InstancePutAnewInTheMeantime_StaysAsItIs) {
    ASSERT_TRUE(host().removeClass(L"root\\wmi", L"KORVADSM"));
    load(
        LR"([WMI] class KORVADSM { [key] string InstanceName; uint32 EventLogLevel; };
             instance of KORVADSM { InstanceName = "ROOT\\KORVADSM\\0000_0"; EventLogLevel = 7; };)");
    EXPECT_EQ(numberOf(*repository().instances(kWmi, L"KORVADSM").at(0), L"EventLogLevel"), 7u);
}

TEST_F(ClassLossTest, ClassesThatNoDriverPublishes_LoseTheirInstances) {
    load(LR"(class Plain { [key] string Name; }; instance of Plain { Name = "a"; };)");
    ASSERT_TRUE(host().removeClass(L"root\\wmi", L"Plain"));
    load(L"class Plain { [key] string Name; };");
    EXPECT_EQ(count(L"Plain"), 0u);
    EXPECT_FALSE(host().removeClass(L"root\\wmi", L"Nothing"));
}

TEST_F(ClassLossTest, RemoveClassesOf_UnreadableFile_TellsWhy) {
    LoadError error;
    EXPECT_FALSE(host().removeClassesOf(L"nowhere.mof", error));
    EXPECT_EQ(error.file, L"nowhere.mof");
    lose(L"pdo");
    EXPECT_FALSE(host().removeClassesOf(classFile(L"mpio"), error)) << "builds on pdo.mof";
    EXPECT_NE(error.line, 0u);
    EXPECT_EQ(check(L"MPIO_DISK_INFO"), S_OK);
}

TEST_F(ClassLossTest, FailedCompilation_BringsNothingBack) {
    lose(L"korvadsm");
    host().addFault({L"IMofCompiler", L"CompileFile", L"", L"", 1, 1, E_ACCESSDENIED});
    EXPECT_EQ(compile(L"korvadsm"), E_ACCESSDENIED);
    EXPECT_EQ(check(kLunClass), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(compile(L"korvadsm"), S_OK);
    EXPECT_EQ(host().liveObjects().compilers, 0u);
}

}  // namespace
}  // namespace quista::test
