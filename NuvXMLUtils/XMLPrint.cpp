#include "NuvXMLUtils/XMLPrint.hpp"

#include "NuvXMLUtils/Characters.hpp"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

namespace NuvXML
{
namespace
{

/// By escape mode.
constexpr EscapeList EscapeLists[] = {
    EscapeList(),
    EscapeList(u'&', u'<', u'"', u'\''),
    EscapeList(u'&', u'<', u'>', u'>'),
};

/// By token.
constexpr std::u16string_view TokenTexts[] = {u"&amp;", u"&apos;", u"&gt;", u"&lt;", u"&quot;", u"<",
                                              u"</",    u">",      u"/>",   u" ",    u"=\"",    u"\""};

constexpr XMLPrint::Token EntityFor(char16_t character)
{
    switch (character)
    {
    case u'&':
        return XMLPrint::EntityAmp;
    case u'\'':
        return XMLPrint::EntityApos;
    case u'>':
        return XMLPrint::EntityGt;
    case u'<':
        return XMLPrint::EntityLt;
    default:
        return XMLPrint::EntityQuot;
    }
}

} // namespace

XMLPrint::XMLPrint(std::unique_ptr<TextEncoder> textEncoder)
    : encoder(std::move(textEncoder))
    , buffer(new (std::nothrow) unsigned char[BufferSize])
    , freeBytes{buffer.get(), buffer ? buffer.get() + BufferSize : nullptr}
{
}

XMLPrint::~XMLPrint() = default;

void XMLPrint::Write(const char16_t* text)
{
    Format(text, std::char_traits<char16_t>::length(text), NoEscapes);
}

void XMLPrint::Write(Token token)
{
    const EncodedToken& encoded = tokens[token];
    if (encoded.count == 0)
        Encode(token);
    if (freeBytes.Count() < encoded.bytes.size())
        Flush();
    // A copy of fixed size, mostly of more than the token has, takes no call.
    constexpr size_t UsualMaxCount = 16;
    if (encoded.count <= UsualMaxCount)
        std::memcpy(freeBytes.next, encoded.bytes.data(), UsualMaxCount);
    else
        std::memcpy(freeBytes.next, encoded.bytes.data(), encoded.count);
    freeBytes.next += encoded.count;
    written = {};
}

void XMLPrint::Format(const char16_t* text, size_t length, EscapeMode mode)
{
    const char16_t* const end = text + length;
    for (;;)
    {
        const char16_t* const start = text;
        const Stop stop = encoder->Encode(text, end, EscapeLists[mode], freeBytes);
        written.Append(start, text);
        switch (stop)
        {
        case Stop::AtEnd:
            return;
        case Stop::NoRoom:
            Flush();
            break;
        case Stop::AtListed:
            FormatListed(*text);
            ++text;
            break;
        case Stop::AtLacking:
            FormatReference(CharacterAt(text, end));
            text += LengthOfCharacterAt(text, end);
            break;
        }
    }
}

void XMLPrint::FormatListed(char16_t character)
{
    if (character == u'>' && !written.EndsInBrackets())
        Format(&character, 1, NoEscapes);
    else
        Write(EntityFor(character));
}

void XMLPrint::FormatReference(char32_t character)
{
    const std::u16string reference = ReferenceTo(character);
    Format(reference.data(), reference.length(), NoEscapes);
}

void XMLPrint::Encode(Token token)
{
    EncodedToken& encoded = tokens[token];
    const std::u16string_view text = TokenTexts[token];
    const char16_t* position = text.data();
    FreeBytes out{encoded.bytes.data(), encoded.bytes.data() + encoded.bytes.size()};
    encoder->Encode(position, position + text.length(), EscapeLists[NoEscapes], out);
    encoded.count = static_cast<size_t>(out.next - encoded.bytes.data());
}

void XMLPrint::WriteRaw(const unsigned char* bytes, size_t count)
{
    freeBytes.next = std::copy_n(bytes, count, freeBytes.next);
}

void XMLPrint::Flush()
{
    const auto count = static_cast<size_t>(freeBytes.next - buffer.get());
    freeBytes.next = buffer.get();
    if (count != 0)
        WriteBytes(buffer.get(), count);
}

XMLPrintTarget::XMLPrintTarget(std::unique_ptr<TextEncoder> textEncoder, Nuv::OChannel& target)
    : XMLPrint(std::move(textEncoder))
    , channel(target)
{
}

void XMLPrintTarget::WriteBytes(const unsigned char* bytes, size_t count)
{
    if (ok)
        ok = channel.Write(bytes, count) == 0;
}

} // namespace NuvXML
