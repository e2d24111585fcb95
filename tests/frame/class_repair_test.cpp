// DSMRepairWMI: where the MOF files are looked for, which are compiled, and what their results make
// of the status.
#include "tests/frame/recording_compiler.h"
#include "tests/frame/session_test.h"
#include "tests/support/allocation_spy.h"
#include "tests/support/import_patch.h"
#include "tests/support/process_census.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const wchar_t* kVelmora = L"SOFTWARE\\Velmora\\MPIO";
constexpr const wchar_t* kPelmark = L"SOFTWARE\\Pelmark\\MPIO";
constexpr const wchar_t* kValue = L"InstallDir";

constexpr unsigned char kMpioClasses = 0;
constexpr unsigned char kVendorClasses = 1;

const LogLine kRepaired{"DSM recompiling MOFs!!", 54};
const LogLine kNoDirectory{"Could not find InstallDir!", 55};

LogLine failed(unsigned long code) {
    return {"MPIO and/or KORVADSM WMI classes missing!!", code};
}

// ---- Against a compiler that records what it is given

/// COM and an empty registry; nobody plays WMI.
class HostlessTest : public SessionTest {
  protected:
    HostlessTest() { host->stop(); }
};

class ClassRepairTest : public HostlessTest {
  protected:
    // The library holds the compiler as long as it likes.
    ~ClassRepairTest() override { closeSession(); }

    void setDirectory(const wchar_t* key, const std::wstring& directory) {
        machine.setText(key, kValue, directory);
    }
    /// The files of the compilations, and no more.
    std::vector<std::wstring> files() const {
        std::vector<std::wstring> names;
        for (const Compilation& made : compiler.compilations()) names.push_back(made.file);
        return names;
    }

    RecordingCompiler compiler;
};

TEST_F(ClassRepairTest, VendorClasses_OneFile) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_THAT(files(), ElementsAre(L"C:\\velmora\\korvadsm.mof"));
    EXPECT_THAT(log.lines(), ElementsAre(kRepaired));
}

TEST_F(ClassRepairTest, AnyOtherArgument_MpiosFilesInOrder) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    constexpr unsigned char kArguments[] = {kMpioClasses, 2, 17, 255};
    for (const unsigned char which : kArguments) {
        const std::size_t before = files().size();
        EXPECT_EQ(DSMRepairWMI(which), 0u);
        const std::vector<std::wstring> all = files();
        EXPECT_THAT(std::vector(all.begin() + static_cast<std::ptrdiff_t>(before), all.end()),
                    ElementsAre(L"C:\\velmora\\pdo.mof", L"C:\\velmora\\lbpolicy.mof",
                                L"C:\\velmora\\mpio.mof"));
        EXPECT_THAT(log.take(), ElementsAre(kRepaired));
    }
}

TEST_F(ClassRepairTest, FilesAreCompiledIntoWmiAndPrintedToTheConsole) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    const Compilation expected{
        L"C:\\velmora\\korvadsm.mof", L"root\\wmi", WBEM_FLAG_CONSOLE_PRINT, 0, 0, false};
    EXPECT_THAT(compiler.compilations(), ElementsAre(expected));
    EXPECT_EQ(WBEM_FLAG_CONSOLE_PRINT, 8);
}

TEST_F(ClassRepairTest, NeitherTextsNorArraysAreKept) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    DSMRepairWMI(kMpioClasses);
    const AllocationScope scope;
    EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0u);
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

// The log drops code 1, whatever gave it.
TEST_F(ClassRepairTest, ResultOneIsReturnedWithoutALine) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    compiler.setResults({S_FALSE});
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 1u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

// ---- The installation directory

TEST_F(ClassRepairTest, VelmorasDirectoryComesFirst) {
    setDirectory(kPelmark, L"C:\\pelmark\\");
    setDirectory(kVelmora, L"C:\\velmora\\");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_THAT(files(), ElementsAre(L"C:\\velmora\\korvadsm.mof"));
}

TEST_F(ClassRepairTest, PelmarksDirectoryIsUsedWithoutVelmorasKey) {
    setDirectory(kPelmark, L"C:\\pelmark\\");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_THAT(files(), ElementsAre(L"C:\\pelmark\\korvadsm.mof"));
    EXPECT_THAT(log.lines(), ElementsAre(kRepaired));
}

TEST_F(ClassRepairTest, PelmarksDirectoryIsUsedWithoutVelmorasValue) {
    machine.makeKey(kVelmora);
    setDirectory(kPelmark, L"C:\\pelmark\\");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_THAT(files(), ElementsAre(L"C:\\pelmark\\korvadsm.mof"));
}

// Kept: a directory that nobody names counts as a success.
TEST_F(ClassRepairTest, NoDirectory_LineAndSuccess) {
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_THAT(log.take(), ElementsAre(kNoDirectory));
    machine.makeKey(kVelmora);
    machine.makeKey(kPelmark);
    EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0u);
    EXPECT_THAT(log.take(), ElementsAre(kNoDirectory));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(ClassRepairTest, FileNamesFollowTheDirectoryDirectly) {
    setDirectory(kVelmora, L"C:\\velmora");
    EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0u);
    EXPECT_THAT(files(), ElementsAre(L"C:\\velmorapdo.mof", L"C:\\velmoralbpolicy.mof",
                                     L"C:\\velmorampio.mof"));
    setDirectory(kVelmora, L"");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_EQ(files().back(), L"korvadsm.mof");
}

// Kept: the size of the buffer is given in characters where bytes are counted.
TEST_F(ClassRepairTest, DirectoriesOf129CharactersFit) {
    const std::wstring longest(129, L'd');
    setDirectory(kVelmora, longest);
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_THAT(files(), ElementsAre(longest + L"korvadsm.mof"));
}

TEST_F(ClassRepairTest, LongerDirectoriesAreNotFound) {
    for (const std::size_t length : {130u, 259u, 260u, 5000u}) {
        setDirectory(kVelmora, std::wstring(length, L'd'));
        EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
        EXPECT_THAT(log.take(), ElementsAre(kNoDirectory)) << length;
    }
    EXPECT_THAT(files(), IsEmpty());
    setDirectory(kPelmark, L"C:\\pelmark\\");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_THAT(files(), ElementsAre(L"C:\\pelmark\\korvadsm.mof"));
}

TEST_F(ClassRepairTest, DirectoryWithoutTerminatorIsReadToItsEnd) {
    const std::wstring whole(130, L'd');
    for (const std::size_t length : {1u, 129u, 130u}) {
        machine.setValue(kVelmora, kValue, REG_BINARY, whole.data(), length * sizeof(wchar_t));
        EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
        EXPECT_EQ(files().back(), whole.substr(0, length) + L"korvadsm.mof");
    }
}

// The directory is found with one reading and taken with the next.
int directoryReadings = 0;

LSTATUS WINAPI refuseSecondReading(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type,
                                   LPBYTE data, LPDWORD size) {
    if (std::wstring(name) == kValue && ++directoryReadings == 2) return ERROR_FILE_NOT_FOUND;
    return RegQueryValueExW(key, name, reserved, type, data, size);
}

TEST_F(ClassRepairTest, DirectoryThatVanishes_SuccessWithoutFiles) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    directoryReadings = 0;
    const ImportPatch patch("RegQueryValueExW", refuseSecondReading);
    EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0u);
    EXPECT_EQ(directoryReadings, 2);
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(kRepaired));
}

// Kept: the key in which the directory was found stays open; one without it does not.
TEST_F(ClassRepairTest, TheKeyOfTheDirectoryStaysOpen) {
    const auto handlesPerRepair = [] {
        DSMRepairWMI(kVendorClasses);
        const std::size_t before = countHandles();
        for (int i = 0; i < 10; ++i) DSMRepairWMI(kVendorClasses);
        return (countHandles() - before) / 10;
    };
    EXPECT_EQ(handlesPerRepair(), 0u);
    machine.makeKey(kPelmark);
    EXPECT_EQ(handlesPerRepair(), 0u);
    setDirectory(kPelmark, L"C:\\pelmark\\");
    EXPECT_EQ(handlesPerRepair(), 1u);
    // The line in the log leaves Velmora's key open by itself.
    machine.makeKey(kVelmora);
    EXPECT_EQ(handlesPerRepair(), 2u);
    setDirectory(kVelmora, L"C:\\velmora\\");
    EXPECT_EQ(handlesPerRepair(), 2u);
}

// ---- Results

TEST_F(ClassRepairTest, ResultsAreOredAndAllFilesCompiled) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    compiler.setResults({result(WBEM_E_NOT_FOUND), S_OK, E_ACCESSDENIED});
    EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0x80071007u);
    EXPECT_EQ(files().size(), 3u);
    EXPECT_THAT(log.lines(), ElementsAre(failed(0x80071007u)));
}

TEST_F(ClassRepairTest, AnyFileThatFailsCounts) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    const std::vector<std::vector<HRESULT>> cases{
        {E_FAIL, S_OK, S_OK}, {S_OK, E_FAIL, S_OK}, {S_OK, S_OK, E_FAIL}, {E_FAIL, E_FAIL, E_FAIL}};
    for (const std::vector<HRESULT>& results : cases) {
        compiler.setResults(results);
        EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0x80004005u);
        EXPECT_THAT(log.take(), ElementsAre(failed(0x80004005)));
    }
}

TEST_F(ClassRepairTest, AWarningCountsAsFailure) {
    setDirectory(kVelmora, L"C:\\velmora\\");
    compiler.setResults({2});
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 2u);
    EXPECT_THAT(log.lines(), ElementsAre(failed(2)));
}

}  // namespace
}  // namespace quista::test
