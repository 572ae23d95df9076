#include "NuvXMLUtils/XMLNodeComparator.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/SharedObject.hpp"
#include "NuvXMLUtils/TreeComparison.hpp"
#include "NuvXMLUtils/XMLCompareOptions.hpp"

#include <memory>

using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMTreeWalker;

namespace NuvXML
{

void XMLNodeComparator::CompareNodes(DOMTreeWalker* left, DOMTreeWalker* right, IXMLCompareOptions& options)
{
    const PositionKeeper pair(*left, *right);
    Begin(*left, *right, pair.LeftNode(), pair.RightNode(), options);
    switch (KindOf(leftNode, rightNode))
    {
    case PairKind::Texts:
        ControlNodeComparison();
        break;
    case PairKind::Elements:
        TreeComparison::CompareElements(leftNode, rightNode, options, nullptr);
        WalkThrough();
        break;
    case PairKind::Others:
        TreeComparison::CompareOthers(leftNode, rightNode, options, nullptr);
        break;
    }
}

void XMLNodeComparator::ControlNodeComparison()
{
    const PositionKeeper pair(*leftWalker, *rightWalker);
    switch (KindOf(pair.LeftNode(), pair.RightNode()))
    {
    case PairKind::Texts:
        TreeComparison::CompareTexts(pair.LeftNode(), pair.RightNode(), *optionsInForce, nullptr);
        break;
    case PairKind::Elements:
    {
        const Nuv::Ref<IXMLCompareOptions> childOptions = TreeComparison::OptionsForChildren(*optionsInForce);
        const std::unique_ptr<XMLNodeComparator> comparator(
            childOptions->PrepareNodeComparator(static_cast<const DOMElement*>(pair.LeftNode()),
                                                static_cast<const DOMElement*>(pair.RightNode())));
        pair.Restore();
        comparator->CompareNodes(leftWalker, rightWalker, *childOptions);
        break;
    }
    case PairKind::Others:
        TreeComparison::CompareOthers(pair.LeftNode(), pair.RightNode(), *optionsInForce, nullptr);
        break;
    }
}

void XMLNodeComparator::CompareAttributes(const DOMElement* left, const DOMElement* right,
                                          const IXMLCompareOptions& options)
{
    TreeComparison::CompareAttributes(left, right, options, nullptr);
}

void XMLCompareStrictOrder::WalkThrough()
{
    TreeComparison::CompareChildren(*LeftWalker(), *RightWalker(), LeftNode(), RightNode(), *GetOptions(),
                                    nullptr);
}

void XMLCompareRotatedOrder::WalkThrough()
{
    throw Nuv::NuvException(u"Rotated order walkthrough not yet supported.");
}

void XMLCompareNoOrder::WalkThrough() { throw Nuv::NuvException(u"No-order walkthrough not yet supported."); }

} // namespace NuvXML
