#include "tests/frame/registered_object.h"

#include <objbase.h>

#include <gtest/gtest.h>

namespace quista::test {

RegisteredObject::RegisteredObject(const CLSID& classId, IUnknown& object) : object_(object) {
    EXPECT_EQ(CoRegisterClassObject(classId, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                    &registration_),
              S_OK);
}

RegisteredObject::~RegisteredObject() {
    EXPECT_EQ(CoRevokeClassObject(registration_), S_OK);
}

HRESULT STDMETHODCALLTYPE RegisteredObject::QueryInterface(REFIID iid, void** object) {
    const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT STDMETHODCALLTYPE RegisteredObject::CreateInstance(IUnknown* outer, REFIID iid,
                                                           void** object) {
    EXPECT_EQ(outer, nullptr);
    return object_.QueryInterface(iid, object);
}

}  // namespace quista::test
