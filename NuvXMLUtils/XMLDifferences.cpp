#include "NuvXMLUtils/XMLDifferences.hpp"

#include "NuvRoot/Containers.hpp"
#include "NuvRoot/SharedObject.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include <memory>

using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNamedNodeMap;
using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMNodeFilter;

namespace NuvXML
{
namespace
{

/// Ends a search through the levels of the comparison.
struct SearchEnd
{
};

/// Null for a node that has no such attribute, or is no element.
const DOMNode* AttributeOf(const DOMNode* node, const Nuv::UniString& name)
{
    const DOMNamedNodeMap* const attributes = node->getAttributes();
    return attributes ? attributes->getNamedItem(name.ToUTF16()) : nullptr;
}

} // namespace

/// The caller's options, but for what a search needs: node comparators that go on after a difference, and
/// attributes that are passed over once they are reported.
class DifferenceSearch : public IXMLCompareOptions
{
  public:
    DifferenceSearch(const IXMLCompareOptions& callersRules, const XMLDifferenceHandler& callersHandler)
        : rules(callersRules.Clone())
        , handler(callersHandler)
    {
    }

    /// Compares a pair until there is nothing left to report. It is compared again after each of its
    /// attributes that differs, then without that attribute; its children come after its attributes, so
    /// nothing is reported twice.
    template <class Comparison>
    void Search(const DOMNode* left, const DOMNode* right, Comparison compare)
    {
        reportedAttributes.clear();
        while (!IsDone(left, right, compare))
        {
        }
    }

    void Report(const XMLCompareException& exception, const DOMNode* left, const DOMNode* right) const
    {
        if (!handler({exception, left, right}))
            throw SearchEnd();
    }

  protected:
    DifferenceSearch* Clone() const override
    {
        auto copy = std::make_unique<DifferenceSearch>(*this);
        if (rules->CanOptionsChangeAndEffectNotChildNodes())
            copy->rules = rules->Clone();
        return copy.release();
    }

    double GetDoubleEps() const override { return rules->GetDoubleEps(); }

    bool AcceptAttribute(const DOMAttr* attribute) const override
    {
        return rules->AcceptAttribute(attribute) &&
               (reportedAttributes.empty() || reportedAttributes.count(attribute->getName()) == 0);
    }

    bool AreNodeNamesEqual(const DOMNode* left, const DOMNode* right) const override
    {
        return rules->AreNodeNamesEqual(left, right);
    }

    void CompareSpecialTypeNodes(const DOMNode* left, const DOMNode* right) override
    {
        rules->CompareSpecialTypeNodes(left, right);
    }

    XMLValueComparator* GetAttributeValueComparator(const DOMAttr* leftAttribute) const override
    {
        return rules->GetAttributeValueComparator(leftAttribute);
    }

    XMLValueComparator* GetValueComparator() const override { return rules->GetValueComparator(); }

    XMLNodeComparator* PrepareNodeComparator(const DOMElement* left, const DOMElement* right) override;

    /// What is reported of a pair is of no concern to the pairs below it.
    bool CanOptionsChangeAndEffectNotChildNodes() const override { return true; }

  private:
    template <class Comparison>
    bool IsDone(const DOMNode* left, const DOMNode* right, Comparison compare)
    {
        try
        {
            compare();
        }
        catch (const AttributeMissingException& difference)
        {
            const Nuv::UniString name = difference.GetAttributeName();
            const bool isOnRight = difference.GetWhereItIsMissing() == XMLCompareException::Left;
            return !ReportAttribute(difference, name, isOnRight ? left : AttributeOf(left, name),
                                    isOnRight ? AttributeOf(right, name) : right);
        }
        catch (const AttributesDontMatchException& difference)
        {
            const Nuv::UniString name = difference.GetAttributeName();
            return !ReportAttribute(difference, name, AttributeOf(left, name), AttributeOf(right, name));
        }
        catch (const XMLCompareException& difference)
        {
            Report(difference, left, right);
        }
        return true;
    }

    /// @return whether there may be more to report of the pair. What the caller's options throw about an
    /// attribute they throw again, for AcceptAttribute does not keep them from it.
    bool ReportAttribute(const XMLCompareException& exception, const Nuv::UniString& name,
                         const DOMNode* left, const DOMNode* right)
    {
        if (!reportedAttributes.insert(name).second)
            return false;
        Report(exception, left, right);
        return true;
    }

    Nuv::Ref<IXMLCompareOptions> rules;
    const XMLDifferenceHandler& handler;
    Nuv::HashSet<Nuv::UniString> reportedAttributes;
};

namespace
{

/// Pairs children by position and goes on after a pair that differs.
class SearchingComparator : public XMLNodeComparator
{
    void WalkThrough() override
    {
        // Made by DifferenceSearch, as all options of the comparison.
        auto& search = static_cast<DifferenceSearch&>(*GetOptions());
        const DOMNode* left = LeftWalker()->firstChild();
        const DOMNode* right = RightWalker()->firstChild();
        while (left && right)
        {
            search.Search(left, right, [this] { ControlNodeComparison(); });
            left = LeftWalker()->nextSibling();
            right = RightWalker()->nextSibling();
        }
        if (left || right)
            search.Report(OneNodeHasMoreChildrenThanTheOtherException(LeftNode(), RightNode(),
                                                                      left ? XMLCompareException::Left
                                                                           : XMLCompareException::Right),
                          left ? left : LeftNode(), right ? right : RightNode());
    }
};

} // namespace

XMLNodeComparator* DifferenceSearch::PrepareNodeComparator(const DOMElement* left, const DOMElement* right)
{
    // Made for what it does to the options.
    const std::unique_ptr<XMLNodeComparator> unused(rules->PrepareNodeComparator(left, right));
    return new SearchingComparator;
}

void FindDifferences(const DOMDocument* left, const DOMDocument* right, DOMNodeFilter* filter,
                     const IXMLCompareOptions& options, const XMLDifferenceHandler& handler)
{
    DifferenceSearch search(options, handler);
    SearchingComparator comparator;
    try
    {
        search.Search(left->getDocumentElement(), right->getDocumentElement(),
                      [&] { DoXMLCompare(left, right, &comparator, filter, search); });
    }
    catch (const SearchEnd&)
    {
        // The handler has seen enough.
    }
}

} // namespace NuvXML
