// The fixture of tests that run commands: a user's folder that must stay empty, and application
// data of its own.
#pragma once

#include <gtest/gtest.h>

#include "tests/cli/tool_run.h"
#include "tests/support/work_folder.h"

namespace quista::test {

class ToolTest : public testing::Test {
  protected:
    /// No command leaves a log where its user stands.
    void TearDown() override { EXPECT_FALSE(fileExists(userFolder.path(L"MPIOlog.dat"))); }

    WorkFolder userFolder;
    EnvironmentVariable localAppData{L"LOCALAPPDATA", userFolder.path(L"")};
};

}  // namespace quista::test
