/// @file
/// What equality means to `nuvxml compare`.
#pragma once

#include "Settings.hpp"

#include "NuvRoot/Containers.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"
#include "NuvXMLUtils/XMLDifferences.hpp"

#include <xercesc/dom/DOMDocument.hpp>

#include <memory>
#include <vector>

namespace Tool
{

/// Hides blank text, as its base does, but neither comments nor processing instructions.
class CommentsFilter : public NuvXML::SkipWhitespaceTextsCompareFilter
{
  public:
    FilterAction acceptNode(const xercesc_3_0::DOMNode* node) const override;
};

/// The options of the command line as options of a comparison.
class CompareRules : public NuvXML::AttrRuledCompareOptions
{
  public:
    explicit CompareRules(const CompareSettings& settings);

    /// Compares the comments and processing instructions before the document elements, by position.
    /// @return whether `report` wants more
    bool CompareProlog(const xercesc_3_0::DOMDocument& left, const xercesc_3_0::DOMDocument& right,
                       const NuvXML::XMLDifferenceHandler& report);

    /// The same after the document elements.
    bool CompareEpilog(const xercesc_3_0::DOMDocument& left, const xercesc_3_0::DOMDocument& right,
                       const NuvXML::XMLDifferenceHandler& report);

  protected:
    CompareRules* Clone() const override;
    bool AcceptAttribute(const xercesc_3_0::DOMAttr* attribute) const override;
    bool AreNodeNamesEqual(const xercesc_3_0::DOMNode* left,
                           const xercesc_3_0::DOMNode* right) const override;
    void CompareSpecialTypeNodes(const xercesc_3_0::DOMNode* left,
                                 const xercesc_3_0::DOMNode* right) override;
    NuvXML::XMLValueComparator*
    GetAttributeValueComparator(const xercesc_3_0::DOMAttr* leftAttribute) const override;
    NuvXML::XMLValueComparator* GetValueComparator() const override;
    NuvXML::XMLNodeComparator* PrepareNodeComparator(const xercesc_3_0::DOMElement* left,
                                                     const xercesc_3_0::DOMElement* right) override;
    bool CanOptionsChangeAndEffectNotChildNodes() const override;

  private:
    using Nodes = std::vector<const xercesc_3_0::DOMNode*>;

    bool CompareOutside(const xercesc_3_0::DOMDocument& left, const Nodes& leftNodes,
                        const xercesc_3_0::DOMDocument& right, const Nodes& rightNodes,
                        const NuvXML::XMLDifferenceHandler& report);
    void ComparePair(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right);

    /// Shared by all clones.
    struct Choices
    {
        bool obeysMarkers;
        bool isCaseSensitive;
        Nuv::HashSet<Nuv::UniString> ignoredAttributes;
    };

    std::shared_ptr<const Choices> choices;
};

} // namespace Tool
