// What goes wrong: wrong arguments, hosts that cannot be loaded, WMI that fails or hangs.
#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include <gmock/gmock.h>

#include "cli/run.h"
#include "quista/frame.h"
#include "tests/cli/text_output.h"
#include "tests/cli/tool_test.h"
#include "tests/support/simulated_host.h"

namespace quista::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// ---- arguments

using UsageTest = ToolTest;

TEST_F(UsageTest, WrongArgumentsEndWithTwoAndOneLine) {
    const ToolRun run = runTool({"lnus"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("quistactl: error: unknown command 'lnus'"));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
}

TEST_F(UsageTest, JsonIsADocumentAlsoThen) {
    const ToolRun run = runTool({"lnus", "--json"});
    EXPECT_EQ(run.exitCode, 2);
    const json document = run.json();
    EXPECT_EQ(document["exitCode"], 2);
    EXPECT_EQ(document["command"], "");
    EXPECT_EQ(document["arguments"], json({"lnus", "--json"}));
    EXPECT_TRUE(document["status"].is_null());
    EXPECT_THAT(document["messages"][0]["text"].get<std::string>(), HasSubstr("lnus"));
}

TEST_F(UsageTest, HelpAndVersionAreDocumentsWithJson) {
    EXPECT_THAT(runTool({"luns", "--help", "--json"}).json()["text"].get<std::string>(),
                HasSubstr("Usage: quistactl luns"));
    EXPECT_THAT(runTool({"--json", "--version"}).json()["text"].get<std::string>(),
                StartsWith("quistactl "));
}

TEST_F(UsageTest, OutputThatCannotBeWrittenIsAFailure) {
    const ToolRun run = runTool({"errors"}, {.columns = {}, .isOutputBroken = true});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("the output could not be written"));
}

// ---- simulated hosts

using HostFileTest = ToolTest;

TEST_F(HostFileTest, MalformedFileIsToldWithItsPlace) {
    writeFile(userFolder.path(L"broken.mof"), "class A\n{\n    uint32 ;\n};\n");
    const ToolRun run = runTool({"luns", "--simulate", "broken.mof", "--json"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("broken.mof:3:12: "));
    EXPECT_EQ(run.json()["exitCode"], 2);
}

TEST_F(HostFileTest, FileIsRelativeToTheUsersFolder) {
    writeFile(userFolder.path(L"mine.mof"), "#pragma namespace(\"\\\\\\\\.\\\\root\\\\wmi\")\n");
    const ToolRun run = runTool({"luns", "--simulate", "mine.mof"});
    EXPECT_EQ(run.exitCode, 1) << "it is loaded, and has no MPIO";
    EXPECT_THAT(run.err, HasSubstr("cannot list the LUNs"));
}

TEST_F(HostFileTest, UnknownHostIsTold) {
    const ToolRun run = runTool({"luns", "--simulate", "nothing"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("cannot load the simulated host 'nothing': "));
}

TEST_F(HostFileTest, MissingSimulatorIsTold) {
    TextOutput out;
    TextOutput err;
    const cli::Process process{userFolder.path(), [](int) {}};
    EXPECT_EQ(cli::run({"luns", "--simulate", "standard"}, {out, err}, process), 1);
    EXPECT_THAT(err.text, HasSubstr("cannot load the simulator "));
}

// ---- WMI

constexpr auto kWmiFailed = static_cast<HRESULT>(WBEM_E_FAILED);
constexpr auto kAccessDenied = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);

// A simulated host that the test has started itself, so that it can let calls fail.
class WmiFailureTest : public ToolTest {
  protected:
    SimulatedHost host;
};

TEST_F(WmiFailureTest, FailedQuery) {
    host.load(L"standard");
    host.failQuery(L"KORVADSM_LUNINFO", kWmiFailed);
    const ToolRun run = runTool({"luns", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.json()["status"]["name"], "DSM_WMI_FAILURE");
    EXPECT_FALSE(run.json().contains("luns"));
    EXPECT_THAT(run.err, HasSubstr("(DSM_WMI_FAILURE, 14)"));
}

TEST_F(WmiFailureTest, NoConnection) {
    host.failConnect(kWmi, kAccessDenied);
    const ToolRun run = runTool({"luns"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("(DSM_WMI_CONNECT_FAILED, 26)"));
    EXPECT_THAT(run.err, HasSubstr("administrator"));
}

TEST_F(WmiFailureTest, ConnectionThatIsNotNeededIsAWarning) {
    host.load(L"standard");
    host.failConnect(kCimv2, kAccessDenied);
    const ToolRun run = runTool({"luns", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.json()["luns"].size(), 7u);
    EXPECT_EQ(run.json()["messages"][0]["severity"], "warning");
    EXPECT_EQ(run.json()["messages"][0]["status"]["code"], 26);
}

TEST_F(WmiFailureTest, MissingDsmClassesAreToldFromNoLuns) {
    host.load(L"empty");
    host->removeClass(kWmi, L"KORVADSM_LUNINFO");
    const ToolRun run = runTool({"luns"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("KORVADSM_LUNINFO is missing from root\\wmi"));
    EXPECT_THAT(run.err, HasSubstr("(DSM_WMI_NOT_SUPPORTED, 22)"));
}

TEST_F(WmiFailureTest, LunThatCannotBeParsedIsListedAndTheListGoesOn) {
    host.load(L"standard");
    host.failGet(L"KORVADSM_PATHINFO", L"Proxy", kWmiFailed, 1, 1);
    const ToolRun run = runTool({"luns", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    const json luns = run.json()["luns"];
    ASSERT_EQ(luns.size(), 7u);
    EXPECT_EQ(luns[0]["health"], "unreadable");
    EXPECT_EQ(luns[0]["serialNumber"], "kvA7r2Qm9T01");
    EXPECT_EQ(luns[1]["health"], "ok");
    EXPECT_THAT(run.err, HasSubstr("cannot read the LUN kvA7r2Qm9T01 completely"));
}

TEST_F(WmiFailureTest, LunWithoutReadablePathsIsNotTakenForOneWithout) {
    host.load(L"standard");
    host.failGet(L"KORVADSM_LUNINFO", L"Paths", kWmiFailed, 1, 1);
    const ToolRun run = runTool({"luns"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("the driver counts 4 paths of the LUN kvA7r2Qm9T01 but "
                                   "describes 0"));
    EXPECT_THAT(run.out, HasSubstr("unreadable"));
}

TEST_F(WmiFailureTest, UnreadableSerialNumberDoesNotHideTheLun) {
    host.load(L"standard");
    host.failGet(L"KORVADSM_LUNINFO", L"SerialNumber", kWmiFailed, 2, 1);
    const ToolRun run = runTool({"luns", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.json()["luns"].size(), 7u);
    EXPECT_EQ(run.json()["luns"][1]["serialNumber"], nullptr);
}

TEST_F(WmiFailureTest, NothingOfWmiIsKept) {
    host.load(L"standard");
    const LiveObjectsCheck check(host);
    runTool({"luns"});
    runTool({"lun", "kvA7r2Qm9T01"});
    runTool({"paths"});
}

// ---- time

#ifdef __GNUC__
// COM interfaces have no virtual destructor by design; nothing deletes them through one.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

// A WMI locator that is made only when the test says so.
class HangingLocator final : public IClassFactory {
  public:
    HangingLocator() : released_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        EXPECT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
        EXPECT_EQ(CoRegisterClassObject(CLSID_WbemLocator, this, CLSCTX_INPROC_SERVER,
                                        REGCLS_MULTIPLEUSE, &registration_),
                  S_OK);
    }
    ~HangingLocator() {
        CoRevokeClassObject(registration_);
        CoUninitialize();
        CloseHandle(released_);
    }
    HangingLocator(const HangingLocator&) = delete;
    HangingLocator& operator=(const HangingLocator&) = delete;

    void release() { SetEvent(released_); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool isKnown = id == IID_IUnknown || id == IID_IClassFactory;
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void** object) override {
        *object = nullptr;
        EXPECT_EQ(WaitForSingleObject(released_, 60000), DWORD{WAIT_OBJECT_0});
        return E_FAIL;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    HANDLE released_;
    DWORD registration_ = 0;
};

class TimeoutTest : public ToolTest {
  protected:
    ~TimeoutTest() override { DSMUninitialize(); }

    // The process that would end goes on here, as the call returns.
    ToolRun run(std::vector<std::string> arguments) {
        HangingLocator locator;
        TextOutput out;
        TextOutput err;
        ToolRun run;
        const cli::Process process{productFolder(), [&](int exitCode) {
                                       endedWith = exitCode;
                                       locator.release();
                                   }};
        run.exitCode = cli::run(arguments, {out, err}, process);
        run.out = out.text;
        run.err = err.text;
        return run;
    }

    int endedWith = -1;
};

TEST_F(TimeoutTest, HangingCallEndsTheProcessWithFive) {
    const ToolRun hung = run({"luns", "--timeout", "1"});
    EXPECT_EQ(endedWith, 5);
    EXPECT_EQ(hung.out, "");
    EXPECT_THAT(hung.err, StartsWith("quistactl: error: DSMInitialize has not returned after 1 "
                                     "second\n"));
}

TEST_F(TimeoutTest, JsonIsExactlyOneDocument) {
    const ToolRun hung = run({"luns", "--timeout", "1", "--json"});
    EXPECT_EQ(endedWith, 5);
    EXPECT_EQ(hung.json()["exitCode"], 5);
    EXPECT_EQ(hung.json()["command"], "luns");
    EXPECT_THAT(hung.json()["messages"][0]["text"].get<std::string>(), HasSubstr("DSMInitialize"));
}

}  // namespace
}  // namespace quista::test
