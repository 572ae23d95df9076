#include "NuvXMLUtils/TextEncoders.hpp"

#include "NuvXMLUtils/Characters.hpp"

#include <unicode/ucnv.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TranscodingException.hpp>
#include <xercesc/util/XML256TableTranscoder.hpp>
#include <xercesc/util/XML88591Transcoder.hpp>
#include <xercesc/util/XMLASCIITranscoder.hpp>
#include <xercesc/util/XMLUCS4Transcoder.hpp>
#include <xercesc/util/XMLUTF16Transcoder.hpp>
#include <xercesc/util/XMLUTF8Transcoder.hpp>
#include <xercesc/util/XMLWin1252Transcoder.hpp>

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>

namespace NuvXML
{
namespace
{

using xercesc_3_0::XMLTranscoder;

// Blocks of units, which are tested and moved at once. The loops over single units that they stand for are
// not vectorised by the compilers.

constexpr size_t BlockLength = 8;
using Block = unsigned short __attribute__((vector_size(BlockLength * sizeof(char16_t))));
using NarrowBlock = unsigned char __attribute__((vector_size(BlockLength)));

inline Block LoadBlock(const char16_t* text)
{
    Block block;
    std::memcpy(&block, text, sizeof block);
    return block;
}

inline bool IsZero(Block block)
{
    unsigned long long halves[2];
    std::memcpy(halves, &block, sizeof halves);
    return (halves[0] | halves[1]) == 0;
}

/// All bits are set in the units that are `character`, none in the others.
inline Block UnitsEqualTo(char16_t character, Block block)
{
    return reinterpret_cast<Block>(block == Block{} + static_cast<unsigned short>(character));
}

inline Block ListedUnits(Block block, const EscapeList& escapes)
{
    const auto [first, second, third, fourth] = escapes.Characters();
    return UnitsEqualTo(first, block) | UnitsEqualTo(second, block) | UnitsEqualTo(third, block) |
           UnitsEqualTo(fourth, block);
}

/// Whether all units are below `Limit` and none is listed.
template <char16_t Limit>
bool IsPlain(Block block, const EscapeList& escapes)
{
    static_assert(std::has_single_bit(static_cast<unsigned>(Limit)));
    constexpr unsigned short HighBits = 0x10000 - Limit;
    return IsZero((block & HighBits) | ListedUnits(block, escapes));
}

/// Writes one byte a unit.
inline void StoreNarrow(Block block, unsigned char* out)
{
    const NarrowBlock bytes = __builtin_convertvector(block, NarrowBlock);
    std::memcpy(out, &bytes, sizeof bytes);
}

/// Writes the leading units of `text` that are below `Limit` and not listed as one byte each.
/// @return how many of the `length` units these were
template <char16_t Limit>
size_t NarrowPlain(const char16_t* text, size_t length, const EscapeList& escapes, unsigned char* out)
{
    size_t done = 0;
    for (; length - done >= BlockLength; done += BlockLength)
    {
        const Block block = LoadBlock(text + done);
        if (!IsPlain<Limit>(block, escapes))
            break;
        StoreNarrow(block, out + done);
    }
    // What remains is the end of a block that overlaps the one before.
    if (done != 0 && length - done < BlockLength)
    {
        const Block block = LoadBlock(text + length - BlockLength);
        if (IsPlain<Limit>(block, escapes))
        {
            StoreNarrow(block, out + length - BlockLength);
            return length;
        }
    }
    for (; done != length && text[done] < Limit && !escapes.Lists(text[done]); ++done)
        out[done] = static_cast<unsigned char>(text[done]);
    return done;
}

class UTF8Encoder final : public TextEncoder
{
  public:
    Stop Encode(const char16_t*& text, const char16_t* end, const EscapeList& escapes,
                FreeBytes& out) override
    {
        for (;;)
        {
            const size_t count = std::min(static_cast<size_t>(end - text), out.Count());
            const size_t plain = NarrowPlain<FirstLongUnit>(text, count, escapes, out.next);
            text += plain;
            out.next += plain;
            if (text == end)
                return Stop::AtEnd;
            if (plain == count)
                return Stop::NoRoom;
            if (*text < FirstLongUnit)
                return Stop::AtListed;
            for (; text != end && *text >= FirstLongUnit; ++text)
            {
                if (out.Count() < MaxBytesPerCharacter)
                    return Stop::NoRoom;
                if (!IsSurrogate(*text))
                    WriteLong(*text, out);
                else if (IsPairAt(text, end))
                {
                    WritePair(CharacterAt(text, end), out);
                    ++text;
                }
                else
                    return Stop::AtLacking;
            }
        }
    }

  private:
    static constexpr char16_t FirstLongUnit = 0x80;

    static unsigned char Continuation(char32_t bits)
    {
        return static_cast<unsigned char>(0x80 | (bits & 0x3F));
    }

    static void WriteLong(char16_t unit, FreeBytes& out)
    {
        if (unit < 0x800)
            *out.next++ = static_cast<unsigned char>(0xC0 | (unit >> 6));
        else
        {
            *out.next++ = static_cast<unsigned char>(0xE0 | (unit >> 12));
            *out.next++ = Continuation(unit >> 6);
        }
        *out.next++ = Continuation(unit);
    }

    static void WritePair(char32_t character, FreeBytes& out)
    {
        *out.next++ = static_cast<unsigned char>(0xF0 | (character >> 18));
        *out.next++ = Continuation(character >> 12);
        *out.next++ = Continuation(character >> 6);
        *out.next++ = Continuation(character);
    }
};

template <std::endian ByteOrder>
class UTF16Encoder final : public TextEncoder
{
  public:
    Stop Encode(const char16_t*& text, const char16_t* end, const EscapeList& escapes,
                FreeBytes& out) override
    {
        const char16_t* const stop = text + std::min(static_cast<size_t>(end - text), out.Count() / UnitSize);
        for (; static_cast<size_t>(stop - text) >= BlockLength; text += BlockLength)
        {
            const Block block = LoadBlock(text);
            if (!IsZero(ListedUnits(block, escapes)))
                break;
            Store(block, out);
        }
        for (; text != stop && !escapes.Lists(*text); ++text)
            Store(static_cast<unsigned short>(*text), out);
        if (text == end)
            return Stop::AtEnd;
        return text == stop ? Stop::NoRoom : Stop::AtListed;
    }

  private:
    static constexpr size_t UnitSize = sizeof(char16_t);

    /// Writes a unit or a block of units.
    template <class Units>
    static void Store(Units units, FreeBytes& out)
    {
        if constexpr (ByteOrder != std::endian::native)
            units = static_cast<Units>((units << 8) | (units >> 8));
        std::memcpy(out.next, &units, sizeof units);
        out.next += sizeof units;
    }
};

constexpr int NoByte = -1;

struct ASCII
{
    static constexpr char16_t Limit = 0x80;
    static int ByteOf(char16_t) { return NoByte; }
};

struct Latin1
{
    static constexpr char16_t Limit = 0x100;
    static int ByteOf(char16_t) { return NoByte; }
};

struct Windows1252
{
    static constexpr char16_t Limit = 0x80;
    static int ByteOf(char16_t unit)
    {
        if (unit >= FirstUnassigned + std::size(Units) && unit < 0x100)
            return unit;
        const auto found = std::find(std::begin(Units), std::end(Units), unit);
        return found == std::end(Units) ? NoByte
                                        : FirstUnassigned + static_cast<int>(found - std::begin(Units));
    }

  private:
    /// The characters of the bytes in which the code page differs from ISO-8859-1, from this byte on.
    static constexpr int FirstUnassigned = 0x80;
    static constexpr char16_t Units[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                         0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                         0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                         0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
};

/// An encoding in which every unit below `Limit` is the byte of the same number.
template <class CodePage>
class SingleByteEncoder final : public TextEncoder
{
  public:
    Stop Encode(const char16_t*& text, const char16_t* end, const EscapeList& escapes,
                FreeBytes& out) override
    {
        for (;;)
        {
            const size_t count = std::min(static_cast<size_t>(end - text), out.Count());
            const size_t plain = NarrowPlain<CodePage::Limit>(text, count, escapes, out.next);
            text += plain;
            out.next += plain;
            if (text == end)
                return Stop::AtEnd;
            if (plain == count)
                return Stop::NoRoom;
            if (*text < CodePage::Limit)
                return Stop::AtListed;
            const int byte = CodePage::ByteOf(*text);
            if (byte == NoByte)
                return Stop::AtLacking;
            *out.next++ = static_cast<unsigned char>(byte);
            ++text;
        }
    }
};

/// Encodes all of a text for which there is room, and moves `out` behind its bytes. A transcoder need not
/// take all that it is offered at once.
/// @throws xercesc_3_0::XMLException also when the transcoder takes nothing, or more than there is
void TranscodeAll(XMLTranscoder& transcoder, const char16_t* text, const char16_t* end, FreeBytes& out)
{
    while (text != end)
    {
        const auto length = static_cast<XMLSize_t>(end - text);
        XMLSize_t eaten = 0;
        out.next +=
            transcoder.transcodeTo(text, length, out.next, out.Count(), eaten, XMLTranscoder::UnRep_Throw);
        if (eaten == 0 || eaten > length)
            ThrowXMLwithMemMgr(xercesc_3_0::TranscodingException, xercesc_3_0::XMLExcepts::Trans_BadSrcSeq,
                               xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
        text += eaten;
    }
}

/// Tells which characters an encoding has: those that come back when they are encoded and decoded. A
/// converter's own answer is not enough: some write a similar character, and some nothing at all. Each
/// character is tried once.
class CharacterSet
{
  public:
    explicit CharacterSet(const XMLCh* encodingName)
        : encoding(encodingName)
    {
    }

    bool Has(char32_t character)
    {
        std::unique_ptr<Page>& page = pages[character / PageSize];
        if (!page)
            page = std::make_unique<Page>();
        Answer& answer = (*page)[character % PageSize];
        if (answer == Answer::Unknown)
            answer = ComesBack(character) ? Answer::Yes : Answer::No;
        return answer == Answer::Yes;
    }

  private:
    enum class Answer : unsigned char
    {
        Unknown,
        Yes,
        No
    };
    static constexpr size_t PageSize = 0x100;
    using Page = std::array<Answer, PageSize>;

    bool ComesBack(char32_t character)
    {
        if (!transcoder)
            transcoder = MakeTranscoder(encoding, TextEncoder::MaxBytesPerCharacter);
        const bool doesComeBack = transcoder && RoundTrip(character);
        // A converter may keep what it could not write and mix it into the next character.
        if (!doesComeBack)
            transcoder.reset();
        return doesComeBack;
    }

    bool RoundTrip(char32_t character)
    {
        // ICU's transcoder looks one unit beyond those that it refuses.
        char16_t units[3] = {static_cast<char16_t>(character), 0, 0};
        const size_t length = character < 0x10000 ? 1 : 2;
        if (length == 2)
        {
            units[0] = static_cast<char16_t>(0xD7C0 + (character >> 10));
            units[1] = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
        }
        try
        {
            unsigned char bytes[TextEncoder::MaxBytesPerCharacter];
            FreeBytes out{bytes, std::end(bytes)};
            TranscodeAll(*transcoder, units, units + length, out);
            return Decoded(bytes, out.next) == std::u16string_view(units, length);
        }
        catch (const xercesc_3_0::XMLException&)
        {
            return false;
        }
    }

    /// Empty when the transcoder does not take all bytes.
    std::u16string Decoded(const unsigned char* bytes, const unsigned char* end)
    {
        std::u16string text;
        while (bytes != end)
        {
            char16_t units[TextEncoder::MaxBytesPerCharacter];
            unsigned char sizes[TextEncoder::MaxBytesPerCharacter];
            XMLSize_t eaten = 0;
            const XMLSize_t count = transcoder->transcodeFrom(bytes, static_cast<XMLSize_t>(end - bytes),
                                                              units, std::size(units), eaten, sizes);
            if (eaten == 0)
                return {};
            text.append(units, count);
            bytes += eaten;
        }
        return text;
    }

    const XMLCh* encoding;
    std::unique_ptr<XMLTranscoder> transcoder;
    std::array<std::unique_ptr<Page>, 0x110000 / PageSize> pages;
};

/// Any encoding, through Xerces' transcoder.
class TranscodingEncoder final : public TextEncoder
{
  public:
    explicit TranscodingEncoder(XMLTranscoder& target)
        : transcoder(target)
        , characters(target.getEncodingName())
    {
    }

    Stop Encode(const char16_t*& text, const char16_t* end, const EscapeList& escapes,
                FreeBytes& out) override
    {
        const size_t roomFor = out.Count() / MaxBytesPerCharacter;
        const auto [stretchEnd, reason] = EndOfStretch(text, end, escapes, roomFor);
        TranscodeAll(transcoder, text, stretchEnd, out);
        text = stretchEnd;
        return reason;
    }

    bool HasCharactersOfMarkup()
    {
        constexpr std::u16string_view markup = u"\n !\"#&'-./0123456789:;<=>?ABCDEFGHIJKLMNOPQRSTUVWXYZ[]_"
                                               u"abcdefghijklmnopqrstuvwxyz";
        return std::all_of(markup.begin(), markup.end(),
                           [this](char16_t unit) { return characters.Has(unit); });
    }

  private:
    struct Stretch
    {
        const char16_t* end;
        Stop reason;
    };

    /// How far the characters from `text` on can be transcoded, at most `maxLength` of them.
    Stretch EndOfStretch(const char16_t* text, const char16_t* end, const EscapeList& escapes,
                         size_t maxLength)
    {
        for (; text != end; --maxLength)
        {
            if (maxLength == 0)
                return {text, Stop::NoRoom};
            if (escapes.Lists(*text))
                return {text, Stop::AtListed};
            const char32_t character = CharacterAt(text, end);
            if (IsHalf(character) || !characters.Has(character))
                return {text, Stop::AtLacking};
            text += LengthOfCharacterAt(text, end);
        }
        return {text, Stop::AtEnd};
    }

    XMLTranscoder& transcoder;
    CharacterSet characters;
};

template <class Transcoder>
bool IsA(const XMLTranscoder& transcoder)
{
    return dynamic_cast<const Transcoder*>(&transcoder) != nullptr;
}

std::endian ByteOrderOf(XMLTranscoder& utf16Transcoder)
{
    const char16_t unit = u'<';
    unsigned char bytes[2] = {};
    XMLSize_t eaten = 0;
    utf16Transcoder.transcodeTo(&unit, 1, bytes, std::size(bytes), eaten, XMLTranscoder::UnRep_Throw);
    return bytes[0] == unit ? std::endian::little : std::endian::big;
}

/// Whether bytes of the encoding mean the same wherever they stand. All transcoders that are Xerces' own are
/// so, of ICU's those of certain types.
bool IsStateless(const XMLTranscoder& transcoder)
{
    if (IsA<xercesc_3_0::XMLUCS4Transcoder>(transcoder) ||
        IsA<xercesc_3_0::XML256TableTranscoder>(transcoder))
        return true;
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
        ucnv_openU(transcoder.getEncodingName(), &error), &ucnv_close);
    if (!converter)
        return true;
    switch (ucnv_getType(converter.get()))
    {
    case UCNV_SBCS:
    case UCNV_DBCS:
    case UCNV_MBCS:
    case UCNV_LATIN_1:
    case UCNV_US_ASCII:
    case UCNV_UTF8:
    case UCNV_CESU8:
    case UCNV_UTF16_BigEndian:
    case UCNV_UTF16_LittleEndian:
    case UCNV_UTF32_BigEndian:
    case UCNV_UTF32_LittleEndian:
        return true;
    default:
        return false;
    }
}

/// The encoder of ours, or null when there is none for the encoding.
std::unique_ptr<TextEncoder> MakeDirectEncoder(XMLTranscoder& transcoder)
{
    if (IsA<xercesc_3_0::XMLUTF8Transcoder>(transcoder))
        return std::make_unique<UTF8Encoder>();
    if (IsA<xercesc_3_0::XML88591Transcoder>(transcoder))
        return std::make_unique<SingleByteEncoder<Latin1>>();
    if (IsA<xercesc_3_0::XMLASCIITranscoder>(transcoder))
        return std::make_unique<SingleByteEncoder<ASCII>>();
    if (IsA<xercesc_3_0::XMLWin1252Transcoder>(transcoder))
        return std::make_unique<SingleByteEncoder<Windows1252>>();
    if (IsA<xercesc_3_0::XMLUTF16Transcoder>(transcoder))
    {
        if (ByteOrderOf(transcoder) == std::endian::little)
            return std::make_unique<UTF16Encoder<std::endian::little>>();
        return std::make_unique<UTF16Encoder<std::endian::big>>();
    }
    return nullptr;
}

} // namespace

TextEncoder::~TextEncoder() = default;

std::unique_ptr<TextEncoder> MakeTextEncoder(XMLTranscoder& transcoder)
{
    if (auto encoder = MakeDirectEncoder(transcoder))
        return encoder;
    return std::make_unique<TranscodingEncoder>(transcoder);
}

std::unique_ptr<TextEncoder> MakeStatelessTextEncoder(XMLTranscoder& transcoder)
{
    if (auto encoder = MakeDirectEncoder(transcoder))
        return encoder;
    if (!IsStateless(transcoder))
        return nullptr;
    auto encoder = std::make_unique<TranscodingEncoder>(transcoder);
    if (!encoder->HasCharactersOfMarkup())
        return nullptr;
    return encoder;
}

std::unique_ptr<XMLTranscoder> MakeTranscoder(const XMLCh* encoding, size_t blockSize)
{
    // ICU takes an empty name for the default encoding of the process.
    if (*encoding == 0)
        return nullptr;
    xercesc_3_0::XMLTransService::Codes result = xercesc_3_0::XMLTransService::Ok;
    return std::unique_ptr<XMLTranscoder>(xercesc_3_0::XMLPlatformUtils::fgTransService->makeNewTranscoderFor(
        encoding, result, blockSize, xercesc_3_0::XMLPlatformUtils::fgMemoryManager));
}

} // namespace NuvXML
