// Versions and dates of the calling program and the drivers, read from real version resources below
// a system root of the test's own.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "quista/mpio.h"
#include "quista/status.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/import_patch.h"
#include "tests/support/log_file.h"
#include "tests/support/process_census.h"
#include "tests/support/program_run.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

/// The four numbers of a version.
struct Version {
    unsigned long major;
    unsigned long minor;
    unsigned long build;
    unsigned long revision;

    bool operator==(const Version&) const = default;
};

void PrintTo(const Version& version, std::ostream* out) {
    *out << version.major << "." << version.minor << "." << version.build << "."
         << version.revision;
}

Version versionOf(const _DRIVER_VERSION_ENTRY& entry) {
    return {entry.Major, entry.Minor, entry.Build, entry.Revision};
}

// As the build gives them to the files.
constexpr Version kOwn = {7, 65535, 1, 2};
constexpr Version kFirst = {1, 2, 3, 4};
constexpr Version kSecond = {6, 1, 7601, 17514};
constexpr Version kThird = {65535, 0, 65534, 40000};

std::wstring versionFile(const std::wstring& name) {
    return std::wstring(QUISTA_VERSION_FOLDER) + L"/" + name + L".dll";
}

/// Sets an environment variable for the object's life.
class Environment {
  public:
    Environment(const std::wstring& name, const wchar_t* value) : name_(name) {
        wchar_t before[MAX_PATH] = {};
        if (GetEnvironmentVariableW(name.c_str(), before, MAX_PATH) > 0) before_ = before;
        SetEnvironmentVariableW(name.c_str(), value);
    }
    ~Environment() { SetEnvironmentVariableW(name_.c_str(), before_ ? before_->c_str() : nullptr); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    std::wstring name_;
    std::optional<std::wstring> before_;
};

/// A record at a guard page, filled with a pattern.
class VersionRecord {
  public:
    _DRIVER_VERSION* get() const { return buffer_.as<_DRIVER_VERSION>(); }
    _DRIVER_VERSION* operator->() const { return get(); }
    bool untouched(const _DRIVER_VERSION_ENTRY& entry) const {
        return buffer_.untouched(offsetOf(&entry), sizeof entry);
    }
    /// Whether nothing was written behind the date's terminator.
    bool untouchedBehindDate(const _DRIVER_VERSION_ENTRY& entry) const {
        const std::size_t written = std::string(entry.Date).size() + 1;
        return buffer_.untouched(offsetOf(entry.Date + written), sizeof entry.Date - written);
    }
    bool untouchedDate(const _DRIVER_VERSION_ENTRY& entry) const {
        return buffer_.untouched(offsetOf(entry.Date), sizeof entry.Date);
    }
    bool untouched() const { return buffer_.untouched(); }

  private:
    std::size_t offsetOf(const void* place) const {
        return static_cast<std::size_t>(static_cast<const unsigned char*>(place) - buffer_.data());
    }

    GuardedBuffer buffer_{sizeof(_DRIVER_VERSION)};
};

/// A system root in the work folder, without drivers at first.
class VersionsTest : public testing::Test {
  protected:
    VersionsTest() {
        EXPECT_LE(folder.path().size(), 64u) << "the library reads no longer system root";
        std::filesystem::create_directories(folder.path(L"system32\\drivers"));
    }

    std::wstring driver(const std::wstring& name) const {
        return folder.path(L"system32\\drivers\\" + name);
    }
    void install(const std::wstring& name, const std::wstring& file) const {
        std::filesystem::copy_file(versionFile(file), driver(name));
    }
    /// Sets a file's last-write time, in local time.
    static void touch(const std::wstring& filePath, const SYSTEMTIME& local) {
        FILETIME localTime;
        FILETIME time;
        ASSERT_TRUE(SystemTimeToFileTime(&local, &localTime));
        ASSERT_TRUE(LocalFileTimeToFileTime(&localTime, &time));
        const HANDLE file =
            CreateFileW(filePath.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        EXPECT_TRUE(SetFileTime(file, nullptr, nullptr, &time));
        CloseHandle(file);
    }

    WorkFolder folder;
    LogFile log;
    Environment systemRoot{L"SYSTEMROOT", folder.path().c_str()};
    VersionRecord version;
};

TEST_F(VersionsTest, NullPointerIsRefused) {
    EXPECT_EQ(DSMGetVersion(nullptr), DSM_INVALID_DSM_VERSION);
    EXPECT_FALSE(log.exists());
}

TEST_F(VersionsTest, EachFileFillsItsOwnEntry) {
    install(L"korvadsm.sys", L"first");
    install(L"mpio.sys", L"second");
    install(L"msiscdsm.sys", L"third");
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_EQ(versionOf(version->Program), kOwn);
    EXPECT_EQ(versionOf(version->KorvaDsm), kFirst);
    EXPECT_EQ(versionOf(version->Mpio), kSecond);
    EXPECT_EQ(versionOf(version->MicrosoftDsm), kThird);
    EXPECT_FALSE(log.exists());
}

TEST_F(VersionsTest, EntriesStandInTheOrderOfTheRecord) {
    install(L"korvadsm.sys", L"first");
    install(L"mpio.sys", L"second");
    install(L"msdsm.sys", L"third");
    ASSERT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    const auto* entries = reinterpret_cast<const _DRIVER_VERSION_ENTRY*>(version.get());
    EXPECT_EQ(versionOf(entries[0]), kOwn);
    EXPECT_EQ(versionOf(entries[1]), kFirst);
    EXPECT_EQ(versionOf(entries[2]), kSecond);
    EXPECT_EQ(versionOf(entries[3]), kThird);
}

TEST_F(VersionsTest, DateIsTheLastWriteInLocalTime) {
    install(L"mpio.sys", L"first");
    install(L"korvadsm.sys", L"first");
    install(L"msdsm.sys", L"first");
    touch(driver(L"mpio.sys"), {2009, 3, 0, 5, 14, 7, 9, 0});
    touch(driver(L"korvadsm.sys"), {1999, 12, 0, 31, 23, 59, 59, 0});
    touch(driver(L"msdsm.sys"), {2024, 2, 0, 29, 0, 0, 0, 0});
    ASSERT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_STREQ(version->Mpio.Date, "03/05/2009 14:07:09");
    EXPECT_STREQ(version->KorvaDsm.Date, "12/31/1999 23:59:59");
    EXPECT_STREQ(version->MicrosoftDsm.Date, "02/29/2024 00:00:00");
    EXPECT_TRUE(version.untouchedBehindDate(version->Mpio));
}

TEST_F(VersionsTest, ProgramsDateIsThatOfItsFile) {
    ASSERT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    WIN32_FILE_ATTRIBUTE_DATA file{};
    ASSERT_TRUE(GetFileAttributesExW(ownProgram().c_str(), GetFileExInfoStandard, &file));
    FILETIME local;
    SYSTEMTIME time;
    ASSERT_TRUE(FileTimeToLocalFileTime(&file.ftLastWriteTime, &local));
    ASSERT_TRUE(FileTimeToSystemTime(&local, &time));
    const std::string date = version->Program.Date;
    ASSERT_EQ(date.size(), 19u);
    EXPECT_EQ(std::stoi(date.substr(0, 2)), time.wMonth);
    EXPECT_EQ(std::stoi(date.substr(3, 2)), time.wDay);
    EXPECT_EQ(std::stoi(date.substr(6, 4)), time.wYear);
    EXPECT_EQ(std::stoi(date.substr(17, 2)), time.wSecond);
}

TEST_F(VersionsTest, MissingFilesLeaveTheirEntries) {
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_EQ(versionOf(version->Program), kOwn);
    EXPECT_TRUE(version.untouched(version->KorvaDsm));
    EXPECT_TRUE(version.untouched(version->Mpio));
    EXPECT_TRUE(version.untouched(version->MicrosoftDsm));
}

TEST_F(VersionsTest, MissingFolderLeavesTheEntries) {
    std::filesystem::remove_all(folder.path(L"system32"));
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_TRUE(version.untouched(version->Mpio));
}

TEST_F(VersionsTest, MissingVendorDriverStopsNothing) {
    install(L"mpio.sys", L"second");
    install(L"msiscdsm.sys", L"third");
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_TRUE(version.untouched(version->KorvaDsm));
    EXPECT_EQ(versionOf(version->Mpio), kSecond);
    EXPECT_EQ(versionOf(version->MicrosoftDsm), kThird);
}

TEST_F(VersionsTest, MicrosoftsDsmStandsInForItsIscsiDsm) {
    install(L"msdsm.sys", L"second");
    ASSERT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_EQ(versionOf(version->MicrosoftDsm), kSecond);
    install(L"msiscdsm.sys", L"none");
    ASSERT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_EQ(versionOf(version->MicrosoftDsm), kSecond) << "a file without version is no better";
    std::filesystem::remove(driver(L"msiscdsm.sys"));
    install(L"msiscdsm.sys", L"first");
    ASSERT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_EQ(versionOf(version->MicrosoftDsm), kFirst) << "Microsoft's iSCSI DSM comes first";
}

TEST_F(VersionsTest, FilesWithoutVersionLeaveTheirEntries) {
    install(L"mpio.sys", L"none");
    writeFile(driver(L"korvadsm.sys"), "no program at all");
    std::filesystem::create_directory(driver(L"msiscdsm.sys"));
    writeFile(driver(L"msdsm.sys"), "");
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_TRUE(version.untouched(version->Mpio));
    EXPECT_TRUE(version.untouched(version->KorvaDsm));
    EXPECT_TRUE(version.untouched(version->MicrosoftDsm));
}

TEST_F(VersionsTest, TruncatedFilesLeaveTheirEntries) {
    const std::string whole = readFile(versionFile(L"first")).value();
    for (std::size_t length = 0; length < whole.size(); length += whole.size() / 40) {
        writeFile(driver(L"mpio.sys"), whole.substr(0, length));
        VersionRecord record;
        EXPECT_EQ(DSMGetVersion(record.get()), DSM_SUCCESS);
        EXPECT_TRUE(record.untouched(record->Mpio) || versionOf(record->Mpio) == kFirst) << length;
    }
}

TEST_F(VersionsTest, FileInUseIsReadAllTheSame) {
    install(L"mpio.sys", L"first");
    const HANDLE file = CreateFileW(driver(L"mpio.sys").c_str(), GENERIC_READ, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    CloseHandle(file);
    EXPECT_EQ(versionOf(version->Mpio), kFirst);
}

TEST_F(VersionsTest, LockedFileLeavesItsEntry) {
    install(L"mpio.sys", L"first");
    const HANDLE file = CreateFileW(driver(L"mpio.sys").c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    CloseHandle(file);
    EXPECT_TRUE(version.untouched(version->Mpio));
}

TEST_F(VersionsTest, NothingIsLeftOpenOrAllocated) {
    install(L"mpio.sys", L"first");
    install(L"korvadsm.sys", L"none");
    DSMGetVersion(version.get());
    const std::size_t handles = countHandles();
    const std::size_t blocks = countHeapBlocks();
    for (int i = 0; i < 20; ++i) DSMGetVersion(version.get());
    EXPECT_EQ(countHandles(), handles);
    EXPECT_LT(countHeapBlocks(), blocks + 20);
}

TEST_F(VersionsTest, WithoutSystemRootOnlyTheProgramIsRead) {
    install(L"mpio.sys", L"first");
    for (const wchar_t* value : {static_cast<const wchar_t*>(nullptr), L""}) {
        const Environment noRoot(L"SYSTEMROOT", value);
        VersionRecord record;
        EXPECT_EQ(DSMGetVersion(record.get()), DSM_ERROR);
        EXPECT_EQ(versionOf(record->Program), kOwn);
        EXPECT_TRUE(record.untouched(record->Mpio));
        EXPECT_TRUE(record.untouched(record->MicrosoftDsm));
    }
    EXPECT_FALSE(log.exists());
}

TEST_F(VersionsTest, SystemRootHasAtMostSixtyFourCharacters) {
    install(L"mpio.sys", L"first");
    // Separators behind a path change nothing but its length.
    const auto rootOf = [this](std::size_t length) {
        return folder.path() + std::wstring(length - folder.path().size(), L'\\');
    };
    {
        const Environment set(L"SYSTEMROOT", rootOf(64).c_str());
        EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
        EXPECT_EQ(versionOf(version->Mpio), kFirst);
    }
    for (const std::size_t length : {65u, 66u, 200u}) {
        const Environment set(L"SYSTEMROOT", rootOf(length).c_str());
        VersionRecord record;
        EXPECT_EQ(DSMGetVersion(record.get()), DSM_ERROR) << "as if it were missing";
        EXPECT_EQ(versionOf(record->Program), kOwn);
        EXPECT_TRUE(record.untouched(record->Mpio));
    }
}

// ---- The calling program's name

/// Only run as a program whose path the library can take in.
TEST_F(VersionsTest, DISABLED_ProgramIsRead) {
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_EQ(versionOf(version->Program), kOwn);
}

/// Only run as a program whose path the library cuts.
TEST_F(VersionsTest, DISABLED_ProgramIsLeftOut) {
    install(L"mpio.sys", L"second");
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    EXPECT_TRUE(version.untouched(version->Program));
    EXPECT_EQ(versionOf(version->Mpio), kSecond);
}

TEST_F(VersionsTest, ProgramsPathHasAtMost127Characters) {
    const auto runWithPathOf = [this](std::size_t length, const std::wstring& test) {
        const std::size_t fixed = folder.path().size() + 1 + std::wstring(L".exe").size();
        const std::wstring program = folder.path(std::wstring(length - fixed, L'p') + L".exe");
        std::filesystem::copy_file(ownProgram(), program);
        EXPECT_EQ(program.size(), length);
        const ProgramRun run = runTest(program, test);
        EXPECT_EQ(run.exitCode, 0u) << run.output;
    };
    runWithPathOf(127, L"VersionsTest.DISABLED_ProgramIsRead");
    runWithPathOf(128, L"VersionsTest.DISABLED_ProgramIsLeftOut");
    runWithPathOf(200, L"VersionsTest.DISABLED_ProgramIsLeftOut");
}

// ---- The system's calls fail

BOOL WINAPI cannotConvert(const FILETIME*, FILETIME*) {
    return FALSE;
}

BOOL WINAPI cannotReadCalendar(const FILETIME*, SYSTEMTIME*) {
    return FALSE;
}

DWORD WINAPI cannotNameModule(HMODULE, wchar_t*, DWORD) {
    return 0;
}

BOOL WINAPI cannotReadTime(HANDLE, FILETIME*, FILETIME*, FILETIME*) {
    return FALSE;
}

BOOL WINAPI cannotReadResource(const wchar_t*, DWORD, DWORD, void*) {
    return FALSE;
}

BOOL WINAPI cannotQuery(const void*, const wchar_t*, void**, UINT*) {
    return FALSE;
}

std::vector<std::wstring> filesAskedFor;

DWORD WINAPI sizeNotingTheFile(const wchar_t* file, DWORD* unused) {
    const std::wstring path = file;
    filesAskedFor.push_back(path.substr(path.find_last_of(L"\\/") + 1));
    return GetFileVersionInfoSizeW(file, unused);
}

class FailingVersionsTest : public VersionsTest {
  protected:
    FailingVersionsTest() {
        install(L"korvadsm.sys", L"first");
        install(L"mpio.sys", L"second");
        install(L"msiscdsm.sys", L"third");
    }
};

TEST_F(FailingVersionsTest, TimeWithoutFormLeavesTheDate) {
    const auto expectNumbersAlone = [&] {
        EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
        EXPECT_EQ(versionOf(version->KorvaDsm), kFirst);
        EXPECT_TRUE(version.untouchedDate(version->KorvaDsm));
    };
    {
        const ImportPatch patch("FileTimeToLocalFileTime", &cannotConvert);
        expectNumbersAlone();
    }
    const ImportPatch patch("FileTimeToSystemTime", &cannotReadCalendar);
    expectNumbersAlone();
}

TEST_F(FailingVersionsTest, ProgramWithoutNameEndsTheCall) {
    const ImportPatch patch("GetModuleFileNameW", &cannotNameModule);
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_INVALID_DSM_VERSION);
    EXPECT_TRUE(version.untouched());
    EXPECT_FALSE(log.exists());
}

TEST_F(FailingVersionsTest, FileWithoutTimeOrResourceIsLeftOut) {
    const auto expectNothing = [&] {
        EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
        EXPECT_TRUE(version.untouched());
    };
    {
        const ImportPatch patch("GetFileTime", &cannotReadTime);
        expectNothing();
    }
    {
        const ImportPatch patch("GetFileVersionInfoW", &cannotReadResource);
        expectNothing();
    }
    const ImportPatch patch("VerQueryValueW", &cannotQuery);
    expectNothing();
}

TEST_F(FailingVersionsTest, FilesAreAskedForInOrder) {
    const ImportPatch patch("GetFileVersionInfoSizeW", &sizeNotingTheFile);
    filesAskedFor.clear();
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    ASSERT_EQ(filesAskedFor.size(), 4u) << "and not for msdsm.sys";
    EXPECT_THAT(std::vector(filesAskedFor.begin() + 1, filesAskedFor.end()),
                ElementsAre(L"mpio.sys", L"korvadsm.sys", L"msiscdsm.sys"));
    filesAskedFor.clear();
    ASSERT_TRUE(DeleteFileW(driver(L"msiscdsm.sys").c_str()));
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    ASSERT_EQ(filesAskedFor.size(), 5u);
    EXPECT_EQ(filesAskedFor.back(), L"msdsm.sys");
}

TEST_F(FailingVersionsTest, FileOpenForWritingIsRead) {
    const HANDLE file =
        CreateFileW(driver(L"korvadsm.sys").c_str(), GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(DSMGetVersion(version.get()), DSM_SUCCESS);
    CloseHandle(file);
    EXPECT_EQ(versionOf(version->KorvaDsm), kFirst);
}

}  // namespace
}  // namespace quista::test
