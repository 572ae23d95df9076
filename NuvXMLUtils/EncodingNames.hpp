/// @file
/// What an XML declaration may call an encoding, and where it can be read. Private to the library.
#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/util/TransService.hpp>

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace NuvXML
{

/// MakeTranscoder for an encoding that a declaration can name: where `encoding` is not a name that XML
/// allows, it is the same encoding under another name that ICU has for it, the MIME or IANA name if it can
/// be. Null where there is none.
std::unique_ptr<xercesc_3_0::XMLTranscoder> MakeDeclarableTranscoder(const XMLCh* encoding, size_t blockSize);

/// What a declaration calls the encoding of a transcoder: its name, except for two names of Xerces' own that
/// XML does not allow, and for UTF-16, which has no byte order in its name.
std::u16string_view NameToDeclare(const xercesc_3_0::XMLTranscoder& transcoder);

/// Whether a parser can read the declaration in these bytes, before which there is no byte-order mark: all
/// that it knows of the encoding, until it has read the declaration, is what the first bytes look like.
bool IsReadable(std::u16string_view declaration, std::span<const unsigned char> bytes);

} // namespace NuvXML
