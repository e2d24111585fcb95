// A host whose instances have methods of every kind, and the call under test.
#pragma once

#include <string>
#include <vector>

#include "tests/support/allocation_spy.h"
#include "tests/support/library_test.h"
#include "tests/wmi/value.h"
#include "wmi/method_call.h"

namespace quista::test {

inline constexpr DWORD kWmiFailure = 14;

/// Class Operations; its instances are named A\B, C\D and E, in this order.
class MethodCallTest : public LibraryTest {
  protected:
    MethodCallTest();

    /// Calls a method of the instance, which is found first unless another one is named.
    DWORD call(const wchar_t* method, const wchar_t* quotedName = L"\"A\\\\B\"");

    /// Gives an out-parameter its value.
    void setResult(const wchar_t* method, const wchar_t* outParameter, LONG value);
    /// Lets a call on any WMI object fail, by its name in IWbemClassObject.
    void failObject(const wchar_t* objectMethod, HRESULT result, const wchar_t* property = L"");

    /// "Interface::Method(detail)" of the calls since the session was opened.
    std::vector<std::wstring> trace() const;
    /// How often the enumeration was asked for an instance.
    std::size_t nextCalls() const;

    Value policy = Value::bits(VT_I4, 5);
};

}  // namespace quista::test
