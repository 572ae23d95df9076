/// @file
/// What the tests of the comparison share: documents from text, comparing them, and what is expected of that.
#pragma once

#include "NuvXMLUtils/XMLCompare.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

namespace CompareTests
{

using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMNodeFilter;
using xercesc_3_0::DOMText;
using xercesc_3_0::DOMTreeWalker;

using Document = NuvXML::XercesPtr<DOMDocument>;
using Side = NuvXML::XMLCompareException::Side;
constexpr Side Left = NuvXML::XMLCompareException::Left;
constexpr Side Right = NuvXML::XMLCompareException::Right;

/// The document of a text in UTF-8, as the parser makes it without further settings.
inline Document Parse(std::string_view text)
{
    const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                "test");
    xercesc_3_0::XercesDOMParser parser;
    parser.setCreateEntityReferenceNodes(false);
    parser.parse(source);
    if (parser.getErrorCount() != 0)
        throw std::invalid_argument("not well formed: " + std::string(text));
    return Document(parser.adoptDocument());
}

inline Document EmptyDocument()
{
    return Document(xercesc_3_0::DOMImplementation::getImplementation()->createDocument());
}

/// Compares in strict order; the filter may be null.
inline void Compare(const Document& left, const Document& right,
                    const NuvXML::IXMLCompareOptions& options = NuvXML::StrictOrderAutoValueCompareOptions(),
                    DOMNodeFilter* filter = nullptr)
{
    NuvXML::XMLCompareStrictOrder comparator;
    NuvXML::DoXMLCompare(left.get(), right.get(), &comparator, filter, options);
}

inline void Compare(std::string_view left, std::string_view right,
                    const NuvXML::IXMLCompareOptions& options = NuvXML::StrictOrderAutoValueCompareOptions(),
                    DOMNodeFilter* filter = nullptr)
{
    Compare(Parse(left), Parse(right), options, filter);
}

/// The difference of two texts; fails the test when there is none or one of another class.
template <class Difference>
Difference
DifferenceOf(std::string_view left, std::string_view right,
             const NuvXML::IXMLCompareOptions& options = NuvXML::StrictOrderAutoValueCompareOptions(),
             DOMNodeFilter* filter = nullptr)
{
    try
    {
        Compare(left, right, options, filter);
    }
    catch (const Difference& difference)
    {
        if (typeid(difference) != typeid(Difference))
            throw std::logic_error("a difference of a derived class");
        return difference;
    }
    throw std::logic_error("no difference");
}

/// The text of the exception for two texts that differ.
template <class Difference>
Nuv::UniString TextOf(std::string_view left, std::string_view right)
{
    return DifferenceOf<Difference>(left, right).GetText();
}

inline void ExpectEqual(std::string_view left, std::string_view right)
{
    EXPECT_NO_THROW(Compare(left, right)) << left << " and " << right;
}

template <class Difference>
void ExpectDifferent(std::string_view left, std::string_view right)
{
    EXPECT_THROW(Compare(left, right), Difference) << left << " and " << right;
}

inline DOMTreeWalker* NewWalker(const Document& document, DOMNodeFilter* filter = nullptr)
{
    return document->createTreeWalker(document->getDocumentElement(), DOMNodeFilter::SHOW_ALL, filter, false);
}

} // namespace CompareTests
