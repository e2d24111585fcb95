// The fixture of tests that look at the error log alone.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <string>

#include "tests/support/local_machine.h"
#include "tests/support/log_file.h"
#include "tests/support/work_folder.h"

namespace quista::test {

inline constexpr const wchar_t* kVelmoraKey = L"SOFTWARE\\Velmora\\MPIO";
inline constexpr const wchar_t* kPelmarkKey = L"SOFTWARE\\Pelmark\\MPIO";

/// A code that neither the system nor the log's own names know.
inline constexpr unsigned long kNamelessCode = 0xE0000008;

/// A work folder, a registry without any LogDir, and the log of the work folder.
class LogTest : public testing::Test {
  protected:
    void setLogDir(const std::wstring& text) { machine.setText(kVelmoraKey, L"LogDir", text); }

    LocalMachine machine;
    WorkFolder folder;
    LogFile log;
};

}  // namespace quista::test
