/// @file
/// How the SAX writers bring text to a formatter of Xerces. Private to the library.
#pragma once

#include "NuvXMLUtils/TextEncoders.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/framework/XMLFormatter.hpp>

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace NuvXML
{

/// The text of events on its way to a formatter. It is collected for each event, with its escapes, and then
/// sent in one block, by an encoder of ours.
///
/// The bytes are those that the formatter would write, but where formatters go wrong: on half surrogate pairs
/// they do not come to an end or take the next character for the other half, and with ICU's converters they
/// tear pairs and lose or change characters.
class FormatterText
{
  public:
    using EscapeFlags = xercesc_3_0::XMLFormatter::EscapeFlags;

    explicit FormatterText(xercesc_3_0::XMLFormatter& target);
    FormatterText(const FormatterText&) = delete;
    FormatterText& operator=(const FormatterText&) = delete;
    ~FormatterText();

    /// Character data, an event of its own. The first half of a pair at the end waits for the next event.
    void WriteCharacters(const XMLCh* chars, XMLSize_t length);

    // The other events: a beginning, any number of texts, an end.

    void BeginEvent();
    void Write(std::u16string_view text) { event.append(text); }

    /// Writes text without escapes; null is the empty text.
    void Write(const XMLCh* text);

    /// Writes the value of an attribute; null is the empty text.
    void WriteValue(const XMLCh* text);
    void EndEvent();

  private:
    void WriteEscaped(std::u16string_view text, EscapeFlags escapes);
    void Send(std::u16string_view text);
    void FormatLacking(const XMLCh* text, const XMLCh* end);
    void SendBytes(FreeBytes& bytes);

    /// So many zeros follow the bytes of a block, as the targets of formatters are used to.
    static constexpr size_t TerminatorSize = 4;

    xercesc_3_0::XMLFormatter& formatter;
    std::unique_ptr<TextEncoder> encoder;
    std::u16string event;
    XMLCh heldHalf = 0;
    std::array<unsigned char, 0x1000 + TerminatorSize> buffer;
};

} // namespace NuvXML
