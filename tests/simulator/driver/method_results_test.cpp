// Results of methods that hosts and tests prescribe.
#include <gmock/gmock.h>

#include "tests/simulator/driver/driver_fixture.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

class MethodResultsTest : public DriverTest {
  protected:
    void prescribe(const std::wstring& method, const std::wstring& outParameter,
                   const std::wstring& value, const std::wstring& className = L"KORVADSM_LUNINFO") {
        load(
            L"#pragma namespace(\"\\\\\\\\.\\\\root\\\\simulator\")\n"
            L"instance of Simulator_MethodResult { ClassName = \"" +
            className + L"\"; MethodName = \"" + method + L"\"; OutParameter = \"" + outParameter +
            L"\"; Value = \"" + value + L"\"; };");
    }

    /// Result of disabling the first path.
    HRESULT disable() {
        const Object in = inParameters(L"KORVADSM_LUNINFO", L"SetDisabled");
        put(*in, L"DsmID", 0x101);
        return execute(pathOf(L"KORVADSM_LUNINFO", lun(0).instanceName), L"SetDisabled", in.get());
    }
};

TEST_F(MethodResultsTest, HostPrescribesARefusal_NothingIsChanged) {
    prescribe(L"setdisabled", L"returncode", L"0xC0000001");
    EXPECT_EQ(run(0, L"SetDisabled", 0x101), 0xC0000001);
    EXPECT_THAT(states(0), ElementsAre(1, 1, 2, 2));
    EXPECT_EQ(run(0, L"SetPassive", 0x101), kSuccess);
}

TEST_F(MethodResultsTest, HostPrescribesASuccessCode_TheDriverDoesItsWork) {
    prescribe(L"SetDisabled", L"ReturnCode", L"259");
    EXPECT_EQ(run(0, L"SetDisabled", 0x101), 259u);
    EXPECT_THAT(states(0), ElementsAre(4, 1, 2, 2));
}

TEST_F(MethodResultsTest, HostPrescribesNoOutput) {
    prescribe(L"SetDisabled", L"", L"");
    EXPECT_EQ(disable(), S_OK);
    EXPECT_FALSE(hasAnswer());
    EXPECT_THAT(states(0), ElementsAre(4, 1, 2, 2));
}

TEST_F(MethodResultsTest, HostPrescribesWhatCannotBe_TheCallFails) {
    prescribe(L"SetDisabled", L"ReturnCode", L"many");
    EXPECT_EQ(disable(), wbem(WBEM_E_TYPE_MISMATCH));
    for (const wchar_t* value : {L"0x", L"0xG", L"4294967296", L"-1", L""}) {
        prescribe(L"SetDisabled", L"ReturnCode", value);
        EXPECT_EQ(disable(), wbem(WBEM_E_TYPE_MISMATCH)) << shown(value);
    }
    host().removeInstances(L"root\\simulator", L"Simulator_MethodResult");
    prescribe(L"SetDisabled", L"Nothing", L"1");
    EXPECT_EQ(disable(), wbem(WBEM_E_NOT_FOUND));
}

TEST_F(MethodResultsTest, HostPrescribesOtherTypes) {
    load(
        LR"(class Device { [key] string InstanceName;
                 void Ask([out] boolean Yes, [out] string Name, [out] sint16 Low); };
             instance of Device { InstanceName = "a"; };)");
    prescribe(L"Ask", L"Yes", L"true", L"Device");
    prescribe(L"Ask", L"Name", L"0x10", L"Device");
    prescribe(L"Ask", L"Low", L"-7", L"Device");
    IWbemClassObject* out = nullptr;
    ASSERT_EQ(wmi().ExecMethod(Text(L"Device.InstanceName=\"a\""), Text(L"Ask"), 0, nullptr,
                               nullptr, &out, nullptr),
              S_OK);
    const Object answers(out);
    EXPECT_EQ(get(*answers, L"Yes")->boolVal, VARIANT_TRUE);
    OwnedVariant name = get(*answers, L"Name");
    EXPECT_EQ(textOf(name), L"0x10");
    EXPECT_EQ(get(*answers, L"Low")->iVal, -7);
}

TEST_F(MethodResultsTest, ATestHasTheLastWord) {
    prescribe(L"SetDisabled", L"ReturnCode", L"0xC0000001");
    host().setMethodResult(L"KORVADSM_LUNINFO", L"SetDisabled", L"ReturnCode", *variantOf(3));
    EXPECT_EQ(run(0, L"SetDisabled", 0x101), 3u);
    host().clearMethodResults();
    EXPECT_EQ(run(0, L"SetDisabled", 0x101), 0xC0000001);
}

TEST_F(MethodResultsTest, ATestPrescribesARefusal_NothingIsChanged) {
    host().setMethodResult(L"KORVADSM_LUNINFO", L"SetDisabled", L"ReturnCode",
                           *variantOf(static_cast<LONG>(0xC0000001)));
    EXPECT_EQ(run(0, L"SetDisabled", 0x101), 0xC0000001);
    EXPECT_THAT(states(0), ElementsAre(1, 1, 2, 2));
}

}  // namespace
}  // namespace quista::test
