/// @file
/// The comparison of two trees, which DoXMLCompare and FindDifferences share. Private to NuvXMLUtils.
#pragma once

#include "NuvRoot/SharedObject.hpp"
#include "NuvXMLUtils/XMLCompareException.hpp"
#include "NuvXMLUtils/XMLCompareOptions.hpp"
#include "NuvXMLUtils/XMLNodeComparator.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>
#include <xercesc/dom/DOMTreeWalker.hpp>

#include <memory>
#include <vector>

namespace NuvXML
{

/// Takes the differences of a comparison, which goes on after each of them.
class DifferenceSink
{
  public:
    DifferenceSink() = default;
    DifferenceSink(const DifferenceSink&) = delete;
    DifferenceSink& operator=(const DifferenceSink&) = delete;
    virtual ~DifferenceSink() = default;

    /// Takes a difference with the nodes that differ.
    /// @throws what is to end the comparison, which must not be an XMLCompareException
    virtual void Take(const XMLCompareException& difference, const xercesc_3_0::DOMNode* left,
                      const xercesc_3_0::DOMNode* right) = 0;
};

enum class PairKind
{
    Texts,
    Elements,
    Others
};

PairKind KindOf(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right);

/// Puts both walkers back, at the end of its scope, to where they stood when it was made.
class PositionKeeper
{
  public:
    PositionKeeper(xercesc_3_0::DOMTreeWalker& left, xercesc_3_0::DOMTreeWalker& right)
        : leftWalker(left)
        , rightWalker(right)
        , leftNode(left.getCurrentNode())
        , rightNode(right.getCurrentNode())
    {
    }
    PositionKeeper(const PositionKeeper&) = delete;
    PositionKeeper& operator=(const PositionKeeper&) = delete;
    ~PositionKeeper()
    {
        if (leftNode)
            Restore();
    }

    void Restore() const
    {
        leftWalker.setCurrentNode(leftNode);
        rightWalker.setCurrentNode(rightNode);
    }

    /// Leaves the walkers where they will be at the end of the scope.
    void Dismiss() { leftNode = nullptr; }

    xercesc_3_0::DOMNode* LeftNode() const { return leftNode; }
    xercesc_3_0::DOMNode* RightNode() const { return rightNode; }

  private:
    xercesc_3_0::DOMTreeWalker& leftWalker;
    xercesc_3_0::DOMTreeWalker& rightWalker;
    xercesc_3_0::DOMNode* leftNode;
    xercesc_3_0::DOMNode* rightNode;
};

/// Compares what is below two elements by position. Differences go to a sink, or are thrown where the sink is
/// null.
///
/// It has a stack of its own for the levels of the trees. It calls node comparators only where they are of
/// another class than XMLCompareStrictOrder, and none at all where there is a sink.
class TreeComparison
{
  public:
    /// Compares two trees by a clone of the options.
    /// @param comparator compares the roots; not used where there is a sink
    static void Compare(const xercesc_3_0::DOMDocument* left, const xercesc_3_0::DOMDocument* right,
                        XMLNodeComparator* comparator, xercesc_3_0::DOMNodeFilter* filter,
                        const IXMLCompareOptions& options, DifferenceSink* sink);
    static void Compare(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right,
                        XMLNodeComparator* comparator, xercesc_3_0::DOMNodeFilter* filter,
                        const IXMLCompareOptions& options, DifferenceSink* sink);

    /// @name Steps
    /// @{

    /// Compares the names and the attributes of two elements.
    /// @return whether what is below them is to be compared
    static bool CompareElements(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right,
                                const IXMLCompareOptions& options, DifferenceSink* sink);

    static void CompareAttributes(const xercesc_3_0::DOMElement* left, const xercesc_3_0::DOMElement* right,
                                  const IXMLCompareOptions& options, DifferenceSink* sink);

    static void CompareTexts(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right,
                             const IXMLCompareOptions& options, DifferenceSink* sink);

    /// Compares two nodes of PairKind::Others.
    static void CompareOthers(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right,
                              IXMLCompareOptions& options, DifferenceSink* sink);

    /// The options for a pair of child elements.
    static Nuv::Ref<IXMLCompareOptions> OptionsForChildren(IXMLCompareOptions& options)
    {
        return options.CanOptionsChangeAndEffectNotChildNodes() ? options.Clone() : &options;
    }

    /// @}

    /// Compares what is below two elements, on which the walkers stand.
    static void CompareChildren(xercesc_3_0::DOMTreeWalker& leftWalker,
                                xercesc_3_0::DOMTreeWalker& rightWalker, const xercesc_3_0::DOMNode* left,
                                const xercesc_3_0::DOMNode* right, IXMLCompareOptions& options,
                                DifferenceSink* sink);

    TreeComparison(const TreeComparison&) = delete;
    TreeComparison& operator=(const TreeComparison&) = delete;
    ~TreeComparison();

  private:
    /// Two elements whose children are compared, and the options for these.
    struct Parents
    {
        const xercesc_3_0::DOMNode* left;
        const xercesc_3_0::DOMNode* right;
        IXMLCompareOptions* options;
    };

    /// What the current parents need, and the parents to go back to.
    struct Level
    {
        Parents outer;
        Nuv::Ref<IXMLCompareOptions> options;
        std::unique_ptr<XMLNodeComparator> comparator;
    };

    TreeComparison(xercesc_3_0::DOMTreeWalker& onLeft, xercesc_3_0::DOMTreeWalker& onRight,
                   const Parents& firstParents, DifferenceSink* differenceSink);

    void Walk();
    bool GoToPair(bool isFirst);
    bool EntersPair();
    bool EntersElements(PositionKeeper& pair);
    void Leave();
    void PutWalkersOnParents() const;

    xercesc_3_0::DOMTreeWalker& leftWalker;
    xercesc_3_0::DOMTreeWalker& rightWalker;
    const bool leftShowsEveryElement;
    const bool rightShowsEveryElement;
    DifferenceSink* const sink;
    Parents parents;
    const xercesc_3_0::DOMNode* leftChild = nullptr;
    const xercesc_3_0::DOMNode* rightChild = nullptr;
    std::vector<Level> levels;
};

} // namespace NuvXML
