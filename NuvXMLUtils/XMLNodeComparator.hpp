/// @file
/// Node comparators: how the children of two elements are paired, and how a pair of nodes is compared.
#pragma once

#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMTreeWalker.hpp>

namespace NuvXML
{

class IXMLCompareOptions;

/// Compares one pair of nodes. The levels below are compared by comparators that the options make.
///
/// A strategy is a subclass that overrides WalkThrough: it moves LeftWalker and RightWalker, which stand on
/// the pair when it begins, from one pair of children to the next, and calls ControlNodeComparison for each.
/// Every operation leaves both walkers on the pair that it compared, also when it throws.
class NUVXMLUTILS_API XMLNodeComparator
{
  private:
    /// Pairs the children of the two elements and compares each pair.
    /// @throws OneNodeHasMoreChildrenThanTheOtherException, or what ControlNodeComparison throws
    virtual void WalkThrough() = 0;

  public:
    XMLNodeComparator() = default;
    XMLNodeComparator(const XMLNodeComparator&) = default;
    XMLNodeComparator& operator=(const XMLNodeComparator&) = default;
    virtual ~XMLNodeComparator() = default;

    /// Compares the two nodes on which the walkers stand, and everything below them.
    ///
    /// The caller holds `options` by a Nuv::Ref during the call: the levels below take and drop
    /// references to the same object, and an object that nobody else holds would die with the first of them.
    /// @throws an XMLCompareException at the first difference
    void CompareNodes(xercesc_3_0::DOMTreeWalker* left, xercesc_3_0::DOMTreeWalker* right,
                      IXMLCompareOptions& options);

    /// Compares the two nodes on which the walkers stand now: text by a value comparator of the options,
    /// elements by a new node comparator of the options. To be called by WalkThrough, inside CompareNodes.
    /// @throws an XMLCompareException at the first difference
    void ControlNodeComparison();

    /// Compares the attributes that the options accept, in any order.
    /// @throws AttributeMissingException, AttributesDontMatchException
    static void CompareAttributes(const xercesc_3_0::DOMElement* left, const xercesc_3_0::DOMElement* right,
                                  const IXMLCompareOptions& options);

  protected:
    // All null before the first CompareNodes.
    IXMLCompareOptions* GetOptions() const { return optionsInForce; }
    xercesc_3_0::DOMTreeWalker* LeftWalker() const { return leftWalker; }
    xercesc_3_0::DOMTreeWalker* RightWalker() const { return rightWalker; }

    /// The pair that this comparator compares.
    const xercesc_3_0::DOMNode* LeftNode() const { return leftNode; }
    const xercesc_3_0::DOMNode* RightNode() const { return rightNode; }

  private:
    friend class TreeComparison;

    void Begin(xercesc_3_0::DOMTreeWalker& left, xercesc_3_0::DOMTreeWalker& right,
               const xercesc_3_0::DOMNode* onLeft, const xercesc_3_0::DOMNode* onRight,
               IXMLCompareOptions& options)
    {
        optionsInForce = &options;
        leftWalker = &left;
        rightWalker = &right;
        leftNode = onLeft;
        rightNode = onRight;
    }

    IXMLCompareOptions* optionsInForce = nullptr;
    xercesc_3_0::DOMTreeWalker* leftWalker = nullptr;
    xercesc_3_0::DOMTreeWalker* rightWalker = nullptr;
    const xercesc_3_0::DOMNode* leftNode = nullptr;
    const xercesc_3_0::DOMNode* rightNode = nullptr;
};

/// Pairs children strictly by position, among the nodes that the filter of the walkers lets through.
class NUVXMLUTILS_API XMLCompareStrictOrder : public XMLNodeComparator
{
  private:
    void WalkThrough() override;
};

/// Declared but not supported: walking through children throws a Nuv::NuvException.
class NUVXMLUTILS_API XMLCompareRotatedOrder : public XMLNodeComparator
{
  private:
    void WalkThrough() override;
};

/// Declared but not supported: walking through children throws a Nuv::NuvException.
class NUVXMLUTILS_API XMLCompareNoOrder : public XMLNodeComparator
{
  private:
    void WalkThrough() override;
};

} // namespace NuvXML
