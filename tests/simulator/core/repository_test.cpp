#include "simulator/repository/repository.h"

#include "tests/simulator/core/fixtures.h"

namespace quista::test {
namespace {

using namespace quista::simulator;

class RepositoryTest : public CoreTest {
  protected:
    CimInstance make(std::wstring_view className, std::wstring_view key = L"a") const {
        CimInstance instance(repository.findClass(kWmi, className));
        instance.set(L"K", CimValue::ofText(std::wstring(key)));
        return instance;
    }

    CimInstancePtr find(std::wstring_view path) const {
        const auto parsed = parseObjectPath(path);
        return parsed ? repository.findInstance(kWmi, *parsed) : nullptr;
    }
};

TEST_F(RepositoryTest, HasTheNamespacesOfEveryHost) {
    EXPECT_EQ(repository.namespaces(),
              (std::vector<std::wstring>{L"root", L"root\\cimv2", L"root\\wmi"}));
    EXPECT_TRUE(repository.hasNamespace(L"ROOT/Wmi"));
    EXPECT_FALSE(repository.hasNamespace(L"root\\other"));
    EXPECT_FALSE(repository.addNamespace(L"root\\"));
    EXPECT_TRUE(repository.addNamespace(L"root\\Other"));
    EXPECT_TRUE(repository.hasNamespace(L"\\\\.\\root\\OTHER"));
}

TEST_F(RepositoryTest, FindsClassesInTheirNamespaceWithoutCase) {
    load(L"class MyClass { uint8 A; };");
    ASSERT_TRUE(repository.findClass(kWmi, L"MYCLASS"));
    EXPECT_EQ(repository.findClass(kWmi, L"myclass")->name, L"MyClass");
    EXPECT_FALSE(repository.findClass(L"root\\cimv2", L"MyClass"));
    EXPECT_FALSE(repository.findClass(L"root\\nowhere", L"MyClass"));
}

TEST_F(RepositoryTest, SubclassesInheritPropertiesMethodsAndKeys) {
    load(
        LR"([dynamic : ToSubclass, abstract] class Base {
                 [key, read] string K; uint32 N = 7; void Do([in] uint8 A); };
             class Derived : Base { [write] uint32 N; boolean Own; };)");
    const CimClassPtr derived = repository.findClass(kWmi, L"Derived");
    ASSERT_EQ(derived->properties.size(), 3U);
    EXPECT_EQ(derived->properties[0].name, L"K");
    EXPECT_EQ(derived->properties[0].declaredIn, L"Base");
    EXPECT_TRUE(derived->properties[0].isKey());
    EXPECT_EQ(derived->properties[1].declaredIn, L"Derived");
    EXPECT_EQ(derived->properties[1].defaultValue, CimValue::ofUnsigned(7));
    EXPECT_EQ(derived->properties[2].name, L"Own");
    EXPECT_TRUE(derived->findMethod(L"DO"));
    EXPECT_TRUE(derived->qualifiers.isSet(L"dynamic"));
    EXPECT_FALSE(derived->isAbstract());
    EXPECT_TRUE(derived->isA(L"base"));
}

TEST_F(RepositoryTest, ListsSubclassesShallowAndDeep) {
    load(L"class A { uint8 X; }; class B : A { }; class C : B { }; class D { };");
    const auto names = [](const std::vector<CimClassPtr>& classes) {
        std::wstring text;
        for (const CimClassPtr& each : classes) text += each->name;
        return text;
    };
    EXPECT_EQ(names(repository.subclasses(kWmi, L"A", false)), L"B");
    EXPECT_EQ(names(repository.subclasses(kWmi, L"a", true)), L"BC");
    EXPECT_EQ(names(repository.subclasses(kWmi, L"", false)), L"AD");
    EXPECT_EQ(names(repository.subclasses(kWmi, L"", true)), L"ADBC");
    EXPECT_EQ(names(repository.classes(kWmi)), L"ADBC");
}

TEST_F(RepositoryTest, RefusesClassesThatCannotStand) {
    load(L"class A { uint8 X; }; class B : A { };");
    CimClass definition;
    definition.name = L"C";
    definition.superclass = L"Missing";
    EXPECT_EQ(repository.putClass(kWmi, definition), RepositoryStatus::unknownSuperclass);
    EXPECT_EQ(repository.putClass(L"root\\none", definition), RepositoryStatus::unknownNamespace);
    definition.name = L"A";
    definition.superclass = L"B";
    EXPECT_EQ(repository.putClass(kWmi, definition), RepositoryStatus::cyclicInheritance);
    definition.superclass = L"A";
    EXPECT_EQ(repository.putClass(kWmi, definition), RepositoryStatus::cyclicInheritance);
    definition.superclass.clear();
    EXPECT_EQ(repository.putClass(kWmi, definition, PutMode::createOnly),
              RepositoryStatus::alreadyExists);
    definition.name = L"New";
    EXPECT_EQ(repository.putClass(kWmi, definition, PutMode::updateOnly),
              RepositoryStatus::unknownClass);
}

TEST_F(RepositoryTest, LimitsTheDepthOfDerivation) {
    CimClass definition;
    RepositoryStatus status = RepositoryStatus::ok;
    for (int i = 0; i < 200 && status == RepositoryStatus::ok; ++i) {
        definition.superclass = definition.name;
        definition.name = L"C" + std::to_wstring(i);
        status = repository.putClass(kWmi, definition);
    }
    EXPECT_EQ(status, RepositoryStatus::tooManyAncestors);
}

TEST_F(RepositoryTest, SubclassesAndInstancesFollowAReplacedClass) {
    load(
        LR"(class A { [key] string K; uint32 N; string Gone; }; class B : A { uint8 Own; };
             instance of B { K = "a"; N = 5; Gone = "x"; Own = 1; };)");
    const CimInstancePtr before = find(L"B.K=\"a\"");
    load(L"class A { [key] string K; uint32 N; uint32 Fresh = 9; };");
    const CimInstancePtr after = find(L"B.K=\"a\"");
    ASSERT_TRUE(after);
    EXPECT_EQ(*after->find(L"N"), CimValue::ofUnsigned(5));
    EXPECT_EQ(*after->find(L"Own"), CimValue::ofUnsigned(1));
    EXPECT_EQ(*after->find(L"Fresh"), CimValue::ofUnsigned(9));
    EXPECT_EQ(after->find(L"Gone"), nullptr);
    EXPECT_EQ(*before->find(L"Gone"), CimValue::ofText(L"x")) << "snapshots do not change";
}

TEST_F(RepositoryTest, DeletesAClassWithSubclassesAndInstances) {
    load(
        LR"(class A { [key] string K; }; class B : A { }; class C { [key] string K; };
             instance of B { K = "a"; }; instance of C { K = "a"; };)");
    EXPECT_EQ(repository.deleteClass(kWmi, L"a"), RepositoryStatus::ok);
    EXPECT_FALSE(repository.findClass(kWmi, L"B"));
    EXPECT_FALSE(find(L"B.K=\"a\""));
    EXPECT_TRUE(find(L"C.K=\"a\""));
    EXPECT_EQ(repository.allInstances(kWmi).size(), 1U);
    EXPECT_EQ(repository.deleteClass(kWmi, L"A"), RepositoryStatus::unknownClass);
}

TEST_F(RepositoryTest, EnumeratesInOrderOfCreationShallowAndDeep) {
    load(
        LR"(class A { [key] string K; }; class B : A { };
             instance of A { K = "z"; }; instance of B { K = "b"; }; instance of A { K = "a"; };)");
    const auto keys = [](const std::vector<CimInstancePtr>& instances) {
        std::wstring text;
        for (const CimInstancePtr& each : instances) text += *each->find(L"K")->asText();
        return text;
    };
    EXPECT_EQ(keys(repository.instances(kWmi, L"A")), L"zba");
    EXPECT_EQ(keys(repository.instances(kWmi, L"A", false)), L"za");
    EXPECT_EQ(keys(repository.instances(kWmi, L"B")), L"b");
    EXPECT_TRUE(repository.instances(kWmi, L"Unknown").empty());
}

TEST_F(RepositoryTest, UpdatesAnInstanceInItsPlace) {
    load(
        LR"(class A { [key] string K; uint8 N; };
             instance of A { K = "x"; }; instance of A { K = "y"; };)");
    CimInstance changed = make(L"A", L"X");
    changed.set(L"N", CimValue::ofUnsigned(3));
    EXPECT_EQ(repository.putInstance(kWmi, changed, PutMode::createOnly),
              RepositoryStatus::alreadyExists);
    EXPECT_EQ(repository.putInstance(kWmi, changed), RepositoryStatus::ok);
    const auto instances = repository.instances(kWmi, L"A");
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(*instances[0]->find(L"N"), CimValue::ofUnsigned(3));
    EXPECT_EQ(repository.putInstance(kWmi, make(L"A", L"new"), PutMode::updateOnly),
              RepositoryStatus::unknownInstance);
}

TEST_F(RepositoryTest, RefusesInstancesThatCannotBeNamed) {
    load(
        LR"([abstract] class Abstract { [key] string K; }; class NoKey { string K; };
             class Two { [key] string K; [key] string L; };)");
    EXPECT_EQ(repository.putInstance(kWmi, make(L"Abstract")), RepositoryStatus::abstractClass);
    EXPECT_EQ(repository.putInstance(kWmi, make(L"NoKey")), RepositoryStatus::noKey);
    EXPECT_EQ(repository.putInstance(kWmi, make(L"Two")), RepositoryStatus::nullKey);
    EXPECT_EQ(repository.putInstance(L"root\\cimv2", make(L"Two")), RepositoryStatus::unknownClass);
    EXPECT_EQ(repository.putInstance(L"root\\none", make(L"Two")),
              RepositoryStatus::unknownNamespace);
}

TEST_F(RepositoryTest, KeysAreUniqueWithinTheFamilyOfAClassOnly) {
    load(
        LR"(class Top { uint8 N; };
             class A : Top { [key] string K; }; class A1 : A { }; class A2 : A { };
             class B : Top { [key] string K; };)");
    EXPECT_EQ(repository.putInstance(kWmi, make(L"A1")), RepositoryStatus::ok);
    EXPECT_EQ(repository.putInstance(kWmi, make(L"A2")), RepositoryStatus::alreadyExists);
    EXPECT_EQ(repository.putInstance(kWmi, make(L"B")), RepositoryStatus::ok);
}

TEST_F(RepositoryTest, FindsByEveryFormOfPath) {
    load(
        LR"(class A { [key] string K; }; class B : A { }; [singleton] class S { uint8 N; };
             class T { [key] string P; [key] uint32 Q; };
             instance of B { K = "C:\\x"; }; instance of S { }; instance of T { P = "p"; Q = 2; };)");
    const CimInstancePtr b = repository.instances(kWmi, L"B").at(0);
    EXPECT_EQ(find(L"B.K=\"C:\\\\x\""), b);
    EXPECT_EQ(find(L"b.k=\"c:\\\\X\""), b);
    EXPECT_EQ(find(L"A.K=\"C:\\\\x\""), b);
    EXPECT_EQ(find(L"B=\"C:\\\\x\""), b);
    EXPECT_EQ(find(L"\\\\.\\ROOT\\WMI:B=\"C:\\\\x\""), b);
    EXPECT_TRUE(find(L"S=@"));
    EXPECT_TRUE(find(L"T.P=\"p\",Q=2"));
    EXPECT_TRUE(find(L"T.Q=2,P=\"p\""));
    EXPECT_TRUE(find(L"T.Q=\"2\",P=\"p\"")) << "how an integer is written does not matter";
    for (const wchar_t* path : {L"B", L"B=@", L"B.K=\"y\"", L"Missing.K=\"x\"", L"T=\"p\"",
                                L"T.P=\"p\"", L"root\\cimv2:B=\"C:\\\\x\"", L"S"})
        EXPECT_FALSE(find(path)) << narrow(path);
}

TEST_F(RepositoryTest, DeletesInstances) {
    load(
        LR"(class A { [key] string K; }; class B : A { }; class C { [key] string K; };
             instance of A { K = "1"; }; instance of B { K = "2"; }; instance of C { K = "3"; };)");
    EXPECT_EQ(repository.deleteInstance(kWmi, *parseObjectPath(L"A=\"1\"")), RepositoryStatus::ok);
    EXPECT_EQ(repository.deleteInstance(kWmi, *parseObjectPath(L"A=\"1\"")),
              RepositoryStatus::unknownInstance);
    EXPECT_EQ(repository.deleteInstance(kWmi, *parseObjectPath(L"X=\"1\"")),
              RepositoryStatus::unknownClass);
    repository.removeInstances(kWmi, L"A");
    EXPECT_TRUE(repository.instances(kWmi, L"A").empty());
    EXPECT_EQ(repository.putInstance(kWmi, make(L"A", L"1")), RepositoryStatus::ok);
    repository.clear();
    EXPECT_TRUE(repository.allInstances(kWmi).empty());
    EXPECT_TRUE(repository.classes(kWmi).empty());
    EXPECT_TRUE(repository.hasNamespace(kWmi));
}

TEST_F(RepositoryTest, RemovesAPropertyFromEverythingThatUsesIt) {
    load(
        LR"(class E { uint8 A; uint8 B; }; class E2 : E { uint8 C; };
             class Holder { [key] string K; E One; E Many[]; };
             class Deep { [key] string K; object Any; };
             instance of Holder { K = "h"; One = instance of E { A = 1; B = 2; };
                 Many = { instance of E2 { A = 3; B = 4; C = 5; } }; };)");
    const CimInstancePtr before = find(L"Holder=\"h\"");
    EXPECT_FALSE(repository.removeProperty(kWmi, L"E", L"Missing"));
    EXPECT_FALSE(repository.removeProperty(kWmi, L"Missing", L"A"));
    EXPECT_TRUE(repository.removeProperty(kWmi, L"e", L"a"));
    EXPECT_FALSE(repository.findClass(kWmi, L"E")->findProperty(L"A"));
    EXPECT_FALSE(repository.findClass(kWmi, L"E2")->findProperty(L"A"));
    const CimInstancePtr after = find(L"Holder=\"h\"");
    const CimInstance& one = **after->find(L"One")->asObject();
    EXPECT_EQ(one.find(L"A"), nullptr);
    EXPECT_EQ(*one.find(L"B"), CimValue::ofUnsigned(2));
    const CimInstance& many = **after->find(L"Many")->asArray()->at(0).asObject();
    EXPECT_EQ(many.find(L"A"), nullptr);
    EXPECT_EQ(*many.find(L"C"), CimValue::ofUnsigned(5));
    EXPECT_TRUE((*before->find(L"One")->asObject())->find(L"A")) << "snapshots do not change";
}

TEST_F(RepositoryTest, AnInstanceWithoutItsKeyPropertyIsStillFound) {
    load(LR"(class A { [key] string K; uint8 N; }; instance of A { K = "x"; N = 1; };)");
    EXPECT_TRUE(repository.removeProperty(kWmi, L"A", L"K"));
    const CimInstancePtr found = find(L"A.K=\"X\"");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->find(L"K"), nullptr);
    EXPECT_EQ(repository.instances(kWmi, L"A").size(), 1U);
    EXPECT_EQ(repository.deleteInstance(kWmi, *parseObjectPath(L"A.K=\"x\"")),
              RepositoryStatus::ok);
}

TEST_F(RepositoryTest, ObjectsOfAnOlderDefinitionAreBroughtUpToDate) {
    load(L"class E { uint8 A; }; class H { [key] string K; E One; };");
    CimInstance holder = make(L"H");
    holder.set(L"One", CimValue::ofObject(CimInstance(repository.findClass(kWmi, L"E"))));
    load(L"class E { uint8 A; uint8 B = 6; };");
    EXPECT_EQ(repository.putInstance(kWmi, holder), RepositoryStatus::ok);
    const CimInstancePtr stored = find(L"H.K=\"a\"");
    EXPECT_EQ(*(*stored->find(L"One")->asObject())->find(L"B"), CimValue::ofUnsigned(6));
}

TEST_F(RepositoryTest, CopiesAreIndependent) {
    load(LR"(class A { [key] string K; }; instance of A { K = "x"; };)");
    Repository copy = repository;
    EXPECT_TRUE(copy == repository);
    copy.removeInstances(kWmi, L"A");
    EXPECT_FALSE(copy == repository);
    EXPECT_EQ(repository.instances(kWmi, L"A").size(), 1U);
    copy = repository;
    copy.addNamespace(L"root\\more");
    EXPECT_FALSE(copy == repository);
}

TEST_F(RepositoryTest, MethodsHaveSignatures) {
    load(
        LR"(class A { void None(); uint32 Both([in] string S, [in, out] uint8 B[], [out] A O);
                       void Out([out] uint32 Status); };)");
    const CimClassPtr definition = repository.findClass(kWmi, L"A");
    EXPECT_FALSE(inSignature(*definition->findMethod(L"None")));
    EXPECT_FALSE(outSignature(*definition->findMethod(L"None")));
    EXPECT_FALSE(inSignature(*definition->findMethod(L"Out")));
    const CimClassPtr in = inSignature(*definition->findMethod(L"both"));
    ASSERT_TRUE(in);
    EXPECT_EQ(in->name, L"__PARAMETERS");
    ASSERT_EQ(in->properties.size(), 2U);
    EXPECT_EQ(in->properties[1].type, (CimDeclaredType{CimType::uint8, true, {}}));
    const CimClassPtr out = outSignature(*definition->findMethod(L"Both"));
    ASSERT_TRUE(out);
    ASSERT_EQ(out->properties.size(), 3U);
    EXPECT_EQ(out->properties[1].type, (CimDeclaredType{CimType::object, false, L"A"}));
    EXPECT_EQ(out->properties[2].name, L"ReturnValue");
    EXPECT_EQ(out->properties[2].type.base, CimType::uint32);
}

}  // namespace
}  // namespace quista::test
