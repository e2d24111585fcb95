// Finding the portals of one initiator.
#include "tests/adapters/iscsi_wmi_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

std::vector<MofObject> portals(std::size_t count) {
    return std::vector<MofObject>(count, portal(ipv4Address(0x0100A8C0)));
}

class IscsiPortalsTest : public IscsiWmiTest {
  protected:
    IscsiPortalsTest() = default;

    /// Adds initiators "one" to "three" with as many portals, and opens the session.
    void openWithThree() {
        host.add(portalInfo(L"one", portals(1)));
        host.add(portalInfo(L"two", portals(2)));
        host.add(portalInfo(L"three", portals(3)));
        openSession();
    }
    unsigned long find(const std::wstring& wanted) {
        return KORVADSMGetMsPortalInfoClass(OwnedVariant(wanted).value(), name.get(), count.get(),
                                            information.get());
    }
    /// What the outputs hold: name, count, number of portals.
    void expectOutputs(const std::wstring& instance, LONG portals) const {
        EXPECT_EQ(name.text(), instance);
        EXPECT_EQ(count.type(), VT_I4);
        EXPECT_EQ(count.number(), portals);
        EXPECT_EQ(information.type(), VT_ARRAY | VT_UNKNOWN);
        EXPECT_EQ(information.elements(), portals);
    }
    void expectOutputsUntouched() const {
        EXPECT_EQ(name.type(), VT_EMPTY);
        EXPECT_EQ(count.type(), VT_EMPTY);
        EXPECT_EQ(information.type(), VT_EMPTY);
    }

    OwnedVariant name;
    OwnedVariant count;
    OwnedVariant information;
};

TEST_F(IscsiPortalsTest, Found) {
    openWithThree();
    EXPECT_EQ(find(L"two"), DSM_SUCCESS);
    expectOutputs(L"two", 2);
    EXPECT_FALSE(log.exists());
}

TEST_F(IscsiPortalsTest, OrderOfReads) {
    openWithThree();
    find(L"two");
    const std::vector<std::wstring> instance = {L"Next MSiSCSI_PortalInfoClass",
                                                L"Get MSiSCSI_PortalInfoClass.InstanceName",
                                                L"Get MSiSCSI_PortalInfoClass.PortalInfoCount",
                                                L"Get MSiSCSI_PortalInfoClass.PortalInformation"};
    std::vector<std::wstring> expected = {L"ExecQuery MSiSCSI_PortalInfoClass"};
    expected.insert(expected.end(), instance.begin(), instance.end());
    expected.insert(expected.end(), instance.begin(), instance.end());
    EXPECT_EQ(calls(), expected);
    EXPECT_EQ(host->trace().front().detail, L"SELECT * FROM MSiSCSI_PortalInfoClass");
}

TEST_F(IscsiPortalsTest, FirstOfSeveralAnswersAlike) {
    host.add(portalInfo(L"one", portals(1)));
    openSession();
    EXPECT_EQ(find(L"one"), DSM_SUCCESS);
    EXPECT_THAT(calls(), testing::SizeIs(5));
}

TEST_F(IscsiPortalsTest, NoInstances) {
    openSession();
    EXPECT_EQ(find(L"one"), DSM_ISCSI_PORTAL_NOT_FOUND);
    expectOutputsUntouched();
    EXPECT_FALSE(log.exists());
}

/// Without a match the outputs hold the values of the last instance.
TEST_F(IscsiPortalsTest, NoMatch) {
    openWithThree();
    EXPECT_EQ(find(L"four"), DSM_ISCSI_PORTAL_NOT_FOUND);
    expectOutputs(L"three", 3);
}

TEST_F(IscsiPortalsTest, NamesAreComparedExactly) {
    openWithThree();
    for (const wchar_t* wanted : {L"Two", L"TWO", L"two ", L"tw", L""}) {
        EXPECT_EQ(find(wanted), DSM_ISCSI_PORTAL_NOT_FOUND) << testing::PrintToString(wanted);
    }
}

TEST_F(IscsiPortalsTest, WantedNameIsNoText) {
    openWithThree();
    EXPECT_EQ(KORVADSMGetMsPortalInfoClass(OwnedVariant().value(), name.get(), count.get(),
                                           information.get()),
              DSM_ISCSI_PORTAL_NOT_FOUND);
}

TEST_F(IscsiPortalsTest, QueryFails) {
    openWithThree();
    host.failQuery(kPortalsClass, E_FAIL);
    EXPECT_EQ(find(L"one"), DSM_ISCSI_PORTAL_NOT_FOUND);
    expectOutputsUntouched();
    EXPECT_THAT(calls(), ElementsAre(L"ExecQuery MSiSCSI_PortalInfoClass"));
}

TEST_F(IscsiPortalsTest, NoSession) {
    EXPECT_EQ(find(L"one"), DSM_ISCSI_PORTAL_NOT_FOUND);
    expectOutputsUntouched();
}

TEST_F(IscsiPortalsTest, ClassMissing) {
    host->removeClass(kWmi, kPortalsClass);
    openSession();
    EXPECT_EQ(find(L"one"), DSM_ISCSI_QUERY_FAILED);
    expectOutputsUntouched();
}

// ---- Instances that cannot be read

/// All three properties are read, whichever of them fails; the search goes on.
TEST_F(IscsiPortalsTest, FailedReadOfTheOnlyMatch) {
    for (const wchar_t* property : {L"InstanceName", L"PortalInfoCount", L"PortalInformation"}) {
        SCOPED_TRACE(testing::PrintToString(property));
        closeSession();
        host->clear();
        host->clearFaults();
        host.loadClasses(L"iscsi");
        openWithThree();
        host.failGet(kPortalsClass, property, kNotFound, 2, 1);
        EXPECT_EQ(find(L"two"), DSM_ISCSI_QUERY_FAILED);
        EXPECT_EQ(calls().size(), 1u + 3u * 4u + 1u);
        EXPECT_FALSE(log.exists());
    }
}

TEST_F(IscsiPortalsTest, LaterMatchMakesUpForAFailure) {
    openWithThree();
    host.failGet(kPortalsClass, L"PortalInfoCount", E_FAIL, 1, 1);
    EXPECT_EQ(find(L"three"), DSM_SUCCESS);
    expectOutputs(L"three", 3);
}

/// An instance that merely does not match leaves the failure of an earlier one standing.
TEST_F(IscsiPortalsTest, FailureOutlastsOtherInstances) {
    openWithThree();
    host.failGet(kPortalsClass, L"InstanceName", E_FAIL, 1, 1);
    EXPECT_EQ(find(L"four"), DSM_ISCSI_QUERY_FAILED);
}

TEST_F(IscsiPortalsTest, PortalInformationIsNoArray) {
    host.add(portalInfo(L"one", {}).null(L"PortalInformation"));
    openSession();
    EXPECT_EQ(find(L"one"), DSM_ISCSI_QUERY_FAILED);
    EXPECT_EQ(name.text(), L"one");
    EXPECT_EQ(information.type(), VT_NULL);
}

TEST_F(IscsiPortalsTest, PortalInformationIsAnotherArray) {
    openWithThree();
    VARIANT numbers{};
    numbers.vt = VT_ARRAY | VT_I4;
    numbers.parray = SafeArrayCreateVector(VT_I4, 0, 2);
    host.replaceValue(kPortalsClass, L"PortalInformation", numbers, 1, 1);
    VariantClear(&numbers);
    EXPECT_EQ(find(L"one"), DSM_ISCSI_QUERY_FAILED);
}

TEST_F(IscsiPortalsTest, InstanceNameIsNull) {
    openWithThree();
    VARIANT null{};
    null.vt = VT_NULL;
    host.replaceValue(kPortalsClass, L"InstanceName", null);
    EXPECT_EQ(find(L"one"), DSM_ISCSI_PORTAL_NOT_FOUND);
}

// ---- Ends of the enumeration

TEST_F(IscsiPortalsTest, EnumerationTimesOut) {
    openWithThree();
    host.failNext(kPortalsClass, kTimedOut, 2);
    EXPECT_EQ(find(L"two"), DSM_LUN_INFO_FAILED);
    expectOutputs(L"one", 1);
    // After a failed instance too.
    host.failGet(kPortalsClass, L"InstanceName", E_FAIL);
    EXPECT_EQ(find(L"two"), DSM_LUN_INFO_FAILED);
    EXPECT_FALSE(log.exists());
}

TEST_F(IscsiPortalsTest, EnumerationFails) {
    for (const HRESULT result : {E_FAIL, HRESULT{0x40005}, HRESULT{2}, kNotFound}) {
        closeSession();
        host->clear();
        host->clearFaults();
        host.loadClasses(L"iscsi");
        openWithThree();
        host.failNext(kPortalsClass, result, 2);
        EXPECT_EQ(find(L"two"), DSM_ISCSI_QUERY_FAILED);
        host->clearFaults();
        host.failNext(kPortalsClass, result, 1);
        EXPECT_EQ(find(L"one"), DSM_ISCSI_QUERY_FAILED);
    }
    EXPECT_FALSE(log.exists());
}

// ---- What is kept

/// Of the instances passed over only the last is released, and the outputs of earlier ones are
/// overwritten as they are.
TEST_F(IscsiPortalsTest, SkippedInstancesAreKept) {
    openWithThree();
    {
        const LiveObjectsCheck live(host);
        EXPECT_EQ(find(L"one"), DSM_SUCCESS);
        VariantClear(information.get());
    }
    {
        // The first instance and its portal.
        const LiveObjectsCheck live(host, {.objects = 2});
        EXPECT_EQ(find(L"two"), DSM_SUCCESS);
        VariantClear(information.get());
    }
    {
        // The first two instances, and the three portals that they have.
        const LiveObjectsCheck live(host, {.objects = 5});
        EXPECT_EQ(find(L"four"), DSM_ISCSI_PORTAL_NOT_FOUND);
        VariantClear(information.get());
    }
}

TEST_F(IscsiPortalsTest, OverwrittenNamesAreKept) {
    openWithThree();
    const AllocationScope allocations;
    EXPECT_EQ(find(L"three"), DSM_SUCCESS);
    EXPECT_THAT(allocations.survivingTexts(), ElementsAre(L"one", L"two", L"three"));
}

}  // namespace
}  // namespace quista::test
