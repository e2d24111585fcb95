#include "simulator/repository/object_path.h"

#include "tests/simulator/core/fixtures.h"

namespace quista::test {
namespace {

using namespace quista::simulator;

TEST(NamespaceTest, AcceptsWhatWmiAccepts) {
    EXPECT_EQ(normalizeNamespace(L"root\\wmi"), L"root\\wmi");
    EXPECT_EQ(normalizeNamespace(L"ROOT/Cimv2"), L"ROOT\\Cimv2");
    EXPECT_EQ(normalizeNamespace(L"\\\\.\\root\\wmi"), L"root\\wmi");
    EXPECT_EQ(normalizeNamespace(L"//./root"), L"root");
    EXPECT_EQ(normalizeNamespace(L"\\\\LocalHost\\root"), L"root");
    EXPECT_EQ(normalizeNamespace(L"\\\\simulated\\root"), L"root");
}

TEST(NamespaceTest, RefusesWhatIsBadlyWritten) {
    for (const wchar_t* text : {L"", L"root\\", L"root\\\\wmi", L"\\root", L"\\\\.\\", L"\\\\.",
                                L"\\\\elsewhere\\root", L"root wmi", L"root:wmi", L"//"})
        EXPECT_FALSE(normalizeNamespace(text)) << narrow(text);
}

TEST(ObjectPathTest, ReadsAClass) {
    const auto path = parseObjectPath(L"MPIO_DISK_INFO");
    ASSERT_TRUE(path);
    EXPECT_TRUE(path->isClass());
    EXPECT_EQ(path->className, L"MPIO_DISK_INFO");
    EXPECT_EQ(path->nameSpace, L"");
}

TEST(ObjectPathTest, ReadsAnInstanceAndItsEscapes) {
    const auto path = parseObjectPath(L"X.InstanceName=\"Root\\\\MPIO\\\"0000\"");
    ASSERT_TRUE(path);
    EXPECT_FALSE(path->isClass());
    ASSERT_EQ(path->keys.size(), 1U);
    EXPECT_EQ(path->keys[0].name, L"InstanceName");
    EXPECT_EQ(path->keys[0].value, CimValue::ofText(L"Root\\MPIO\"0000"));
}

TEST(ObjectPathTest, ReadsTheSoleKeyAndTheSingleton) {
    const auto sole = parseObjectPath(L"X=\"a\"");
    ASSERT_TRUE(sole);
    ASSERT_EQ(sole->keys.size(), 1U);
    EXPECT_EQ(sole->keys[0].name, L"");
    const auto singleton = parseObjectPath(L"X=@");
    ASSERT_TRUE(singleton);
    EXPECT_TRUE(singleton->isSingleton);
    EXPECT_FALSE(singleton->isClass());
}

TEST(ObjectPathTest, ReadsSeveralKeysOfAllKinds) {
    const auto path = parseObjectPath(L"X.A=\"a,b\",B=3,C=-4,D=TRUE,E=false");
    ASSERT_TRUE(path);
    ASSERT_EQ(path->keys.size(), 5U);
    EXPECT_EQ(path->keys[0].value, CimValue::ofText(L"a,b"));
    EXPECT_EQ(path->keys[1].value, CimValue::ofUnsigned(3));
    EXPECT_EQ(path->keys[2].value, CimValue::ofSigned(-4));
    EXPECT_EQ(path->keys[3].value, CimValue::ofBoolean(true));
    EXPECT_EQ(path->keys[4].value, CimValue::ofBoolean(false));
}

TEST(ObjectPathTest, ReadsNamespaceAndServer) {
    const auto full = parseObjectPath(L"\\\\.\\root\\wmi:X.K=\"C:\\\\x\"");
    ASSERT_TRUE(full);
    EXPECT_EQ(full->nameSpace, L"root\\wmi");
    EXPECT_EQ(full->keys[0].value, CimValue::ofText(L"C:\\x"));
    const auto relative = parseObjectPath(L"root/cimv2:X");
    ASSERT_TRUE(relative);
    EXPECT_EQ(relative->nameSpace, L"root\\cimv2");
    const auto colonInKey = parseObjectPath(L"X=\"a:b\"");
    ASSERT_TRUE(colonInKey);
    EXPECT_EQ(colonInKey->nameSpace, L"");
}

TEST(ObjectPathTest, RefusesWhatIsNoPath) {
    for (const wchar_t* text : {L"",
                                L".",
                                L"X.",
                                L"X.K",
                                L"X.K=",
                                L"X=",
                                L"X.K=\"a",
                                L"X.K=\"a\\",
                                L"X.K=\"a\"b",
                                L"X.K=\"a\"b\"",
                                L"X.K=\"a\",",
                                L"X .K=\"a\"",
                                L"X.K= \"a\"",
                                L"X=@@",
                                L"X.K=maybe",
                                L"X.K=-",
                                L"X.K=1a",
                                L"X.K=18446744073709551616",
                                L"1X",
                                L"\\\\.\\root\\wmi",
                                L"\\\\other\\root:X",
                                L"root\\\\wmi:X",
                                L":X",
                                L"X[0]"})
        EXPECT_FALSE(parseObjectPath(text)) << narrow(text);
}

class RelativePathTest : public CoreTest {};

TEST_F(RelativePathTest, EscapesTextsAndReadsBack) {
    load(
        LR"(class X { [key] string Name; [key] sint32 Number; [key] boolean Flag; };
             instance of X { Name = "a\\b\"c"; Number = -5; Flag = true; };)");
    const CimInstancePtr instance = repository.instances(kWmi, L"X").at(0);
    const std::wstring path = relativePath(*instance);
    EXPECT_EQ(path, L"X.Name=\"a\\\\b\\\"c\",Number=-5,Flag=TRUE");
    const auto parsed = parseObjectPath(path);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(repository.findInstance(kWmi, *parsed), instance);
}

TEST_F(RelativePathTest, NamesSingletonsAndNothingWithoutKey) {
    load(L"[singleton] class S { uint8 A; }; class N { uint8 A; }; class K { [key] uint8 A; };");
    EXPECT_EQ(relativePath(CimInstance(repository.findClass(kWmi, L"S"))), L"S=@");
    EXPECT_EQ(relativePath(CimInstance(repository.findClass(kWmi, L"N"))), L"");
    EXPECT_EQ(relativePath(CimInstance(repository.findClass(kWmi, L"K"))), L"");
}

}  // namespace
}  // namespace quista::test
