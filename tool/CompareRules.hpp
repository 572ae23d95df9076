/// @file
/// What equality means to `nuvxml compare`.
#pragma once

#include "Settings.hpp"

#include "NuvRoot/Containers.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

#include <memory>

namespace Tool
{

/// Elements, CDATA sections and, as the settings have it, comments, processing instructions and blank text.
class CompareFilter : public NuvXML::SkipWhitespaceTextsCompareFilter
{
  public:
    explicit CompareFilter(const CompareSettings& settings);
    FilterAction acceptNode(const xercesc_3_0::DOMNode* node) const override;

  private:
    bool keepsWhitespace;
    bool showsComments;
};

/// The options of the command line as options of a comparison.
class CompareRules : public NuvXML::AttrRuledCompareOptions
{
  public:
    explicit CompareRules(const CompareSettings& settings);

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
