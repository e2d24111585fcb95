// Which registry key holds LogDir: the company in the version resource of "quista.dll" decides.
// Every test loads a library of its own; this program does not link to one.
#include <windows.h>

#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/log_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

using ReportErrorFunction = void (*)(const wchar_t* where, unsigned long code);

/// A quista.dll of some brand, loaded for a while.
class LoadedLibrary {
  public:
    explicit LoadedLibrary(const std::wstring& filePath) : module_(LoadLibraryW(filePath.c_str())) {
        EXPECT_NE(module_, nullptr) << "error " << GetLastError();
    }
    ~LoadedLibrary() { FreeLibrary(module_); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    void report(const wchar_t* where, unsigned long code) const {
        const FARPROC function = GetProcAddress(module_, "?ReportError@@YAXPEB_WK@Z");
        ASSERT_NE(function, nullptr);
        reinterpret_cast<ReportErrorFunction>(reinterpret_cast<void*>(function))(where, code);
    }

  private:
    HMODULE module_;
};

class BrandTest : public LogTest {
  protected:
    BrandTest() {
        machine.setText(kVelmoraKey, L"LogDir", folder.path(L"velmora"));
        machine.setText(kPelmarkKey, L"LogDir", folder.path(L"pelmark"));
    }

    static std::wstring libraryOf(const std::wstring& variant) {
        return QUISTA_VARIANT_FOLDER L"/" + variant + L"/quista.dll";
    }

    /// Logs through a library and expects the line in `expected` alone.
    void expectLogOf(const std::wstring& library, const std::wstring& expected) {
        LoadedLibrary(library).report(L"p", 45);
        const std::wstring everywhere[] = {folder.path(), folder.path(L"velmora"),
                                           folder.path(L"pelmark")};
        for (const std::wstring& place : everywhere) {
            const LogLines lines = LogFile(place).lines();
            if (place == expected) {
                EXPECT_THAT(lines, ElementsAre(LogLine{"p", 45}));
            } else {
                EXPECT_THAT(lines, ElementsAre());
            }
        }
    }
};

TEST_F(BrandTest, Velmora_ReadsItsKey) {
    expectLogOf(libraryOf(L"velmora"), folder.path(L"velmora"));
}

TEST_F(BrandTest, Pelmark_ReadsItsKey) {
    expectLogOf(libraryOf(L"pelmark"), folder.path(L"pelmark"));
}

TEST_F(BrandTest, Pelmark_DoesNotFallBackToTheOtherKey) {
    machine.eraseValue(kPelmarkKey, L"LogDir");
    expectLogOf(libraryOf(L"pelmark"), folder.path());
}

TEST_F(BrandTest, BareName_IsTheBrand) {
    expectLogOf(libraryOf(L"exact"), folder.path(L"velmora"));
}

TEST_F(BrandTest, NameThatGoesOn_IsTheBrand) {
    expectLogOf(libraryOf(L"prefix"), folder.path(L"velmora"));
}

TEST_F(BrandTest, CutName_WorkingDirectory) {
    expectLogOf(libraryOf(L"cut"), folder.path());
}

TEST_F(BrandTest, NameInLowerCase_WorkingDirectory) {
    expectLogOf(libraryOf(L"lower"), folder.path());
}

TEST_F(BrandTest, NameInTheMiddle_WorkingDirectory) {
    expectLogOf(libraryOf(L"inside"), folder.path());
}

TEST_F(BrandTest, NoVersionResource_WorkingDirectory) {
    expectLogOf(libraryOf(L"none"), folder.path());
}

TEST_F(BrandTest, NoTranslation_WorkingDirectory) {
    expectLogOf(libraryOf(L"untranslated"), folder.path());
}

TEST_F(BrandTest, NoCompanyName_WorkingDirectory) {
    expectLogOf(libraryOf(L"nameless"), folder.path());
}

TEST_F(BrandTest, SeveralTranslations_FirstDecides) {
    expectLogOf(libraryOf(L"bilingual"), folder.path(L"pelmark"));
}

TEST_F(BrandTest, WithoutVersionResource_LineHasTheCurrentTime) {
    SYSTEMTIME now;
    GetLocalTime(&now);
    LoadedLibrary(libraryOf(L"none")).report(L"p", 45);
    const auto entries = parseLog(log.bytes());
    ASSERT_EQ(entries.size(), 1u);
    char today[20];
    std::snprintf(today, sizeof today, "%02d/%02d/%04d", now.wMonth, now.wDay, now.wYear);
    EXPECT_TRUE(entries[0].stamp.starts_with(today)) << entries[0].stamp;
}

// The library looks for its own version by the name "quista.dll", wherever the system finds one.
TEST_F(BrandTest, LibraryOfAnotherName_WorkingDirectory) {
    ASSERT_TRUE(SetEnvironmentVariableW(L"PATH", L"C:\\windows\\system32"));
    const std::wstring renamed = folder.path(L"renamed.dll");
    ASSERT_TRUE(CopyFileW(libraryOf(L"velmora").c_str(), renamed.c_str(), TRUE));
    expectLogOf(renamed, folder.path());
}

TEST_F(BrandTest, LibraryOfAnotherName_TakesTheVersionOfAnotherFile) {
    const std::wstring renamed = folder.path(L"renamed.dll");
    ASSERT_TRUE(CopyFileW(libraryOf(L"velmora").c_str(), renamed.c_str(), TRUE));
    ASSERT_TRUE(CopyFileW(libraryOf(L"pelmark").c_str(), folder.path(L"quista.dll").c_str(), TRUE));
    expectLogOf(renamed, folder.path(L"pelmark"));
}

}  // namespace
}  // namespace quista::test
