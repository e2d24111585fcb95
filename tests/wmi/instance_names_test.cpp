// Instance names as object paths carry them.
#include "wmi/instance_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

#include "tests/support/allocation_spy.h"
#include "tests/support/log_file.h"
#include "tests/support/work_folder.h"
#include "tests/wmi/fake_object.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InstanceNameTest : public testing::Test {
  protected:
    /// The escaped name of an object with this InstanceName.
    std::wstring escaped(const std::wstring& instanceName) {
        object.text(L"InstanceName", instanceName);
        std::wstring name = L"former";
        IWbemClassObject* pointer = &object;
        EXPECT_TRUE(GetEscapedInstanceName(&pointer, name));
        EXPECT_EQ(pointer, &object);
        EXPECT_FALSE(log.exists());
        return name;
    }

    void expectFailure(IWbemClassObject* pointer, const LogLine& line) {
        std::wstring name = L"former";
        EXPECT_FALSE(GetEscapedInstanceName(&pointer, name));
        EXPECT_EQ(name, L"former") << "the name is left alone";
        EXPECT_THAT(log.take(), ElementsAre(line));
    }

    WorkFolder folder;
    LogFile log;
    FakeObject object;
};

TEST_F(InstanceNameTest, BackslashesAreDoubled) {
    EXPECT_EQ(escaped(L"A\\B"), L"A\\\\B");
    EXPECT_EQ(escaped(L"MPIO\\Disk&Ven_KORVA\\1&7f6ac24&0_0"),
              L"MPIO\\\\Disk&Ven_KORVA\\\\1&7f6ac24&0_0");
    EXPECT_EQ(escaped(L"\\\\"), L"\\\\\\\\");
    EXPECT_EQ(escaped(L"\\"), L"\\\\");
    EXPECT_THAT(object.reads(), testing::Each(L"InstanceName"));
}

TEST_F(InstanceNameTest, NothingElseIsEscaped) {
    EXPECT_EQ(escaped(L"say \"x\" 'y' /\n%s"), L"say \"x\" 'y' /\n%s");
    EXPECT_EQ(escaped(L""), L"");
}

TEST_F(InstanceNameTest, LongNameIsWhole) {
    EXPECT_EQ(escaped(std::wstring(3000, L'\\')), std::wstring(6000, L'\\'));
}

TEST_F(InstanceNameTest, NameThatIsNoStringIsEmpty) {
    IWbemClassObject* pointer = &object;
    for (const VARTYPE type : {VT_NULL, VT_EMPTY, VT_I4, VT_BSTR}) {
        object.set(L"InstanceName", Value::bits(type));
        std::wstring name = L"former";
        EXPECT_TRUE(GetEscapedInstanceName(&pointer, name));
        EXPECT_EQ(name, L"");
    }
    EXPECT_FALSE(log.exists());
}

TEST_F(InstanceNameTest, UnreadableNameIsLogged) {
    expectFailure(&object, {"GetEscapedInstanceName::Get(InstanceName)", WBEM_E_NOT_FOUND});
    object.set(L"InstanceName", Value::text(L"x"), kFailed);
    const AllocationScope scope;
    expectFailure(&object, {"GetEscapedInstanceName::Get(InstanceName)", WBEM_E_FAILED});
    expectFailure(nullptr, {"GetEscapedInstanceName::Get(InstanceName)", 0x80004003});
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

TEST_F(InstanceNameTest, ExceptionIsCaughtAndLogged) {
    object.text(L"InstanceName", L"x");
    object.onGet([](const std::wstring&) { throw std::runtime_error("from a provider"); });
    expectFailure(&object, {"GetEscapedInstanceName Exception )", 0});
    object.onGet([](const std::wstring&) { throw 7; });
    expectFailure(&object, {"GetEscapedInstanceName Exception )", 0});
}

TEST_F(InstanceNameTest, NameIsFreed) {
    object.text(L"InstanceName", L"A\\B");
    IWbemClassObject* pointer = &object;
    std::wstring name;
    const AllocationScope scope;
    EXPECT_TRUE(GetEscapedInstanceName(&pointer, name));
    EXPECT_THAT(scope.survivors(), IsEmpty());
    EXPECT_EQ(object.references(), 0u) << "the object stays the caller's";
}

TEST_F(InstanceNameTest, QuotedFormAndPathHoldTheEscapedName) {
    const std::wstring name = escapeBackslashes(L"A\\\"B");
    EXPECT_EQ(quoted(name), L"\"A\\\\\"B\"");
    EXPECT_EQ(instancePath(L"KORVADSM_LUNINFO", name),
              L"KORVADSM_LUNINFO.InstanceName=\"A\\\\\"B\"");
    EXPECT_EQ(quoted(L""), L"\"\"");
}

}  // namespace
}  // namespace quista::test
