// The names by which the error log calls codes that the system has no message for.
#pragma once

namespace quista {

/// The log's name of a code: a WBEM code, or one of six status codes. Null when it has none.
const wchar_t* logNameOf(unsigned long code);

}  // namespace quista
