/// @file
/// What equality means to a comparison: the options, every decision of which a subclass can replace.
#pragma once

#include "NuvRoot/SharedObject.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>

#include <memory>
#include <string_view>

namespace NuvXML
{

class TreeComparison;
class XMLNodeComparator;
class XMLValueComparator;

/// The decisions of a comparison. Whatever an operation throws ends the comparison and reaches its caller.
///
/// Options are held by counted references (Nuv::Ref): a comparison works on a clone of the options it is
/// given, and on further clones for the levels below where CanOptionsChangeAndEffectNotChildNodes says so.
/// Override Clone in every class of your own, or the comparison goes on with an object of your base class.
class NUVXMLUTILS_API IXMLCompareOptions : public Nuv::SharedObject
{
  public:
    IXMLCompareOptions() = default;
    IXMLCompareOptions(const IXMLCompareOptions&) = default;
    IXMLCompareOptions& operator=(const IXMLCompareOptions&) = default;
    ~IXMLCompareOptions() override = default;

  protected:
    /// A new object of the same class with the same settings, which nobody holds yet.
    virtual IXMLCompareOptions* Clone() const = 0;

  public:
    /// The absolute difference that numbers stay below when they are equal; 0 asks for identical numbers, a
    /// negative value lets none be equal. Asked for any two values, whether they are numbers or not.
    virtual double GetDoubleEps() const = 0;

  protected:
    /// Whether an attribute of either element takes part.
    virtual bool AcceptAttribute(const xercesc_3_0::DOMAttr* attribute) const = 0;

    /// Whether the names of two elements are equal.
    virtual bool AreNodeNamesEqual(const xercesc_3_0::DOMNode* left,
                                   const xercesc_3_0::DOMNode* right) const = 0;

    /// Compares two nodes of the same type that are neither elements nor text; throws at a difference.
    virtual void CompareSpecialTypeNodes(const xercesc_3_0::DOMNode* left,
                                         const xercesc_3_0::DOMNode* right) = 0;

    /// A new comparator for the values of an attribute, given as it is on the left. The caller deletes it.
    virtual XMLValueComparator*
    GetAttributeValueComparator(const xercesc_3_0::DOMAttr* leftAttribute) const = 0;

    /// A new comparator for the values of two text nodes. The caller deletes it.
    virtual XMLValueComparator* GetValueComparator() const = 0;

    /// Gets ready for a pair of elements and gives a new comparator for it, which the caller deletes. The
    /// elements are null when the comparison starts at nodes that are none.
    virtual XMLNodeComparator* PrepareNodeComparator(const xercesc_3_0::DOMElement* left,
                                                     const xercesc_3_0::DOMElement* right) = 0;

    /// True when PrepareNodeComparator may change the options, so that each pair of child elements needs a
    /// clone of its own.
    virtual bool CanOptionsChangeAndEffectNotChildNodes() const = 0;

  private:
    friend class TreeComparison;
    friend class XMLNodeComparator;
};

/// The standard options: every attribute takes part, in any order; children are paired in document order;
/// names are compared without regard to case, values by XMLCompareAuto; nodes that are neither elements nor
/// text are not supported.
class NUVXMLUTILS_API StrictOrderAutoValueCompareOptions : public IXMLCompareOptions
{
  public:
    /// 1e-05 unless it was set.
    double GetDoubleEps() const override;

  protected:
    StrictOrderAutoValueCompareOptions* Clone() const override;
    bool AcceptAttribute(const xercesc_3_0::DOMAttr* attribute) const override;
    bool AreNodeNamesEqual(const xercesc_3_0::DOMNode* left,
                           const xercesc_3_0::DOMNode* right) const override;
    /// @throws NotSupportedNodeTypesException always
    void CompareSpecialTypeNodes(const xercesc_3_0::DOMNode* left,
                                 const xercesc_3_0::DOMNode* right) override;
    XMLValueComparator* GetAttributeValueComparator(const xercesc_3_0::DOMAttr* leftAttribute) const override;
    XMLValueComparator* GetValueComparator() const override;
    XMLNodeComparator* PrepareNodeComparator(const xercesc_3_0::DOMElement* left,
                                             const xercesc_3_0::DOMElement* right) override;
    bool CanOptionsChangeAndEffectNotChildNodes() const override;

  public:
    virtual void SetDoubleEps(double newEpsilon);

  private:
    double epsilon = 1e-05;
};

/// Lets the compared documents choose, by two marker attributes, how their text is compared.
///
/// The type marker (`nuv_type`) holds for the text directly inside its element: `int`, `double` or `string`
/// in any case; without it, or with another word, values are compared by XMLCompareAuto. The epsilon marker
/// (`nuv_eps`) holds for the whole subtree until a descendant sets another. A marker on one side is enough;
/// two that disagree have no effect, and are then reported as attributes that differ, for markers are
/// compared like any other attribute. An epsilon that is not a number is ignored. An empty marker name turns
/// the marker off.
class NUVXMLUTILS_API AttrRuledCompareOptions : public StrictOrderAutoValueCompareOptions
{
  public:
    AttrRuledCompareOptions() = default;
    // Copied only: the marker names are never taken away from an object.
    AttrRuledCompareOptions(const AttrRuledCompareOptions&) = default;
    AttrRuledCompareOptions& operator=(const AttrRuledCompareOptions&) = default;

  protected:
    AttrRuledCompareOptions* Clone() const override;
    XMLValueComparator* GetValueComparator() const override;
    XMLNodeComparator* PrepareNodeComparator(const xercesc_3_0::DOMElement* left,
                                             const xercesc_3_0::DOMElement* right) override;
    bool CanOptionsChangeAndEffectNotChildNodes() const override;

  public:
    virtual void SetTypeDeciderAtt(const Nuv::UniString& attributeName);
    virtual Nuv::UniString GetTypeDeciderAtt();
    virtual void SetEpsAtt(const Nuv::UniString& attributeName);
    virtual Nuv::UniString GetEpsAtt();

  protected:
    /// The type marker of an element; null when it has none, is null itself, or typing is off.
    virtual const xercesc_3_0::DOMAttr* GetTypeAttribute(const xercesc_3_0::DOMElement* element) const;

    /// Takes the value type from the type markers, then calls DoValueTypeSpecificUpdates.
    virtual void SetCurrentValueType(const xercesc_3_0::DOMElement* left,
                                     const xercesc_3_0::DOMElement* right);

    /// Takes the epsilon from the epsilon markers.
    virtual void DoValueTypeSpecificUpdates(const xercesc_3_0::DOMElement* left,
                                            const xercesc_3_0::DOMElement* right);

  private:
    enum class ValueType
    {
        Auto,
        Int,
        Double,
        String
    };

    struct MarkerNames
    {
        Nuv::UniString epsilonAttribute{u"nuv_eps"};
        Nuv::UniString typeAttribute{u"nuv_type"};
    };

    static ValueType ValueTypeNamed(std::u16string_view word);
    void SetMarkerName(Nuv::UniString MarkerNames::*which, const Nuv::UniString& attributeName);

    /// Shared by all clones, of which there is one for each pair of elements.
    std::shared_ptr<const MarkerNames> markers = std::make_shared<const MarkerNames>();
    ValueType currentValueType = ValueType::Auto;
};

} // namespace NuvXML
