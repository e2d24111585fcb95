// PutInstance.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

class PutInstanceTest : public HostTest {
  protected:
    PutInstanceTest() { loadSample(); }

    Object freshDisk(const wchar_t* name) {
        Object disk = spawn(L"Disk");
        OwnedVariant value = variantOf(name);
        EXPECT_EQ(disk->Put(L"Name", 0, value.get(), 0), S_OK);
        return disk;
    }

    HRESULT put(IWbemClassObject* instance, LONG flags = 0) {
        return wmi().PutInstance(instance, flags, nullptr, nullptr);
    }

    std::size_t disks() { return host().countInstances(L"root\\wmi", L"Disk"); }
};

TEST_F(PutInstanceTest, ChangedInstance_IsUpdated) {
    const Object disk = object(L"Disk.Name=\"first\"");
    OwnedVariant serial = variantOf(L"NEW");
    ASSERT_EQ(disk->Put(L"Serial", 0, serial.get(), 0), S_OK);
    EXPECT_EQ(put(disk.get()), S_OK);
    OwnedVariant stored = get(*object(L"Disk.Name=\"first\""), L"Serial");
    EXPECT_EQ(textOf(stored), L"NEW");
    EXPECT_EQ(disks(), 2U);
}

TEST_F(PutInstanceTest, SpawnedInstance_IsCreated) {
    EXPECT_EQ(put(freshDisk(L"third").get()), S_OK);
    EXPECT_EQ(disks(), 3U);
    EXPECT_NE(object(L"Disk.Name=\"third\""), nullptr);
}

TEST_F(PutInstanceTest, CreateOnly_ExistingInstance_AlreadyExists) {
    EXPECT_EQ(put(freshDisk(L"first").get(), WBEM_FLAG_CREATE_ONLY), wbem(WBEM_E_ALREADY_EXISTS));
    EXPECT_EQ(put(freshDisk(L"third").get(), WBEM_FLAG_CREATE_ONLY), S_OK);
}

TEST_F(PutInstanceTest, UpdateOnly_MissingInstance_NotFound) {
    EXPECT_EQ(put(freshDisk(L"third").get(), WBEM_FLAG_UPDATE_ONLY), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(disks(), 2U);
}

TEST_F(PutInstanceTest, NullKeyOrForbiddenNull_IllegalNull) {
    EXPECT_EQ(put(spawn(L"Disk").get()), wbem(WBEM_E_ILLEGAL_NULL));
    const Object disk = freshDisk(L"third");
    ASSERT_EQ(disk->Put(L"Enabled", 0, nullptr, 0), S_OK);
    EXPECT_EQ(put(disk.get()), wbem(WBEM_E_ILLEGAL_NULL));
}

TEST_F(PutInstanceTest, ClassObject_InvalidObject) {
    EXPECT_EQ(put(object(L"Disk").get()), wbem(WBEM_E_INVALID_OBJECT));
}

TEST_F(PutInstanceTest, ClassGoneMeanwhile_InvalidClass) {
    const Object disk = freshDisk(L"third");
    EXPECT_TRUE(host().removeClass(L"root\\wmi", L"Disk"));
    EXPECT_EQ(put(disk.get()), wbem(WBEM_E_INVALID_CLASS));
}

TEST_F(PutInstanceTest, BadArguments_InvalidParameter) {
    EXPECT_EQ(put(nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(put(freshDisk(L"third").get(), 3), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(PutInstanceTest, Trace_NamesClassAndPath) {
    put(freshDisk(L"third").get());
    EXPECT_EQ(host().trace().back().className, L"Disk");
    EXPECT_EQ(host().trace().back().path, L"Disk.Name=\"third\"");
}

}  // namespace
}  // namespace quista::test
