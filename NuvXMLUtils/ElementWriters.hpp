/// @file
/// Writes small, indented documents into a DOM tree: one element a value, each on a line of its own. The
/// indentation stands in the tree as text nodes, so that every serializer reproduces it. ElementReaders.hpp
/// reads the values back.
///
/// An element at depth `d` is a text node of `d` tabs, the element, and a text node with the line end. The
/// functions named `Write...` end lines with CR LF, NewLine with LF alone.
///
/// The functions named `Write...` and EndWriteElement give true, or false when Xerces makes no node or throws
/// a `DOMException` (for a name that XML forbids, say); what they wrote before stays. Every other exception
/// passes through.
///
/// Nodes belong to the document of the element they are made for. Pointers must not be null. A name or text
/// given as Nuv::String is in the local code page and ends at its first zero.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace NuvXMLUtils
{

/// @name Line ends and indentation
/// @{

/// Appends a text node with CR LF.
NUVXMLUTILS_API bool WriteNewLine(xercesc_3_0::DOMElement* elem);

/// Appends a text node with `count` tabs, an empty one when `count` is not positive.
NUVXMLUTILS_API bool WriteTabs(xercesc_3_0::DOMElement* elem, int count);

/// Appends a text node with LF.
/// @throws xercesc_3_0::DOMException "Memory error" when Xerces makes no node, and its own
NUVXMLUTILS_API void NewLine(xercesc_3_0::DOMElement* elem);

/// Appends the text node of WriteTabs.
/// @throws xercesc_3_0::DOMException as NewLine does
NUVXMLUTILS_API void Tabs(xercesc_3_0::DOMElement* elem, int count);

/// @}
/// @name Values
/// Append an element with one text node, which is there also when it is empty. Numbers are written in
/// decimal, without leading zeros, plus sign or grouping. A name that XML forbids adds nothing to `parent`.
/// @{

NUVXMLUTILS_API bool WriteTextElement(xercesc_3_0::DOMElement* parent, const Nuv::UniString& name,
                                      const Nuv::UniString& value, int tabs);
NUVXMLUTILS_API bool WriteTextElement(xercesc_3_0::DOMElement* parent, const Nuv::String& name,
                                      const Nuv::String& value, int tabs);

NUVXMLUTILS_API bool WriteShortElement(xercesc_3_0::DOMElement* parent, const Nuv::UniString& name,
                                       const short& v, int tabs);
NUVXMLUTILS_API bool WriteShortElement(xercesc_3_0::DOMElement* parent, const Nuv::String& name,
                                       const short& v, int tabs);

NUVXMLUTILS_API bool WriteUShortElement(xercesc_3_0::DOMElement* parent, const Nuv::UniString& name,
                                        const unsigned short& v, int tabs);
NUVXMLUTILS_API bool WriteUShortElement(xercesc_3_0::DOMElement* parent, const Nuv::String& name,
                                        const unsigned short& v, int tabs);

NUVXMLUTILS_API bool WriteLongElement(xercesc_3_0::DOMElement* parent, const Nuv::UniString& name,
                                      const int& v, int tabs);
NUVXMLUTILS_API bool WriteLongElement(xercesc_3_0::DOMElement* parent, const Nuv::String& name, const int& v,
                                      int tabs);

NUVXMLUTILS_API bool WriteULongElement(xercesc_3_0::DOMElement* parent, const Nuv::UniString& name,
                                       const unsigned int& v, int tabs);
NUVXMLUTILS_API bool WriteULongElement(xercesc_3_0::DOMElement* parent, const Nuv::String& name,
                                       const unsigned int& v, int tabs);

/// Writes `1` or `0`.
NUVXMLUTILS_API bool WriteBooleanElement(xercesc_3_0::DOMElement* parent, const Nuv::UniString& name,
                                         const bool& v, int tabs);
NUVXMLUTILS_API bool WriteBooleanElement(xercesc_3_0::DOMElement* parent, const Nuv::String& name,
                                         const bool& v, int tabs);

/// @}
/// @name Structure
/// @{

/// Makes the element that is to hold further elements, with a line end as its first child. It is not in the
/// tree before EndWriteElement; between the two its children are written, as a rule one tab deeper.
/// @throws xercesc_3_0::DOMException when Xerces cannot make the element; `child` is as it was
NUVXMLUTILS_API bool BeginWriteElement(xercesc_3_0::DOMElement* parent, xercesc_3_0::DOMElement*& child,
                                       const Nuv::UniString& name);
NUVXMLUTILS_API bool BeginWriteElement(xercesc_3_0::DOMElement* parent, xercesc_3_0::DOMElement*& child,
                                       const Nuv::String& name);

/// Indents the end tag of `child` and appends it to `parent`.
NUVXMLUTILS_API bool EndWriteElement(xercesc_3_0::DOMElement* parent, xercesc_3_0::DOMElement* child,
                                     int tabs);

/// Puts a style-sheet instruction before the document element, or at the end when there is none.
/// @param href in the local code page, inserted as it stands. False, with nothing inserted, when it is null
/// or longer than 487 bytes
NUVXMLUTILS_API bool WriteStyleSheet(xercesc_3_0::DOMDocument* doc, const char* href);

/// @}

} // namespace NuvXMLUtils
