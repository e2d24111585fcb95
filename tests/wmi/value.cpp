#include "tests/wmi/value.h"

namespace quista::test {

namespace {

/// Stores elements one by one, where the system's store takes the element's address.
template <typename Element>
Value arrayOf(VARTYPE type, const std::vector<Element>& elements, LONG lower) {
    Value value = Value::array(type, static_cast<ULONG>(elements.size()), lower);
    LONG index = lower;
    for (Element element : elements) {
        SafeArrayPutElement(value.array(), &index, &element);
        ++index;
    }
    return value;
}

}  // namespace

Value Value::bits(VARTYPE type, std::int64_t value) {
    Value result;
    result.variant_.vt = type;
    result.variant_.llVal = value;
    return result;
}

Value Value::real32(float value) {
    Value result = bits(VT_R4);
    result.variant_.fltVal = value;
    return result;
}

Value Value::real64(double value) {
    Value result = bits(VT_R8);
    result.variant_.dblVal = value;
    return result;
}

Value Value::text(const std::wstring& text) {
    Value result = bits(VT_BSTR);
    result.variant_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return result;
}

Value Value::object(IUnknown* object) {
    Value result = bits(VT_UNKNOWN);
    result.variant_.punkVal = object;
    if (object != nullptr) object->AddRef();
    return result;
}

Value Value::shorts(const std::vector<SHORT>& elements, LONG lower) {
    return arrayOf(VT_I2, elements, lower);
}

Value Value::bytes(const std::vector<BYTE>& elements, LONG lower) {
    return arrayOf(VT_UI1, elements, lower);
}

Value Value::longs(const std::vector<LONG>& elements, LONG lower) {
    return arrayOf(VT_I4, elements, lower);
}

Value Value::texts(const std::vector<std::wstring>& elements, LONG lower) {
    Value result = array(VT_BSTR, static_cast<ULONG>(elements.size()), lower);
    for (const std::wstring& element : elements) {
        const Value owned = text(element);
        SafeArrayPutElement(result.array(), &lower, owned.get().bstrVal);
        ++lower;
    }
    return result;
}

Value Value::objects(const std::vector<IUnknown*>& elements, LONG lower) {
    Value result = array(VT_UNKNOWN, static_cast<ULONG>(elements.size()), lower);
    for (IUnknown* element : elements) {
        SafeArrayPutElement(result.array(), &lower, element);
        ++lower;
    }
    return result;
}

Value Value::array(VARTYPE element, ULONG count, LONG lower) {
    Value result = bits(static_cast<VARTYPE>(VT_ARRAY | element));
    SAFEARRAYBOUND bound = {count, lower};
    result.variant_.parray = SafeArrayCreate(element, 1, &bound);
    return result;
}

Value Value::matrix(VARTYPE element, ULONG rows, ULONG columns) {
    Value result = bits(static_cast<VARTYPE>(VT_ARRAY | element));
    SAFEARRAYBOUND bounds[] = {{rows, 0}, {columns, 0}};
    result.variant_.parray = SafeArrayCreate(element, 2, bounds);
    return result;
}

Value Value::byReference() && {
    variant_.vt = static_cast<VARTYPE>(variant_.vt | VT_BYREF);
    return std::move(*this);
}

std::vector<Value> arraysWithoutElements(VARTYPE element) {
    std::vector<Value> values;
    values.push_back(Value::array(element, 0));
    values.push_back(Value::array(element, 0, 5));
    values.push_back(Value::bits(static_cast<VARTYPE>(VT_ARRAY | element)));
    values.push_back(Value::matrix(element, 2, 2));
    values.push_back(Value());
    values.push_back(Value::bits(VT_NULL));
    values.push_back(Value::bits(VT_I4, 7));
    values.push_back(Value::text(L"text"));
    return values;
}

}  // namespace quista::test
