#include "NuvXMLUtils/NodeLocations.hpp"

#include <algorithm>
#include <utility>

NodeLocations::NodeLocations() = default;

NodeLocations::NodeLocations(NodeLocations&& other) noexcept { *this = std::move(other); }

NodeLocations& NodeLocations::operator=(NodeLocations&& other) noexcept
{
    if (this == &other)
        return *this;
    Clear();
    first = std::move(other.first);
    last = std::exchange(other.last, nullptr);
    usedInLast = other.usedInLast;
    other.usedInLast = BlockSize;
    return *this;
}

NodeLocations::~NodeLocations() { Clear(); }

/// Frees block by block: a chain that frees itself would recurse once a block.
void NodeLocations::Clear() noexcept
{
    while (first)
        first = std::move(first->next);
}

void NodeLocations::AddNew(const xercesc_3_0::DOMNode* node, unsigned int line)
{
    if (usedInLast == BlockSize)
    {
        std::unique_ptr<Block>& link = last ? last->next : first;
        link = std::make_unique<Block>();
        last = link.get();
        usedInLast = 0;
    }
    last->nodes[usedInLast] = node;
    last->locations[usedInLast].lineNumber = line;
    ++usedInLast;
}

const NodeLocationInfo* NodeLocations::Find(const xercesc_3_0::DOMNode* node) const
{
    for (const Block* block = first.get(); block; block = block->next.get())
    {
        const auto begin = block->nodes.begin();
        const auto end = block == last ? begin + usedInLast : block->nodes.end();
        if (const auto found = std::find(begin, end, node); found != end)
            return &block->locations[static_cast<size_t>(found - begin)];
    }
    return nullptr;
}
