// What the tool does to the process while it calls the library, and takes back.
#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>

#include "cli/chatter_guard.h"
#include "cli/work_folder.h"
#include "tests/cli/tool_run.h"
#include "tests/support/console_capture.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

TEST(ChatterGuardTest, PrintedTextDoesNotReachStandardOutput) {
    ConsoleCapture capture;
    {
        const cli::ChatterGuard guard;
        std::printf("chatter of the library\n");
    }
    EXPECT_EQ(capture.stop(), "");
}

TEST(ChatterGuardTest, StandardOutputWorksBeforeAndAfter) {
    ConsoleCapture capture;
    std::printf("before;");
    {
        const cli::ChatterGuard guard;
        std::printf("chatter;");
    }
    std::printf("after");
    EXPECT_EQ(capture.stop(), "before;after");
}

TEST(ChatterGuardTest, MutedTextReachesNobody) {
    ConsoleCapture capture;
    {
        const cli::MutedChatter muted;
        std::printf("no news");
    }
    std::printf("after");
    EXPECT_EQ(capture.stop(), "after");
}

std::wstring currentFolder() {
    return std::filesystem::current_path().wstring();
}

TEST(WorkFolderTest, LibraryWorksInTheUsersApplicationData) {
    const WorkFolder user;
    const EnvironmentVariable data(L"LOCALAPPDATA", user.path());
    {
        const cli::WorkFolder folder;
        EXPECT_EQ(currentFolder(), user.path(L"Quista"));
    }
    EXPECT_EQ(currentFolder(), user.path()) << "the user's folder is back";
}

TEST(WorkFolderTest, TemporaryFolderStandsIn) {
    const WorkFolder user;
    std::filesystem::create_directory(user.path(L"temp"));
    const EnvironmentVariable data(L"LOCALAPPDATA", user.path(L"missing"));
    const EnvironmentVariable temporary(L"TMP", user.path(L"temp"));
    const cli::WorkFolder folder;
    EXPECT_EQ(std::filesystem::path(currentFolder()),
              std::filesystem::path(user.path(L"temp")) / L"Quista");
}

}  // namespace
}  // namespace quista::test
