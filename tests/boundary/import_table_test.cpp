// quista.dll needs nothing beside it but Windows.
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <set>

#include "tests/boundary/pe_image.h"

namespace quista::test {
namespace {

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    return text;
}

TEST(ImportTableTest, OnlyWindowsOwnModulesAreImported) {
    const std::set<std::string> ofWindows = {"kernel32.dll", "advapi32.dll", "msvcrt.dll",
                                             "ole32.dll",    "oleaut32.dll", "version.dll"};
    const auto modules = PeImage(QUISTA_DLL_PATH).importedModules();
    EXPECT_FALSE(modules.empty());
    for (const std::string& module : modules) {
        EXPECT_TRUE(ofWindows.contains(lowerCase(module))) << module;
    }
}

}  // namespace
}  // namespace quista::test
