#include "NuvXMLUtils/TagGetters.hpp"

#include "NuvXMLUtils/DOMHelperSupport.hpp"

namespace NuvXMLUtils
{
namespace
{

using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;

Nuv::UniString Quoted(const DOMElement* elem) { return u"'" + Nuv::UniString(elem->getTagName()) + u"'"; }

Nuv::UniString TagContext(const DOMElement* elem) { return u"Tag " + Quoted(elem) + u"; "; }

/// Throws "... in tag 'name'" with the line of `node`.
[[noreturn]] void Fail(const Nuv::UniString& problem, const DOMElement* elem, const DOMNode* node)
{
    throw ConvException(problem + u" in tag " + Quoted(elem), node);
}

/// What `get` gives; its exceptions are told of the tag.
template <class Get>
auto InTag(const DOMElement* elem, Get get)
{
    try
    {
        return get();
    }
    catch (ConvException& exception)
    {
        AddContext(exception, TagContext(elem), elem);
        throw;
    }
}

/// The value of the only child, a text node.
Nuv::UniString TextOf(const DOMElement* elem)
{
    const DOMNode* const child = elem->getFirstChild();
    if (!child || child->getNextSibling() || child->getNodeType() != DOMNode::TEXT_NODE)
        Fail(u"One text node expected", elem, elem);
    return child->getNodeValue();
}

template <class Parse>
auto ParseTag(const DOMElement* elem, Parse parse)
{
    return InTag(elem, [&] { return parse(std::unique_ptr<char[]>(GetTagText(elem)).get()); });
}

/// @param term how the messages call a CDATA section
const DOMNode* FindCDATASection(const DOMElement* elem, const Nuv::UniString& term)
{
    const DOMNode* section = nullptr;
    for (const DOMNode* child = elem->getFirstChild(); child; child = child->getNextSibling())
        switch (child->getNodeType())
        {
        case DOMNode::TEXT_NODE:
        case DOMNode::COMMENT_NODE:
            break;
        case DOMNode::CDATA_SECTION_NODE:
            if (section)
                Fail(u"More than one " + term + u" section", elem, child);
            section = child;
            break;
        default:
            Fail(u"Unexpected XML node", elem, child);
        }
    if (!section)
        Fail(u"Missing " + term + u" section", elem, elem);
    return section;
}

Nuv::UniString ContentOf(const DOMNode* section)
{
    Nuv::UniString content(section->getNodeValue());
    ConvertCDATA(content);
    return content;
}

std::unique_ptr<char[]> Transcoded(const Nuv::UniString& text, bool lossy)
{
    return std::unique_ptr<char[]>(UnicodeToString(text, lossy));
}

std::unique_ptr<char[]> TranscodedWithWarning(const Nuv::UniString& text, const DOMElement* elem,
                                              const DOMNode* section, Nuv::VAArray<WarningData>* warnings)
{
    try
    {
        return Transcoded(text, false);
    }
    catch (const ConvException&)
    {
    }
    std::unique_ptr<char[]> bytes = Transcoded(text, true);
    if (warnings)
        warnings->push_back(
            {u"Some characters cannot be converted correctly to local codepage in tag " + Quoted(elem),
             LineOf(section)});
    return bytes;
}

/// Both forms of a string tag: `Unit` is what it gives an array of.
template <class Unit>
Unit* UnquotedTag(const DOMElement* elem, Nuv::VAArray<WarningData>* warnings,
                  Unit* (*getCDATANode)(const DOMElement*, Nuv::VAArray<WarningData>*), void (*cut)(Unit*&),
                  Unit* (*unquote)(Unit*))
{
    return InTag(elem,
                 [&]
                 {
                     const std::unique_ptr<Unit[]> text(getCDATANode(elem, warnings));
                     Unit* value = text.get();
                     cut(value);
                     return OrMemoryError([&] { return NewCopy<Unit>(unquote(value)); }).release();
                 });
}

} // namespace

char* GetTagText(const DOMElement* elem)
{
    const std::unique_ptr<char[]> text = Transcoded(TextOf(elem), false);
    char* trimmed = text.get();
    CutWhSpace(trimmed);
    return OrMemoryError([&] { return NewCopy<char>(trimmed); }).release();
}

Nuv::UniString GetTagTextU(const DOMElement* elem)
{
    Nuv::UniString text = TextOf(elem);
    text.Trim();
    return text;
}

int GetSLongTag(const DOMElement* elem) { return ParseTag(elem, GetSignedLong); }

unsigned int GetULongTag(const DOMElement* elem) { return ParseTag(elem, GetULong); }

double GetDoubleTag(const DOMElement* elem) { return ParseTag(elem, GetDouble); }

bool GetBoolTag(const DOMElement* elem) { return ParseTag(elem, GetBoolean); }

char* GetCDATANode(const DOMElement* elem, Nuv::VAArray<WarningData>* warnings)
{
    const DOMNode* const section = FindCDATASection(elem, u"CDATA");
    Nuv::UniString content = ContentOf(section);
    content.ReplaceAll(u"\n", u"\r\n");
    try
    {
        return TranscodedWithWarning(content, elem, section, warnings).release();
    }
    catch (ConvException& exception)
    {
        AddContext(exception, u"CDATA section could not be transcoded in tag " + Quoted(elem) + u"; ", elem);
        throw;
    }
}

unsigned short* GetCDATANodeU(const DOMElement* elem, Nuv::VAArray<WarningData>*)
{
    const Nuv::UniString content = ContentOf(FindCDATASection(elem, u"CData"));
    return OrMemoryError([&] { return NewCopy<unsigned short>(content.ToUTF16()); }).release();
}

char* GetStringTag(const DOMElement* elem, Nuv::VAArray<WarningData>* warnings)
{
    return UnquotedTag(elem, warnings, GetCDATANode, CutWhSpace, GetStringValue);
}

unsigned short* GetStringTagU(const DOMElement* elem, Nuv::VAArray<WarningData>* warnings)
{
    return UnquotedTag(elem, warnings, GetCDATANodeU, CutWhSpaceU, GetStringValueU);
}

} // namespace NuvXMLUtils
