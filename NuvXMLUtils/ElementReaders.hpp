/// @file
/// Reads values that ElementWriters.hpp wrote. Call each function with one child after the other and the name
/// of the element that you look for. A node that is not such an element is not an error.
///
/// A node matches when it is an element with this name whose first child is a text node. Only that text node
/// is read. `node` may be null, which matches nothing. The result is false only when the text cannot be
/// converted to the local code page, or when memory runs out in the conversion. Nothing throws, except
/// Nuv::UniString.
///
/// A Nuv::String is in the local code page. A name ends at its first zero.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMNode.hpp>

namespace NuvXMLUtils
{

/// @name Text
/// The text is converted to the local code page: a character that it lacks becomes a question mark.
/// @{

/// `value` is unchanged when the node does not match or the result is false.
NUVXMLUTILS_API bool ReadTextNode(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name,
                                  Nuv::UniString& value);

/// `value` becomes empty when the node does not match or the result is false.
NUVXMLUTILS_API bool ReadTextNode(const xercesc_3_0::DOMNode* node, const Nuv::String& name,
                                  Nuv::String& value);

/// @}
/// @name Numbers
/// `v` is always set. It is 0 when the node does not match, when the result is false, and when the text does
/// not begin with a number. White space and a sign may precede the number; text after it is ignored. The text
/// is read as a signed or unsigned 32-bit number. A value out of range becomes the nearest signed or the
/// largest unsigned number. A minus sign before an unsigned number negates it modulo 2^32. The 16-bit readers
/// take the lower half.
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

/// `v` is true when ReadShortNode reads 1. The words "true" and "false" are not numbers, so they read as
/// false.
NUVXMLUTILS_API bool ReadBooleanNode(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name, bool& v);
NUVXMLUTILS_API bool ReadBooleanNode(const xercesc_3_0::DOMNode* node, const Nuv::String& name, bool& v);

/// @}

} // namespace NuvXMLUtils
