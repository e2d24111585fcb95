// IMofCompiler.
#include <fstream>

#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

class MofCompilerTest : public HostTest {
  protected:
    MofCompilerTest() {
        void* compiler = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_MofCompiler, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IMofCompiler, &compiler),
                  S_OK);
        compiler_.reset(static_cast<IMofCompiler*>(compiler));
    }

    HRESULT compile(const char* mof, LONG options = 0, const wchar_t* nameSpace = L"root\\wmi") {
        std::ofstream("compiled.mof") << mof;
        std::wstring file = L"compiled.mof";
        std::wstring target = nameSpace;
        return compiler_->CompileFile(file.data(), target.data(), nullptr, nullptr, nullptr,
                                      options, 0, 0, &info_);
    }

    ComOwner<IMofCompiler> compiler_;
    WBEM_COMPILE_STATUS_INFO info_{};
};

TEST_F(MofCompilerTest, CompileFile_AutoRecover_SucceedsAndStores) {
    EXPECT_EQ(compile("#pragma autorecover\nclass New { [key] string Name; };"), S_OK);
    EXPECT_NE(object(L"New"), nullptr);
    EXPECT_EQ(info_.lPhaseError, 0);
    EXPECT_EQ(info_.hRes, S_OK);
}

TEST_F(MofCompilerTest, CompileFile_WithoutAutoRecover_WarnsAndStores) {
    EXPECT_EQ(compile("class New { [key] string Name; };"), 2);
    EXPECT_NE(object(L"New"), nullptr);
    EXPECT_EQ(info_.lPhaseError, 2);
}

TEST_F(MofCompilerTest, CompileFile_SyntaxError_StoresNothing) {
    EXPECT_EQ(compile("class New { [key] string Name; };\nclass Broken {"),
              wbem(WBEM_E_INVALID_SYNTAX));
    EXPECT_EQ(object(L"New"), nullptr);
    EXPECT_EQ(info_.lPhaseError, 3);
    EXPECT_EQ(info_.FirstLine, 2);
    EXPECT_EQ(info_.hRes, wbem(WBEM_E_INVALID_SYNTAX));
}

TEST_F(MofCompilerTest, CompileFile_MissingFile_NotFound) {
    std::wstring file = L"nowhere.mof";
    EXPECT_EQ(
        compiler_->CompileFile(file.data(), nullptr, nullptr, nullptr, nullptr, 0, 0, 0, nullptr),
        wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(compiler_->CompileFile(nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0, 0, nullptr),
              wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(MofCompilerTest, CompileFile_OtherNamespace) {
    EXPECT_EQ(compile("#pragma autorecover\nclass New { [key] string Name; };", 0, L"root\\cimv2"),
              S_OK);
    EXPECT_EQ(object(L"New"), nullptr);
    EXPECT_NE(object(L"root\\cimv2:New"), nullptr);
    EXPECT_EQ(compile("", 0, L"root\\nowhere"), wbem(WBEM_E_INVALID_NAMESPACE));
}

TEST_F(MofCompilerTest, CompileFile_CheckOnly_StoresNothing) {
    EXPECT_EQ(
        compile("#pragma autorecover\nclass New { [key] string Name; };", WBEM_FLAG_CHECK_ONLY),
        S_OK);
    EXPECT_EQ(object(L"New"), nullptr);
}

TEST_F(MofCompilerTest, CompileFile_ConsolePrint_WritesToStandardOutput) {
    testing::internal::CaptureStdout();
    compile("class New { [key] string Name; };", WBEM_FLAG_CONSOLE_PRINT);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("compiled.mof"), std::string::npos);
}

TEST_F(MofCompilerTest, CompileFile_CanBeMadeToFail) {
    host().addFault({L"IMofCompiler", L"CompileFile", L"", L"", 1, 1, E_ACCESSDENIED});
    EXPECT_EQ(compile("class New { [key] string Name; };"), E_ACCESSDENIED);
    EXPECT_EQ(object(L"New"), nullptr);
    EXPECT_EQ(host().trace().at(1).detail, L"compiled.mof");
}

TEST_F(MofCompilerTest, OtherOperations_NotImplemented) {
    EXPECT_EQ(
        compiler_->CompileBuffer(0, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0, 0, nullptr),
        E_NOTIMPL);
    EXPECT_EQ(compiler_->CreateBMOF(nullptr, nullptr, nullptr, 0, 0, 0, nullptr), E_NOTIMPL);
}

}  // namespace
}  // namespace quista::test
