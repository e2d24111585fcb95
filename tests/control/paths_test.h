// The fixture of the path operations: their names, methods and calls.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "tests/control/control_test.h"

namespace quista::test {

inline constexpr const char* kPathNext = "CallMethodforITL: IEnumWbemClassObject::Next";

/// One of the exports that work on a path.
struct PathOperation {
    const wchar_t* method;
    unsigned long (*run)(unsigned long long pathId);
    /// The policy of weighted paths refuses it.
    bool refusedByWeights = false;
};
std::ostream& operator<<(std::ostream& out, const PathOperation& operation);

/// The six exports; the weight is 7, and an identifier loses its upper half in the last.
extern const std::vector<PathOperation> kPathOperations;

/// A LUN with paths of these identifiers.
MofObject lunOfPaths(const std::wstring& serial, const std::vector<std::int32_t>& dsmIds);

class PathsTest : public ControlTest {
  protected:
    void setReturnCode(const wchar_t* method, unsigned long code) {
        setMethodResult(kLunClass, method, L"ReturnCode", code);
    }
    /// The object paths of the methods that were executed.
    std::vector<std::wstring> executed() const;
    /// The whole log of the call so far.
    void expectLog(const LogLines& lines) { EXPECT_EQ(log.take(), lines); }
};

}  // namespace quista::test
