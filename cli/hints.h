// What the user can do about a failure.
#pragma once

namespace quista::cli {

/// By the library's status.
const char* hintFor(unsigned long status);

/// MPIO or the DSM does not answer through WMI.
const char* installHint();
/// The log knows more.
const char* logHint();

}  // namespace quista::cli
