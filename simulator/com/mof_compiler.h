// IMofCompiler: compiles MOF files into the repository of a simulated host.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <memory>

#include "simulator/com/com_object.h"

namespace quista::simulator {

class MofCompiler final : public ComObject<IMofCompiler, ObjectKind::kCompiler> {
  public:
    explicit MofCompiler(std::shared_ptr<Host> host);

    HRESULT STDMETHODCALLTYPE CompileFile(LPWSTR file, LPWSTR nameSpace, LPWSTR user,
                                          LPWSTR authority, LPWSTR password, LONG options,
                                          LONG classFlags, LONG instanceFlags,
                                          WBEM_COMPILE_STATUS_INFO* status) override;
    HRESULT STDMETHODCALLTYPE CompileBuffer(LONG size, BYTE* buffer, LPWSTR nameSpace, LPWSTR user,
                                            LPWSTR authority, LPWSTR password, LONG options,
                                            LONG classFlags, LONG instanceFlags,
                                            WBEM_COMPILE_STATUS_INFO* status) override;
    HRESULT STDMETHODCALLTYPE CreateBMOF(LPWSTR textFile, LPWSTR binaryFile, LPWSTR nameSpace,
                                         LONG options, LONG classFlags, LONG instanceFlags,
                                         WBEM_COMPILE_STATUS_INFO* status) override;

  private:
    ~MofCompiler() override = default;

    HRESULT compile(const std::wstring& file, std::wstring_view nameSpace, LONG options,
                    WBEM_COMPILE_STATUS_INFO& status);
};

}  // namespace quista::simulator
