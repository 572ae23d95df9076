/// @file
/// Code that the source units of the DOM helper functions share.
#pragma once

#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/DOMBasics.hpp"

#include <xercesc/dom/DOMException.hpp>

#include <algorithm>
#include <iterator>
#include <locale.h>
#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace NuvXMLUtils
{

/// Text in the local code page; it ends at its first zero.
inline Nuv::UniString Decoded(const Nuv::String& text) { return Nuv::UniString(text.c_str()); }

/// Copies unit by unit, because `unsigned short` and XMLCh must not alias. NewCopy is the way back.
inline Nuv::UniString FromUnits(const unsigned short* units, size_t length)
{
    return Nuv::UniString(std::u16string(units, units + length));
}

/// An integer in decimal.
template <class Integer>
Nuv::UniString DecimalText(Integer value)
{
    Nuv::UniChar digits[32];
    Nuv::valuetostr(value, digits, std::size(digits));
    return digits;
}

/// The terminator of a text.
template <class Unit>
Unit* EndOf(Unit* text)
{
    while (*text)
        ++text;
    return text;
}

/// A copy of zero-terminated text in units of another, or the same, type.
template <class Unit, class SourceUnit>
std::unique_ptr<Unit[]> NewCopy(const SourceUnit* text)
{
    const SourceUnit* const end = EndOf(text);
    std::unique_ptr<Unit[]> copy(new Unit[static_cast<size_t>(end - text) + 1]);
    *std::copy(text, end, copy.get()) = 0;
    return copy;
}

/// The text in the local code page, zero-terminated. Null when it cannot be converted, and for an empty text.
/// @throws Nuv::OutOfMemoryException
std::unique_ptr<char[]> Encoded(std::u16string_view text, bool lossy);

/// "yes", "true" and "1", or "no", "false" and "0".
/// @throws ConvException for anything else
bool GetBoolean(const char* text);

/// The "C" locale. It lives as long as the process.
locale_t CLocale();

/// The line of `node`, which may be null; 0 when it is not known.
unsigned int LineOf(const xercesc_3_0::DOMNode* node);

/// Puts context before the message. Sets the line to that of `node` when the exception has none.
void AddContext(ConvException& exception, const Nuv::UniString& context, const xercesc_3_0::DOMNode* node);

/// An exception with code 0. The text must be a constant: it is not copied.
inline xercesc_3_0::DOMException MakeDOMException(const XMLCh* constantText)
{
    xercesc_3_0::DOMException exception;
    exception.msg = constantText;
    return exception;
}

inline xercesc_3_0::DOMException DOMMemoryError() { return MakeDOMException(u"Memory error"); }

/// A node that Xerces has just made.
/// @throws xercesc_3_0::DOMException "Memory error" when it is null
template <class Node>
Node* Checked(Node* node)
{
    if (!node)
        throw DOMMemoryError();
    return node;
}

/// Returns the result of `make`.
/// @throws ConvException "Memory error" when memory runs out in it
template <class Make>
auto OrMemoryError(Make make)
{
    try
    {
        return make();
    }
    catch (const std::bad_alloc&)
    {
        throw ConvException(u"Memory error", nullptr);
    }
}

} // namespace NuvXMLUtils
