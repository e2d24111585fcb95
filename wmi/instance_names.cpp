#include "wmi/instance_names.h"

#include "quista/frame.h"
#include "wmi/property.h"

namespace quista {

std::wstring escapeBackslashes(const std::wstring& name) {
    std::wstring escaped;
    for (const wchar_t character : name) {
        escaped += character;
        if (character == L'\\') escaped += character;
    }
    return escaped;
}

std::wstring quoted(const std::wstring& text) {
    return L"\"" + text + L"\"";
}

std::wstring instancePath(const std::wstring& className, const std::wstring& escapedName) {
    return className + L".InstanceName=" + quoted(escapedName);
}

bool GetEscapedInstanceName(IWbemClassObject** object, std::wstring& name) {
    try {
        UniqueVariant value;
        if (getOrLog(*object, L"InstanceName", value,
                     L"GetEscapedInstanceName::Get(InstanceName)") != S_OK) {
            return false;
        }
        name = escapeBackslashes(stringOf(value.get()));
        return true;
    } catch (...) {
        // Kept: the stray parenthesis is part of the text.
        ReportError(L"GetEscapedInstanceName Exception )", 0);
        return false;
    }
}

}  // namespace quista
