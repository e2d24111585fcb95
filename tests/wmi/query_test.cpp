// Queries, class enumerations and the way through them, one instance at a time.
#include "wmi/query.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/session.h"
#include "tests/support/library_test.h"
#include "tests/wmi/fake_object.h"
#include "tests/wmi/recorded_services.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

constexpr HRESULT kInvalidClass = static_cast<HRESULT>(WBEM_E_INVALID_CLASS);

class QueryTest : public LibraryTest {
  protected:
    QueryTest() {
        host.loadText(L"class Item { [key] string Name; };\n");
        for (const wchar_t* name : {L"a", L"b"}) host.add(MofObject(L"Item").text(L"Name", name));
        openSession();
    }

    ComRef<IEnumWbemClassObject> items() {
        ComRef<IEnumWbemClassObject> enumerator;
        EXPECT_EQ(DsmExecQuery(enumerator.receive(), L"SELECT * FROM Item"), S_OK);
        return enumerator;
    }
};

TEST_F(QueryTest, QueryIsForwardOnlyAndReturnsAtOnce) {
    const RecordedServices services;
    const ComRef<IEnumWbemClassObject> enumerator = items();
    EXPECT_TRUE(enumerator);
    EXPECT_THAT(services.calls(), ElementsAre(ServiceCall{
                                      L"ExecQuery", L"SELECT * FROM Item", L"WQL", 0x30, {}, {}}));
    EXPECT_FALSE(log.exists());
}

TEST_F(QueryTest, FailedQueryGivesItsResult) {
    ComRef<IEnumWbemClassObject> enumerator;
    EXPECT_EQ(DsmExecQuery(enumerator.receive(), L"SELECT FROM"),
              static_cast<HRESULT>(WBEM_E_INVALID_QUERY));
    EXPECT_FALSE(enumerator);
    EXPECT_FALSE(log.exists()) << "the caller logs";
}

TEST_F(QueryTest, WithoutASessionACallFails) {
    closeSession();
    ComRef<IEnumWbemClassObject> enumerator;
    EXPECT_EQ(DsmExecQuery(enumerator.receive(), L"SELECT * FROM Item"), E_POINTER);
    EXPECT_EQ(enumerateClass(L"Item", enumerator), E_POINTER);
    EXPECT_FALSE(enumerator);
}

TEST_F(QueryTest, AnyConnectionCanBeAsked) {
    ComRef<IEnumWbemClassObject> enumerator;
    host.loadText(
        L"#pragma namespace(\"\\\\\\\\.\\\\root\\\\cimv2\")\n"
        L"class Disk { [key] string Name; };\n");
    host.add(MofObject(L"Disk").text(L"Name", L"a"), kCimv2);
    EXPECT_EQ(execQuery(gCimv2Services, enumerator.receive(), L"SELECT * FROM Disk"), S_OK);
    ComRef<IWbemClassObject> disk;
    EXPECT_EQ(nextInstance(enumerator.get(), disk), S_OK);
    EXPECT_EQ(execQuery(nullptr, enumerator.receive(), L"SELECT * FROM Disk"), E_POINTER);
}

TEST_F(QueryTest, EnumerationIsShallowToo) {
    const RecordedServices services;
    ComRef<IEnumWbemClassObject> enumerator;
    EXPECT_EQ(enumerateClass(L"Item", enumerator), S_OK);
    EXPECT_TRUE(enumerator);
    EXPECT_THAT(services.calls(),
                ElementsAre(ServiceCall{L"CreateInstanceEnum", L"Item", L"", 0x31, {}, {}}));
}

TEST_F(QueryTest, FailedEnumerationGivesItsResult) {
    host.failEnumeration(L"Item", kInvalidClass);
    ComRef<IEnumWbemClassObject> enumerator;
    EXPECT_EQ(enumerateClass(L"Item", enumerator), kInvalidClass);
    host->clearFaults();
    host.failEnumeration(L"Item", S_OK);
    EXPECT_EQ(enumerateClass(L"Item", enumerator), E_POINTER) << "success without an enumerator";
    EXPECT_EQ(createInstanceEnum(L"Item", enumerator), S_OK) << "left to the caller";
    EXPECT_FALSE(enumerator);
}

TEST_F(QueryTest, EndOfAnEnumerationIsLoggedLikeAFailure) {
    const LiveObjectsCheck check(host);
    const ComRef<IEnumWbemClassObject> enumerator = items();
    ComRef<IWbemClassObject> item;
    EXPECT_EQ(nextOrLog(enumerator.get(), item, L"Test::Next"), S_OK);
    EXPECT_EQ(nextOrLog(enumerator.get(), item, L"Test::Next"), S_OK);
    EXPECT_TRUE(item);
    EXPECT_FALSE(log.exists());
    EXPECT_EQ(nextOrLog(enumerator.get(), item, L"Test::Next"), S_FALSE);
    EXPECT_FALSE(item) << "the former instance is released";
    // The number of the general error, which ReportError itself would drop.
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"Test::Next", 1}));
}

TEST_F(QueryTest, FailureOfAnEnumerationIsLogged) {
    ComRef<IEnumWbemClassObject> enumerator;
    ASSERT_EQ(DsmExecQuery(enumerator.receive(), L"SELECT * FROM Missing"), S_OK);
    ComRef<IWbemClassObject> item;
    EXPECT_EQ(nextOrLog(enumerator.get(), item, L"Test::Next"), kInvalidClass);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{"Test::Next", WBEM_E_INVALID_CLASS}));
    EXPECT_EQ(nextOrLog(nullptr, item, L"Test::Next"), E_POINTER);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{"Test::Next", 0x80004003}));
}

TEST_F(QueryTest, SuccessWithoutAnInstanceIsAFailure) {
    const ComRef<IEnumWbemClassObject> enumerator = items();
    host.failNext(L"Item", S_OK);
    ComRef<IWbemClassObject> item;
    EXPECT_EQ(nextOrLog(enumerator.get(), item, L"Test::Next"), E_POINTER);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{"Test::Next", 0x80004003}));
    host->clearFaults();
    EXPECT_EQ(nextInstance(enumerator.get(), item), S_OK);
    EXPECT_TRUE(item);
}

// COM interfaces have no virtual destructor; this object is destroyed as what it is.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Delivers one object and keeps the arguments.
class OneObject final : public IEnumWbemClassObject {
  public:
    explicit OneObject(IWbemClassObject& object) : object_(object) {}

    LONG timeout = 0;
    ULONG count = 0;

    HRESULT STDMETHODCALLTYPE Next(LONG givenTimeout, ULONG givenCount, IWbemClassObject** objects,
                                   ULONG* returned) override {
        timeout = givenTimeout;
        count = givenCount;
        objects[0] = &object_;
        object_.AddRef();
        *returned = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return E_NOTIMPL; }

  private:
    IWbemClassObject& object_;
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

TEST(NextInstanceTest, OneInstanceIsAwaitedWithoutLimit) {
    FakeObject object;
    OneObject enumerator(object);
    {
        ComRef<IWbemClassObject> instance;
        EXPECT_EQ(nextInstance(&enumerator, instance), S_OK);
        EXPECT_EQ(instance.get(), &object);
    }
    EXPECT_EQ(object.references(), 0u);
    EXPECT_EQ(static_cast<DWORD>(enumerator.timeout), 0xFFFFFFFFu);
    EXPECT_EQ(enumerator.count, 1u);
}

}  // namespace
}  // namespace quista::test
