/// @file
/// Reads back what ElementWriters.hpp wrote. Each function is called with one child after the other and the
/// name of the element that is looked for; a node that is not such an element is no error.
///
/// A node matches when it is an element of the name whose first child is a text node; that text node alone is
/// read. `node` may be null, which matches nothing. The result is false only when the text cannot be
/// converted to the local code page or memory for that runs out. Nothing is thrown but what Nuv::UniString
/// throws.
///
/// A name or text given as Nuv::String is in the local code page; a name ends at its first zero.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMNode.hpp>

namespace NuvXMLUtils
{

/// @name Text
/// The text passes through the local code page: a character that it lacks comes back as a question mark.
/// @{

/// `value` stays as it was where the node does not match or the result is false.
NUVXMLUTILS_API bool ReadTextNode(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name,
                                  Nuv::UniString& value);

/// `value` becomes empty where the node does not match or the result is false.
NUVXMLUTILS_API bool ReadTextNode(const xercesc_3_0::DOMNode* node, const Nuv::String& name,
                                  Nuv::String& value);

/// @}
/// @name Numbers
/// `v` is always set: to 0 where the node does not match, the result is false or the text does not start with
/// a number. White space and a sign may stand before the number; what follows it is ignored. The text is read
/// as a signed or unsigned 32-bit number: what is beyond its range becomes the nearest signed, or the largest
/// unsigned one; the negative of an unsigned number is taken modulo 2^32. The 16-bit readers take the lower
/// half.
/// @{

NUVXMLUTILS_API bool ReadShortNode(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name, short& v);
NUVXMLUTILS_API bool ReadShortNode(const xercesc_3_0::DOMNode* node, const Nuv::String& name, short& v);

NUVXMLUTILS_API bool ReadUShortNode(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name,
                                    unsigned short& v);
NUVXMLUTILS_API bool ReadUShortNode(const xercesc_3_0::DOMNode* node, const Nuv::String& name,
                                    unsigned short& v);

NUVXMLUTILS_API bool ReadLongNode(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name, int& v);
NUVXMLUTILS_API bool ReadLongNode(const xercesc_3_0::DOMNode* node, const Nuv::String& name, int& v);

NUVXMLUTILS_API bool ReadULongNode(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name,
                                   unsigned int& v);
NUVXMLUTILS_API bool ReadULongNode(const xercesc_3_0::DOMNode* node, const Nuv::String& name,
                                   unsigned int& v);

/// True where ReadShortNode reads 1; the words true and false are no numbers.
NUVXMLUTILS_API bool ReadBooleanNode(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name, bool& v);
NUVXMLUTILS_API bool ReadBooleanNode(const xercesc_3_0::DOMNode* node, const Nuv::String& name, bool& v);

/// @}

} // namespace NuvXMLUtils
