// IEnumWbemClassObject.
#include <array>

#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using simulator::LiveObjects;
using Names = std::vector<std::wstring>;

class EnumeratorTest : public HostTest {
  protected:
    EnumeratorTest() {
        load(L"class Item { [key] string Name; };");
        for (const wchar_t* name : {L"a", L"b", L"c", L"d", L"e"}) {
            load(L"instance of Item { Name = \"" + std::wstring(name) + L"\"; };");
        }
    }
};

TEST_F(EnumeratorTest, Next_OneAtATime_EndsWithFalseAgainAndAgain) {
    const Results items = enumerate(L"Item", kForwardOnly);
    EXPECT_EQ(names(*items).size(), 5U);
    for (int i = 0; i < 3; ++i) {
        IWbemClassObject* object = nullptr;
        ULONG returned = 9;
        EXPECT_EQ(items->Next(kInfinite, 1, &object, &returned), WBEM_S_FALSE);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(returned, 0U);
    }
}

TEST_F(EnumeratorTest, Next_Batches_LastOneIsShortAndFalse) {
    const Results items = enumerate(L"Item");
    const auto untouched = reinterpret_cast<IWbemClassObject*>(8);
    std::array<IWbemClassObject*, 3> objects;
    ULONG returned = 0;
    objects.fill(untouched);
    EXPECT_EQ(items->Next(kInfinite, 3, objects.data(), &returned), S_OK);
    EXPECT_EQ(returned, 3U);
    for (IWbemClassObject* object : objects) object->Release();

    objects.fill(untouched);
    EXPECT_EQ(items->Next(kInfinite, 3, objects.data(), &returned), WBEM_S_FALSE);
    EXPECT_EQ(returned, 2U);
    EXPECT_EQ(objects[2], untouched);
    objects[0]->Release();
    objects[1]->Release();

    objects.fill(untouched);
    EXPECT_EQ(items->Next(kInfinite, 3, objects.data(), &returned), WBEM_S_FALSE);
    EXPECT_EQ(returned, 0U);
    EXPECT_EQ(objects[0], untouched);
}

TEST_F(EnumeratorTest, Next_AllAtOnce_IsSuccess) {
    std::array<IWbemClassObject*, 5> objects{};
    ULONG returned = 0;
    EXPECT_EQ(enumerate(L"Item")->Next(kInfinite, 5, objects.data(), &returned), S_OK);
    EXPECT_EQ(host().liveObjects(), (LiveObjects{.services = 1, .objects = 5}));
    for (IWbemClassObject* object : objects) object->Release();
    EXPECT_EQ(host().liveObjects(), LiveObjects{.services = 1});
}

TEST_F(EnumeratorTest, Next_HugeCount_GivesWhatThereIs) {
    const Results items = enumerate(L"Item");
    std::array<IWbemClassObject*, 5> objects{};
    ULONG returned = 0;
    EXPECT_EQ(items->Next(kInfinite, 0x7FFFFFFF, objects.data(), &returned), WBEM_S_FALSE);
    EXPECT_EQ(returned, 5U);
    for (IWbemClassObject* object : objects) object->Release();
}

TEST_F(EnumeratorTest, Next_NullPointers_InvalidParameter) {
    const Results items = enumerate(L"Item");
    IWbemClassObject* object = nullptr;
    ULONG returned = 0;
    EXPECT_EQ(items->Next(kInfinite, 1, nullptr, &returned), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(items->Next(kInfinite, 1, &object, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(items->Next(-2, 1, &object, &returned), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(names(*items).size(), 5U);
}

TEST_F(EnumeratorTest, Reset_StartsAgain) {
    const Results items = enumerate(L"Item");
    EXPECT_EQ(names(*items).size(), 5U);
    EXPECT_EQ(items->Reset(), S_OK);
    EXPECT_EQ(names(*items).size(), 5U);
}

TEST_F(EnumeratorTest, Skip_PassesOver_FalseBeyondTheEnd) {
    const Results items = enumerate(L"Item", kForwardOnly);
    EXPECT_EQ(items->Skip(kInfinite, 3), S_OK);
    EXPECT_EQ(names(*items), (Names{L"d", L"e"}));
    EXPECT_EQ(items->Skip(kInfinite, 1), WBEM_S_FALSE);
}

TEST_F(EnumeratorTest, Clone_GoesOnFromTheSamePlace) {
    const Results items = enumerate(L"Item");
    items->Skip(kInfinite, 2);
    IEnumWbemClassObject* copy = nullptr;
    ASSERT_EQ(items->Clone(&copy), S_OK);
    const Results owned(copy);
    EXPECT_EQ(names(*items), (Names{L"c", L"d", L"e"}));
    EXPECT_EQ(names(*owned), (Names{L"c", L"d", L"e"}));
    EXPECT_EQ(items->Clone(nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(EnumeratorTest, ForwardOnly_RefusesResetAndClone) {
    const Results items = enumerate(L"Item", WBEM_FLAG_FORWARD_ONLY);
    IEnumWbemClassObject* copy = nullptr;
    EXPECT_EQ(items->Reset(), wbem(WBEM_E_INVALID_OPERATION));
    EXPECT_EQ(items->Clone(&copy), wbem(WBEM_E_INVALID_OPERATION));
    EXPECT_EQ(copy, nullptr);
}

TEST_F(EnumeratorTest, NextAsync_NotImplemented) {
    EXPECT_EQ(enumerate(L"Item")->NextAsync(1, nullptr), E_NOTIMPL);
}

TEST_F(EnumeratorTest, Skip_UnknownClass_GivesItsError) {
    EXPECT_EQ(enumerate(L"Unknown", kSemisynchronous)->Skip(kInfinite, 1),
              wbem(WBEM_E_INVALID_CLASS));
}

}  // namespace
}  // namespace quista::test
