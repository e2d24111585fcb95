#include <algorithm>

#include "tests/simulator/core/fixtures.h"

namespace quista::test {
namespace {

using namespace quista::simulator;

/// A refused text, with the place and the beginning of the reason.
struct Refused {
    const wchar_t* mof;
    unsigned line;
    unsigned column;
    const wchar_t* reason;
};

void PrintTo(const Refused& refused, std::ostream* out) {
    *out << narrow(refused.mof);
}

/// What the refused texts build upon.
constexpr wchar_t kClasses[] =
    LR"(
    class E { uint8 N; sint8 S; };
    class F { uint8 N; };
    [abstract] class Abstract { [key] string K; };
    class NoKey { string K; };
    class Base { [key] string K; };
    class Sub1 : Base { };
    class Sub2 : Base { };
    class V { [key] string K; uint8 N; sint64 L; uint64 U; real32 F; boolean B; char16 C; datetime D;
              uint8 A[]; E One; E Many[]; V ref R; };
    instance of V { K = "old"; N = 1; };
)";

class MofErrorTest : public CoreTest, public ::testing::WithParamInterface<Refused> {
  protected:
    void SetUp() override { load(kClasses); }
};

TEST_P(MofErrorTest, IsReportedWithItsPlaceAndChangesNothing) {
    const Repository before = repository;
    const MofResult result = reader.loadText(GetParam().mof, L"bad.mof");
    ASSERT_TRUE(result.error.has_value());
    EXPECT_EQ(result.error->file, L"bad.mof");
    EXPECT_EQ(result.error->line, GetParam().line);
    EXPECT_EQ(result.error->column, GetParam().column);
    EXPECT_EQ(narrow(result.error->reason), narrow(GetParam().reason));
    EXPECT_TRUE(repository == before);
}

INSTANTIATE_TEST_SUITE_P(
    Tokens, MofErrorTest,
    ::testing::Values(
        Refused{L"class X { string A = \"abc", 1, 22, L"the string is not terminated"},
        Refused{L"class X { string A = \"abc\n\"; };", 1, 22, L"the string is not terminated"},
        Refused{L"class X { string A = \"abc\\", 1, 26, L"the string is not terminated"},
        Refused{L"class X { string A = \"a\\qb\"; };", 1, 24,
                L"unknown escape sequence in a string"},
        Refused{L"class X { string A = \"a\\xg\"; };", 1, 24,
                L"\\x must be followed by hexadecimal digits"},
        Refused{L"class X { };\n  /* never\n ends", 2, 3, L"the comment is not terminated"},
        Refused{L"/*/", 1, 1, L"the comment is not terminated"},
        Refused{L"class X { char16 A = 'ab'; };", 1, 22, L"the character is not terminated"},
        Refused{L"class X { char16 A = ''; };", 1, 22, L"the character is empty"},
        Refused{L"class X { char16 A = '", 1, 22, L"the character is not terminated"},
        Refused{L"class X { uint8 A = 08; };", 1, 21, L"malformed number"},
        Refused{L"class X { uint8 A = 0x; };", 1, 21, L"malformed number"},
        Refused{L"class X { uint8 A = 12b; };", 1, 21, L"malformed number"},
        Refused{L"class X { uint8 A = 12ab; };", 1, 21, L"malformed number"},
        Refused{L"class X { real32 A = 1.; };", 1, 22, L"malformed number"},
        Refused{L"class X { real32 A = 1.5e; };", 1, 22, L"malformed number"},
        Refused{L"class X { real32 A = 1.5.2; };", 1, 22, L"malformed number"},
        Refused{L"class X { real64 A = 1.0e999; };", 1, 22, L"the number is out of range"},
        Refused{L"class X { uint64 A = 18446744073709551616; };", 1, 22,
                L"the number needs more than 64 bits"},
        Refused{L"class X { uint8 A = -; };", 1, 21, L"unexpected character '-'"},
        Refused{L"class X { uint8 A @ };", 1, 19, L"unexpected character '@'"},
        Refused{L"class X { uint8 A \x7F };", 1, 19, L"unexpected character U+007F"}));

INSTANTIATE_TEST_SUITE_P(
    Statements, MofErrorTest,
    ::testing::Values(
        Refused{L"nonsense", 1, 1, L"expected a class, an instance or a pragma, found nonsense"},
        Refused{L"class X { };\n;", 2, 1, L"expected a class, an instance or a pragma, found ';'"},
        Refused{L"class X { }", 1, 12, L"expected ';', found the end of the text"},
        Refused{L"class X;", 1, 8, L"expected '{', found ';'"},
        Refused{L"class 5 { };", 1, 7, L"expected a class name, found a number"},
        Refused{L"class String { };", 1, 7, L"String is a reserved word"},
        Refused{L"[key] instance of V { K = \"a\"; };", 1, 7,
                L"qualifiers of instances are not supported"},
        Refused{L"#pragma deleteclass(\"V\", fail)", 1, 9, L"unsupported pragma deleteclass"},
        Refused{L"#include \"x.mof\"", 1, 2, L"expected pragma, found include"},
        Refused{L"#pragma namespace(root)", 1, 19, L"expected a string, found root"},
        Refused{L"#pragma namespace(\"root\\\\\")", 1, 18, L"badly written namespace root\\"},
        Refused{L"#pragma classflags(5)", 1, 20,
                L"expected an argument of the pragma, found a number"},
        Refused{L"Qualifier A : nothing;", 1, 15, L"unknown type nothing"},
        Refused{L"Qualifier A : string, Other(x);", 1, 23,
                L"expected Scope or Flavor, found Other"},
        Refused{L"Qualifier A : uint8 = 300;", 1, 23, L"the value is out of the range of uint8"}));

INSTANTIATE_TEST_SUITE_P(
    Classes, MofErrorTest,
    ::testing::Values(
        Refused{L"class X : Missing { };", 1, 11, L"unknown class Missing"},
        Refused{L"class X : X { };", 1, 11, L"unknown class X"},
        Refused{L"class Base : Sub1 { };", 1, 7, L"class Base would inherit from itself"},
        Refused{L"class X {\n\tMissing A;\n};", 2, 2, L"unknown class Missing"},
        Refused{L"class X { object:Missing A; };", 1, 18, L"unknown class Missing"},
        Refused{L"class X { [EmbeddedInstance(\"Missing\")] string A; };", 1, 12,
                L"unknown class Missing"},
        Refused{L"class X { [EmbeddedInstance] string A; };", 1, 12,
                L"EmbeddedInstance needs the name of a class"},
        Refused{L"class X { [EmbeddedObject] uint8 A; };", 1, 12,
                L"only a string can be declared an embedded object"},
        Refused{L"class X { void A; };", 1, 11, L"a property cannot be void"},
        Refused{L"class X { void A([in] void B); };", 1, 23, L"a parameter cannot be void"},
        Refused{L"class X { uint8 A; string a; };", 1, 27, L"property a is declared twice"},
        Refused{L"class X { void A(); void a(); };", 1, 26, L"method a is declared twice"},
        Refused{L"class X { void A(uint8 P, uint8 p); };", 1, 27, L"parameter p is declared twice"},
        Refused{L"class X { [key, Key] uint8 A; };", 1, 17, L"qualifier Key is given twice"},
        Refused{L"class X { [key : Strange] uint8 A; };", 1, 18, L"unknown flavor Strange"},
        Refused{L"class X { [a('x')] uint8 A; };", 1, 14, L"a qualifier cannot hold a character"},
        Refused{L"class X { [a({1, \"x\"})] uint8 A; };", 1, 18,
                L"the elements of a qualifier must be of one type"},
        Refused{L"class X : Base { uint8 K; };", 1, 7,
                L"class X declares an inherited property with another type, or a subclass does"},
        Refused{L"class X { uint8 A[x]; };", 1, 19, L"expected ']', found x"},
        Refused{L"class X { uint32[] A(); };", 1, 17, L"expected a name, found '['"},
        Refused{L"class X { uint8 A = \"1\"; };", 1, 21,
                L"wrong type: expected uint8, found a string"},
        Refused{L"class X { E A = instance of E { }; };", 1, 17,
                L"an embedded object cannot be a default value"}));

INSTANTIATE_TEST_SUITE_P(
    Instances, MofErrorTest,
    ::testing::Values(
        Refused{L"instance of Missing { };", 1, 13, L"unknown class Missing"},
        Refused{L"instance of Abstract { K = \"a\"; };", 1, 13, L"class Abstract is abstract"},
        Refused{L"instance of V { K = \"a\";\n  Missing = 1; };", 2, 3,
                L"unknown property Missing of class V"},
        Refused{L"instance of V { K = \"a\"; k = \"b\"; };", 1, 26,
                L"property k is assigned twice"},
        Refused{L"instance of V { [x] K = \"a\"; };", 1, 17,
                L"qualifiers in instances are not supported"},
        Refused{L"instance of V { N = 1; };", 1, 1, L"missing key: no value for K"},
        Refused{L"instance of NoKey { K = \"a\"; };", 1, 1,
                L"missing key: class NoKey declares none"},
        Refused{L"instance of V { K = \"a\"; };\ninstance of V { K = \"A\"; };", 2, 1,
                L"duplicate key: V.K=\"A\""},
        Refused{L"instance of Sub1 { K = \"a\"; }; instance of Sub2 { K = \"a\"; };", 1, 32,
                L"duplicate key: Sub2.K=\"a\" exists in another class of the same keys"},
        Refused{L"instance of V as Alias { };", 1, 18, L"expected an alias, found Alias"},
        Refused{L"instance of E as $A { }; instance of F as $a { };", 1, 43,
                L"alias $a is defined twice"},
        Refused{L"instance of V { K = \"a\"; One = $Missing; };", 1, 32, L"unknown alias $Missing"},
        Refused{L"instance of E as $A { };\ninstance of V { K = \"a\"; R = $A; };", 2, 30,
                L"the instance has no key to refer to it by"},
        Refused{L"instance of V { K = \"a\" }", 1, 25, L"expected ';', found '}'"},
        Refused{L"instance of V { K = ; };", 1, 21, L"expected a value, found ';'"},
        Refused{L"instance of V { K = word; };", 1, 21, L"expected a value, found word"},
        Refused{L"instance of V { K = \"a\"; A = {1, {2}}; };", 1, 34,
                L"expected a value, found '{'"}));

INSTANTIATE_TEST_SUITE_P(
    Values, MofErrorTest,
    ::testing::Values(
        Refused{L"instance of V { K = 1; };", 1, 21,
                L"wrong type: expected string, found an integer"},
        Refused{L"instance of V { N = \"1\"; };", 1, 21,
                L"wrong type: expected uint8, found a string"},
        Refused{L"instance of V { N = 256; };", 1, 21, L"the value is out of the range of uint8"},
        Refused{L"instance of V { N = -1; };", 1, 21, L"the value is out of the range of uint8"},
        Refused{L"instance of V { N = 1.5; };", 1, 21,
                L"wrong type: expected uint8, found a real number"},
        Refused{L"instance of V { N = TRUE; };", 1, 21,
                L"wrong type: expected uint8, found a boolean"},
        Refused{L"instance of V { N = 'a'; };", 1, 21,
                L"wrong type: expected uint8, found a character"},
        Refused{L"instance of V { N = {1}; };", 1, 21, L"wrong type: expected uint8, found a list"},
        Refused{L"instance of V { L = 9223372036854775808; };", 1, 21,
                L"the value is out of the range of sint64"},
        Refused{L"instance of V { U = \"12x\"; };", 1, 21,
                L"the string is no decimal number in the range of uint64"},
        Refused{L"instance of V { U = \"-1\"; };", 1, 21,
                L"the string is no decimal number in the range of uint64"},
        Refused{L"instance of V { U = \"18446744073709551616\"; };", 1, 21,
                L"the string is no decimal number in the range of uint64"},
        Refused{L"instance of V { F = 1.0e39; };", 1, 21,
                L"the value is out of the range of real32"},
        Refused{L"instance of V { B = 1; };", 1, 21,
                L"wrong type: expected boolean, found an integer"},
        Refused{L"instance of V { C = 65536; };", 1, 21,
                L"the value is out of the range of char16"},
        Refused{L"instance of V { D = \"yesterday\"; };", 1, 21, L"the string is no datetime"},
        Refused{L"instance of V { D = \"20240131235959.000000 060\"; };", 1, 21,
                L"the string is no datetime"},
        Refused{L"instance of V { A = 1; };", 1, 21,
                L"wrong type: expected a list in braces, found an integer"},
        Refused{L"instance of V { A = {1,\n 2, 300}; };", 2, 5,
                L"the value is out of the range of uint8"},
        Refused{L"instance of V { A = {1, NULL}; };", 1, 25,
                L"wrong type: expected uint8, found NULL"},
        Refused{L"instance of V { A = {1,}; };", 1, 24, L"expected a value, found '}'"},
        Refused{L"instance of V { One = 1; };", 1, 23,
                L"wrong type: expected an instance of E, found an integer"},
        Refused{L"instance of V { One = instance of F { }; };", 1, 23,
                L"wrong type: expected an instance of E, found an instance of F"},
        Refused{L"instance of V { Many = { instance of E { }, instance of E { S = 128; } }; };", 1,
                65, L"the value is out of the range of sint8"},
        Refused{L"instance of V { R = instance of V { }; };", 1, 21,
                L"wrong type: expected reference, found an instance of V"}));

class MofFileErrorTest : public CoreTest {
  protected:
    void expectError(const wchar_t* path, const wchar_t* file, unsigned line, unsigned column,
                     const char* reason) {
        const Repository before = repository;
        const MofResult result = reader.loadFile(path);
        ASSERT_TRUE(result.error.has_value());
        EXPECT_EQ(result.error->file, file);
        EXPECT_EQ(result.error->line, line);
        EXPECT_EQ(result.error->column, column);
        EXPECT_EQ(narrow(result.error->reason), reason);
        EXPECT_TRUE(repository == before);
    }
};

TEST_F(MofFileErrorTest, AMissingFileHasNoLine) {
    expectError(L"none.mof", L"none.mof", 0, 0, "the file cannot be read");
}

TEST_F(MofFileErrorTest, AMissingIncludeIsReportedWhereItIsNamed) {
    source.files[L"d/a.mof"] = "\n  #pragma include(\"b.mof\")";
    expectError(L"d/a.mof", L"d/a.mof", 2, 11, "cannot read the included file d/b.mof");
}

TEST_F(MofFileErrorTest, AnErrorWithinAnIncludeNamesItsFile) {
    source.files[L"a.mof"] = "class A { uint8 X; };\n#pragma include(\"sub/b.mof\")";
    source.files[L"sub/b.mof"] = "class B : A { };\n class C : Missing { };";
    expectError(L"a.mof", L"sub/b.mof", 2, 12, "unknown class Missing");
}

TEST_F(MofFileErrorTest, IncludesThatGoInACircleAreRefused) {
    source.files[L"a.mof"] = "#pragma include(\"sub/b.mof\")";
    source.files[L"sub/b.mof"] = "#pragma include(\"../A.MOF\")";
    source.files[L"A.MOF"] = source.files[L"a.mof"];
    expectError(L"a.mof", L"sub/b.mof", 1, 9, "the file A.MOF includes itself");
}

TEST_F(MofFileErrorTest, EndlessIncludesAreRefused) {
    for (int i = 0; i < 100; ++i)
        source.files[std::to_wstring(i) + L".mof"] =
            "#pragma include(\"" + std::to_string(i + 1) + ".mof\")";
    expectError(L"0.mof", L"32.mof", 1, 9, "includes are nested too deeply");
}

TEST_F(MofFileErrorTest, BytesThatAreNoTextAreRefused) {
    source.files[L"byte.mof"] = "class A { };\n// \xFF";
    expectError(L"byte.mof", L"byte.mof", 2, 4, "the file is not valid UTF-8");
    for (const char* bytes : {"\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                              "\xC3", "\xC3(", "\x80", "\xF8\x88\x80\x80\x80"}) {
        source.files[L"byte.mof"] = bytes;
        expectError(L"byte.mof", L"byte.mof", 1, 1, "the file is not valid UTF-8");
    }
    source.files[L"half.mof"] = std::string(
        "\xFF\xFE"
        "c",
        3);
    expectError(L"half.mof", L"half.mof", 1, 1, "the file ends within a UTF-16 character");
}

class MofHostileTest : public CoreTest {};

TEST_F(MofHostileTest, DeepNestingOfInstancesIsRefused) {
    load(L"class N { [key] string K = \"k\"; N Next; };");
    const auto nested = [](int depth) {
        std::wstring mof;
        for (int i = 0; i < depth; ++i) mof += L"instance of N { Next = ";
        mof += L"NULL";
        for (int i = 0; i < depth; ++i) mof += L"; }";
        return mof + L";";
    };
    EXPECT_TRUE(reader.loadText(nested(32), L"t").ok());
    const MofResult refused = reader.loadText(nested(33), L"t");
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error->reason, L"instances are nested too deeply");
    EXPECT_FALSE(reader.loadText(nested(200000), L"t").ok());
}

TEST_F(MofHostileTest, DeepNestingThroughAliasesIsRefused) {
    load(L"class N { N Next; };");
    std::wstring mof = L"instance of N as $A0 { };";
    for (int i = 1; i <= 100; ++i)
        mof += L"instance of N as $A" + std::to_wstring(i) + L" { Next = $A" +
               std::to_wstring(i - 1) + L"; };\n";
    const MofResult refused = reader.loadText(mof, L"t");
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error->reason, L"instances are nested too deeply");
    EXPECT_EQ(refused.error->line, 32U);
}

TEST_F(MofHostileTest, ExponentialAliasesAreRefused) {
    load(L"class N { [key] string K; N A; N B; };");
    std::wstring mof = L"instance of N as $A0 { K = \"0\"; };";
    for (int i = 1; i <= 31; ++i) {
        const std::wstring before = L"$A" + std::to_wstring(i - 1);
        mof += L"instance of N as $A" + std::to_wstring(i) + L" { K = \"" + std::to_wstring(i) +
               L"\"; A = " + before + L"; B = " + before + L"; };\n";
    }
    const MofResult refused = reader.loadText(mof, L"t");
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error->reason, L"the instance holds too many others");
}

TEST_F(MofHostileTest, LongTextsDoNotExhaustTheStack) {
    EXPECT_FALSE(reader.loadText(std::wstring(1000000, L'{'), L"t").ok());
    EXPECT_FALSE(reader.loadText(std::wstring(1000000, L'['), L"t").ok());
    EXPECT_FALSE(reader.loadText(std::wstring(1000000, L'"'), L"t").ok());
    EXPECT_TRUE(reader.loadText(std::wstring(1000000, L' '), L"t").ok());
    std::wstring pieces = L"class X { string A = ";
    for (int i = 0; i < 100000; ++i) pieces += L"\"a\" ";
    EXPECT_TRUE(reader.loadText(pieces + L"; };", L"t").ok());
}

TEST_F(MofHostileTest, EveryTruncationAndMutationOfATextIsHandled) {
    const std::wstring text = std::wstring(kClasses) +
                              LR"(
        #pragma namespace("\\\\.\\root\\wmi")
        instance of E as $A { N = 0x1F; S = -1; };
        instance of V { K = "a\\\x41" "b"; A = {1, 0101b}; One = $A; Many = {$A, instance of E { }};
            F = 1.5e3; C = '\''; D = "20240131235959.000000+060"; };)";
    for (std::size_t length = 0; length < text.size(); ++length)
        reader.loadText(std::wstring_view(text).substr(0, length), L"t");
    unsigned refused = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (const wchar_t character : {L'"', L'{', L'\\', L'0', L'\0', L'\xD800'}) {
            std::wstring mutated = text;
            mutated[i] = character;
            if (!reader.loadText(mutated, L"t").ok()) ++refused;
        }
    }
    EXPECT_GT(refused, text.size());
}

}  // namespace
}  // namespace quista::test
