/// @file
/// The formatter below the DOM printer: escapes text, encodes it and passes the bytes on.
#pragma once

#include "NuvRoot/Channels.hpp"
#include "NuvXMLUtils/TextEncoders.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace NuvXML
{

/// Formats text. In every escape mode, a character that the encoding lacks becomes a character reference.
class XMLPrint
{
  public:
    enum EscapeMode
    {
        NoEscapes,
        AttributeEscapes,
        TextEscapes ///< `>` is escaped where it ends "]]>", also when the brackets were written before
    };

    /// Fixed texts that are written often: each is encoded once, when it is first needed.
    enum Token
    {
        EntityAmp,
        EntityApos,
        EntityGt,
        EntityLt,
        EntityQuot,
        StartTagOpen,
        EndTagOpen,
        TagClose,
        EmptyTagClose,
        AttributeSeparator,
        ValueOpen,
        ValueClose
    };

    explicit XMLPrint(std::unique_ptr<TextEncoder> textEncoder);
    XMLPrint(const XMLPrint&) = delete;
    XMLPrint& operator=(const XMLPrint&) = delete;
    virtual ~XMLPrint();

    /// False when there is no memory for the buffer. The formatter must not be used then.
    bool IsReady() const { return buffer != nullptr; }

    // Writing, without escapes.

    void Write(char16_t character) { Format(&character, 1, NoEscapes); }
    void Write(const char16_t* text);

    void Write(Token token);

    /// Writes text with the given escape mode.
    void Format(const char16_t* text, size_t length, EscapeMode mode);

    /// Writes a few bytes as they are, before anything else: there is room for them.
    void WriteRaw(const unsigned char* bytes, size_t count);

    /// The bytes in the buffer that were not passed on yet.
    std::span<const unsigned char> Unsent() const { return {buffer.get(), freeBytes.next}; }

    /// Passes the buffer on. The destructor does not.
    void Flush();

  protected:
    /// Takes a block of encoded bytes.
    virtual void WriteBytes(const unsigned char* bytes, size_t count) = 0;

  private:
    static constexpr size_t BufferSize = 0x10000;

    static constexpr size_t TokenCount = ValueClose + 1;

    /// The last two units that were written as they are: they decide about the `>` of "]]>".
    struct Written
    {
        char16_t beforeLast = 0;
        char16_t last = 0;

        void Append(const char16_t* text, const char16_t* end)
        {
            if (text == end)
                return;
            beforeLast = end - text > 1 ? end[-2] : last;
            last = end[-1];
        }

        bool EndsInBrackets() const { return beforeLast == u']' && last == u']'; }
    };

    struct EncodedToken
    {
        std::array<unsigned char, 6 * TextEncoder::MaxBytesPerCharacter> bytes;
        size_t count = 0;
    };

    void FormatListed(char16_t character);
    void FormatReference(char32_t character);
    void Encode(Token token);

    std::unique_ptr<TextEncoder> encoder;
    Written written;
    std::unique_ptr<unsigned char[]> buffer;
    FreeBytes freeBytes;
    std::array<EncodedToken, TokenCount> tokens;
};

/// Writes the bytes to a channel until the channel reports an error.
class XMLPrintTarget final : public XMLPrint
{
  public:
    XMLPrintTarget(std::unique_ptr<TextEncoder> textEncoder, Nuv::OChannel& target);

    /// False after the channel has reported an error. Later output is dropped.
    bool IsOk() const { return ok; }

  protected:
    void WriteBytes(const unsigned char* bytes, size_t count) override;

  private:
    Nuv::OChannel& channel;
    bool ok = true;
};

} // namespace NuvXML
