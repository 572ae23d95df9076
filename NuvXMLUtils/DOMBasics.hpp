/// @file
/// What the DOM helper functions stand on: their exception, a guard for a document, steps from element to
/// element, text between the local code page and UTF-16, quotes, CDATA sections and numbers.
///
/// Two exceptions are in use. Where a node cannot be made or a text cannot become UTF-16 it is
/// `xercesc_3_0::DOMException`, with code 0 and a constant message; where a tree or a text does not hold what
/// a reader expects it is ConvException. Node and text arguments must not be null unless a function says so.
/// What trims, unquotes or parses 8-bit text looks for ASCII, whatever the local code page.
/// Nothing here keeps a state; a tree belongs to one thread at a time.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/NodeLocations.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>

#include <cstddef>

namespace NuvXMLUtils
{

/// The exception of all functions that convert and read: a message and the source line of the node that is to
/// blame. Callers catch it by reference and read its fields. Functions on the way up put their context before
/// the message and throw the same object again.
///
/// The line is known when the document was parsed with a NodeLocations store and that store is attached to it
/// as user data under the key "NodeLocations".
class NUVXMLUTILS_API ConvException
{
  public:
    ConvException() = default;

    /// @param loc where it happened, or null
    ConvException(const Nuv::UniString& msg, const NodeLocationInfo* loc);

    /// @param msg in the local code page
    /// @param loc where it happened, or null
    ConvException(const char* msg, const NodeLocationInfo* loc);

    /// @param node the node to blame, or null
    ConvException(const Nuv::UniString& msg, const xercesc_3_0::DOMNode* node);

    ConvException(const Nuv::UniString& msg, std::nullptr_t);

    ConvException(const ConvException&) = default;
    ConvException& operator=(const ConvException&) = default;
    virtual ~ConvException();

    /// Sets the line to the node's, unless a line is known already or nothing is known of the node, which may
    /// be null. Gives the exception back, to be thrown in the same expression.
    const ConvException& StoreErrLoc(const xercesc_3_0::DOMNode* node);

    Nuv::UniString message;

    /// 0 when it is not known.
    unsigned int line = 0;
};

/// Owns a document, or nothing, and releases it at the end of the scope.
class NUVXMLUTILS_API DOMDocumentSentry
{
    class X;

  public:
    DOMDocumentSentry(xercesc_3_0::DOMDocument* doc)
        : document(doc)
    {
    }
    DOMDocumentSentry(const DOMDocumentSentry&) = delete;
    DOMDocumentSentry& operator=(const DOMDocumentSentry&) = delete;
    ~DOMDocumentSentry();

    xercesc_3_0::DOMDocument* operator->() { return document; }
    const xercesc_3_0::DOMDocument* operator->() const { return document; }

    /// Comparison with a null pointer literal, and with nothing else.
    bool operator==(const X*) const { return document == nullptr; }
    bool operator!=(const X*) const { return document != nullptr; }

  private:
    xercesc_3_0::DOMDocument* document;
};

/// @name Elements only
/// Each passes over everything that is not an element and gives null when no element is left. An entity
/// reference is not an element, and the elements in it are not looked for.
/// @{

NUVXMLUTILS_API xercesc_3_0::DOMElement* GetFirstElementChild(const xercesc_3_0::DOMElement* parent);
NUVXMLUTILS_API xercesc_3_0::DOMElement* GetLastElementChild(const xercesc_3_0::DOMElement* parent);
NUVXMLUTILS_API xercesc_3_0::DOMElement* GetNextElementSibling(const xercesc_3_0::DOMElement* elem);
NUVXMLUTILS_API xercesc_3_0::DOMElement* GetPreviousElementSibling(const xercesc_3_0::DOMElement* elem);
NUVXMLUTILS_API unsigned int GetChildElementCount(const xercesc_3_0::DOMElement* parent);

/// @}
/// @name One step over indentation
/// For trees in which elements alternate with one text node each: the first child or next sibling, or the
/// node behind it when that is a text node. No second text node is passed over, and no comment. `out` becomes
/// null where there is no such node, in the element forms also where it is not an element.
/// @{

NUVXMLUTILS_API void GetFirstChild(const xercesc_3_0::DOMNode* node, xercesc_3_0::DOMNode*& out);
NUVXMLUTILS_API void GetFirstChild(const xercesc_3_0::DOMNode* node, xercesc_3_0::DOMElement*& out);
NUVXMLUTILS_API void GetNextSibling(const xercesc_3_0::DOMNode* node, xercesc_3_0::DOMNode*& out);
NUVXMLUTILS_API void GetNextSibling(const xercesc_3_0::DOMNode* node, xercesc_3_0::DOMElement*& out);

/// @}

/// Moves `node`, which may be null, on to the first sibling that is not a text node, itself included; null
/// when there is none. A comment stops it.
NUVXMLUTILS_API void SkipTextNodes(xercesc_3_0::DOMNode*& node);

/// Moves `node`, which may be null, on to the first sibling that is an element, itself included; null when
/// there is none. The variable may in truth hold a node of any other type.
NUVXMLUTILS_API void SkipTextNodes(xercesc_3_0::DOMElement*& node);

/// Iterates over siblings that are elements with nothing but text and comments between them: gives the next
/// element from `cursor` on and moves `cursor` behind it; null, with a null `cursor`, at the end.
/// @throws ConvException "Unexpected XML node" at any other node, where `cursor` then stands
NUVXMLUTILS_API xercesc_3_0::DOMElement* GetNextTag(xercesc_3_0::DOMNode*& cursor);

/// Whether `node`, which may be null, is an element of exactly this name.
NUVXMLUTILS_API bool IsNodeOk(const xercesc_3_0::DOMNode* node, const Nuv::UniString& name);

/// The same with a name in the local code page.
NUVXMLUTILS_API bool IsNodeOk(const xercesc_3_0::DOMNode* node, const Nuv::String& name);

/// @name Local code page
/// @{

/// Decodes zero-terminated text. Undecodable bytes become U+FFFD.
/// @throws xercesc_3_0::DOMException "Failed to translate string to unicode" for null, "Memory error"
NUVXMLUTILS_API Nuv::UniString StringToUnicode(const char* text);

/// Encodes text into a new zero-terminated array, which the caller frees with `delete[]`.
/// @param flag whether a character that the code page lacks becomes a question mark or a failure
/// @throws ConvException "Failed to transcode string.", also for an empty text; "Memory error"
NUVXMLUTILS_API char* UnicodeToString(Nuv::UniString text, bool flag);

/// @}
/// @name Trimming in place
/// `s` points into a writable, zero-terminated buffer. It is moved behind the leading blanks, and a zero is
/// written over the first of the trailing ones.
/// @{

/// Takes blanks and tabs off both ends.
NUVXMLUTILS_API void CutTabSpace(char*& s);

/// Takes blanks, tabs, line feeds and carriage returns off both ends.
NUVXMLUTILS_API void CutWhSpace(char*& s);
NUVXMLUTILS_API void CutWhSpaceU(unsigned short*& s);

/// @}
/// @name Quoted values
/// @{

/// Takes the quotes off a text that starts and ends with the same one of quotation mark, apostrophe and
/// backquote: writes a zero over the last and gives back what stands behind the first. Nothing is unescaped.
/// @throws ConvException "String value error" when the text is not quoted; it then is as it was
NUVXMLUTILS_API char* GetStringValue(char* s);
NUVXMLUTILS_API unsigned short* GetStringValueU(unsigned short* s);

/// Puts `s` between two quotes: the first of quotation mark, apostrophe and backquote that does not occur in
/// it, or the quotation mark when all three do.
NUVXMLUTILS_API void MakeItTAMString(Nuv::UniString& s);

/// @}
/// @name CDATA sections
/// ConvertCDATA after CorrectCDATA gives every text back, but for its line ends, which have become line
/// feeds. The other way round does not hold: text with a blank behind two brackets that CorrectCDATA did not
/// write loses it.
/// @{

/// Makes text fit for a CDATA section: CR LF and CR become LF, and a blank is put behind every pair of `]`,
/// so that no section ends in it.
NUVXMLUTILS_API void CorrectCDATA(Nuv::UniString& s);

/// Takes out again the blank behind every pair of `]`.
NUVXMLUTILS_API void ConvertCDATA(Nuv::UniString& s);

/// @}
/// @name Numbers
/// The whole text must be the number. Failures are ConvException without a line.
/// @{

/// Decimal digits and nothing else.
/// @throws ConvException without a message for an empty text; "Too many data" at anything but a digit;
/// "Integer Overflow" above 4294967295
NUVXMLUTILS_API unsigned int GetIntNum(const char* s);

/// A number as GetIntNum reads it, after a `+` or `-` or none.
/// @throws ConvException those of GetIntNum; "Integer Overflow", "Integer Underflow" outside 32 bits
NUVXMLUTILS_API int GetSignedLong(const char* s);

/// A number as GetIntNum reads it, after a `+` or none.
NUVXMLUTILS_API unsigned int GetULong(const char* s);

/// A number as the C function `strtod` reads it in the "C" locale, whatever the locale of the process:
/// leading white space, hexadecimal notation, infinities and NaN included. Zero has no sign, and a number so
/// small that it is rounded to zero is zero.
/// @throws ConvException "Floating point number error" where no number starts and for a number out of range:
/// too large, or so small that it is rounded to a denormal; "Too many data" when anything follows the number
NUVXMLUTILS_API double GetDouble(const char* s);

/// @}

} // namespace NuvXMLUtils
