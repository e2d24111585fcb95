// Plays WMI's MOF compiler and records what it is given.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <deque>
#include <string>
#include <vector>

#include "tests/frame/registered_object.h"

namespace quista::test {

/// The arguments of one CompileFile.
struct Compilation {
    std::wstring file;
    std::wstring nameSpace;
    LONG options = 0;
    LONG classFlags = 0;
    LONG instanceFlags = 0;
    bool hasOthers = false;  ///< user, authority, password or a status record

    bool operator==(const Compilation&) const = default;
};

void PrintTo(const Compilation& compilation, std::ostream* out);

// COM interfaces have no virtual destructor; this object is destroyed as what it is.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// For the object's life the thread's MOF compiler: COM must be
/// initialised, and nothing else registered in this place.
class RecordingCompiler final : public IMofCompiler {
  public:
    RecordingCompiler() = default;
    ~RecordingCompiler() = default;
    RecordingCompiler(const RecordingCompiler&) = delete;
    RecordingCompiler& operator=(const RecordingCompiler&) = delete;

    /// Results of the compilations to come, in order; S_OK when there are no more.
    void setResults(const std::vector<HRESULT>& results) {
        results_ = {results.begin(), results.end()};
    }
    const std::vector<Compilation>& compilations() const { return compilations_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CompileFile(LPWSTR file, LPWSTR nameSpace, LPWSTR user,
                                          LPWSTR authority, LPWSTR password, LONG options,
                                          LONG classFlags, LONG instanceFlags,
                                          WBEM_COMPILE_STATUS_INFO* status) override;
    HRESULT STDMETHODCALLTYPE CompileBuffer(LONG, BYTE*, LPWSTR, LPWSTR, LPWSTR, LPWSTR, LONG, LONG,
                                            LONG, WBEM_COMPILE_STATUS_INFO*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateBMOF(LPWSTR, LPWSTR, LPWSTR, LONG, LONG, LONG,
                                         WBEM_COMPILE_STATUS_INFO*) override {
        return E_NOTIMPL;
    }

  private:
    RegisteredObject registration_{CLSID_MofCompiler, *this};
    std::deque<HRESULT> results_;
    std::vector<Compilation> compilations_;
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

}  // namespace quista::test
