// Hosts that are written back to their files.
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/simulator/driver/driver_fixture.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {
namespace {

using simulator::LoadError;

namespace fs = std::filesystem;

class SaveTest : public DriverTest {
  protected:
    SaveTest() {
        fs::remove_all(folder_);
        fs::create_directory(folder_);
    }

    bool save() { return host().save(file_.wstring(), error_); }

    /// A host's file that was there before.
    void writeOldFile(const char* text = "// old\n") { std::ofstream(file_) << text; }

    std::string bytes() const {
        std::ifstream file(file_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    /// Everything in the folder but the host's file.
    std::size_t leftovers() const {
        std::size_t count = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder_)) {
            if (entry.path().filename() != file_.filename()) ++count;
        }
        return count;
    }

    fs::path folder_ = fs::current_path() / "save";
    fs::path file_ = folder_ / "host.mof";
    LoadError error_;
};

TEST_F(SaveTest, LoadingItGivesTheSameHost) {
    for (const wchar_t* sample : {L"standard", L"degraded", L"empty", L"bare"}) {
        loadHost(sample);
        const simulator::Repository before = repository();
        ASSERT_TRUE(save()) << shown(error_.reason);
        host().clear();
        ASSERT_TRUE(host().load(file_.wstring(), error_)) << shown(error_.reason);
        EXPECT_EQ(repository(), before) << shown(sample);
        EXPECT_EQ(leftovers(), 0u);
    }
}

TEST_F(SaveTest, RegistryValuesAreKept) {
    const std::wstring key = L"SYSTEM\\Parameters";
    loadHost(L"bare");
    EXPECT_EQ(host().registryValue(key, L"Key"), std::vector<unsigned char>());
    host().setRegistryValue(key, L"Other", {9});
    host().setRegistryValue(key, L"Key", {1});
    host().setRegistryValue(key, L"Key", {0, 0x80, 0xFF});
    EXPECT_TRUE(host().isChanged());
    ASSERT_TRUE(save()) << shown(error_.reason);
    host().clear();
    EXPECT_EQ(host().registryValue(key, L"Key"), std::vector<unsigned char>());
    ASSERT_TRUE(host().load(file_.wstring(), error_)) << shown(error_.reason);
    EXPECT_EQ(host().registryValue(L"system\\parameters", L"KEY"),
              (std::vector<unsigned char>{0, 0x80, 0xFF}));
    EXPECT_EQ(host().registryValue(key, L"Other"), (std::vector<unsigned char>{9}));
}

TEST_F(SaveTest, Changes_Last) {
    ASSERT_EQ(run(0, L"SetDisabled", 0x101), kSuccess);
    ASSERT_TRUE(save());
    host().clear();
    ASSERT_TRUE(host().load(file_.wstring(), error_));
    EXPECT_EQ(states(0).at(0), 4u);
    EXPECT_EQ(disk(0).paths.at(0).state, 4u);
}

TEST_F(SaveTest, ReplacesTheOldFile) {
    writeOldFile();
    ASSERT_TRUE(save());
    EXPECT_EQ(bytes().find("// old"), std::string::npos);
    EXPECT_NE(bytes().find("instance of KORVADSM"), std::string::npos);
}

TEST_F(SaveTest, TextBeyondAscii_IsKept) {
    load(
        L"class Named { [key] string Name; };"
        L"instance of Named { Name = \"K\u00F6rva \u20AC \xD83D\xDE00\"; };");
    const simulator::Repository before = repository();
    ASSERT_TRUE(save());
    host().clear();
    ASSERT_TRUE(host().load(file_.wstring(), error_));
    EXPECT_EQ(repository(), before);
}

TEST_F(SaveTest, SampleName_IsRefused) {
    EXPECT_TRUE(host().isSample(L"standard"));
    EXPECT_FALSE(host().isSample(L"standard.mof"));
    EXPECT_FALSE(host().isSample(L".\\standard"));
    EXPECT_FALSE(host().save(L"standard", error_));
    EXPECT_EQ(error_.file, L"standard");
    EXPECT_EQ(error_.reason, L"sample hosts are never written");
    EXPECT_FALSE(fs::exists("standard"));
}

TEST_F(SaveTest, NoSuchFolder_TellsWhy) {
    EXPECT_FALSE(host().save((folder_ / "nowhere" / "host.mof").wstring(), error_));
    EXPECT_NE(error_.reason.find(L"Windows error 3"), std::wstring::npos) << shown(error_.reason);
    EXPECT_EQ(error_.line, 0u);
}

TEST_F(SaveTest, DraftCannotBeMade_OldFileStays) {
    writeOldFile();
    fs::create_directory(folder_ / "host.mof.saving");
    EXPECT_FALSE(save());
    EXPECT_EQ(bytes(), "// old\r\n");
    EXPECT_FALSE(error_.reason.empty());
}

TEST_F(SaveTest, FileIsReadOnly_OldFileStays) {
    writeOldFile();
    SetFileAttributesW(file_.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(save());
    EXPECT_EQ(error_.reason, L"the file is write-protected");
    SetFileAttributesW(file_.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(bytes(), "// old\r\n");
    EXPECT_EQ(leftovers(), 0u);
}

TEST_F(SaveTest, FileIsInUse_OldFileStays) {
    writeOldFile();
    const HANDLE user = CreateFileW(file_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(user, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(save());
    CloseHandle(user);
    EXPECT_EQ(bytes(), "// old\r\n");
    EXPECT_EQ(leftovers(), 0u);
}

TEST_F(SaveTest, DraftOfAWriterThatDied_IsWrittenAnew) {
    writeOldFile();
    std::ofstream(folder_ / "host.mof.saving") << "class Half {";
    ASSERT_TRUE(save());
    EXPECT_EQ(leftovers(), 0u);
    ASSERT_TRUE(host().load(file_.wstring(), error_));
}

TEST_F(SaveTest, TwoWritersAtOnce_TheSecondFailsAndHarmsNothing) {
    writeOldFile();
    const fs::path draft = folder_ / "host.mof.saving";
    const HANDLE first = CreateFileW(draft.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                     FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(first, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(save());
    CloseHandle(first);
    EXPECT_TRUE(fs::exists(draft));
    EXPECT_EQ(bytes(), "// old\r\n");
}

TEST_F(SaveTest, HostThatCouldNotBeReadBack_IsRefused) {
    writeOldFile();
    ASSERT_TRUE(host().removeClass(L"root\\wmi", L"SCSI_ADDR"));
    EXPECT_FALSE(save());
    EXPECT_EQ(bytes(), "// old\r\n");
    EXPECT_EQ(leftovers(), 0u);
}

TEST_F(SaveTest, IsChanged_SinceTheLastLoadOrSave) {
    loadHost(L"standard");
    EXPECT_FALSE(host().isChanged());
    EXPECT_EQ(run(0, L"UpdateRTPG", 0x101), kSuccess);
    EXPECT_EQ(run(0, L"SetEnabled", 0x101), kSuccess);
    EXPECT_FALSE(host().isChanged());
    EXPECT_EQ(run(0, L"SetDisabled", 0x101), kSuccess);
    EXPECT_TRUE(host().isChanged());
    EXPECT_FALSE(host().save(L"standard", error_));
    EXPECT_TRUE(host().isChanged());
    EXPECT_TRUE(save());
    EXPECT_FALSE(host().isChanged());
    EXPECT_EQ(run(0, L"SetEnabled", 0x101), kSuccess);
    EXPECT_TRUE(host().isChanged());
}

}  // namespace
}  // namespace quista::test
