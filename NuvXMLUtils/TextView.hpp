/// @file
/// Text that Xerces owns, seen without a copy.
#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <string_view>

namespace NuvXML
{

/// Zero-terminated text of Xerces; null is the empty text.
inline std::u16string_view ViewOf(const XMLCh* text)
{
    return text ? std::u16string_view(text) : std::u16string_view();
}

} // namespace NuvXML
