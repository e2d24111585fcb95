// A version resource that there is no memory for. The program holds the library's objects, so that
// their allocations can be made to fail.
#include <windows.h>

#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <new>

#include "quista/mpio.h"
#include "quista/status.h"
#include "tests/support/work_folder.h"

namespace {

/// The resource's block that fails, counted from 1; 0 for none.
unsigned failingBlock = 0;
unsigned blocks = 0;

}  // namespace

// Every resource is read into a block of this kind.
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    if (++blocks == failingBlock) return nullptr;
    return ::operator new(size, tag);
}

namespace quista::test {
namespace {

class VersionsMemoryTest : public testing::Test {
  protected:
    VersionsMemoryTest() {
        const std::filesystem::path drivers = folder.path(L"system32\\drivers");
        std::filesystem::create_directories(drivers);
        for (const wchar_t* name : {L"mpio.sys", L"korvadsm.sys", L"msiscdsm.sys"}) {
            std::filesystem::copy_file(QUISTA_VERSION_FOLDER L"/first.dll", drivers / name);
        }
        std::filesystem::copy_file(QUISTA_VERSION_FOLDER L"/second.dll", drivers / L"msdsm.sys");
        SetEnvironmentVariableW(L"SYSTEMROOT", folder.path().c_str());
    }

    /// Reads the versions while one of the blocks fails.
    static _DRIVER_VERSION readWithout(unsigned block) {
        _DRIVER_VERSION version{};
        blocks = 0;
        failingBlock = block;
        EXPECT_EQ(DSMGetVersion(&version), DSM_SUCCESS);
        failingBlock = 0;
        return version;
    }

    WorkFolder folder;
};

TEST_F(VersionsMemoryTest, EachFileIsLeftOutAlone) {
    const _DRIVER_VERSION whole = readWithout(0);
    EXPECT_EQ(blocks, 4u);
    EXPECT_EQ(whole.Program.Major, 7u);
    EXPECT_EQ(whole.Mpio.Major, 1u);
    EXPECT_EQ(whole.KorvaDsm.Major, 1u);
    EXPECT_EQ(whole.MicrosoftDsm.Major, 1u);

    const _DRIVER_VERSION withoutProgram = readWithout(1);
    EXPECT_EQ(withoutProgram.Program.Major, 0u);
    EXPECT_STREQ(withoutProgram.Program.Date, "");
    EXPECT_EQ(withoutProgram.Mpio.Major, 1u);

    const _DRIVER_VERSION withoutMpio = readWithout(2);
    EXPECT_EQ(withoutMpio.Mpio.Major, 0u);
    EXPECT_EQ(withoutMpio.KorvaDsm.Major, 1u);

    const _DRIVER_VERSION withoutKorvaDsm = readWithout(3);
    EXPECT_EQ(withoutKorvaDsm.KorvaDsm.Major, 0u);
    EXPECT_EQ(withoutKorvaDsm.MicrosoftDsm.Major, 1u);
}

TEST_F(VersionsMemoryTest, MicrosoftsDsmStandsInForItsIscsiDsm) {
    EXPECT_EQ(readWithout(4).MicrosoftDsm.Major, 6u);
}

}  // namespace
}  // namespace quista::test
