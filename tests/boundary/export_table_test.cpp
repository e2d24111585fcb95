// The built quista.dll exports the names of the export list, and nothing else.
#include <windows.h>

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "tests/boundary/pe_image.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

using testing::AnyOf;
using testing::UnorderedElementsAreArray;

struct ListedExport {
    std::string folder;
    std::string exported;
    std::string symbol;
};

std::vector<ListedExport> readExportList() {
    std::vector<ListedExport> list;
    std::istringstream lines(readFile(QUISTA_EXPORT_LIST_PATH).value_or(""));
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        ListedExport entry;
        fields >> entry.folder >> entry.exported >> entry.symbol;
        EXPECT_TRUE(fields && (fields >> std::ws).eof()) << "malformed: " << line;
        list.push_back(entry);
    }
    return list;
}

TEST(ExportTableTest, NamesAreThoseOfTheList) {
    std::vector<std::string> listed;
    for (const ListedExport& entry : readExportList()) listed.push_back(entry.exported);
    ASSERT_FALSE(listed.empty());
    const PeImage image(QUISTA_DLL_PATH);
    EXPECT_THAT(image.exportNames(), UnorderedElementsAreArray(listed));
    EXPECT_EQ(image.exportCount(), listed.size()) << "every export has a name";
}

TEST(ExportTableTest, ModuleIsCalledQuista) {
    EXPECT_EQ(PeImage(QUISTA_DLL_PATH).exportedModuleName(), "quista.dll");
}

TEST(ExportTableTest, EveryExportIsListedOnceWithItsFolder) {
    std::set<std::string> names;
    for (const ListedExport& entry : readExportList()) {
        EXPECT_THAT(entry.folder, AnyOf("frame", "mpio", "luns", "control", "adapters"));
        EXPECT_TRUE(names.insert(entry.exported).second) << entry.exported << " is listed twice";
    }
}

TEST(ExportTableTest, EveryExportIsFoundByItsName) {
    const HMODULE library = LoadLibraryW(QUISTA_DLL_PATH);
    ASSERT_NE(library, nullptr);
    for (const ListedExport& entry : readExportList()) {
        EXPECT_NE(GetProcAddress(library, entry.exported.c_str()), nullptr) << entry.exported;
    }
    FreeLibrary(library);
}

}  // namespace
}  // namespace quista::test
