/// @file
/// Compares two DOM trees side by side. This header gives the whole comparison engine.
///
/// A comparison returns when the trees are equal under its options and throws an XMLCompareException at the
/// first difference. It makes one pass over both trees and never copies them.
///
/// It recurses once for each level of the trees. A level takes about 210 bytes of stack in an optimised
/// build, so that 8 MB hold 35,000 levels, and about 800 bytes with the address sanitizer, 10,000 levels.
/// What the operations of a caller's own options take comes once on top.
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
