#include "simulator/mof/mof_writer.h"

#include "tests/simulator/core/fixtures.h"

namespace quista::test {
namespace {

using namespace quista::simulator;

class MofWriterTest : public CoreTest {
  protected:
    /// Reads the dump of the repository into another one.
    void expectRoundTrip() {
        const std::wstring dump = writeMof(repository);
        Repository copy;
        const MofResult result = MofReader(copy, source).loadText(dump, L"dump");
        if (result.error)
            FAIL() << result.error->line << ":" << result.error->column << ": "
                   << narrow(result.error->reason) << "\n"
                   << narrow(dump);
        EXPECT_TRUE(copy == repository) << narrow(dump);
        EXPECT_EQ(narrow(writeMof(copy)), narrow(dump));
    }
};

TEST_F(MofWriterTest, WritesAnInstanceAsWmiDoes) {
    load(
        LR"(class E { uint8 A; }; class X { [key] string InstanceName; boolean Active; uint64 Id;
                 sint32 N; uint8 Bytes[]; string Missing; E One; E Many[]; char16 C; };
             instance of X { InstanceName = "a\\b\"c\n"; Active = TRUE; Id = 18446744073709551615;
                 N = -3; Bytes = {1, 2}; One = instance of E { A = 7; };
                 Many = {instance of E { A = 8; }, instance of E { }}; C = 'x'; };)");
    EXPECT_EQ(narrow(writeMof(*repository.instances(kWmi, L"X").at(0))),
              "\ninstance of X\n{\n"
              "\tInstanceName = \"a\\\\b\\\"c\\n\";\n"
              "\tActive = TRUE;\n"
              "\tId = \"18446744073709551615\";\n"
              "\tN = -3;\n"
              "\tBytes = {1, 2};\n"
              "\tOne = \ninstance of E\n{\n\tA = 7;\n};\n"
              "\tMany = {\ninstance of E\n{\n\tA = 8;\n}, \ninstance of E\n{\n}};\n"
              "\tC = 'x';\n"
              "};\n");
}

TEST_F(MofWriterTest, WritesWhatAClassItselfDeclares) {
    load(
        LR"(class E { uint8 A; };
             [abstract] class B { [key, read] string K; uint32 N; };
             [dynamic : ToInstance, provider("p"), Values{"a", "b"}, level(3)]
             class X : B { [write : ToSubclass DisableOverride] uint32 N = 5; E One; object Any;
                 E Many[4]; X ref R; boolean Flags[] = {TRUE, FALSE};
                 [Implemented, WmiMethodId(1)] void Set([in, id(0)] E One, [in, out] uint8 Many[],
                                                        [out] uint32 Status);
                 uint32 Ask(); };)");
    EXPECT_EQ(narrow(writeMof(*repository.findClass(kWmi, L"X"))),
              "\n[dynamic : ToInstance, provider(\"p\"), Values{\"a\", \"b\"}, level(3)]\n"
              "class X : B\n{\n"
              "\t[write : ToSubclass DisableOverride] uint32 N = 5;\n"
              "\tE One;\n"
              "\tobject Any;\n"
              "\tE Many[];\n"
              "\tX ref R;\n"
              "\tboolean Flags[] = {TRUE, FALSE};\n"
              "\t[Implemented, WmiMethodId(1)] void Set([in, id(0)] E One, [in, out] uint8 Many[], "
              "[out] uint32 Status);\n"
              "\tuint32 Ask();\n"
              "};\n");
}

TEST_F(MofWriterTest, WritesNullOnlyAgainstADefault) {
    load(
        LR"(class X { [key] uint8 K; string A = "x"; string B; };
             instance of X { K = 1; A = NULL; };)");
    EXPECT_EQ(narrow(writeMof(*repository.instances(kWmi, L"X").at(0))),
              "\ninstance of X\n{\n\tK = 1;\n\tA = NULL;\n};\n");
}

TEST_F(MofWriterTest, AnEmptyRepositoryReadsBack) {
    expectRoundTrip();
}

TEST_F(MofWriterTest, EveryTypeReadsBack) {
    load(
        LR"([singleton, weight(-1.5), big(4294967296), none(NULL), off(FALSE), list{1, 2}, e({})]
             class E { sint8 A; uint8 B; sint16 C; uint16 D; sint32 E; uint32 F; sint64 G; uint64 H;
                 real32 I; real64 J; boolean K; string L; datetime M; E ref N; char16 O; E P; };
             class V { [key] string K; sint8 A[]; uint8 B[]; sint16 C[]; uint16 D[]; sint32 E[];
                 uint32 F[]; sint64 G[]; uint64 H[]; real32 I[]; real64 J[]; boolean Q[]; string L[];
                 datetime M[]; V ref N[]; char16 O[]; E P[]; object Z; };
             instance of E as $E { A = -128; B = 255; C = -32768; D = 65535; E = -2147483648;
                 F = 4294967295; G = -9223372036854775808; H = 18446744073709551615; I = 0.1;
                 J = 1.7976931348623157e308; K = TRUE; L = "x"; M = "20240131235959.000000+060";
                 N = "E=@"; O = '\x0'; };
             instance of V { K = "\x0\x1\x7f\x85\xd800\xfeff\"\\\n\r\t\b'"; A = {-1}; B = {}; C = {1, 2};
                 D = {3}; E = {-4}; F = {5}; G = {"-6"}; H = {7}; I = {0.1, -2.5e-10, 3.0};
                 J = {0.1, 4.9406564584124654e-324, 100000000000000000000000.0, 5}; Q = {TRUE, FALSE};
                 L = {"", "a\"b"}; M = {"00000001000000.000000:000"}; N = {"V.K=\"\\\\\""};
                 O = {'\'', '"', '\\', 0xd800, 0x263a, 'f'}; P = {$E, instance of E { P = $E; }};
                 Z = $E; };)");
    expectRoundTrip();
}

TEST_F(MofWriterTest, InheritanceMethodsAndNamespacesReadBack) {
    load(
        LR"(class P { uint8 N; };
             [owner("a") : ToSubclass, private("b")] class A { [key, read] string K; uint32 N = 3;
                 P Get([in] P One, [out] P Many[]); void Set(P X); };
             class B : A { [write] uint32 N; void Set([in, out] P X); };
             class C : B { uint32 M; };
             instance of C { K = "1"; N = NULL; }; instance of A { K = "2"; }; instance of B { K = "3"; };
             #pragma namespace("root\\other")
             class A { [key] uint32 Id; }; instance of A { Id = 1; };)");
    expectRoundTrip();
}

TEST_F(MofWriterTest, ClassesComeAfterThoseTheyNeed) {
    load(L"class A { uint8 X; }; class B { uint8 X; }; class C : B { };");
    load(L"class Z { uint8 X; }; class Y : Z { }; class A : Y { C One; };");
    expectRoundTrip();
}

TEST_F(MofWriterTest, ClassesThatNeedOneAnotherAreStillWritten) {
    load(L"class A { uint8 X; }; class B { A One; }; class A { B One; };");
    const std::wstring dump = writeMof(repository);
    EXPECT_NE(dump.find(L"class A"), std::wstring::npos);
    EXPECT_NE(dump.find(L"class B"), std::wstring::npos);
}

/// The hosts that the simulator brings along.
class SampleHostTest : public MofWriterTest,
                       public ::testing::WithParamInterface<const wchar_t*> {};

TEST_P(SampleHostTest, IsReadAndReadsBack) {
    MofFileSource files;
    const MofResult result =
        MofReader(repository, files).loadFile(QUISTA_HOSTS_FOLDER L"/" + std::wstring(GetParam()));
    ASSERT_TRUE(result.ok()) << narrow(result.error->file) << ":" << result.error->line << ":"
                             << result.error->column << ": " << narrow(result.error->reason);
    EXPECT_FALSE(repository.classes(L"root\\cimv2").empty());
    expectRoundTrip();
}

INSTANTIATE_TEST_SUITE_P(All, SampleHostTest,
                         ::testing::Values(L"standard.mof", L"degraded.mof", L"empty.mof",
                                           L"bare.mof"));

}  // namespace
}  // namespace quista::test
