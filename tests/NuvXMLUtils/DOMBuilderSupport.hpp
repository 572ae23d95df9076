/// @file
/// What the tests of the builder share.
#pragma once

#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMLSException.hpp>

#include <string>

namespace BuilderTests
{

using Nuv::Failure;
using Nuv::UniString;
using NuvXML::DOMBuilder;
using NuvXML::XercesPtr;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMException;
using xercesc_3_0::DOMLSException;
using xercesc_3_0::DOMNode;

constexpr char Declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>";

/// A document as Export gives it, without the declaration.
inline std::string TextOf(DOMBuilder& builder)
{
    const std::string text = builder.Export().ToUTF8();
    const size_t length = sizeof Declaration - 1;
    EXPECT_EQ(text.substr(0, length), Declaration);
    return text.substr(length);
}

inline XercesPtr<DOMDocument> NewDocument()
{
    return XercesPtr<DOMDocument>(xercesc_3_0::DOMImplementation::getImplementation()->createDocument());
}

inline DOMNode* CursorOf(DOMBuilder& builder) { return builder.GetActualNode(); }

/// The code of the DOM's exception that `call` throws, 0 when it throws none.
template <class Call>
int CodeOfDOMException(Call call)
{
    try
    {
        call();
    }
    catch (const DOMException& exception)
    {
        return exception.code;
    }
    return 0;
}

/// What a builder without XML text in it writes to the end: `r` with one value.
inline void WriteRoot(DOMBuilder& builder, int value)
{
    builder.WriteStartElement("r");
    builder.WriteXML("v", value);
    builder.WriteEndElement();
    builder.WriteEndDocument();
}

inline std::string RootAsBytes(int value)
{
    return std::string(Declaration) + "\n<r>\n\t<v>" + std::to_string(value) + "</v>\n</r>\n";
}

/// Texts that XML cannot hold.
inline const UniString UnwritableTexts[] = {
    UniString(u"\u0001"),       UniString(u"a\u001Fb"), UniString(u"a\xD800"),
    UniString(u"\xD800z"),      UniString(u"\xDC00z"),  UniString(u"\xDC00\xD800"),
    UniString(u"\xD83D\xD83D"), UniString(u"a\uFFFE"),  UniString(u"\uFFFF")};

} // namespace BuilderTests
