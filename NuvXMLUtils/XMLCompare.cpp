#include "NuvXMLUtils/XMLCompare.hpp"

#include "NuvXMLUtils/TreeComparison.hpp"

using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMNodeFilter;

namespace NuvXML
{

void DoXMLCompare(const DOMDocument* left, const DOMDocument* right, XMLNodeComparator* comparator,
                  DOMNodeFilter* filter, const IXMLCompareOptions& options)
{
    TreeComparison::Compare(left, right, comparator, filter, options, nullptr);
}

void DoXMLCompare(const DOMNode* left, const DOMNode* right, XMLNodeComparator* comparator,
                  DOMNodeFilter* filter, const IXMLCompareOptions& options)
{
    TreeComparison::Compare(left, right, comparator, filter, options, nullptr);
}

} // namespace NuvXML
