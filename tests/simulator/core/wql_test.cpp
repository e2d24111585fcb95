#include "simulator/wql/wql_query.h"
#include "tests/simulator/core/fixtures.h"

namespace quista::test {
namespace {

using namespace quista::simulator;

class WqlParseTest : public ::testing::Test {
  protected:
    static WqlStatus statusOf(std::wstring_view text) { return parseWql(text).status; }
};

TEST_F(WqlParseTest, ReadsClassAndProperties) {
    const WqlResult all = parseWql(L"SELECT * FROM Win32_DiskDrive");
    ASSERT_EQ(all.status, WqlStatus::ok);
    EXPECT_EQ(all.query.className(), L"Win32_DiskDrive");
    EXPECT_TRUE(all.query.properties().empty());
    const WqlResult some = parseWql(L"\tselect A,__Path , b\r\nfrom\nX ");
    ASSERT_EQ(some.status, WqlStatus::ok);
    EXPECT_EQ(some.query.properties(), (std::vector<std::wstring>{L"A", L"__Path", L"b"}));
}

TEST_F(WqlParseTest, RefusesWhatIsNoStatement) {
    for (const wchar_t* text : {L"",
                                L"SELECT",
                                L"SELECT *",
                                L"SELECT * FROM",
                                L"SELECT FROM X",
                                L"SELECT A B FROM X",
                                L"SELECT A, FROM X",
                                L"SELECT *, A FROM X",
                                L"SELECT * FROM X Y",
                                L"SELECT * FROM X;",
                                L"SELECT * FROM select",
                                L"DELETE FROM X",
                                L"SELECT * FROM X WHERE",
                                L"SELECT * FROM X WHERE A",
                                L"SELECT * FROM X WHERE A =",
                                L"SELECT * FROM X WHERE = 1",
                                L"SELECT * FROM X WHERE A = B",
                                L"SELECT * FROM X WHERE 1 = 1",
                                L"SELECT * FROM X WHERE A == 1",
                                L"SELECT * FROM X WHERE A = 1 AND",
                                L"SELECT * FROM X WHERE A = 1 OR OR B = 1",
                                L"SELECT * FROM X WHERE A = 1 B = 2",
                                L"SELECT * FROM X WHERE (A = 1",
                                L"SELECT * FROM X WHERE A = 1)",
                                L"SELECT * FROM X WHERE ()",
                                L"SELECT * FROM X WHERE NOT",
                                L"SELECT * FROM X WHERE A IS",
                                L"SELECT * FROM X WHERE A IS 1",
                                L"SELECT * FROM X WHERE A IS NOT",
                                L"SELECT * FROM X WHERE A = NULL",
                                L"SELECT * FROM X WHERE A LIKE 'a'",
                                L"SELECT * FROM X WHERE A.B = 1",
                                L"SELECT * FROM X WHERE A = 1a",
                                L"SELECT * FROM X WHERE A = 18446744073709551616",
                                L"SELECT * FROM X WHERE A = -",
                                L"SELECT * FROM X WHERE A = \"a",
                                L"SELECT * FROM X WHERE A = 'a",
                                L"SELECT * FROM X WHERE A = \"a\\\"",
                                L"SELECT * FROM X WHERE A = \"a\\",
                                L"SELECT * FROM X WHERE A = \"a\"b\"",
                                L"SELECT * FROM X WHERE A = \"a\"\"b\"",
                                L"SELECT * FROM X WHERE A = 'a\"",
                                L"SELECT * FROM X WHERE A = $"})
        EXPECT_EQ(statusOf(text), WqlStatus::invalid) << narrow(text);
}

TEST_F(WqlParseTest, RefusesNestingWithoutEnd) {
    const auto nested = [](std::size_t depth) {
        return L"SELECT * FROM X WHERE " + std::wstring(depth, L'(') + L"A = 1" +
               std::wstring(depth, L')');
    };
    EXPECT_EQ(statusOf(nested(64)), WqlStatus::ok);
    EXPECT_EQ(statusOf(nested(65)), WqlStatus::tooComplex);
    EXPECT_EQ(statusOf(nested(1000000)), WqlStatus::tooComplex);
}

TEST_F(WqlParseTest, ReadsLongChainsWithoutNesting) {
    std::wstring text = L"SELECT * FROM X WHERE A = 1";
    for (int i = 0; i < 20000; ++i) text += i % 2 == 0 ? L" OR A = 2" : L" AND NOT A = 3";
    EXPECT_EQ(statusOf(text), WqlStatus::ok);
    std::wstring negations = L"SELECT * FROM X WHERE ";
    for (int i = 0; i < 20001; ++i) negations += L"NOT ";
    EXPECT_EQ(statusOf(negations + L"A = 1"), WqlStatus::ok);
}

/// One instance with a value of each kind.
class WqlMatchTest : public CoreTest {
  protected:
    void SetUp() override {
        load(
            LR"(class X { [key] string S; uint8 U; sint64 L; uint64 H; real64 R; boolean T; boolean F;
                     datetime D; char16 C; string NoText; uint32 NoNumber; uint8 A[]; object O; };
                 instance of X { S = "Serial\\1\"x'"; U = 5; L = -9223372036854775808;
                     H = 18446744073709551615; R = 2.5; T = TRUE; F = FALSE;
                     D = "20240131235959.000000+060"; C = 'A'; A = {1}; };)");
        instance = repository.instances(kWmi, L"X").at(0);
    }

    bool matches(std::wstring_view condition) const {
        const WqlResult result = parseWql(L"SELECT * FROM X WHERE " + std::wstring(condition));
        EXPECT_EQ(result.status, WqlStatus::ok) << narrow(condition);
        EXPECT_TRUE(result.query.isValidFor(instance->definition())) << narrow(condition);
        return result.query.matches(*instance);
    }

    bool isValid(std::wstring_view condition) const {
        const WqlResult result = parseWql(L"SELECT * FROM X WHERE " + std::wstring(condition));
        EXPECT_EQ(result.status, WqlStatus::ok) << narrow(condition);
        const bool valid = result.query.isValidFor(instance->definition());
        EXPECT_TRUE(valid || !result.query.matches(*instance)) << narrow(condition);
        return valid;
    }

    CimInstancePtr instance;
};

TEST_F(WqlMatchTest, WithoutConditionEverythingMatches) {
    EXPECT_TRUE(parseWql(L"SELECT * FROM X").query.matches(*instance));
    EXPECT_TRUE(parseWql(L"SELECT * FROM X").query.isValidFor(instance->definition()));
}

TEST_F(WqlMatchTest, ComparesTextsWithoutCase) {
    EXPECT_TRUE(matches(LR"(S = "Serial\\1\"x\'")"));
    EXPECT_TRUE(matches(LR"(s = 'SERIAL\\1"x\'')"));
    EXPECT_FALSE(matches(LR"(S = "Serial\1\"x'")")) << "a lone backslash is lost";
    EXPECT_FALSE(matches(LR"(S = "Serial")"));
    EXPECT_TRUE(matches(LR"(S <> "Serial")"));
    EXPECT_FALSE(matches(LR"(S != "serial\\1\"X'")"));
    EXPECT_TRUE(matches(LR"(S > "SERIAL")"));
    EXPECT_TRUE(matches(LR"(S < "t")"));
    EXPECT_FALSE(matches(LR"(S >= "t")"));
    EXPECT_TRUE(matches(LR"(D >= "20240101000000.000000+000")"));
}

TEST_F(WqlMatchTest, ComparesNumbersOfAllSizes) {
    EXPECT_TRUE(matches(L"U = 5"));
    EXPECT_TRUE(matches(L"U=+5"));
    EXPECT_TRUE(matches(L"U = 005"));
    EXPECT_TRUE(matches(L"U = \"5\""));
    EXPECT_TRUE(matches(L"U > -1"));
    EXPECT_FALSE(matches(L"U < -1"));
    EXPECT_TRUE(matches(L"U <= 5"));
    EXPECT_TRUE(matches(L"U >= 5"));
    EXPECT_FALSE(matches(L"U > 5"));
    EXPECT_TRUE(matches(L"L = -9223372036854775808"));
    EXPECT_TRUE(matches(L"L < 0"));
    EXPECT_FALSE(matches(L"L = 9223372036854775808"));
    EXPECT_TRUE(matches(L"L > -9223372036854775809"));
    EXPECT_TRUE(matches(L"H = 18446744073709551615"));
    EXPECT_TRUE(matches(L"H = '18446744073709551615'"));
    EXPECT_TRUE(matches(L"H > 9223372036854775807"));
    EXPECT_FALSE(matches(L"H = -1"));
    EXPECT_TRUE(matches(L"R > 2"));
    EXPECT_TRUE(matches(L"R < 3"));
    EXPECT_FALSE(matches(L"R = 2"));
    EXPECT_TRUE(matches(L"C = 65"));
    EXPECT_FALSE(matches(L"U = -0 OR U < -0"));
}

TEST_F(WqlMatchTest, ComparesBooleans) {
    EXPECT_TRUE(matches(L"T = TRUE"));
    EXPECT_TRUE(matches(L"T <> false"));
    EXPECT_TRUE(matches(L"F = FALSE"));
    EXPECT_FALSE(matches(L"F = true"));
    EXPECT_TRUE(matches(L"T = 1"));
    EXPECT_TRUE(matches(L"F = 0"));
}

TEST_F(WqlMatchTest, TheLiteralMayComeFirst) {
    EXPECT_TRUE(matches(L"5 = U"));
    EXPECT_TRUE(matches(L"4 < U"));
    EXPECT_FALSE(matches(L"4 > U"));
    EXPECT_TRUE(matches(L"5 <= U AND 5 >= U AND 6 <> U"));
    EXPECT_TRUE(matches(L"TRUE = T"));
}

TEST_F(WqlMatchTest, NullMatchesNoComparisonNotEvenNegated) {
    EXPECT_FALSE(matches(L"NoText = 'x'"));
    EXPECT_FALSE(matches(L"NoText <> 'x'"));
    EXPECT_FALSE(matches(L"NOT NoText = 'x'"));
    EXPECT_FALSE(matches(L"NoNumber < 5"));
    EXPECT_FALSE(matches(L"NOT (NoNumber < 5 AND U = 5)"));
    EXPECT_TRUE(matches(L"NOT (NoNumber < 5 AND U = 6)"));
    EXPECT_TRUE(matches(L"NoNumber < 5 OR U = 5"));
}

TEST_F(WqlMatchTest, AsksForNull) {
    EXPECT_TRUE(matches(L"NoNumber IS NULL"));
    EXPECT_FALSE(matches(L"NoNumber IS NOT NULL"));
    EXPECT_FALSE(matches(L"U is null"));
    EXPECT_TRUE(matches(L"U is not null"));
    EXPECT_TRUE(matches(L"A IS NOT NULL AND O IS NULL"));
    EXPECT_TRUE(matches(L"NOT U IS NULL"));
}

struct Connective {
    const wchar_t* text;
    bool expected[4];  ///< for the operands FF, FT, TF, TT
};

TEST_F(WqlMatchTest, ConnectivesFollowTheirTruthTables) {
    const Connective connectives[] = {
        {L"%1 AND %2", {false, false, false, true}},
        {L"%1 OR %2", {false, true, true, true}},
        {L"NOT %1 AND %2", {false, true, false, false}},
        {L"NOT (%1 AND %2)", {true, true, true, false}},
        {L"NOT (%1 OR %2)", {true, false, false, false}},
        {L"NOT NOT %1 OR %2", {false, true, true, true}},
        {L"%1 OR %1 AND %2", {false, false, true, true}},
        {L"(%1 OR %2) AND %2", {false, true, false, true}},
        {L"%1 AND %2 OR NOT %2 AND NOT %1", {true, false, false, true}},
    };
    const auto filled = [](std::wstring text, bool first, bool second) {
        for (std::size_t at; (at = text.find(L'%')) != std::wstring::npos;)
            text.replace(at, 2, (text[at + 1] == L'1' ? first : second) ? L"U = 5" : L"U = 6");
        return text;
    };
    for (const Connective& connective : connectives)
        for (int operands = 0; operands < 4; ++operands)
            EXPECT_EQ(matches(filled(connective.text, operands >= 2, operands % 2 == 1)),
                      connective.expected[operands])
                << narrow(connective.text) << " " << operands;
}

TEST_F(WqlMatchTest, OnlySensibleComparisonsAreValid) {
    for (const wchar_t* condition :
         {L"Missing = 1", L"Missing IS NULL", L"U = 'five'", L"U = TRUE", L"S = 5", L"S = TRUE",
          L"T = 2", L"T = 'TRUE'", L"T < TRUE", L"A = 1", L"O = 'x'", L"D = 5",
          L"U = 5 AND (S = 'x' OR NOT Missing = 1)"})
        EXPECT_FALSE(isValid(condition)) << narrow(condition);
}

}  // namespace
}  // namespace quista::test
