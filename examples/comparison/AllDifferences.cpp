#include "AllDifferences.hpp"

#include <set>

using namespace NuvXML;
using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;

namespace
{

/// Knows which attributes of the current pair are reported already. All clones add to the same reports.
class CollectingOptions : public WithoutTimeStamp
{
  public:
    explicit CollectingOptions(std::vector<Nuv::UniString>& target)
        : reports(target)
    {
    }

    /// Compares until there is nothing left to report. A pair is compared again after each of its attributes
    /// that differs, then without that attribute; its children come after its attributes, so nothing is
    /// reported twice.
    template <class Comparison>
    void Collect(Comparison compare)
    {
        reportedAttributes.clear();
        while (CollectOne(compare))
        {
        }
    }

  protected:
    CollectingOptions* Clone() const override { return new CollectingOptions(*this); }
    bool CanOptionsChangeAndEffectNotChildNodes() const override { return true; }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement* left, const DOMElement* right) override;
    bool AcceptAttribute(const DOMAttr* attribute) const override
    {
        return WithoutTimeStamp::AcceptAttribute(attribute) &&
               reportedAttributes.count(Nuv::UniString(attribute->getName())) == 0;
    }

  private:
    /// Whether the pair is to be compared again.
    template <class Comparison>
    bool CollectOne(Comparison compare)
    {
        try
        {
            compare();
        }
        catch (const AttributeMissingException& difference)
        {
            return ReportAttribute(difference);
        }
        catch (const AttributesDontMatchException& difference)
        {
            return ReportAttribute(difference);
        }
        catch (const XMLCompareException& difference)
        {
            reports.push_back(difference.GetText());
        }
        return false;
    }

    template <class Difference>
    bool ReportAttribute(const Difference& difference)
    {
        reports.push_back(difference.GetText());
        reportedAttributes.insert(difference.GetAttributeName());
        return true;
    }

    std::vector<Nuv::UniString>& reports;
    std::set<Nuv::UniString> reportedAttributes;
};

/// Pairs children by position and goes on after a pair that differs.
class CollectingComparator : public XMLNodeComparator
{
    void WalkThrough() override
    {
        // Made by CollectingOptions::Clone, as all options of the comparison.
        auto& options = static_cast<CollectingOptions&>(*GetOptions());
        const DOMNode* left = LeftWalker()->firstChild();
        const DOMNode* right = RightWalker()->firstChild();
        while (left && right)
        {
            options.Collect([this] { ControlNodeComparison(); });
            left = LeftWalker()->nextSibling();
            right = RightWalker()->nextSibling();
        }
        if (left || right)
            throw OneNodeHasMoreChildrenThanTheOtherException(
                LeftNode(), RightNode(), left ? XMLCompareException::Left : XMLCompareException::Right);
    }
};

XMLNodeComparator* CollectingOptions::PrepareNodeComparator(const DOMElement*, const DOMElement*)
{
    return new CollectingComparator;
}

} // namespace

std::vector<Nuv::UniString> AllDifferences(const xercesc_3_0::DOMDocument& left,
                                           const xercesc_3_0::DOMDocument& right,
                                           xercesc_3_0::DOMNodeFilter& filter, double epsilon)
{
    std::vector<Nuv::UniString> reports;
    CollectingOptions options(reports);
    options.SetDoubleEps(epsilon);
    CollectingComparator comparator;
    options.Collect([&] { DoXMLCompare(&left, &right, &comparator, &filter, options); });
    return reports;
}
