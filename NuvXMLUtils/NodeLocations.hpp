/// @file
/// The source line of every node of a parsed document.
#pragma once

#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMNode.hpp>

#include <array>
#include <cstddef>
#include <memory>

namespace NuvXML
{
class NodePlaces;
}

/// Where something stands in the source text.
struct NodeLocationInfo
{
    /// Counted from 1; 0 when it is not known.
    unsigned int lineNumber = 0;
};

/// Remembers the line of each node. A parse fills it (ParseXMLDoc, ValidatingXMLParser); whoever wants the
/// lines in the messages of the DOM helper functions attaches it to the document as user data under the key
/// "NodeLocations".
///
/// Entries are only ever added. Nodes are not owned and never looked at: they are compared by identity. Once
/// it is filled, a store may be read by several threads.
class NUVXMLUTILS_API NodeLocations
{
  public:
    NodeLocations();
    NodeLocations(const NodeLocations&) = delete;
    NodeLocations& operator=(const NodeLocations&) = delete;

    /// Takes the entries over, which stay where they are, and leaves `other` empty.
    NodeLocations(NodeLocations&& other) noexcept;
    NodeLocations& operator=(NodeLocations&& other) noexcept;

    ~NodeLocations();

    /// Adds an entry, also when there is one for the node.
    /// @throws Nuv::OutOfMemoryException, with the store as it was
    void AddNew(const xercesc_3_0::DOMNode* node, unsigned int line);

    /// The first entry that was added for the node, or null. It stays where it is while the store lives.
    /// Looks at the entries one after the other.
    const NodeLocationInfo* Find(const xercesc_3_0::DOMNode* node) const;

  private:
    friend class NuvXML::NodePlaces;

    static constexpr size_t BlockSize = 255;

    struct Block
    {
        std::array<NodeLocationInfo, BlockSize> locations;
        std::array<const xercesc_3_0::DOMNode*, BlockSize> nodes;
        std::unique_ptr<Block> next;
    };

    void Clear() noexcept;

    std::unique_ptr<Block> first;
    Block* last = nullptr;
    size_t usedInLast = BlockSize;
};
