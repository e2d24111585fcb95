// The names that the log gives to codes without a system text.
#pragma once

#include <cstddef>
#include <string>

namespace quista::test {

struct LogName {
    unsigned long code;
    const char* name;
};

/// WMI's codes under their published names, then the six status codes with names of their own.
inline constexpr std::size_t kLogNameCount = 75;
extern const LogName kLogNames[kLogNameCount];

/// The system's text for a code, with its line break; empty when there is none.
std::wstring systemMessage(unsigned long code);
/// The message that the log writes for a code: the system's text, else the code's name, else
/// nothing. Asks the system, since its texts differ from one to the next.
std::string expectedMessage(unsigned long code);

}  // namespace quista::test
