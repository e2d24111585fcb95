// VARIANTs that a host would not deliver by itself, for values of unexpected types.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <vector>

namespace quista::test {

/// Owns one VARIANT. Move only.
class Value {
  public:
    Value() = default;
    Value(Value&& other) noexcept;
    Value& operator=(Value&& other) noexcept;
    ~Value();

    const VARIANT& get() const { return value_; }
    operator const VARIANT&() const { return value_; }

    /// A property of the first instance of a root\wmi class, read as any client of WMI does.
    static Value ofProperty(const std::wstring& className, const std::wstring& property);
    static Value null();
    static Value number(LONG number);
    static Value byte(BYTE byte);
    static Value boolean(bool truth);
    static Value text(const std::wstring& text);
    /// An interface, which may be null.
    static Value object(IUnknown* object);
    static Value objects(const std::vector<IUnknown*>& objects, LONG lowerBound = 0);
    static Value characters(const std::vector<SHORT>& characters);
    /// An array whose elements hold zero.
    static Value array(VARTYPE elementType, ULONG elements, LONG lowerBound = 0);

  private:
    VARIANT value_{};
};

/// Element of an array of objects, owned by the array.
IUnknown* elementOf(const Value& objects, LONG index);

/// A COM object that is no WMI object; nothing needs to release it.
IUnknown* foreignObject();

}  // namespace quista::test
