/// @file
/// The DOM printer: writes any node of Xerces' DOM as XML text in any encoding without shift states.
#pragma once

#include "NuvRoot/Channels.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMNode.hpp>

/// Writes `node`, with everything below it, to `channel`: a byte-order mark where the encoding is one of
/// UTF-8 or UTF-16, an XML declaration, the node. Nothing is indented or normalised; the line feed after each
/// child of a document is all that is added.
///
/// A character that the encoding lacks is written as a character reference, such as `&#x20AC;`, wherever it
/// stands; a surrogate pair is one character. Half a pair is written as it is in UTF-16 and as a reference
/// elsewhere. In attribute values `&`, `<`, quotation mark and apostrophe are escaped, in text `&`, `<` and
/// the `>` of "]]>". A node that has no text of its own (an attribute, a document fragment, a notation)
/// prints as the declaration alone.
///
/// The encoding is that of the node's document, as its XML declaration gave it, or else `encoding`; with
/// `preferGivenEncoding` it is `encoding`, or else the document's. `encoding` may be null; where there is
/// neither, it is UTF-8. "UTF-16" is written little-endian.
///
/// @return true when everything was written. False without any output when `node` or `channel` is null, when
/// no transcoder is known for the encoding, when it is stateful (ISO-2022-JP, HZ, SCSU, UTF-7 and the like)
/// or cannot write the characters of markup. False also when the channel failed (it is not called again after
/// an error) or when Xerces did; the channel has then taken a part of the text.
/// @throws Nuv::OutOfMemoryException, and whatever the channel throws
NUVXMLUTILS_API bool FormatXMLDoc(const xercesc_3_0::DOMNode* node, Nuv::OChannel* channel,
                                  const XMLCh* encoding, bool preferGivenEncoding);

/// FormatXMLDoc in UTF-16 little-endian, whatever the document declares.
NUVXMLUTILS_API bool FormatXMLDocUC(const xercesc_3_0::DOMNode* node, Nuv::OChannel* channel);
