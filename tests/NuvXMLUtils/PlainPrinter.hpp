/// @file
/// The printer in the plain way: one character at a time, each through a transcoder of its own, and a
/// function that calls itself for every level of the tree.
#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLException.hpp>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace NuvTest
{

class PlainPrinter
{
  public:
    /// @param isUTF16 whether the encoding is UTF-16, in which half surrogate pairs are written as they are
    PlainPrinter(const char16_t* encodingName, bool isUTF16)
        : encoding(encodingName)
        , writesHalfPairs(isUTF16)
    {
    }

    /// What follows the byte-order mark.
    std::string Print(const xercesc_3_0::DOMNode& node, std::u16string_view declaredName)
    {
        bytes.clear();
        Format(u"<?xml version=\"1.0\" encoding=\"", Mode::None);
        Format(declaredName, Mode::None);
        Format(u"\"?>\n", Mode::None);
        Write(node);
        return bytes;
    }

  private:
    using Node = xercesc_3_0::DOMNode;

    enum class Mode
    {
        None,
        Value,
        Text
    };

    void Write(const Node& node)
    {
        switch (node.getNodeType())
        {
        case Node::DOCUMENT_NODE:
            for (const Node* child = node.getFirstChild(); child; child = child->getNextSibling())
            {
                Write(*child);
                Format(u"\n", Mode::None);
            }
            break;
        case Node::ELEMENT_NODE:
            WriteElement(node);
            break;
        case Node::TEXT_NODE:
            Format(node.getNodeValue(), Mode::Text);
            break;
        case Node::CDATA_SECTION_NODE:
            Format(std::u16string(u"<![CDATA[") + node.getNodeValue() + u"]]>", Mode::None);
            break;
        case Node::COMMENT_NODE:
            Format(std::u16string(u"<!--") + node.getNodeValue() + u"-->", Mode::None);
            break;
        case Node::PROCESSING_INSTRUCTION_NODE:
            Format(std::u16string(u"<?") + node.getNodeName(), Mode::None);
            if (*node.getNodeValue())
                Format(std::u16string(u" ") + node.getNodeValue(), Mode::None);
            Format(u"?>", Mode::None);
            break;
        case Node::ENTITY_REFERENCE_NODE:
            Format(std::u16string(u"&") + node.getNodeName() + u";", Mode::None);
            break;
        default:
            break;
        }
    }

    void WriteElement(const Node& element)
    {
        Format(std::u16string(u"<") + element.getNodeName(), Mode::None);
        for (XMLSize_t i = 0; i < element.getAttributes()->getLength(); ++i)
        {
            const Node& attribute = *element.getAttributes()->item(i);
            Format(std::u16string(u" ") + attribute.getNodeName() + u"=\"", Mode::None);
            Format(attribute.getNodeValue(), Mode::Value);
            Format(u"\"", Mode::None);
        }
        if (!element.hasChildNodes())
            return Format(u"/>", Mode::None);
        Format(u">", Mode::None);
        for (const Node* child = element.getFirstChild(); child; child = child->getNextSibling())
            Write(*child);
        Format(std::u16string(u"</") + element.getNodeName() + u">", Mode::None);
    }

    void Format(std::u16string_view text, Mode mode)
    {
        for (size_t i = 0; i < text.size(); ++i)
        {
            const bool isPair =
                i + 1 < text.size() && (text[i] & 0xFC00) == 0xD800 && (text[i + 1] & 0xFC00) == 0xDC00;
            const char32_t character =
                isPair ? 0x10000u + ((text[i] & 0x3FFu) << 10) + (text[i + 1] & 0x3FFu) : text[i];
            const std::u16string_view units = text.substr(i, isPair ? 2 : 1);
            const std::u16string replacement = ReplacementFor(character, mode);
            if (!replacement.empty())
                Transcode(replacement);
            else if (Has(character, units))
                Transcode(units);
            else
                Transcode(ReferenceTo(character));
            lastTwo = (lastTwo + text[i]).substr(lastTwo.size() < 2 ? 0 : 1);
            i += isPair ? 1 : 0;
        }
    }

    std::u16string ReplacementFor(char32_t character, Mode mode)
    {
        if (mode != Mode::None && character == u'&')
            return u"&amp;";
        if (mode != Mode::None && character == u'<')
            return u"&lt;";
        if (mode == Mode::Value && character == u'"')
            return u"&quot;";
        if (mode == Mode::Value && character == u'\'')
            return u"&apos;";
        if (mode == Mode::Text && character == u'>' && lastTwo == u"]]")
            return u"&gt;";
        return u"";
    }

    static std::u16string ReferenceTo(char32_t character)
    {
        std::u16string digits;
        for (; character != 0; character /= 16)
            digits.insert(digits.begin(), u"0123456789ABCDEF"[character % 16]);
        return u"&#x" + digits + u";";
    }

    bool Has(char32_t character, std::u16string_view units)
    {
        if (units.size() == 1 && (units[0] & 0xF800) == 0xD800)
            return writesHalfPairs;
        const auto [known, isNew] = answers.try_emplace(character, false);
        if (isNew)
            known->second = ComesBack(units);
        return known->second;
    }

    bool ComesBack(std::u16string_view units)
    {
        try
        {
            const std::string encoded = Encode(*NewTranscoder(), units);
            XMLCh decoded[64];
            unsigned char sizes[64];
            XMLSize_t eaten = 0;
            const XMLSize_t count = NewTranscoder()->transcodeFrom(
                reinterpret_cast<const XMLByte*>(encoded.data()), encoded.size(), decoded, 64, eaten, sizes);
            return std::u16string_view(decoded, count) == units;
        }
        catch (const xercesc_3_0::XMLException&)
        {
            return false;
        }
    }

    void Transcode(std::u16string_view units) { bytes += Encode(*NewTranscoder(), units); }

    static std::string Encode(xercesc_3_0::XMLTranscoder& transcoder, std::u16string_view units)
    {
        XMLByte encoded[64];
        XMLSize_t eaten = 0;
        const XMLSize_t count = transcoder.transcodeTo(units.data(), units.size(), encoded, 64, eaten,
                                                       xercesc_3_0::XMLTranscoder::UnRep_Throw);
        return std::string(reinterpret_cast<const char*>(encoded), count);
    }

    std::unique_ptr<xercesc_3_0::XMLTranscoder> NewTranscoder() const
    {
        xercesc_3_0::XMLTransService::Codes result;
        return std::unique_ptr<xercesc_3_0::XMLTranscoder>(
            xercesc_3_0::XMLPlatformUtils::fgTransService->makeNewTranscoderFor(
                encoding, result, 64, xercesc_3_0::XMLPlatformUtils::fgMemoryManager));
    }

    const char16_t* encoding;
    bool writesHalfPairs;
    std::string bytes;
    std::u16string lastTwo;
    std::map<char32_t, bool> answers;
};

} // namespace NuvTest
