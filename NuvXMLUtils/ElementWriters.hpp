/// @file
/// Writes small, indented documents into a DOM tree: one element for each value, each on a line of its own.
/// The indentation is text nodes in the tree, so every serializer writes it. ElementReaders.hpp reads the
/// values back.
///
/// An element at depth `d` is a text node of `d` tabs, the element, and a text node with the line end. The
/// functions named `Write...` end lines with CR LF, NewLine with LF alone.
///
/// The functions named `Write...` and EndWriteElement return true. They return false when Xerces makes no
/// node or throws a `DOMException`, for example for a name that XML forbids; nodes written before remain.
/// Every other exception passes through.
///
/// Nodes belong to the document of their element. Pointers must not be null. A Nuv::String is in the local
/// code page and ends at its first zero.
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
/// Append an element with one text node, even for an empty text. Numbers are written in decimal, without
/// leading zeros, plus sign or grouping. A name that XML forbids adds nothing to `parent`.
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

/// Makes an element for child elements, with a line end as its first child. EndWriteElement puts it into the
/// tree. Write its children in between, usually one tab deeper.
/// @throws xercesc_3_0::DOMException when Xerces cannot make the element; `child` is then unchanged
NUVXMLUTILS_API bool BeginWriteElement(xercesc_3_0::DOMElement* parent, xercesc_3_0::DOMElement*& child,
                                       const Nuv::UniString& name);
NUVXMLUTILS_API bool BeginWriteElement(xercesc_3_0::DOMElement* parent, xercesc_3_0::DOMElement*& child,
                                       const Nuv::String& name);

/// Indents the end tag of `child` and appends it to `parent`.
NUVXMLUTILS_API bool EndWriteElement(xercesc_3_0::DOMElement* parent, xercesc_3_0::DOMElement* child,
                                     int tabs);

/// Puts a style-sheet instruction before the document element, or at the end when there is none.
/// @param href in the local code page, inserted without escapes
/// @return false, with nothing inserted, when `href` is null or longer than 487 bytes
NUVXMLUTILS_API bool WriteStyleSheet(xercesc_3_0::DOMDocument* doc, const char* href);

/// @}

} // namespace NuvXMLUtils
