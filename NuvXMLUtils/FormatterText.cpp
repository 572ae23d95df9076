#include "NuvXMLUtils/FormatterText.hpp"

#include "NuvXMLUtils/Characters.hpp"

#include <xercesc/util/XMLUTF16Transcoder.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace NuvXML
{
namespace
{

using xercesc_3_0::XMLFormatter;

constexpr EscapeList NothingListed;

/// What formatters escape in attribute values and in character data, but for control characters.
constexpr EscapeList ListedInAttributes(u'&', u'<', u'"', u'"');
constexpr EscapeList ListedInCharacters(u'&', u'<', u'>', u'>');

const EscapeList& ListFor(XMLFormatter::EscapeFlags escapes)
{
    switch (escapes)
    {
    case XMLFormatter::AttrEscapes:
        return ListedInAttributes;
    case XMLFormatter::CharEscapes:
        return ListedInCharacters;
    default:
        return NothingListed;
    }
}

/// Whether a formatter may escape some control character of the text.
bool HasControls(const XMLCh* text, const XMLCh* end, XMLFormatter::EscapeFlags escapes)
{
    if (escapes == XMLFormatter::NoEscapes)
        return false;
    const bool escapesSpace = escapes == XMLFormatter::AttrEscapes;
    unsigned short found = 0;
    for (; text != end; ++text)
    {
        const bool isSpace = (*text == u'\n') | (*text == u'\t');
        const bool isControl = (*text < 0x20) | ((*text >= 0x7F) & (*text < 0xA0));
        found = static_cast<unsigned short>(found | (isControl & (escapesSpace | !isSpace)));
    }
    return found != 0;
}

} // namespace

FormatterText::FormatterText(XMLFormatter& target)
    : formatter(target)
    , encoder(MakeOwnTextEncoder(*target.getTranscoder()))
    , freeBytes{buffer.data(), buffer.data() + BufferSize}
{
}

FormatterText::~FormatterText() = default;

void FormatterText::WriteCharacters(const XMLCh* chars, XMLSize_t length)
{
    if (length == 0)
        return;
    if (heldHalf != 0 && IsTrailSurrogate(*chars))
    {
        const XMLCh pair[] = {std::exchange(heldHalf, XMLCh(0)), *chars};
        Write(pair, std::size(pair), XMLFormatter::CharEscapes);
        ++chars;
        --length;
    }
    BeginEvent();
    if (length != 0 && IsLeadSurrogate(chars[length - 1]))
        heldHalf = chars[--length];
    Write(chars, length, XMLFormatter::CharEscapes);
    EndEvent();
}

void FormatterText::BeginEvent()
{
    if (heldHalf == 0)
        return;
    const XMLCh half = std::exchange(heldHalf, XMLCh(0));
    WriteCharacter(&half, &half + 1, XMLFormatter::CharEscapes);
}

void FormatterText::Write(const XMLCh* text, XMLFormatter::EscapeFlags escapes)
{
    if (text)
        Write(text, std::char_traits<XMLCh>::length(text), escapes);
}

void FormatterText::Write(const XMLCh* text, XMLSize_t length, XMLFormatter::EscapeFlags escapes)
{
    const XMLCh* const end = text + length;
    if (encoder && !HasControls(text, end, escapes))
        WritePlain(text, end, escapes);
    else
        WriteThroughFormatter(text, end, escapes);
}

void FormatterText::EndEvent() { Flush(); }

void FormatterText::WritePlain(const XMLCh* text, const XMLCh* end, XMLFormatter::EscapeFlags escapes)
{
    const EscapeList& list = ListFor(escapes);
    for (Stop stop; (stop = encoder->Encode(text, end, list, freeBytes)) != Stop::AtEnd;)
    {
        Flush();
        if (stop == Stop::NoRoom)
            continue;
        WriteCharacter(text, end, escapes);
        text += LengthOfCharacterAt(text, end);
    }
}

void FormatterText::WriteThroughFormatter(const XMLCh* text, const XMLCh* end,
                                          XMLFormatter::EscapeFlags escapes)
{
    Flush();
    while (text != end)
    {
        const XMLCh* stop = text;
        while (stop != end && (!IsSurrogate(*stop) || IsPairAt(stop, end)))
            stop += LengthOfCharacterAt(stop, end);
        if (stop != text)
            formatter.formatBuf(text, static_cast<XMLSize_t>(stop - text), escapes,
                                XMLFormatter::DefaultUnRep);
        if (stop == end)
            return;
        WriteCharacter(stop, end, escapes);
        text = stop + 1;
    }
}

/// Writes a character that is not plain.
void FormatterText::WriteCharacter(const XMLCh* character, const XMLCh* end,
                                   XMLFormatter::EscapeFlags escapes)
{
    const size_t length = LengthOfCharacterAt(character, end);
    const bool isHalf = length == 1 && IsSurrogate(*character);
    if (isHalf && !dynamic_cast<const xercesc_3_0::XMLUTF16Transcoder*>(formatter.getTranscoder()))
    {
        const std::u16string reference = ReferenceTo(*character);
        formatter.formatBuf(reference.c_str(), reference.length(), XMLFormatter::NoEscapes);
        return;
    }
    // A formatter looks at the unit behind the text.
    XMLCh units[3] = {};
    std::copy(character, character + length, units);
    formatter.formatBuf(units, length, escapes, XMLFormatter::DefaultUnRep);
}

void FormatterText::Flush()
{
    const auto count = static_cast<XMLSize_t>(freeBytes.next - buffer.data());
    if (count == 0)
        return;
    std::fill_n(freeBytes.next, TerminatorSize, static_cast<unsigned char>(0));
    freeBytes.next = buffer.data();
    // The operation by which a formatter sends bytes on as they are, whatever they are.
    formatter.writeBOM(buffer.data(), count);
}

} // namespace NuvXML
