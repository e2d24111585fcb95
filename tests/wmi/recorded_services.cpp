#include "tests/wmi/recorded_services.h"

#include <gtest/gtest.h>

#include "frame/session.h"
#include "tests/support/text.h"

namespace quista::test {

namespace {

std::wstring mofOf(IWbemClassObject* object) {
    if (object == nullptr) return {};
    BSTR text = nullptr;
    EXPECT_EQ(object->GetObjectText(0, &text), S_OK);
    std::wstring result = text != nullptr ? text : L"";
    SysFreeString(text);
    return result;
}

}  // namespace

void PrintTo(const ServiceCall& call, std::ostream* out) {
    *out << narrow(call.method + L"(" + call.target + L", " + call.detail) << ", " << call.flags
         << ") " << narrow(call.input + L" -> " + call.output);
}

RecordedServices::RecordedServices() : connection_(gServices) {
    gServices = this;
}

RecordedServices::~RecordedServices() {
    gServices = connection_;
}

HRESULT STDMETHODCALLTYPE RecordedServices::GetObject(const BSTR path, LONG flags,
                                                      IWbemContext* context,
                                                      IWbemClassObject** object,
                                                      IWbemCallResult** result) {
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(result, nullptr);
    calls_.push_back({L"GetObject", path, L"", flags, L"", L"", object == nullptr});
    return connection_->GetObject(path, flags, context, object, result);
}

HRESULT STDMETHODCALLTYPE RecordedServices::CreateInstanceEnum(const BSTR className, LONG flags,
                                                               IWbemContext* context,
                                                               IEnumWbemClassObject** enumerator) {
    EXPECT_EQ(context, nullptr);
    calls_.push_back({L"CreateInstanceEnum", className, L"", flags, L"", L""});
    return connection_->CreateInstanceEnum(className, flags, context, enumerator);
}

HRESULT STDMETHODCALLTYPE RecordedServices::ExecQuery(const BSTR language, const BSTR query,
                                                      LONG flags, IWbemContext* context,
                                                      IEnumWbemClassObject** enumerator) {
    EXPECT_EQ(context, nullptr);
    calls_.push_back({L"ExecQuery", query, language, flags, L"", L""});
    return connection_->ExecQuery(language, query, flags, context, enumerator);
}

HRESULT STDMETHODCALLTYPE RecordedServices::ExecMethod(const BSTR path, const BSTR method,
                                                       LONG flags, IWbemContext* context,
                                                       IWbemClassObject* input,
                                                       IWbemClassObject** output,
                                                       IWbemCallResult** result) {
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(result, nullptr);
    const HRESULT outcome =
        connection_->ExecMethod(path, method, flags, context, input, output, result);
    calls_.push_back({L"ExecMethod", path, method, flags, mofOf(input), mofOf(*output)});
    return outcome;
}

HRESULT STDMETHODCALLTYPE RecordedServices::PutInstance(IWbemClassObject* instance, LONG flags,
                                                        IWbemContext* context,
                                                        IWbemCallResult** result) {
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(result, nullptr);
    calls_.push_back({L"PutInstance", L"", L"", flags, mofOf(instance), L""});
    return connection_->PutInstance(instance, flags, context, result);
}

}  // namespace quista::test
