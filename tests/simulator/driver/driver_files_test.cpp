// The driver files beside the simulator: what Windows reads from their version resources.
#include <windows.h>

#include <winver.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quista::test {
namespace {

constexpr const char* kFolder = QUISTA_DRIVERS_FOLDER;

/// "major.minor.build.revision", or what went wrong.
std::string versionOf(const std::string& name) {
    const std::string file = kFolder + ("/" + name);
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(file.c_str(), &ignored);
    if (size == 0) return "no version resource";
    std::vector<std::byte> resource(size);
    if (GetFileVersionInfoA(file.c_str(), 0, size, resource.data()) == 0) return "unreadable";
    void* block = nullptr;
    UINT length = 0;
    if (VerQueryValueA(resource.data(), "\\", &block, &length) == 0) return "no fixed information";
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(block);
    return std::to_string(HIWORD(fixed.dwFileVersionMS)) + "." +
           std::to_string(LOWORD(fixed.dwFileVersionMS)) + "." +
           std::to_string(HIWORD(fixed.dwFileVersionLS)) + "." +
           std::to_string(LOWORD(fixed.dwFileVersionLS));
}

TEST(DriverFilesTest, HaveTheVersionsOfTheRegisteredDsms) {
    EXPECT_EQ(versionOf("korvadsm.sys"), "4.1.2602.0");
    EXPECT_EQ(versionOf("mpio.sys"), "6.1.7601.17514");
    EXPECT_EQ(versionOf("msdsm.sys"), "6.1.7601.17514");
    EXPECT_EQ(versionOf("msiscdsm.sys"), "6.1.7601.17514");
    EXPECT_EQ(versionOf("other.sys"), "no version resource");
}

}  // namespace
}  // namespace quista::test
