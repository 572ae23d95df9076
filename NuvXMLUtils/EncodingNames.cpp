#include "NuvXMLUtils/EncodingNames.hpp"

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/TextEncoders.hpp"

#include <unicode/ucnv.h>
#include <xercesc/framework/XMLRecognizer.hpp>
#include <xercesc/util/XMLEBCDICTranscoder.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>
#include <cstring>
#include <string>

namespace NuvXML
{
namespace
{

using xercesc_3_0::XMLTranscoder;
using xercesc_3_0::XMLUni;

bool IsLetter(char16_t unit) { return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z'); }

/// The production EncName of XML.
bool IsEncodingName(std::u16string_view name)
{
    constexpr std::u16string_view OthersBehindTheFirst = u"0123456789._-";
    return !name.empty() && IsLetter(name.front()) &&
           std::all_of(name.begin(), name.end(),
                       [=](char16_t unit)
                       { return IsLetter(unit) || OthersBehindTheFirst.find(unit) != name.npos; });
}

/// ICU's own name of the encoding that `alias` means, some being aliases of several; null when there is none.
const char* CanonicalName(const char* alias)
{
    UErrorCode status = U_ZERO_ERROR;
    return ucnv_getAlias(alias, 0, &status);
}

/// The first name of the encoding for ICU that a declaration can have; empty when there is none.
Nuv::UniString DeclarableName(const char* canonicalName)
{
    Nuv::UniString found;
    const auto take = [&](const char* name)
    {
        if (!found.IsEmpty() || !name || !IsEncodingName(Nuv::UniString::FromUTF8(name).View()))
            return;
        if (const char* const other = CanonicalName(name); other && std::strcmp(other, canonicalName) == 0)
            found = Nuv::UniString::FromUTF8(name);
    };
    UErrorCode status = U_ZERO_ERROR;
    for (const char* const standard : {"MIME", "IANA"})
    {
        take(ucnv_getStandardName(canonicalName, standard, &status));
        status = U_ZERO_ERROR;
    }
    const uint16_t count = ucnv_countAliases(canonicalName, &status);
    for (uint16_t i = 0; i < count; ++i)
        take(ucnv_getAlias(canonicalName, i, &status));
    return found;
}

Nuv::UniString DeclarableName(const XMLTranscoder& transcoder)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
        ucnv_openU(transcoder.getEncodingName(), &status), &ucnv_close);
    const char* const name = converter ? ucnv_getName(converter.get(), &status) : nullptr;
    return name ? DeclarableName(name) : Nuv::UniString();
}

} // namespace

std::unique_ptr<XMLTranscoder> MakeDeclarableTranscoder(const XMLCh* encoding, size_t blockSize)
{
    auto transcoder = MakeTranscoder(encoding, blockSize);
    if (!transcoder || IsEncodingName(NameToDeclare(*transcoder)))
        return transcoder;
    return MakeTranscoder(DeclarableName(*transcoder).ToUTF16(), blockSize);
}

std::u16string_view NameToDeclare(const XMLTranscoder& transcoder)
{
    const std::u16string_view name = transcoder.getEncodingName();
    for (const XMLCh* const utf16 : {XMLUni::fgUTF16BEncodingString, XMLUni::fgUTF16BEncodingString2,
                                     XMLUni::fgUTF16LEncodingString, XMLUni::fgUTF16LEncodingString2})
        if (name == utf16)
            return XMLUni::fgUTF16EncodingString;
    if (name == XMLUni::fgUCS4BEncodingString)
        return XMLUni::fgUCS4BEncodingString2;
    if (name == XMLUni::fgUCS4LEncodingString)
        return XMLUni::fgUCS4LEncodingString2;
    return name;
}

bool IsReadable(std::u16string_view declaration, std::span<const unsigned char> bytes)
{
    using xercesc_3_0::XMLRecognizer;
    const auto isReadBy = [&](auto decode)
    {
        return std::equal(bytes.begin(), bytes.end(), declaration.begin(), declaration.end(),
                          [&](unsigned char byte, char16_t unit) { return decode(byte) == unit; });
    };
    switch (XMLRecognizer::basicEncodingProbe(bytes.data(), bytes.size()))
    {
    case XMLRecognizer::EBCDIC:
        return isReadBy(xercesc_3_0::XMLEBCDICTranscoder::xlatThisOne);
    case XMLRecognizer::UTF_8:
        return isReadBy([](unsigned char byte) { return byte; });
    default:
        return true; // two or four bytes a unit, in which nothing else differs
    }
}

} // namespace NuvXML
