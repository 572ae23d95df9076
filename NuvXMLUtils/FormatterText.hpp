/// @file
/// How the SAX writers bring text to a formatter of Xerces. Private to the library.
#pragma once

#include "NuvXMLUtils/TextEncoders.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/framework/XMLFormatter.hpp>

#include <array>
#include <memory>

namespace NuvXML
{

/// The text of events on its way to a formatter's target. The bytes are those that the formatter would write,
/// but for half surrogate pairs, on which formatters do not come to an end or take the next character for the
/// other half. Where the encoding has an encoder of ours, plain text goes through that, in one block an
/// event; whatever is escaped, lacking in the encoding or a control character is left to the formatter.
class FormatterText
{
  public:
    explicit FormatterText(xercesc_3_0::XMLFormatter& target);
    FormatterText(const FormatterText&) = delete;
    FormatterText& operator=(const FormatterText&) = delete;
    ~FormatterText();

    /// Character data. The first half of a pair at the end waits for the next event.
    void WriteCharacters(const XMLCh* chars, XMLSize_t length);

    // The other events: a beginning, any number of texts, an end.

    void BeginEvent();

    /// Null is the empty text.
    void Write(const XMLCh* text,
               xercesc_3_0::XMLFormatter::EscapeFlags escapes = xercesc_3_0::XMLFormatter::NoEscapes);
    void Write(const XMLCh* text, XMLSize_t length, xercesc_3_0::XMLFormatter::EscapeFlags escapes);
    void EndEvent();

  private:
    static constexpr size_t BufferSize = 0x1000;

    /// So many zeros follow the bytes of a block, as the targets of formatters are used to.
    static constexpr size_t TerminatorSize = 4;

    void WritePlain(const XMLCh* text, const XMLCh* end, xercesc_3_0::XMLFormatter::EscapeFlags escapes);
    void WriteThroughFormatter(const XMLCh* text, const XMLCh* end,
                               xercesc_3_0::XMLFormatter::EscapeFlags escapes);
    void WriteCharacter(const XMLCh* character, const XMLCh* end,
                        xercesc_3_0::XMLFormatter::EscapeFlags escapes);
    void Flush();

    xercesc_3_0::XMLFormatter& formatter;
    std::unique_ptr<TextEncoder> encoder;
    XMLCh heldHalf = 0;
    std::array<unsigned char, BufferSize + TerminatorSize> buffer;
    FreeBytes freeBytes;
};

} // namespace NuvXML
