// What the tests of the simulator's core share.
#pragma once

#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <string>

#include "simulator/mof/mof_reader.h"
#include "simulator/repository/repository.h"

namespace quista::test {

/// Readable texts in failure messages.
inline std::string narrow(std::wstring_view text) {
    std::string narrowed;
    for (const wchar_t character : text)
        narrowed += character < 0x80 ? static_cast<char>(character) : '?';
    return narrowed;
}

/// MOF files that exist only in memory.
class MemorySource : public simulator::MofSource {
  public:
    std::optional<std::string> read(const std::wstring& path) override {
        const auto found = files.find(path);
        if (found == files.end()) return std::nullopt;
        return found->second;
    }

    std::map<std::wstring, std::string> files;
};

/// A repository and a reader that fills it.
class CoreTest : public ::testing::Test {
  protected:
    static constexpr const wchar_t* kWmi = L"root\\wmi";

    /// Loads a text that must be accepted.
    void load(std::wstring_view mof) {
        const simulator::MofResult result = reader.loadText(mof, L"test.mof");
        if (result.error)
            FAIL() << narrow(result.error->file) << ":" << result.error->line << ":"
                   << result.error->column << ": " << narrow(result.error->reason);
    }

    /// The value of a property of the only instance of a class; NULL when there is none.
    simulator::CimValue valueOf(std::wstring_view className, std::wstring_view property) const {
        const auto instances = repository.instances(kWmi, className);
        if (instances.size() != 1 || !instances[0]->find(property)) {
            ADD_FAILURE() << "no such value: " << narrow(className) << "." << narrow(property);
            return {};
        }
        return *instances[0]->find(property);
    }

    simulator::Repository repository;
    MemorySource source;
    simulator::MofReader reader{repository, source};
};

}  // namespace quista::test
