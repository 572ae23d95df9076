#pragma once

#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMNodeFilter.hpp>

namespace NuvXML
{

/// Lets a comparison see elements and the text nodes that hold something besides white space (the Unicode
/// property); everything else is hidden, CDATA sections too. It has no state and may serve many walkers.
class NUVXMLUTILS_API SkipWhitespaceTextsCompareFilter : public xercesc_3_0::DOMNodeFilter
{
  public:
    FilterAction acceptNode(const xercesc_3_0::DOMNode* node) const override;
};

} // namespace NuvXML
