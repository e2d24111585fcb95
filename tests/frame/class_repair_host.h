// A host that has lost classes, and an installation with the MOF files that bring them back.
#pragma once

#include <string>

#include "tests/frame/session_test.h"

namespace quista::test {

class RepairableHostTest : public SessionTest {
  protected:
    /// Installs the project's own MOF files in the work folder; mpio.mof with one disk.
    RepairableHostTest() {
        setInstallDir();
        install(L"korvadsm.mof");
        install(L"pdo.mof");
        install(L"lbpolicy.mof");
        install(L"mpio.mof",
                "instance of MPIO_DISK_INFO { InstanceName = \"disks\"; "
                "NumberDrives = 3; };\n");
    }

    void install(const std::wstring& name, const std::string& addition = "") {
        const auto text = readFile(std::wstring(QUISTA_CLASS_FOLDER) + L"/" + name);
        ASSERT_TRUE(text.has_value()) << "a MOF file of the sample hosts is missing";
        writeFile(name, *text + addition);
    }
    /// Whether the repository holds a class. It is gone afterwards.
    bool takeClass(const std::wstring& name) { return host->removeClass(kWmi, name); }
};

}  // namespace quista::test
