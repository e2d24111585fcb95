#include "simulator/com/mof_compiler.h"

#include <cstdio>
#include <string>
#include <utility>

#include "simulator/driver/mof_arrival.h"
#include "simulator/mof/mof_reader.h"
#include "simulator/repository/object_path.h"

namespace quista::simulator {
namespace {

/// What CompileFile returns, and notes as the phase, for a file that compiles but does not ask to
/// be compiled again when Windows rebuilds its repository.
constexpr LONG kWarning = 2;

enum Phase : LONG { kNoError = 0, kCannotRead = 1, kCannotParse = 3 };

void printResult(const std::wstring& file, const MofResult& result) {
    if (result.ok()) {
        std::fwprintf(stdout, L"%ls: compiled\n", file.c_str());
    } else {
        std::fwprintf(stdout, L"%ls(%u): %ls\n", result.error->file.c_str(), result.error->line,
                      result.error->reason.c_str());
    }
    std::fflush(stdout);
}

HRESULT noteError(const MofError& error, WBEM_COMPILE_STATUS_INFO& status) {
    const bool isRead = error.line != 0;
    status.lPhaseError = isRead ? kCannotParse : kCannotRead;
    status.FirstLine = static_cast<LONG>(error.line);
    status.LastLine = status.FirstLine;
    return isRead ? wbem(WBEM_E_INVALID_SYNTAX) : wbem(WBEM_E_NOT_FOUND);
}

}  // namespace

MofCompiler::MofCompiler(std::shared_ptr<Host> host) : ComObject(std::move(host)) {}

HRESULT STDMETHODCALLTYPE MofCompiler::CompileFile(LPWSTR file, LPWSTR nameSpace, LPWSTR, LPWSTR,
                                                   LPWSTR, LONG options, LONG, LONG,
                                                   WBEM_COMPILE_STATUS_INFO* status) {
    Call made = call(L"CompileFile");
    made.className = textOf(nameSpace);
    made.detail = textOf(file);
    return host()->run(made, [&] {
        if (file == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        WBEM_COMPILE_STATUS_INFO info{};
        info.hRes = compile(file, textOf(nameSpace), options, info);
        if (status != nullptr) *status = info;
        return info.hRes;
    });
}

HRESULT MofCompiler::compile(const std::wstring& file, std::wstring_view nameSpace, LONG options,
                             WBEM_COMPILE_STATUS_INFO& status) {
    const std::wstring_view target = nameSpace.empty() ? kDefaultMofNamespace : nameSpace;
    if (!host()->repository.hasNamespace(target)) return wbem(WBEM_E_INVALID_NAMESPACE);
    MofFileSource source;
    Repository compiled = host()->repository;
    const MofResult result = MofReader(compiled, source).loadFile(file, target);
    if ((options & WBEM_FLAG_CONSOLE_PRINT) != 0) printResult(file, result);
    if (!result.ok()) return noteError(*result.error, status);
    if ((options & WBEM_FLAG_CHECK_ONLY) == 0) {
        MofArrival(host()->repository).settle(compiled);
        host()->repository = std::move(compiled);
    }
    if (result.hasAutoRecover) return S_OK;
    status.lPhaseError = kWarning;
    return kWarning;
}

HRESULT STDMETHODCALLTYPE MofCompiler::CompileBuffer(LONG, BYTE*, LPWSTR, LPWSTR, LPWSTR, LPWSTR,
                                                     LONG, LONG, LONG, WBEM_COMPILE_STATUS_INFO*) {
    return notImplemented(L"CompileBuffer");
}

HRESULT STDMETHODCALLTYPE MofCompiler::CreateBMOF(LPWSTR, LPWSTR, LPWSTR, LONG, LONG, LONG,
                                                  WBEM_COMPILE_STATUS_INFO*) {
    return notImplemented(L"CreateBMOF");
}

}  // namespace quista::simulator
