/// @file
/// Value comparators decide whether two values, of text nodes or of attributes, are equal.
///
/// A comparator can be used again for other values, by one thread at a time. No value makes it throw: a text
/// that is not a number does not equal a number.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMText.hpp>

#include <string_view>

namespace NuvXML
{

class IXMLCompareOptions;

/// Compares two values. A subclass overrides IsEqual and reads the values through LeftValue and RightValue.
class NUVXMLUTILS_API XMLValueComparator
{
  private:
    /// Whether the two current values are equal.
    virtual bool IsEqual() const = 0;

  public:
    XMLValueComparator() = default;
    XMLValueComparator(const XMLValueComparator&) = default;
    XMLValueComparator& operator=(const XMLValueComparator&) = default;
    virtual ~XMLValueComparator() = default;

    /// Copies the strings. `options` must outlive the use of this comparator.
    bool CompareValues(const Nuv::UniString& left, const Nuv::UniString& right,
                       const IXMLCompareOptions& options);

    /// Compares the node values; a null node has the empty value. Nodes and options must outlive the use of
    /// this comparator.
    bool CompareValues(const xercesc_3_0::DOMText* left, const xercesc_3_0::DOMText* right,
                       const IXMLCompareOptions& options);

  protected:
    /// The current values, with all their white space. Valid until the next CompareValues.
    std::u16string_view LeftValue() const;
    std::u16string_view RightValue() const;

    /// Null before the first CompareValues.
    const IXMLCompareOptions* GetOptions() const { return optionsInForce; }

  private:
    const IXMLCompareOptions* optionsInForce = nullptr;
    const xercesc_3_0::DOMText* leftText = nullptr;
    const xercesc_3_0::DOMText* rightText = nullptr;
    Nuv::UniString leftString;
    Nuv::UniString rightString;
    bool isTextNodeMode = false;
};

/// Equal except for case (full Unicode case folding) and white space at both ends.
class NUVXMLUTILS_API XMLCompareString : public XMLValueComparator
{
  private:
    bool IsEqual() const override;
};

/// Equal except for white space at both ends.
class NUVXMLUTILS_API XMLCompareStringCaseSensitive : public XMLCompareString
{
  private:
    bool IsEqual() const override;
};

/// Equal when both are 32-bit signed integers (see Nuv::strtovalue) of the same value.
class NUVXMLUTILS_API XMLCompareInt : public XMLValueComparator
{
  private:
    bool IsEqual() const override;
};

/// Equal when both are numbers (see Nuv::strtovalue) whose absolute difference is less than the epsilon of
/// the options, or is 0 when the epsilon is 0. With a negative epsilon no pair is equal.
class NUVXMLUTILS_API XMLCompareDouble : public XMLValueComparator
{
  private:
    bool IsEqual() const override;
};

/// Compares like XMLCompareDouble when both values are numbers, else like XMLCompareString.
class NUVXMLUTILS_API XMLCompareAuto : public XMLValueComparator
{
  private:
    bool IsEqual() const override;
};

/// Compares like XMLCompareDouble when both values are numbers, else like XMLCompareStringCaseSensitive.
class NUVXMLUTILS_API XMLCompareAutoCaseSensitive : public XMLCompareAuto
{
  private:
    bool IsEqual() const override;
};

} // namespace NuvXML
