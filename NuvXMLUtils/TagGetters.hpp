/// @file
/// Reads the tags that TagBuilders.hpp wrote, strictly: a value, or a ConvException that names the tag and
/// has the line of the node to blame.
///
/// Arrays that are returned are new and zero-terminated; the caller frees them with `delete[]`. 8-bit text is
/// in the local code page; what reads numbers, booleans, quotes and blanks in it needs one that holds ASCII
/// as it is, not EBCDIC. When a getter throws, it leaves nothing behind.
#pragma once

#include "NuvRoot/Containers.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMElement.hpp>

namespace NuvXMLUtils
{

/// One warning of a getter.
class NUVXMLUTILS_API WarningData
{
  public:
    Nuv::UniString message;

    /// The source line of the node concerned; 0 when it is not known.
    unsigned int line = 0;
};

/// @name Text
/// The text of a tag that holds one text node and nothing else, without the white space around it.
/// @{

/// Text that is empty or that the local code page cannot hold is a failure.
/// @throws ConvException "One text node expected in tag '" tag "'"; those of UnicodeToString, which have no
/// line; "Memory error"
NUVXMLUTILS_API char* GetTagText(const xercesc_3_0::DOMElement* elem);

/// @throws ConvException "One text node expected in tag '" tag "'"
NUVXMLUTILS_API Nuv::UniString GetTagTextU(const xercesc_3_0::DOMElement* elem);

/// @}
/// @name Numbers and booleans
/// They throw ConvException with the line of the element and the message of GetTagText or the parser behind
/// "Tag '" tag "'; ".
/// @{

/// @throws ConvException the messages of GetSignedLong
NUVXMLUTILS_API int GetSLongTag(const xercesc_3_0::DOMElement* elem);

/// @throws ConvException the messages of GetULong
NUVXMLUTILS_API unsigned int GetULongTag(const xercesc_3_0::DOMElement* elem);

/// A denormal, which NewDoubleTag writes, is out of range.
/// @throws ConvException the messages of GetDouble
NUVXMLUTILS_API double GetDoubleTag(const xercesc_3_0::DOMElement* elem);

/// "yes", "true" and "1" are true, "no", "false" and "0" are false.
/// @throws ConvException "'yes/true' or 'no/false' expected, '" text "' found"
NUVXMLUTILS_API bool GetBoolTag(const xercesc_3_0::DOMElement* elem);

/// @}
/// @name CDATA sections
/// The content of the one CDATA section in a tag, beside which there may be text and comments, as
/// ConvertCDATA gives it.
/// @{

/// Lines end with CR LF. Characters that the local code page lacks become question marks, with a warning
/// "Some characters cannot be converted correctly to local codepage in tag '" tag "'".
/// @param warnings the list that the warning is appended to, or null
/// @throws ConvException "More than one CDATA section in tag '" tag "'", "Unexpected XML node in tag '" tag
/// "'" with the line of that node; "Missing CDATA section in tag '" tag "'", and for an empty section
/// "CDATA section could not be transcoded in tag '" tag "'; ..." with the line of the element
NUVXMLUTILS_API char* GetCDATANode(const xercesc_3_0::DOMElement* elem,
                                   Nuv::VAArray<WarningData>* warnings = nullptr);

/// Lines end as they do in the section.
/// @param warnings is not used
/// @throws ConvException as GetCDATANode does, with "CData" for "CDATA"; "Memory error"
NUVXMLUTILS_API unsigned short* GetCDATANodeU(const xercesc_3_0::DOMElement* elem,
                                              Nuv::VAArray<WarningData>* warnings = nullptr);

/// @}
/// @name Strings
/// The text between the quotes in the CDATA section of a tag; white space around the quotes is ignored. They
/// throw ConvException with the message of the reader of the section, "String value error" or "Memory error"
/// behind "Tag '" tag "'; ", with the line of the element unless another is known.
/// @{

NUVXMLUTILS_API char* GetStringTag(const xercesc_3_0::DOMElement* elem,
                                   Nuv::VAArray<WarningData>* warnings = nullptr);
NUVXMLUTILS_API unsigned short* GetStringTagU(const xercesc_3_0::DOMElement* elem,
                                              Nuv::VAArray<WarningData>* warnings = nullptr);

/// @}

} // namespace NuvXMLUtils
