// ExecQuery.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using Names = std::vector<std::wstring>;

class QueryTest : public HostTest {
  protected:
    QueryTest() { loadSample(); }

    HRESULT tryQuery(const wchar_t* language, const wchar_t* query, LONG flags = 0x30) {
        IEnumWbemClassObject* results = nullptr;
        const HRESULT result =
            wmi().ExecQuery(Text(language), Text(query), flags, nullptr, &results);
        EXPECT_EQ(results != nullptr, result == S_OK);
        results_.reset(results);
        return result;
    }

    Names query(const wchar_t* text) {
        EXPECT_EQ(tryQuery(L"WQL", text), S_OK) << text;
        return results_ == nullptr ? Names{} : names(*results_);
    }

    Results results_;
};

TEST_F(QueryTest, ExecQuery_All_GivesInstancesOfSubclassesToo) {
    EXPECT_EQ(query(L"SELECT * FROM Disk"), (Names{L"first", L"second"}));
    EXPECT_EQ(query(L"select * from fastdisk"), Names{L"second"});
}

TEST_F(QueryTest, ExecQuery_Where_ComparesTextWithoutCase) {
    EXPECT_EQ(query(L"SELECT * FROM Disk WHERE Serial=\"abc\""), Names{L"first"});
    EXPECT_EQ(query(L"SELECT * FROM Disk WHERE Serial=\"abc\" OR Name=\"second\""),
              (Names{L"first", L"second"}));
    EXPECT_EQ(query(L"SELECT * FROM Disk WHERE Size > 4999999999 AND State = 7"), Names{L"first"});
    EXPECT_EQ(query(L"SELECT * FROM Disk WHERE Serial=\"xyz\""), Names{});
}

TEST_F(QueryTest, ExecQuery_PropertyList_GivesTheseAlone) {
    ASSERT_EQ(query(L"SELECT Name, Serial FROM Disk WHERE State=7"), (Names{L"first", L"second"}));
    ASSERT_EQ(tryQuery(L"WQL", L"SELECT Serial FROM Disk"), S_OK);
    IWbemClassObject* next = nullptr;
    ULONG returned = 0;
    ASSERT_EQ(results_->Next(kInfinite, 1, &next, &returned), S_OK);
    const Object disk(next);
    OwnedVariant serial = get(*disk, L"Serial");
    EXPECT_EQ(textOf(serial), L"ABC");
    OwnedVariant none;
    EXPECT_EQ(disk->Get(L"State", 0, none.get(), nullptr, nullptr), wbem(WBEM_E_NOT_FOUND));
}

TEST_F(QueryTest, ExecQuery_LanguageWithoutCase_OtherLanguageRefused) {
    EXPECT_EQ(tryQuery(L"wql", L"SELECT * FROM Disk"), S_OK);
    EXPECT_EQ(tryQuery(L"SQL", L"SELECT * FROM Disk"), wbem(WBEM_E_INVALID_QUERY_TYPE));
}

TEST_F(QueryTest, ExecQuery_NullOrEmptyText_InvalidParameter) {
    EXPECT_EQ(tryQuery(L"WQL", nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(tryQuery(L"WQL", L""), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(tryQuery(nullptr, L"SELECT * FROM Disk"), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(wmi().ExecQuery(Text(L"WQL"), Text(L"SELECT * FROM Disk"), 0, nullptr, nullptr),
              wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(QueryTest, ExecQuery_SyntaxError_FailsAtOnce) {
    EXPECT_EQ(tryQuery(L"WQL", L"SELECT * Disk"), wbem(WBEM_E_INVALID_QUERY));
    EXPECT_EQ(tryQuery(L"WQL", L"SELECT * FROM Disk WHERE Serial=\"a\"b\""),
              wbem(WBEM_E_INVALID_QUERY));
}

TEST_F(QueryTest, ExecQuery_UnknownProperty_InvalidQuery) {
    EXPECT_EQ(tryQuery(L"WQL", L"SELECT * FROM Disk WHERE Nothing=1"), wbem(WBEM_E_INVALID_QUERY));
    EXPECT_EQ(tryQuery(L"WQL", L"SELECT Nothing FROM Disk"), wbem(WBEM_E_INVALID_QUERY));
}

TEST_F(QueryTest, ExecQuery_UnknownClass_SurfacesAtNext) {
    ASSERT_EQ(tryQuery(L"WQL", L"SELECT * FROM Unknown"), S_OK);
    IWbemClassObject* next = nullptr;
    ULONG returned = 0;
    EXPECT_EQ(results_->Next(kInfinite, 1, &next, &returned), wbem(WBEM_E_INVALID_CLASS));
}

TEST_F(QueryTest, ExecQuery_UnknownClass_AtCreationWhenAskedOrSynchronous) {
    EXPECT_EQ(tryQuery(L"WQL", L"SELECT * FROM Unknown", 0), wbem(WBEM_E_INVALID_CLASS));
    host().setUnknownClassAtCreation(true);
    EXPECT_EQ(tryQuery(L"WQL", L"SELECT * FROM Unknown"), wbem(WBEM_E_INVALID_CLASS));
}

}  // namespace
}  // namespace quista::test
