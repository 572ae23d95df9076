/// @file
/// The DOM printer: writes any node of Xerces' DOM as XML text in an encoding of the caller's choice.
#pragma once

#include "NuvRoot/Channels.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMNode.hpp>

/// Writes `node`, with everything below it, to `channel`: a byte-order mark for the names of encodings below,
/// an XML declaration of version 1.0, the node. Nothing is indented or normalised; the line feed after each
/// child of a document is all that is added.
///
/// A character that the encoding lacks is written as a character reference, such as `&#x20AC;`, wherever it
/// is; a surrogate pair is one character. Half a pair is written as it is in UTF-16 and as a reference
/// elsewhere. In attribute values `&`, `<`, quotation mark and apostrophe are escaped, in text `&`, `<` and
/// the `>` of "]]>". CDATA sections, comments and instructions have no escapes: with "]]>", "--" or "?>" in
/// them the text does not parse. DOMBuilder::Export divides such a section and refuses the other two. A node
/// that has no text of its own (an attribute, a document fragment, a notation) prints as the declaration
/// alone.
///
/// CDATA sections, comments and instructions are written as they are. So a section with "]]>" in it does not
/// parse again, nor does a comment with "--" or an instruction with "?>", and a reference in one of them is
/// text. The export of a DOMBuilder splits such a section.
///
/// The encoding is that of the node's document, as its XML declaration gave it, or else `encoding`; with
/// `preferGivenEncoding` it is `encoding`, or else the document's. `encoding` may be null; where there is
/// neither, it is UTF-8. There are byte-order marks for these names, in any case, and for no other names of
/// the same encodings: UTF-8, UTF8; UTF-16, UCS2, IBM1200, IBM-1200, which are written little-endian;
/// UTF-16LE, UTF-16BE, "UTF-16 (LE)", "UTF-16 (BE)". The declaration calls all of UTF-16 just UTF-16. For a
/// name that XML does not allow (437, ISO_8859-1:1987) it has the MIME or IANA name of the encoding, or
/// another that ICU knows (IBM437, ISO-8859-1).
///
/// Documents may be printed by several threads at the same time, one document by one thread only: Xerces' DOM
/// writes into itself when it is read.
///
/// @return true when everything was written. False without any output when `node` or `channel` is null, when
/// no transcoder is known for the encoding, when it is stateful (ISO-2022-JP, HZ, SCSU, UTF-7 and the like),
/// cannot write the characters of markup, has no name that XML allows, or writes a declaration that no parser
/// can read (IBM290, IBM1026 and two more pages of EBCDIC). False also when the channel failed (it is not
/// called again after an error) or when Xerces did; the channel has then taken a part of the text.
/// @throws Nuv::OutOfMemoryException, and whatever the channel throws
NUVXMLUTILS_API bool FormatXMLDoc(const xercesc_3_0::DOMNode* node, Nuv::OChannel* channel,
                                  const XMLCh* encoding, bool preferGivenEncoding);

/// FormatXMLDoc in UTF-16 little-endian, whatever the document declares.
NUVXMLUTILS_API bool FormatXMLDocUC(const xercesc_3_0::DOMNode* node, Nuv::OChannel* channel);
