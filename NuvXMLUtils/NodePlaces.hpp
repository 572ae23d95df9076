/// @file
/// Where a node stands: its path in the document, with positions, and its line in the source text.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/NodeLocations.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMText.hpp>

#include <cstddef>
#include <unordered_map>

namespace NuvXML
{

/// Answers for the nodes of one document, which must not change meanwhile. It remembers what it has counted,
/// so that asking for all nodes of a document takes time in proportion to its size. For one thread.
class NUVXMLUTILS_API NodePlaces
{
  public:
    /// @param lines what the parse of the document has filled, and remains alive; null when no lines are
    /// known
    explicit NodePlaces(const NodeLocations* lines = nullptr);
    NodePlaces(const NodePlaces&) = delete;
    NodePlaces& operator=(const NodePlaces&) = delete;
    ~NodePlaces();

    /// How many characters a path may have, `/` but not positions included, before its first steps are left
    /// out; the last step never is. So the paths of a document are in proportion to the document.
    static constexpr size_t MaxPathLength = 300;

    /// The path of a node as an XPath expression that selects it, such as
    /// `/Project/Storey[2]/Wall[7]/@height` or `/Project/Name/text()`. A step has a position when siblings
    /// share its name. Names are those of the document, with prefixes: the expression does not select the
    /// node where a default namespace applies, nor below an entity reference. `/` for a document, empty for
    /// null. What is longer than MaxPathLength is no expression any more, but `...` and the last steps.
    Nuv::UniString PathOf(const xercesc_3_0::DOMNode* node);

    /// The line, counted from 1, on which a start tag ends, or on which text ends but for white space; for an
    /// attribute that of its element. A node whose line was not recorded, such as a processing instruction,
    /// has that of its parent. 0 when nothing is known.
    unsigned int LineOf(const xercesc_3_0::DOMNode* node);

    /// The line of a character of a text. It may be wrong before an entity reference whose replacement has
    /// line ends, in text that holds line feeds as references, and in text that touches a comment or an
    /// instruction of several lines that has no node.
    /// @param offset of the character in the node's value
    unsigned int LineOf(const xercesc_3_0::DOMText* text, size_t offset);

    /// The line on which `node` differs from the node that it is compared with: LineOf the node, or where
    /// both are text that of their first difference, white space at their beginnings apart.
    unsigned int LineOfDifference(const xercesc_3_0::DOMNode* node, const xercesc_3_0::DOMNode* otherNode);

  private:
    /// Text that is parsed in pieces is recorded after each of them.
    struct RecordedLines
    {
        unsigned int first;
        unsigned int last;
    };

    unsigned int PositionOf(const xercesc_3_0::DOMNode* node);
    void NumberChildrenOf(const xercesc_3_0::DOMNode* parent);
    const RecordedLines* Recorded(const xercesc_3_0::DOMNode* node);

    const NodeLocations* locations;
    std::unordered_map<const xercesc_3_0::DOMNode*, RecordedLines> linesOfNode;
    std::unordered_map<const xercesc_3_0::DOMNode*, unsigned int> positionOfNode;
};

} // namespace NuvXML
