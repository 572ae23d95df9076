/// @file
/// How the printer turns UTF-16 text into the bytes of an encoding. Private to the library.
///
/// The usual encodings have encoders of their own, which look for the characters to escape and narrow the
/// text in one pass; every other encoding goes through Xerces' transcoder.
#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/util/TransService.hpp>

#include <array>
#include <cstddef>
#include <memory>

namespace NuvXML
{

/// ASCII characters that an encoder leaves to its caller: at most four, of which the last may be repeated to
/// fill the list.
class EscapeList
{
  public:
    constexpr EscapeList() = default;
    constexpr EscapeList(char16_t first, char16_t second, char16_t third, char16_t fourth)
        : characters{first, second, third, fourth}
    {
        for (const char16_t character : characters)
            isListed[character] = true;
    }

    constexpr bool Lists(char16_t unit) const { return unit < isListed.size() && isListed[unit]; }

    /// Four characters to compare with; those of the empty list are no characters of any text.
    constexpr const std::array<char16_t, 4>& Characters() const { return characters; }

  private:
    std::array<char16_t, 4> characters{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
    std::array<bool, 0x80> isListed{};
};

/// The free part of a byte buffer.
struct FreeBytes
{
    unsigned char* next = nullptr;
    unsigned char* end = nullptr;

    size_t Count() const { return static_cast<size_t>(end - next); }
};

/// Why an encoder stopped.
enum class Stop
{
    AtEnd,
    AtListed,  ///< before a character of the list
    AtLacking, ///< before a character that the encoding lacks, or half a surrogate pair
    NoRoom     ///< before a character for which there may be no room
};

/// Encodes text. An encoder keeps no state between calls, unless its transcoder does.
class TextEncoder
{
  public:
    /// Whatever the encoding, this many free bytes are enough for a character.
    static constexpr size_t MaxBytesPerCharacter = 16;

    virtual ~TextEncoder();

    /// Encodes from `text` on, moves `text` behind what it encoded and `out` behind its bytes.
    /// @throws xercesc_3_0::XMLException when Xerces' transcoder fails
    virtual Stop Encode(const char16_t*& text, const char16_t* end, const EscapeList& escapes,
                        FreeBytes& out) = 0;
};

/// The encoder for the encoding of `transcoder`, which must outlive it.
std::unique_ptr<TextEncoder> MakeTextEncoder(xercesc_3_0::XMLTranscoder& transcoder);

/// MakeTextEncoder, or null for an encoding in which XML cannot be written as pieces that are encoded apart:
/// one with shift states, or one that lacks characters of markup.
std::unique_ptr<TextEncoder> MakeStatelessTextEncoder(xercesc_3_0::XMLTranscoder& transcoder);

/// A transcoder for texts of up to `blockSize` units, or null when the encoding is not known.
std::unique_ptr<xercesc_3_0::XMLTranscoder> MakeTranscoder(const XMLCh* encoding, size_t blockSize);

} // namespace NuvXML
