#include "tests/frame/recording_compiler.h"

#include "tests/support/text.h"

namespace quista::test {

void PrintTo(const Compilation& compilation, std::ostream* out) {
    *out << narrow(compilation.file) << " into " << narrow(compilation.nameSpace) << ", flags "
         << compilation.options << ' ' << compilation.classFlags << ' ' << compilation.instanceFlags
         << (compilation.hasOthers ? ", with more" : "");
}

HRESULT STDMETHODCALLTYPE RecordingCompiler::QueryInterface(REFIID iid, void** object) {
    const bool known = iid == IID_IUnknown || iid == IID_IMofCompiler;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT STDMETHODCALLTYPE RecordingCompiler::CompileFile(LPWSTR file, LPWSTR nameSpace, LPWSTR user,
                                                         LPWSTR authority, LPWSTR password,
                                                         LONG options, LONG classFlags,
                                                         LONG instanceFlags,
                                                         WBEM_COMPILE_STATUS_INFO* status) {
    const bool hasOthers =
        user != nullptr || authority != nullptr || password != nullptr || status != nullptr;
    compilations_.push_back({file, nameSpace, options, classFlags, instanceFlags, hasOthers});
    if (results_.empty()) return S_OK;
    const HRESULT result = results_.front();
    results_.pop_front();
    return result;
}

}  // namespace quista::test
