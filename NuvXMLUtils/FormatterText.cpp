#include "NuvXMLUtils/FormatterText.hpp"

#include "NuvXMLUtils/Characters.hpp"
#include "NuvXMLUtils/TextView.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

namespace NuvXML
{
namespace
{

using xercesc_3_0::XMLFormatter;

/// The characters that need escapes in one kind of text.
class Escapes
{
  public:
    /// @param except control characters that stay as they are
    constexpr Escapes(std::u16string_view listed, std::u16string_view except)
    {
        for (size_t unit = 0; unit < isSpecial.size(); ++unit)
            isSpecial[unit] =
                (unit < 0x20 || unit >= 0x7F) && except.find(static_cast<char16_t>(unit)) == except.npos;
        for (const char16_t unit : listed)
            isSpecial[unit] = true;
    }

    /// The position of the first character that is escaped, or may be.
    size_t Find(std::u16string_view text) const
    {
        size_t position = 0;
        while (position < text.size() && !(text[position] < isSpecial.size() && isSpecial[text[position]]))
            ++position;
        return position;
    }

  private:
    std::array<bool, 0xA0> isSpecial{};
};

/// Formatters escape CR in both, and control characters when they write XML 1.1.
constexpr Escapes ValueEscapes(u"&<\"", u"");
constexpr Escapes CharacterEscapes(u"&<>", u"\t\n");

/// The entity reference for the character, or an empty text for a control character.
std::u16string_view EntityFor(XMLCh character)
{
    switch (character)
    {
    case u'&':
        return u"&amp;";
    case u'<':
        return u"&lt;";
    case u'>':
        return u"&gt;";
    case u'"':
        return u"&quot;";
    default:
        return {};
    }
}

} // namespace

FormatterText::FormatterText(XMLFormatter& target)
    : formatter(target)
    , encoder(MakeTextEncoder(*target.getTranscoder()))
{
}

FormatterText::~FormatterText() = default;

void FormatterText::WriteCharacters(const XMLCh* chars, XMLSize_t length)
{
    std::u16string_view text(chars, length);
    if (text.empty())
        return;
    SendCompletedPair(text);
    BeginEvent();
    HoldHalfAtEnd(text);
    if (event.empty() && CharacterEscapes.Find(text) == text.size())
        return Send(text);
    WriteEscaped(text, XMLFormatter::CharEscapes);
    EndEvent();
}

/// Sends the held half together with the first unit of `text` when the two are a pair.
void FormatterText::SendCompletedPair(std::u16string_view& text)
{
    if (heldHalf == 0 || !IsTrailSurrogate(text.front()))
        return;
    const XMLCh pair[] = {std::exchange(heldHalf, XMLCh(0)), text.front()};
    Send(std::u16string_view(pair, std::size(pair)));
    text.remove_prefix(1);
}

/// Holds the first half of a pair at the end of `text` back for the next event.
void FormatterText::HoldHalfAtEnd(std::u16string_view& text)
{
    if (text.empty() || !IsLeadSurrogate(text.back()))
        return;
    heldHalf = text.back();
    text.remove_suffix(1);
}

/// A half that is still held has no other half: it is the first character of this event.
void FormatterText::BeginEvent()
{
    event.clear();
    if (heldHalf != 0)
        event.push_back(std::exchange(heldHalf, XMLCh(0)));
}

void FormatterText::Write(const XMLCh* text) { event.append(ViewOf(text)); }

void FormatterText::WriteValue(const XMLCh* text) { WriteEscaped(ViewOf(text), XMLFormatter::AttrEscapes); }

void FormatterText::EndEvent() { Send(event); }

void FormatterText::WriteEscaped(std::u16string_view text, EscapeFlags flags)
{
    const Escapes& escapes = flags == XMLFormatter::AttrEscapes ? ValueEscapes : CharacterEscapes;
    for (;;)
    {
        const size_t plain = escapes.Find(text);
        event.append(text.substr(0, plain));
        if (plain == text.size())
            return;
        if (const std::u16string_view entity = EntityFor(text[plain]); !entity.empty())
            event.append(entity);
        else
        {
            Send(event);
            event.clear();
            const XMLCh control[] = {text[plain], 0}; // formatters look at the unit behind their text
            formatter.formatBuf(control, 1, flags);
        }
        text.remove_prefix(plain + 1);
    }
}

void FormatterText::Send(std::u16string_view block)
{
    const XMLCh* text = block.data();
    const XMLCh* const end = text + block.size();
    static constexpr EscapeList nothing;
    FreeBytes bytes{buffer.data(), buffer.data() + buffer.size() - TerminatorSize};
    for (;;)
    {
        const Stop stop = encoder->Encode(text, end, nothing, bytes);
        SendBytes(bytes);
        if (stop == Stop::AtEnd)
            return;
        if (stop == Stop::AtLacking)
        {
            FormatLacking(text, end);
            text += LengthOfCharacterAt(text, end);
        }
    }
}

/// Writes a character that the encoding lacks by the settings of the formatter. A lone surrogate is always a
/// reference.
void FormatterText::FormatLacking(const XMLCh* text, const XMLCh* end)
{
    const char32_t character = CharacterAt(text, end);
    if (formatter.getUnRepFlags() == XMLFormatter::UnRep_CharRef || IsHalf(character))
    {
        const std::u16string reference = ReferenceTo(character);
        formatter.formatBuf(reference.data(), reference.length(), XMLFormatter::NoEscapes,
                            XMLFormatter::UnRep_Fail);
    }
    else
        formatter.formatBuf(text, LengthOfCharacterAt(text, end), XMLFormatter::NoEscapes);
}

void FormatterText::SendBytes(FreeBytes& bytes)
{
    const auto count = static_cast<XMLSize_t>(bytes.next - buffer.data());
    std::fill_n(bytes.next, TerminatorSize, static_cast<unsigned char>(0));
    bytes.next = buffer.data();
    // writeBOM passes any bytes on as they are.
    if (count != 0)
        formatter.writeBOM(buffer.data(), count);
}

} // namespace NuvXML
