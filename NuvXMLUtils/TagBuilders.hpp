/// @file
/// Writes tags (elements that hold one value each) into a DOM tree and gives back the new element, and sets
/// and gets typed attributes. TagGetters.hpp reads the tags back.
///
/// A tag stands on a line of its own: a text node of `tabs` tabs, the element, a text node with LF. Names and
/// values of type `const char*` are in the local code page, `const unsigned short*` and `const char16_t*`
/// values are UTF-16; all are zero-terminated. Pointers must not be null unless a function says so.
///
/// The builders throw `xercesc_3_0::DOMException`: "Memory error" when Xerces makes no node, and its own, for
/// a name that XML forbids, say. The tag then is not in the tree, unless only its line end is missing.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMElement.hpp>

#include <concepts>
#include <cstddef>

namespace NuvXMLUtils
{

/// One row of a table that names the bits of a number. The last row of a table has the mask 0.
struct BitNames
{
    /// One or more bits.
    unsigned int mask;

    /// The element that stands for any of them.
    const char* name;
};

/// @name Text
/// @{

/// Builds any tag. The content is `value`, or `uvalue` when `value` is null; both may be null.
/// @param quoted whether the content becomes a CDATA section that holds it between quotes, as
/// MakeItTAMString and CorrectCDATA make it, instead of a text node. A tag that is not quoted and has no
/// content stays empty
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                const char* value, int tabs, bool quoted,
                                                const unsigned short* uvalue);

/// The same for `const char16_t*`; a template so that a null pointer literal means the form above.
template <std::same_as<char16_t> Unit>
xercesc_3_0::DOMElement* NewTag(xercesc_3_0::DOMElement* parent, const char* name, const char* value,
                                int tabs, bool quoted, const Unit* uvalue);

extern template NUVXMLUTILS_API xercesc_3_0::DOMElement* NewTag(xercesc_3_0::DOMElement*, const char*,
                                                                const char*, int, bool, const char16_t*);

/// A text node, none when `value` is null.
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewTextTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                    const char* value, int tabs);

/// A text node, also for an empty value.
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewTextTag(xercesc_3_0::DOMElement* parent,
                                                    const Nuv::UniString& name, const Nuv::UniString& value,
                                                    int tabs);

/// A CDATA section with the value between quotes; a null value is empty. GetStringTagU reads every text back,
/// except for its line ends, which have become LF. In a printed document that holds for the characters that
/// XML allows and the encoding has: one that the encoding lacks comes back as the text of a reference.
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewStringTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                      const char* value, int tabs);
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewStringTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                      const unsigned short* value, int tabs);
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewStringTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                      const char16_t* value, int tabs);
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewStringTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                      std::nullptr_t value, int tabs);

/// The same for the first `length` units at `value`, up to the first zero among them.
/// @throws xercesc_3_0::DOMException "Memory error" also when there is no memory for the text
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewStringWLenTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                          const unsigned short* value, int length, int tabs);

/// The same for `const char16_t*`; a template so that a null pointer literal means the form above.
template <std::same_as<char16_t> Unit>
xercesc_3_0::DOMElement* NewStringWLenTag(xercesc_3_0::DOMElement* parent, const char* name,
                                          const Unit* value, int length, int tabs);

extern template NUVXMLUTILS_API xercesc_3_0::DOMElement*
NewStringWLenTag(xercesc_3_0::DOMElement*, const char*, const char16_t*, int, int);

/// @}
/// @name Numbers and booleans
/// @{

NUVXMLUTILS_API xercesc_3_0::DOMElement* NewSLongTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                     int value, int tabs);
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewULongTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                     unsigned int value, int tabs);

/// Up to 12 significant digits, with a decimal point whatever the C locale; an exponent has three digits.
/// Zero has no sign. GetDoubleTag reads the value of these digits back, except for one below
/// 2.2250738585072014e-308 (a denormal), which it refuses.
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewDoubleTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                      double value, int tabs);

/// "true" for any value but 0, else "false".
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewBoolTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                    unsigned char value, int tabs);

/// "yes" for any value but 0, else "no".
NUVXMLUTILS_API xercesc_3_0::DOMElement* NewLegacyBoolTag(xercesc_3_0::DOMElement* parent, const char* name,
                                                          unsigned char value, int tabs);

/// Writes a number as a tag with one empty tag for each row of the table that has a bit in common with it, in
/// the order of the table. Bits without a row are dropped; 0 writes nothing at all.
NUVXMLUTILS_API void WriteBits(xercesc_3_0::DOMElement* parent, const char* name, unsigned int value,
                               const BitNames* names, int tabs);

/// @}
/// @name Setting attributes
/// @{

NUVXMLUTILS_API void SetSLongAttr(xercesc_3_0::DOMElement* elem, const char* name, int value);
NUVXMLUTILS_API void SetULongAttr(xercesc_3_0::DOMElement* elem, const char* name, unsigned int value);

/// "true" or "false".
NUVXMLUTILS_API void SetBooleanAttr(xercesc_3_0::DOMElement* elem, const char* name, bool value);

/// "yes" or "no".
NUVXMLUTILS_API void SetLegacyBooleanAttr(xercesc_3_0::DOMElement* elem, const char* name, bool value);

/// @}
/// @name Getting attributes
/// Blanks and tabs around the value are ignored. A missing attribute is an empty one, which is no value. The
/// local code page must be one that holds ASCII as it is.
///
/// They throw ConvException with the line of the element and, before the message of the parser,
/// "Attribute: '" name "' (missing or incorrect); ". A value that the local code page cannot hold throws
/// "Failed to transcode string." as UnicodeToString does, without this and without a line.
/// @{

/// @throws ConvException the messages of GetSignedLong
NUVXMLUTILS_API int GetSLongAttr(const xercesc_3_0::DOMElement* elem, const Nuv::UniString& name);
NUVXMLUTILS_API int GetSLongAttr(const xercesc_3_0::DOMElement* elem, const char* name);

/// @throws ConvException the messages of GetULong
NUVXMLUTILS_API unsigned int GetULongAttr(const xercesc_3_0::DOMElement* elem, const Nuv::UniString& name);
NUVXMLUTILS_API unsigned int GetULongAttr(const xercesc_3_0::DOMElement* elem, const char* name);

/// "yes", "true" and "1" are true, "no", "false" and "0" are false.
/// @throws ConvException "'yes/true' or 'no/false' expected, '" value "' found"
NUVXMLUTILS_API bool GetBooleanAttr(const xercesc_3_0::DOMElement* elem, const Nuv::UniString& name);
NUVXMLUTILS_API bool GetBooleanAttr(const xercesc_3_0::DOMElement* elem, const char* name);

/// @}

} // namespace NuvXMLUtils
