/// @file
/// All differences between two DOM trees, each with the nodes at which it is.
#pragma once

#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/XMLCompareException.hpp"
#include "NuvXMLUtils/XMLCompareOptions.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

#include <functional>

namespace NuvXML
{

/// One difference, valid during the call that hands it over; the nodes live as long as their documents.
struct XMLDifference
{
    /// What DoXMLCompare would throw.
    const XMLCompareException& exception;

    /// The nodes that differ. An attribute that one side lacks is given with the element that lacks it; where
    /// one element has more children, its first child too many is given with the other element. Null for a
    /// document without a document element, and where the options report an attribute that a node does not
    /// have.
    const xercesc_3_0::DOMNode* left;
    const xercesc_3_0::DOMNode* right;
};

/// Takes a difference and returns whether to look for more.
using XMLDifferenceHandler = std::function<bool(const XMLDifference&)>;

/// Passes all differences between two documents to `handler`, in document order. The first is the one that
/// DoXMLCompare throws with an XMLCompareStrictOrder.
///
/// Children are paired by position, whatever node comparators the options make; of two elements whose names
/// differ the contents are not compared. A difference that the options throw is given with the nodes that
/// were compared, or with the attributes that it names, and ends the comparison of these nodes.
///
/// It makes one pass over both trees, as DoXMLCompare, and needs no stack for their levels.
/// @param filter as of DoXMLCompare
/// @param options cloned, never changed; value comparators are given such a clone
/// @throws whatever the handler throws, and what the options throw except for an XMLCompareException
NUVXMLUTILS_API void FindDifferences(const xercesc_3_0::DOMDocument* left,
                                     const xercesc_3_0::DOMDocument* right,
                                     xercesc_3_0::DOMNodeFilter* filter, const IXMLCompareOptions& options,
                                     const XMLDifferenceHandler& handler);

} // namespace NuvXML
