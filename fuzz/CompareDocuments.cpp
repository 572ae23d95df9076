// The first line is a script, the rest a document. It is compared with itself and with a copy that the script
// has changed: the same tree is equal, and which tree is the left one does not decide about equality.

#include "fuzz/Support.hpp"

#include "NuvXMLUtils/XMLCompare.hpp"
#include "NuvXMLUtils/XMLDifferences.hpp"

#include <vector>

namespace
{

using namespace Fuzz;
using xercesc_3_0::DOMNodeFilter;

constexpr const char16_t* Values[] = {u"1",   u"1.000001", u"1.1", u" 1 ",    u"x",
                                      u" X ", u"int",      u"",    u"double", u"string"};

constexpr const char16_t* Names[] = {u"a", u"A", u"b", u"nuv_type", u"nuv_eps"};

/// Null where there is none.
DOMElement* ElementFrom(DOMNode* node)
{
    while (node && node->getNodeType() != DOMNode::ELEMENT_NODE)
        node = node->getNextSibling();
    return static_cast<DOMElement*>(node);
}

/// Each letter is an operation on the element that the script has gone to; the bytes behind it choose a name
/// and a value.
void Change(DOMDocument& document, Script script)
{
    DOMElement* element = document.getDocumentElement();
    while (!script.IsAtEnd())
    {
        const char operation = script.Next();
        DOMNode* const child = element->getFirstChild();
        DOMElement* moved = nullptr;
        switch (operation)
        {
        case 'd':
            moved = ElementFrom(child);
            break;
        case 'n':
            moved = ElementFrom(element->getNextSibling());
            break;
        case 'a':
        {
            const char16_t* const name = script.Choose(Names);
            element->setAttribute(name, script.Choose(Values));
            break;
        }
        case 'r':
            element->removeAttribute(script.Choose(Names));
            break;
        case 't':
            element->appendChild(document.createTextNode(script.Choose(Values)));
            break;
        case 'e':
            element->appendChild(document.createElement(script.Choose(Names)));
            break;
        case 'c':
            element->appendChild(document.createComment(script.Choose(Values)));
            break;
        case 'N':
            element = static_cast<DOMElement*>(document.renameNode(element, nullptr, script.Choose(Names)));
            break;
        case 'x':
            if (child)
                element->removeChild(child)->release();
            break;
        default:
            break;
        }
        element = moved ? moved : element;
    }
}

/// Lets markers be on one side only, and takes nodes of other types for equal.
class LenientOptions : public NuvXML::AttrRuledCompareOptions
{
  protected:
    LenientOptions* Clone() const override { return new LenientOptions(*this); }
    bool AcceptAttribute(const xercesc_3_0::DOMAttr* attribute) const override
    {
        return !ViewOf(attribute->getName()).starts_with(u"nuv_");
    }
    void CompareSpecialTypeNodes(const DOMNode*, const DOMNode*) override {}
};

/// The reports of all differences.
std::vector<Nuv::UniString> Differences(const DOMDocument& left, const DOMDocument& right,
                                        DOMNodeFilter* filter, const NuvXML::IXMLCompareOptions& options)
{
    std::vector<Nuv::UniString> reports;
    NuvXML::FindDifferences(&left, &right, filter, options,
                            [&](const NuvXML::XMLDifference& difference)
                            {
                                reports.push_back(difference.exception.GetText());
                                return true;
                            });
    return reports;
}

enum class Verdict
{
    Equal,
    Different,
    NotSupported
};

/// The difference that ends a comparison is the first of all.
Verdict Compare(const DOMDocument& left, const DOMDocument& right, DOMNodeFilter* filter,
                const NuvXML::IXMLCompareOptions& options)
{
    const std::vector<Nuv::UniString> differences = Differences(left, right, filter, options);
    try
    {
        NuvXML::XMLCompareStrictOrder comparator;
        NuvXML::DoXMLCompare(&left, &right, &comparator, filter, options);
        Check(differences.empty());
        return Verdict::Equal;
    }
    catch (const NuvXML::XMLCompareException& exception)
    {
        Check(!differences.empty() && differences.front() == exception.GetText());
        const bool isSupported = !dynamic_cast<const NuvXML::NotSupportedNodeTypesException*>(&exception);
        return isSupported ? Verdict::Different : Verdict::NotSupported;
    }
}

bool HasOnlyElementsAndTexts(const DOMNode& node)
{
    for (const DOMNode* child = node.getFirstChild(); child; child = child->getNextSibling())
        if ((child->getNodeType() != DOMNode::TEXT_NODE && child->getNodeType() != DOMNode::ELEMENT_NODE) ||
            !HasOnlyElementsAndTexts(*child))
            return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const Parts parts = Divide(TextOf(bytes, size));
    const Document document = Parse(parts.document);
    const Document copy = Parse(parts.document);
    if (!document)
        return 0;
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    const NuvXML::StrictOrderAutoValueCompareOptions standard;
    const NuvXML::AttrRuledCompareOptions ruled;
    const LenientOptions lenient;
    Check(Compare(*document, *copy, &filter, standard) == Verdict::Equal);
    Check(
        Compare(*document, *copy, nullptr, standard) ==
        (HasOnlyElementsAndTexts(*document->getDocumentElement()) ? Verdict::Equal : Verdict::NotSupported));

    Change(*copy, Script(parts.script));
    DOMNodeFilter* const filters[] = {nullptr, &filter};
    const NuvXML::IXMLCompareOptions* const rules[] = {&standard, &ruled, &lenient};
    for (DOMNodeFilter* const chosen : filters)
        for (const auto* const options : rules)
            Check(Compare(*document, *copy, chosen, *options) == Compare(*copy, *document, chosen, *options));
    return 0;
}
