#include "NuvXMLUtils/SourceText.hpp"

#include <xercesc/framework/XMLRecognizer.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

using xercesc_3_0::XMLRecognizer;

namespace NuvXML
{
namespace
{

/// A document knows the encoding that it declares; which of several byte orders that is, the bytes tell.
/// Which code page of EBCDIC it is they do not.
const XMLCh* EncodingOf(std::string_view bytes, const xercesc_3_0::DOMDocument& document)
{
    const auto probed =
        XMLRecognizer::basicEncodingProbe(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size());
    if (probed != XMLRecognizer::UTF_8 && probed != XMLRecognizer::EBCDIC)
        return XMLRecognizer::nameForEncoding(probed, xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
    const XMLCh* const declared = document.getInputEncoding();
    return declared ? declared : xercesc_3_0::XMLUni::fgUTF8EncodingString;
}

std::u16string Decoded(std::string_view bytes, const XMLCh* encoding)
try
{
    const xercesc_3_0::TranscodeFromStr decoded(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(),
                                                Nuv::UniString(encoding).ToUTF8().c_str());
    const std::u16string_view text(decoded.str(), decoded.length());
    constexpr char16_t ByteOrderMark = u'\uFEFF';
    return std::u16string(text.substr(text.starts_with(ByteOrderMark) ? 1 : 0));
}
catch (const xercesc_3_0::XMLException&)
{
    return {};
}

/// CR LF is one end of a line, as is each of them alone.
std::vector<size_t> LineStarts(std::u16string_view text)
{
    std::vector<size_t> starts{0};
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] == u'\n' || (text[i] == u'\r' && (i + 1 == text.size() || text[i + 1] != u'\n')))
            starts.push_back(i + 1);
    return starts;
}

/// The beginning of a line, which ends with a whole character.
std::u16string_view Cut(std::u16string_view line)
{
    const bool endsWithFirstHalf = (line[SourceText::MaxLineLength - 1] & 0xFC00) == 0xD800;
    return line.substr(0, SourceText::MaxLineLength - (endsWithFirstHalf ? 1 : 0));
}

} // namespace

SourceText::SourceText(std::string_view bytes, const xercesc_3_0::DOMDocument& document)
    : SourceText(bytes, EncodingOf(bytes, document))
{
}

SourceText::SourceText(std::string_view bytes, const XMLCh* encoding)
    : text(Decoded(bytes, encoding))
    , starts(LineStarts(text))
{
}

SourceText::~SourceText() = default;

Nuv::UniString SourceText::Line(unsigned int number) const
{
    if (number == 0 || number > starts.size())
        return {};
    const size_t start = starts[number - 1];
    const size_t end = number < starts.size() ? starts[number] : text.size();
    const std::u16string_view line = Nuv::Trimmed(std::u16string_view(text).substr(start, end - start));
    return line.size() <= MaxLineLength ? Nuv::UniString(line) : Nuv::UniString(Cut(line)) + u" ...";
}

} // namespace NuvXML
