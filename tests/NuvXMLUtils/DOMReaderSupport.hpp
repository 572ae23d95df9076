/// @file
/// What the tests of the reader share.
#pragma once

#include "NuvXMLUtils/NuvXMLDOMReader.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace ReaderTests
{

using namespace Nuv;
using NuvXML::DOMReader;

inline const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

/// A reader over a document of its own.
class TextReader : public DOMReader
{
  public:
    explicit TextReader(std::string_view text)
        : DOMReader(Bytes(text), static_cast<unsigned int>(text.size()))
    {
    }
};

/// Where a reader stands, as "<name" or ">name".
inline std::string PlaceOf(DOMReader& reader)
{
    UniString name(u"untouched");
    const XMLTokenType type = reader.GetTokenTypeName(name);
    std::string place(1, type == XMLStartElement ? '<' : type == XMLEndElement ? '>' : '?');
    return place += name.ToUTF8();
}

inline Array<UniString> MessagesOf(DOMReader& reader)
{
    Array<UniString> messages;
    for (int i = 0; i < reader.GetNumberOfMessage(); ++i)
    {
        UniString text;
        int code = 4711;
        reader.GetMessage(i, text, code);
        EXPECT_EQ(code, 0);
        messages.push_back(text);
    }
    return messages;
}

} // namespace ReaderTests
