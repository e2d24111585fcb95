// ExecMethod, and results that tests prescribe for it.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

constexpr const wchar_t* kFirst = L"Disk.Name=\"first\"";

class MethodTest : public HostTest {
  protected:
    MethodTest() { loadSample(); }

    HRESULT execute(const wchar_t* path, const wchar_t* method, IWbemClassObject* in = nullptr) {
        IWbemClassObject* out = reinterpret_cast<IWbemClassObject*>(8);
        const HRESULT result =
            wmi().ExecMethod(Text(path), Text(method), 0, nullptr, in, &out, nullptr);
        out_.reset(out);
        if (result != S_OK) {
            EXPECT_EQ(out, nullptr);
        }
        return result;
    }

    LONG returnCode() { return out_ == nullptr ? -1 : get(*out_, L"ReturnCode")->lVal; }

    Object out_;
};

TEST_F(MethodTest, ExecMethod_WithoutInputs_GivesZero) {
    EXPECT_EQ(execute(kFirst, L"REFRESH"), S_OK);
    EXPECT_EQ(returnCode(), 0);
    OwnedVariant className = get(*out_, L"__CLASS");
    EXPECT_EQ(textOf(className), L"__PARAMETERS");
    BSTR text = nullptr;
    EXPECT_EQ(out_->GetObjectText(0, &text), S_OK);
    SysFreeString(text);
}

TEST_F(MethodTest, ExecMethod_WithInputs_TakesThem) {
    const Object in = inParameters(L"Disk", L"Reset");
    OwnedVariant mode = variantOf(5);
    ASSERT_EQ(in->Put(L"mode", 0, mode.get(), 0), S_OK);
    EXPECT_EQ(execute(kFirst, L"Reset", in.get()), S_OK);
    EXPECT_EQ(returnCode(), 0);
}

TEST_F(MethodTest, ExecMethod_NotVoid_GivesReturnValue) {
    EXPECT_EQ(execute(kFirst, L"Check"), S_OK);
    EXPECT_EQ(get(*out_, L"ReturnValue")->lVal, 0);
    OwnedVariant report = get(*out_, L"Report");
    EXPECT_EQ(textOf(report), L"");
}

TEST_F(MethodTest, ExecMethod_NoOutputs_GivesNoObject) {
    const Object in = inParameters(L"Disk", L"Forget");
    EXPECT_EQ(execute(kFirst, L"Forget", in.get()), S_OK);
    EXPECT_EQ(out_, nullptr);
}

TEST_F(MethodTest, ExecMethod_OutPointerLeftOut_IsFine) {
    EXPECT_EQ(
        wmi().ExecMethod(Text(kFirst), Text(L"Refresh"), 0, nullptr, nullptr, nullptr, nullptr),
        S_OK);
}

TEST_F(MethodTest, ExecMethod_InheritedMethod_OnASubclass) {
    EXPECT_EQ(execute(L"FastDisk.Name=\"second\"", L"Refresh"), S_OK);
}

TEST_F(MethodTest, ExecMethod_StaticMethod_OnTheClass) {
    EXPECT_EQ(execute(L"Disk", L"Rescan"), S_OK);
    EXPECT_EQ(execute(L"Disk", L"Refresh"), wbem(WBEM_E_INVALID_OBJECT_PATH));
}

TEST_F(MethodTest, ExecMethod_UnknownMethodObjectOrPath) {
    EXPECT_EQ(execute(kFirst, L"Nothing"), wbem(WBEM_E_INVALID_METHOD));
    EXPECT_EQ(execute(L"Disk.Name=\"third\"", L"Refresh"), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(execute(L"Unknown.Name=\"first\"", L"Refresh"), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(execute(L"Disk.Name=", L"Refresh"), wbem(WBEM_E_INVALID_OBJECT_PATH));
    EXPECT_EQ(execute(nullptr, L"Refresh"), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(execute(kFirst, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(MethodTest, ExecMethod_WrongParameters_InvalidMethodParameters) {
    const Object forReset = inParameters(L"Disk", L"Reset");
    const Object address = spawn(L"Address");
    EXPECT_EQ(execute(kFirst, L"Reset"), wbem(WBEM_E_INVALID_METHOD_PARAMETERS));
    EXPECT_EQ(execute(kFirst, L"Refresh", forReset.get()), wbem(WBEM_E_INVALID_METHOD_PARAMETERS));
    EXPECT_EQ(execute(kFirst, L"Forget", forReset.get()), wbem(WBEM_E_INVALID_METHOD_PARAMETERS));
    EXPECT_EQ(execute(kFirst, L"Reset", address.get()), wbem(WBEM_E_INVALID_METHOD_PARAMETERS));
    EXPECT_EQ(execute(kFirst, L"Reset", object(L"Disk").get()),
              wbem(WBEM_E_INVALID_METHOD_PARAMETERS));
}

TEST_F(MethodTest, SetMethodResult_TakesThePlaceOfTheDrivers) {
    OwnedVariant code = variantOf(-0x3FFFFFFF);
    host().setMethodResult(L"disk", L"refresh", L"returncode", *code);
    EXPECT_EQ(execute(kFirst, L"Refresh"), S_OK);
    EXPECT_EQ(returnCode(), -0x3FFFFFFF);
    EXPECT_EQ(execute(L"FastDisk.Name=\"second\"", L"Refresh"), S_OK);
    EXPECT_EQ(returnCode(), -0x3FFFFFFF);
    EXPECT_EQ(execute(L"Disk", L"Rescan"), S_OK);
    EXPECT_EQ(returnCode(), 0);
}

TEST_F(MethodTest, SetMethodResult_TheLatestCounts_ClearForgets) {
    host().setMethodResult(L"Disk", L"Refresh", L"ReturnCode", *variantOf(1));
    host().setMethodResult(L"Disk", L"Refresh", L"ReturnCode", *variantOf(2));
    EXPECT_EQ(execute(kFirst, L"Refresh"), S_OK);
    EXPECT_EQ(returnCode(), 2);
    host().clearMethodResults();
    EXPECT_EQ(execute(kFirst, L"Refresh"), S_OK);
    EXPECT_EQ(returnCode(), 0);
}

TEST_F(MethodTest, SetMethodResult_ThatDoesNotFit_FailsTheCall) {
    host().setMethodResult(L"Disk", L"Refresh", L"ReturnCode", *variantOf(L"word"));
    EXPECT_EQ(execute(kFirst, L"Refresh"), wbem(WBEM_E_TYPE_MISMATCH));
    host().clearMethodResults();
    host().setMethodResult(L"Disk", L"Refresh", L"Nothing", *variantOf(1));
    EXPECT_EQ(execute(kFirst, L"Refresh"), wbem(WBEM_E_NOT_FOUND));
}

TEST_F(MethodTest, SetMethodWithoutOutput_SucceedsWithoutAnObject) {
    host().setMethodWithoutOutput(L"Disk", L"Refresh");
    EXPECT_EQ(execute(kFirst, L"Refresh"), S_OK);
    EXPECT_EQ(out_, nullptr);
}

TEST_F(MethodTest, Override_OfAnOutParameter_GivesAnyVariantType) {
    host().addOverride({L"__PARAMETERS", L"ReturnCode"}, *variantOf(L"text"));
    EXPECT_EQ(execute(kFirst, L"Refresh"), S_OK);
    EXPECT_EQ(get(*out_, L"ReturnCode")->vt, VT_BSTR);
}

}  // namespace
}  // namespace quista::test
