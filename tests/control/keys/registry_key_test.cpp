// The persistent reservation key in the driver's service parameters.
#include <windows.h>

#include <array>
#include <gtest/gtest.h>
#include <sddl.h>
#include <string>

#include "quista/control.h"
#include "quista/status.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/import_patch.h"
#include "tests/support/library_test.h"
#include "tests/support/local_machine.h"
#include "tests/support/process_census.h"

namespace quista::test {
namespace {

constexpr const wchar_t* kParameters = L"SYSTEM\\CurrentControlSet\\Services\\korvadsm\\Parameters";
constexpr const wchar_t* kValue = L"PersistentReservationKey";
constexpr std::size_t kKeyBytes = 8;
constexpr DWORD kOtherTypes[] = {REG_NONE, REG_QWORD, REG_RESOURCE_LIST};

/// A key with zero bytes and bytes of 128 and more, none of them twice in a row.
std::string sampleKey() {
    return {"\x4b\x00\xff\x80\x00\x7f\x01\x00", kKeyBytes};
}

class RegistryKeyTest : public testing::Test {
  protected:
    static unsigned long set(std::string key) { return Reg_Set_PR(key.data()); }
    unsigned long get() { return Reg_Get_PR(reinterpret_cast<char*>(buffer.data())); }
    std::string bytes() const {
        return {reinterpret_cast<const char*>(buffer.data()), buffer.size()};
    }
    void store(DWORD type, const std::string& value) {
        machine.setValue(kParameters, kValue, type, value.data(), value.size());
    }
    std::optional<std::string> stored() const {
        return machine.value(kParameters, kValue, REG_BINARY);
    }

    WorkFolder folder;
    LogFile log;
    LocalMachine machine;
    GuardedBuffer buffer{kKeyBytes};
};

// ---- Reg_Set_PR

TEST_F(RegistryKeyTest, Set_WritesTheEightBytesAsTheyAre) {
    machine.makeKey(kParameters);
    EXPECT_EQ(set(sampleKey()), DSM_SUCCESS);
    EXPECT_EQ(stored(), sampleKey());
}

TEST_F(RegistryKeyTest, Set_ReplacesAnyValue) {
    machine.setText(kParameters, kValue, L"a text that is longer than a key");
    EXPECT_EQ(set(sampleKey()), DSM_SUCCESS);
    EXPECT_EQ(stored(), sampleKey());
}

TEST_F(RegistryKeyTest, Set_ReadsNoMoreThanEightBytes) {
    machine.makeKey(kParameters);
    EXPECT_EQ(Reg_Set_PR(reinterpret_cast<char*>(buffer.data())), DSM_SUCCESS);
    EXPECT_EQ(stored(), std::string(kKeyBytes, '\xA5'));
}

// Kept: the code of the default policy stands for a key that cannot be opened.
TEST_F(RegistryKeyTest, Set_MissingKey_37AndItIsNotMade) {
    EXPECT_EQ(set(sampleKey()), DSM_SET_DEFAULT_LBP_FAILED);
    machine.makeKey(L"SYSTEM\\CurrentControlSet\\Services\\korvadsm");
    EXPECT_EQ(set(sampleKey()), DSM_SET_DEFAULT_LBP_FAILED);
    EXPECT_EQ(stored(), std::nullopt);
}

// Kept: a code that has no text.
TEST_F(RegistryKeyTest, Set_RefusedWrite_47) {
    store(REG_BINARY, "previous");
    const ImportPatch patch(
        "RegSetValueExW", +[](HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD) -> LSTATUS {
            return ERROR_ACCESS_DENIED;
        });
    EXPECT_EQ(set(sampleKey()), DSM_REGISTRY_WRITE_FAILED);
    EXPECT_EQ(stored(), "previous");
}

// ---- Reg_Get_PR

TEST_F(RegistryKeyTest, Get_ReadsTheEightBytesAsTheyAre) {
    store(REG_BINARY, sampleKey());
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_EQ(bytes(), sampleKey());
}

TEST_F(RegistryKeyTest, Get_ReadsWhatWasSet) {
    machine.makeKey(kParameters);
    for (const std::string& key : {sampleKey(), std::string(kKeyBytes, '\0'),
                                   std::string(kKeyBytes, '\xff'), std::string("12345678")}) {
        EXPECT_EQ(set(key), DSM_SUCCESS);
        EXPECT_EQ(get(), DSM_SUCCESS);
        EXPECT_EQ(bytes(), key);
    }
}

TEST_F(RegistryKeyTest, Get_MissingKeyOrValue_48) {
    EXPECT_EQ(get(), DSM_GET_PR_KEY_FAILED);
    machine.makeKey(kParameters);
    EXPECT_EQ(get(), DSM_GET_PR_KEY_FAILED);
    EXPECT_TRUE(buffer.untouched());
}

TEST_F(RegistryKeyTest, Get_LongerValue_48AndTheCallersBytesStay) {
    for (const std::size_t length : {9u, 16u, 1000u}) {
        store(REG_BINARY, std::string(length, 'x'));
        EXPECT_EQ(get(), DSM_GET_PR_KEY_FAILED) << length;
    }
    EXPECT_TRUE(buffer.untouched());
}

TEST_F(RegistryKeyTest, Get_ShorterValue_LeavesZeros) {
    store(REG_BINARY, "abc");
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_EQ(bytes(), std::string("abc\0\0\0\0\0", kKeyBytes));
}

TEST_F(RegistryKeyTest, Get_EmptyValue_IsZeros) {
    store(REG_BINARY, "");
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_EQ(bytes(), std::string(kKeyBytes, '\0'));
}

TEST_F(RegistryKeyTest, Get_TakesAnyType) {
    machine.setNumber(kParameters, kValue, 0x04030201);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_EQ(bytes(), std::string("\1\2\3\4\0\0\0\0", kKeyBytes));
    for (const DWORD type : kOtherTypes) {
        store(type, sampleKey());
        EXPECT_EQ(get(), DSM_SUCCESS) << type;
        EXPECT_EQ(bytes(), sampleKey()) << type;
    }
}

// ---- Both

/// For its life everyone may read the parameters, and no one may do more.
class ReadOnlyParameters {
  public:
    ReadOnlyParameters() {
        EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kParameters, 0, KEY_READ | WRITE_DAC, &key_),
                  ERROR_SUCCESS);
        protect(L"D:P(A;;KR;;;WD)");
    }
    ~ReadOnlyParameters() {
        protect(L"D:P(A;;KA;;;WD)");
        RegCloseKey(key_);
    }
    ReadOnlyParameters(const ReadOnlyParameters&) = delete;
    ReadOnlyParameters& operator=(const ReadOnlyParameters&) = delete;

  private:
    void protect(const wchar_t* rights) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1,
                                                                         &descriptor, nullptr));
        EXPECT_EQ(RegSetKeySecurity(key_, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
        LocalFree(descriptor);
    }

    HKEY key_ = nullptr;
};

TEST_F(RegistryKeyTest, ReadOnlyKey_CanBeReadButNotWritten) {
    store(REG_BINARY, sampleKey());
    const ReadOnlyParameters protection;
    EXPECT_EQ(set("12345678"), DSM_SET_DEFAULT_LBP_FAILED);
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_EQ(bytes(), sampleKey());
}

std::wstring openedPath;
REGSAM openedAccess = 0;

LSTATUS WINAPI refuseOpening(HKEY root, LPCWSTR path, DWORD options, REGSAM access, PHKEY) {
    EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
    EXPECT_EQ(options, 0u);
    openedPath = path;
    openedAccess = access;
    return ERROR_ACCESS_DENIED;
}

TEST_F(RegistryKeyTest, TheParametersAreOpenedWithNoMoreRightsThanNeeded) {
    machine.makeKey(kParameters);
    const ImportPatch patch("RegOpenKeyExW", refuseOpening);
    EXPECT_EQ(set(sampleKey()), DSM_SET_DEFAULT_LBP_FAILED);
    EXPECT_EQ(openedPath, std::wstring(kParameters) + L"\\");
    EXPECT_EQ(openedAccess, static_cast<REGSAM>(KEY_QUERY_VALUE | KEY_SET_VALUE));

    EXPECT_EQ(get(), DSM_GET_PR_KEY_FAILED);
    EXPECT_EQ(openedPath, std::wstring(kParameters) + L"\\");
    EXPECT_EQ(openedAccess, static_cast<REGSAM>(KEY_QUERY_VALUE));
    EXPECT_TRUE(buffer.untouched());
}

TEST_F(RegistryKeyTest, TheHandleIsClosed) {
    store(REG_BINARY, sampleKey());
    set(sampleKey());
    get();
    const std::size_t before = countHandles();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(set(sampleKey()), DSM_SUCCESS);
        EXPECT_EQ(get(), DSM_SUCCESS);
    }
    EXPECT_EQ(countHandles(), before);

    store(REG_BINARY, std::string(16, 'x'));
    for (int i = 0; i < 10; ++i) EXPECT_EQ(get(), DSM_GET_PR_KEY_FAILED);
    EXPECT_EQ(countHandles(), before);
}

TEST_F(RegistryKeyTest, NothingIsLogged) {
    set(sampleKey());
    get();
    store(REG_BINARY, std::string(16, 'x'));
    get();
    set(sampleKey());
    EXPECT_FALSE(log.exists());
}

}  // namespace
}  // namespace quista::test
