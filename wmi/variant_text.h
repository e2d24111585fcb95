// Display text of a VARIANT.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdlib>
#include <memory>

#include "wmi/variant.h"

namespace quista {

/// Turns a value into text: a string comes in double quotes, or bare when its type carries
/// VT_BYREF; a character array (VT_BYREF | VT_ARRAY | VT_I2) becomes its characters, or their
/// hexadecimal form when it holds control characters, and loses VT_BYREF so that it can be cleared.
/// The by-reference types hold the value itself, not a pointer to it.
/// @param text receives the text, which the caller frees with free(); null without memory and for
///             the types that have no text
/// @return the text
wchar_t* VariantToText(VARIANT* value, wchar_t** text);

struct TextDeleter {
    void operator()(wchar_t* text) const { std::free(text); }
};
using UniqueText = std::unique_ptr<wchar_t, TextDeleter>;

/// The text of a value, strings in double quotes; may be null.
UniqueText quotedText(UniqueVariant& value);

/// The text of a value, strings bare; may be null. The value keeps its type.
UniqueText bareText(UniqueVariant& value);

}  // namespace quista
