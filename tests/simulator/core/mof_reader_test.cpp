#include "simulator/mof/mof_reader.h"

#include "tests/simulator/core/fixtures.h"

namespace quista::test {
namespace {

using namespace quista::simulator;

class MofReaderTest : public CoreTest {
  protected:
    std::wstring textOf(const wchar_t* property) const { return *valueOf(L"V", property).asText(); }

    CimValue::Array arrayOf(const wchar_t* property) const {
        const CimValue value = valueOf(L"V", property);
        return value.asArray() ? *value.asArray() : CimValue::Array();
    }
};

TEST_F(MofReaderTest, ReadsIntegersInEveryNotation) {
    load(
        LR"(class V { [key] uint8 K; sint64 Decimal; uint64 Hex; uint32 Octal; uint8 Binary;
                       sint8 Negative; sint16 Plus; uint64 Most; sint64 Least; };
             instance of V { K = 0; Decimal = 1234567890123; Hex = 0xFFffFFff00000000; Octal = 017;
                 Binary = 0101b; Negative = -128; Plus = +5; Most = 18446744073709551615;
                 Least = -9223372036854775808; };)");
    EXPECT_EQ(valueOf(L"V", L"K"), CimValue::ofUnsigned(0));
    EXPECT_EQ(valueOf(L"V", L"Decimal"), CimValue::ofSigned(1234567890123));
    EXPECT_EQ(valueOf(L"V", L"Hex"), CimValue::ofUnsigned(0xFFFFFFFF00000000U));
    EXPECT_EQ(valueOf(L"V", L"Octal"), CimValue::ofUnsigned(15));
    EXPECT_EQ(valueOf(L"V", L"Binary"), CimValue::ofUnsigned(5));
    EXPECT_EQ(valueOf(L"V", L"Negative"), CimValue::ofSigned(-128));
    EXPECT_EQ(valueOf(L"V", L"Plus"), CimValue::ofSigned(5));
    EXPECT_EQ(valueOf(L"V", L"Most"), CimValue::ofUnsigned(18446744073709551615U));
    EXPECT_EQ(valueOf(L"V", L"Least"),
              CimValue::ofSigned(std::numeric_limits<std::int64_t>::min()));
}

TEST_F(MofReaderTest, Reads64BitIntegersAsTextToo) {
    load(
        LR"(class V { [key] uint64 K; sint64 S; };
             instance of V { K = "18446744073709551615"; S = "-7"; };)");
    EXPECT_EQ(valueOf(L"V", L"K"), CimValue::ofUnsigned(18446744073709551615U));
    EXPECT_EQ(valueOf(L"V", L"S"), CimValue::ofSigned(-7));
}

TEST_F(MofReaderTest, ReadsRealsBooleansAndNull) {
    load(
        LR"(class V { [key] uint8 K; real64 D; real32 F; real64 E; real64 I; boolean T; boolean N;
                       string Null = "default"; };
             instance of V { K = 1; D = -1.5; F = .25; E = 2.5E-3; I = -3; T = true; N = FALSE;
                             Null = null; };)");
    EXPECT_EQ(valueOf(L"V", L"D"), CimValue::ofReal(-1.5));
    EXPECT_EQ(valueOf(L"V", L"F"), CimValue::ofReal(0.25));
    EXPECT_EQ(valueOf(L"V", L"E"), CimValue::ofReal(0.0025));
    EXPECT_EQ(valueOf(L"V", L"I"), CimValue::ofReal(-3));
    EXPECT_EQ(valueOf(L"V", L"T"), CimValue::ofBoolean(true));
    EXPECT_EQ(valueOf(L"V", L"N"), CimValue::ofBoolean(false));
    EXPECT_TRUE(valueOf(L"V", L"Null").isNull());
}

TEST_F(MofReaderTest, ReadsStringsWithEscapesAndInPieces) {
    load(
        LR"(class V { [key] string K; string Hex; string Pieces; string Empty; };
             instance of V { K = "a\\b\"c\'d\n\t\r\b\f"; Hex = "\x41\x263A\X00e9z";
                 Pieces = "one " /* joined */ "two"
                          " three"; Empty = ""; };)");
    EXPECT_EQ(textOf(L"K"), L"a\\b\"c'd\n\t\r\b\f");
    EXPECT_EQ(textOf(L"Hex"), L"A\x263A\xE9z");
    EXPECT_EQ(textOf(L"Pieces"), L"one two three");
    EXPECT_EQ(textOf(L"Empty"), L"");
}

TEST_F(MofReaderTest, ReadsCharactersDatesAndReferences) {
    load(
        LR"(class V { [key] string K; char16 C; char16 Quote; char16 Number; datetime D;
                       datetime Interval; V ref Self; V ref Text; };
             instance of V as $First { K = "a\\1"; };
             instance of V { K = "b"; C = 'x'; Quote = '\''; Number = 65;
                 D = "20240131235959.000000+060"; Interval = "00000001000000.******:000";
                 Self = $First; Text = "V.K=\"z\""; };)");
    const auto found = repository.findInstance(kWmi, *parseObjectPath(L"V=\"b\""));
    ASSERT_TRUE(found);
    EXPECT_EQ(*found->find(L"C"), CimValue::ofUnsigned('x'));
    EXPECT_EQ(*found->find(L"Quote"), CimValue::ofUnsigned('\''));
    EXPECT_EQ(*found->find(L"Number"), CimValue::ofUnsigned(65));
    EXPECT_EQ(*found->find(L"D"), CimValue::ofText(L"20240131235959.000000+060"));
    EXPECT_EQ(*found->find(L"Interval"), CimValue::ofText(L"00000001000000.******:000"));
    EXPECT_EQ(*found->find(L"Self"), CimValue::ofText(L"V.K=\"a\\\\1\""));
    EXPECT_EQ(*found->find(L"Text"), CimValue::ofText(L"V.K=\"z\""));
}

TEST_F(MofReaderTest, ReadsArraysWhoseSizeIsAHint) {
    load(
        LR"(class V { [key] uint8 K; uint8 Open[]; uint8 Sized[32]; string Texts[2]; uint8 Empty[];
                       uint8 Null[]; };
             instance of V { K = 1; Open = {1, 0x2, 03}; Sized = {9}; Texts = {"a" "b", "c", "d"};
                             Empty = {}; Null = NULL; };)");
    EXPECT_EQ(arrayOf(L"Open"), (CimValue::Array{CimValue::ofUnsigned(1), CimValue::ofUnsigned(2),
                                                 CimValue::ofUnsigned(3)}));
    EXPECT_EQ(arrayOf(L"Sized").size(), 1U);
    EXPECT_EQ(arrayOf(L"Texts"), (CimValue::Array{CimValue::ofText(L"ab"), CimValue::ofText(L"c"),
                                                  CimValue::ofText(L"d")}));
    EXPECT_EQ(valueOf(L"V", L"Empty"), CimValue::ofArray({}));
    EXPECT_TRUE(valueOf(L"V", L"Null").isNull());
}

TEST_F(MofReaderTest, ReadsEmbeddedInstances) {
    load(
        LR"(class Inner { uint8 N; Inner Next; };
             class V { [key] string K; Inner A; object:Inner B; object C;
                       [EmbeddedInstance("Inner")] string D; [EmbeddedObject] string E; Inner L[]; };
             instance of Inner as $Alias { N = 9; };
             instance of V { K = "k"; A = instance of Inner { N = 1; Next = instance of Inner { N = 2; }; };
                 B = $Alias; C = $ALIAS; D = instance of Inner { }; E = $Alias;
                 L = { instance of Inner { N = 3; }, $Alias }; };)");
    const CimInstancePtr a = *valueOf(L"V", L"A").asObject();
    EXPECT_EQ(*(*a->find(L"Next")->asObject())->find(L"N"), CimValue::ofUnsigned(2));
    EXPECT_EQ(*(*valueOf(L"V", L"B").asObject())->find(L"N"), CimValue::ofUnsigned(9));
    EXPECT_EQ(valueOf(L"V", L"C"), valueOf(L"V", L"B"));
    EXPECT_EQ(valueOf(L"V", L"E"), valueOf(L"V", L"B"));
    EXPECT_EQ(arrayOf(L"L").size(), 2U);
    EXPECT_TRUE(repository.instances(kWmi, L"Inner").empty())
        << "an alias without key is no object";
    const CimClassPtr definition = repository.findClass(kWmi, L"V");
    const CimDeclaredType inner{CimType::object, false, L"Inner"};
    for (const wchar_t* property : {L"A", L"B", L"D"})
        EXPECT_EQ(definition->findProperty(property)->type, inner) << narrow(property);
    EXPECT_EQ(definition->findProperty(L"C")->type, (CimDeclaredType{CimType::object, false, L""}));
    EXPECT_EQ(definition->findProperty(L"E")->type, definition->findProperty(L"C")->type);
}

TEST_F(MofReaderTest, ReadsQualifiersOfEveryForm) {
    load(
        LR"(Qualifier Anything : string[] = {"x"}, Scope(class, property), Flavor(ToSubclass);
             [dynamic : ToInstance, provider("WmiProv") : ToInstance ToSubclass DisableOverride,
              guid("{00000000-0000-0000-0000-000000000001}"), locale(1033), Values{"a", "b"},
              ValueMap({"1"}), Weight(1.5), off(FALSE), description("text") : Amended]
             class V { [key, read : ToInstance, WmiDataId(1), id(-2)] uint8 K; };)");
    const CimClassPtr definition = repository.findClass(kWmi, L"V");
    const CimQualifiers& qualifiers = definition->qualifiers;
    EXPECT_TRUE(qualifiers.isSet(L"DYNAMIC"));
    EXPECT_EQ(qualifiers.find(L"dynamic")->flavors, QualifierFlavor::toInstance);
    EXPECT_EQ(qualifiers.find(L"provider")->value, CimValue::ofText(L"WmiProv"));
    EXPECT_EQ(qualifiers.find(L"provider")->flavors, QualifierFlavor::toInstance |
                                                         QualifierFlavor::toSubclass |
                                                         QualifierFlavor::disableOverride);
    EXPECT_EQ(qualifiers.find(L"locale")->value, CimValue::ofSigned(1033));
    EXPECT_EQ(qualifiers.find(L"Values")->value,
              CimValue::ofArray({CimValue::ofText(L"a"), CimValue::ofText(L"b")}));
    EXPECT_EQ(qualifiers.find(L"ValueMap")->value, CimValue::ofArray({CimValue::ofText(L"1")}));
    EXPECT_EQ(qualifiers.find(L"Weight")->value, CimValue::ofReal(1.5));
    EXPECT_FALSE(qualifiers.isSet(L"off"));
    EXPECT_EQ(qualifiers.find(L"description")->flavors, QualifierFlavor::amended);
    EXPECT_EQ(definition->properties[0].qualifiers.find(L"id")->value, CimValue::ofSigned(-2));
    EXPECT_TRUE(definition->properties[0].isKey());
}

TEST_F(MofReaderTest, ReadsMethods) {
    load(
        LR"(class P { uint8 A; };
             class V { [Implemented, WmiMethodId(1)] void SetActive([in] sint32 DsmID,
                 [out, id(1)] uint32 ReturnCode); uint32 Get(P One, [in, out] uint8 Many[16]); };)");
    const CimClassPtr definition = repository.findClass(kWmi, L"V");
    const CimMethod* setActive = definition->findMethod(L"SETACTIVE");
    ASSERT_TRUE(setActive);
    EXPECT_FALSE(setActive->returnType);
    EXPECT_TRUE(setActive->qualifiers.isSet(L"implemented"));
    ASSERT_EQ(setActive->parameters.size(), 2U);
    EXPECT_TRUE(setActive->parameters[0].isIn);
    EXPECT_FALSE(setActive->parameters[0].isOut);
    EXPECT_FALSE(setActive->parameters[1].isIn);
    EXPECT_TRUE(setActive->parameters[1].isOut);
    EXPECT_FALSE(setActive->parameters[1].qualifiers.find(L"out"));
    EXPECT_TRUE(setActive->parameters[1].qualifiers.find(L"id"));
    const CimMethod* get = definition->findMethod(L"Get");
    EXPECT_EQ(get->returnType->base, CimType::uint32);
    EXPECT_EQ(get->parameters[0].type, (CimDeclaredType{CimType::object, false, L"P"}));
    EXPECT_TRUE(get->parameters[0].isIn) << "a parameter without direction goes in";
    EXPECT_TRUE(get->parameters[1].isIn && get->parameters[1].isOut);
    EXPECT_TRUE(get->parameters[1].type.isArray);
}

TEST_F(MofReaderTest, ReadsDefaultsAndDerivedInstances) {
    load(
        LR"(class B { [key] string K = "x"; uint32 N = 5; uint8 A[] = {1, 2}; uint8 Ref; string Class; };
             CLASS V : b { BOOLEAN Flag = True; };
             INSTANCE OF v { k = "y"; class = "c"; };)");
    EXPECT_EQ(textOf(L"K"), L"y");
    EXPECT_EQ(valueOf(L"V", L"N"), CimValue::ofUnsigned(5));
    EXPECT_EQ(arrayOf(L"A").size(), 2U);
    EXPECT_EQ(valueOf(L"V", L"Flag"), CimValue::ofBoolean(true));
}

TEST_F(MofReaderTest, ObeysNamespacesAndAcceptsIdlePragmas) {
    const MofResult result = reader.loadText(
        LR"(#pragma autorecover
        #pragma classflags("forceupdate") #pragma classflags(updateonly, forceupdate)
        #pragma instanceflags("updateonly") #pragma noautorecover #pragma locale("en_US")
        class InWmi { uint8 A; };
        #pragma namespace("\\\\.\\ROOT\\cimv2")
        class InCimv2 { uint8 A; };
        # pragma namespace("root/new")
        class InNew { uint8 A; };)",
        L"test.mof");
    ASSERT_TRUE(result.ok());
    EXPECT_TRUE(result.hasAutoRecover);
    EXPECT_TRUE(repository.findClass(kWmi, L"InWmi"));
    EXPECT_TRUE(repository.findClass(L"root\\cimv2", L"InCimv2"));
    EXPECT_TRUE(repository.findClass(L"root\\new", L"InNew"));
    EXPECT_FALSE(reader.loadText(L"", L"test.mof").hasAutoRecover);
    EXPECT_FALSE(reader.loadText(L"#pragma noautorecover", L"test.mof").hasAutoRecover);
}

TEST_F(MofReaderTest, StartsInTheNamespaceOfTheCaller) {
    ASSERT_TRUE(reader.loadText(L"class A { };", L"t", L"root\\cimv2").ok());
    EXPECT_TRUE(repository.findClass(L"root\\cimv2", L"A"));
    EXPECT_FALSE(reader.loadText(L"class A { };", L"t", L"root\\").ok());
}

TEST_F(MofReaderTest, ReplacesWhatEarlierTextsLoaded) {
    load(LR"(class V { [key] string K; uint8 N; }; instance of V { K = "a"; N = 1; };)");
    load(LR"(instance of V { K = "A"; N = 2; };)");
    EXPECT_EQ(valueOf(L"V", L"N"), CimValue::ofUnsigned(2));
}

TEST_F(MofReaderTest, ReadsIncludesRelativeToTheIncludingFile) {
    source.files[L"hosts/main.mof"] = R"(#pragma include("parts/classes.mof")
        instance of V { K = "a"; };)";
    source.files[L"hosts/parts/classes.mof"] = "#pragma include(\"../base.mof\")\nclass V : B { };";
    source.files[L"hosts/base.mof"] = "class B { [key] string K; };";
    const MofResult result = reader.loadFile(L"hosts/main.mof");
    ASSERT_TRUE(result.ok()) << narrow(result.error->reason);
    EXPECT_EQ(repository.instances(kWmi, L"V").size(), 1U);
}

TEST_F(MofReaderTest, IncludesTheSameFileTwiceSideBySide) {
    source.files[L"a.mof"] = R"(#pragma include("b.mof") #pragma include("b.mof"))";
    source.files[L"b.mof"] = "class B { [key] string K; };";
    EXPECT_TRUE(reader.loadFile(L"a.mof").ok());
}

TEST_F(MofReaderTest, ReadsEveryEncoding) {
    const std::string text =
        "class V { [key] string K; }; instance of V { K = \"\xC3\xA4\xF0\x9F\x98\x80\"; };";
    std::string utf16 = "\xFF\xFE";
    const std::u16string wide =
        u"class V { [key] string K; }; instance of V { K = \"\u00E4\U0001F600\"; };";
    for (const char16_t unit : wide) {
        utf16 += static_cast<char>(unit & 0xFF);
        utf16 += static_cast<char>(unit >> 8);
    }
    for (const std::string& bytes : {text, "\xEF\xBB\xBF" + text, utf16}) {
        repository.clear();
        source.files[L"x.mof"] = bytes;
        ASSERT_TRUE(reader.loadFile(L"x.mof").ok());
        EXPECT_EQ(textOf(L"K"), L"\u00E4\U0001F600");
    }
}

}  // namespace
}  // namespace quista::test
