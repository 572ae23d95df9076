/// @file
/// How the SAX writers send text to a formatter of Xerces.
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

/// Collects the text of an event, with its escapes, and sends it to a formatter in one block, encoded by an
/// encoder of ours.
///
/// The bytes are those that the formatter itself would write, except where formatters are wrong. On a lone
/// surrogate they never return, or take the next character for the other half. With ICU's converters they
/// tear pairs and lose or change characters.
class FormatterText
{
  public:
    using EscapeFlags = xercesc_3_0::XMLFormatter::EscapeFlags;

    explicit FormatterText(xercesc_3_0::XMLFormatter& target);
    FormatterText(const FormatterText&) = delete;
    FormatterText& operator=(const FormatterText&) = delete;
    ~FormatterText();

    /// Writes character data as an event of its own. The first half of a pair at the end waits for the next
    /// event.
    void WriteCharacters(const XMLCh* chars, XMLSize_t length);

    // Other events: a beginning, any number of texts, an end.

    void BeginEvent();
    void Write(std::u16string_view text) { event.append(text); }

    /// Writes text without escapes; null is the empty text.
    void Write(const XMLCh* text);

    /// Writes the value of an attribute; null is the empty text.
    void WriteValue(const XMLCh* text);
    void EndEvent();

  private:
    void SendCompletedPair(std::u16string_view& text);
    void HoldHalfAtEnd(std::u16string_view& text);
    void WriteEscaped(std::u16string_view text, EscapeFlags escapes);
    void Send(std::u16string_view text);
    void FormatLacking(const XMLCh* text, const XMLCh* end);
    void SendBytes(FreeBytes& bytes);

    /// Formatters end each block with this many zeros, so targets may rely on them.
    static constexpr size_t TerminatorSize = 4;

    xercesc_3_0::XMLFormatter& formatter;
    std::unique_ptr<TextEncoder> encoder;
    std::u16string event;
    XMLCh heldHalf = 0; ///< the first half of a pair that may be completed by the next event; 0 for none
    std::array<unsigned char, 0x1000 + TerminatorSize> buffer;
};

} // namespace NuvXML
