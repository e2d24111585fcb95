// The Windows version that the class repair depends on.
#pragma once

namespace quista {

struct WindowsVersion {
    bool known = false;
    unsigned long major = 0;
    unsigned long minor = 0;
};

/// The version that Windows reports to this program.
WindowsVersion windowsVersion();

}  // namespace quista
