/// @file
/// Compares two DOM trees side by side. This header gives the whole comparison engine.
///
/// A comparison returns when the trees are equal under its options and throws an XMLCompareException at the
/// first difference. It makes one pass over both trees and never copies them.
///
/// It has a stack of its own for the levels of the trees, which may be as deep as memory holds. It recurses
/// once for each node comparator that the options make of a class other than XMLCompareStrictOrder. A level
/// then takes up to 400 bytes of stack in an optimised build, so that 8 MB hold 20,000 levels, and up to
/// 1,500 bytes with the address sanitizer, 5,500 levels. What the operations of your own classes take comes
/// on top.
#pragma once

#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/SkipWhitespaceTextsCompareFilter.hpp"
#include "NuvXMLUtils/XMLCompareException.hpp"
#include "NuvXMLUtils/XMLCompareOptions.hpp"
#include "NuvXMLUtils/XMLNodeComparator.hpp"
#include "NuvXMLUtils/XMLValueComparator.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

namespace NuvXML
{

/// Compares two nodes and everything below them.
///
/// The tree walkers are made in the two documents, of which each keeps 48 bytes until it is released. So two
/// threads must not compare the same document at the same time, though neither changes what is in it.
///
/// @param left the root of the first tree; it has an owner document
/// @param right the root of the second tree; it has an owner document
/// @param comparator compares the roots, normally an XMLCompareStrictOrder; it remains the caller's
/// @param filter decides which nodes below the roots take part; null lets every node take part
/// @param options cloned, never changed
/// @throws an XMLCompareException at the first difference, and whatever the options throw
NUVXMLUTILS_API void DoXMLCompare(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right,
                                  XMLNodeComparator* comparator, xercesc_3_0::DOMNodeFilter* filter,
                                  const IXMLCompareOptions& options);

/// Compares the document elements of two documents in the same way.
/// @throws also NoElementsInDocumentException, for the left document first
NUVXMLUTILS_API void DoXMLCompare(const xercesc_3_0::DOMDocument* left, const xercesc_3_0::DOMDocument* right,
                                  XMLNodeComparator* comparator, xercesc_3_0::DOMNodeFilter* filter,
                                  const IXMLCompareOptions& options);

} // namespace NuvXML
