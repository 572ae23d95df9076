#include "NuvXMLUtils/NodePlaces.hpp"

#include "NuvXMLUtils/TextView.hpp"

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMText;

namespace NuvXML
{
namespace
{

/// What a step of a path selects; siblings are counted among those of the same name.
std::u16string_view StepName(const DOMNode* node)
{
    switch (node->getNodeType())
    {
    case DOMNode::TEXT_NODE:
    case DOMNode::CDATA_SECTION_NODE:
        return u"text()";
    case DOMNode::COMMENT_NODE:
        return u"comment()";
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
        return u"processing-instruction()";
    default:
        return ViewOf(node->getNodeName());
    }
}

bool IsText(const DOMNode* node)
{
    return node->getNodeType() == DOMNode::TEXT_NODE || node->getNodeType() == DOMNode::CDATA_SECTION_NODE;
}

const DOMNode* ParentOf(const DOMNode* node)
{
    return node->getNodeType() == DOMNode::ATTRIBUTE_NODE
               ? static_cast<const DOMAttr*>(node)->getOwnerElement()
               : node->getParentNode();
}

unsigned int LineFeedsIn(std::u16string_view text)
{
    return static_cast<unsigned int>(std::count(text.begin(), text.end(), u'\n'));
}

std::u16string_view WithoutLeadingSpace(std::u16string_view text)
{
    return text.substr(std::min(text.find_first_not_of(u" \t\r\n"), text.size()));
}

/// How many characters two texts have in common at their beginnings.
size_t CommonLength(std::u16string_view left, std::u16string_view right)
{
    const auto mismatch = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    return static_cast<size_t>(mismatch.first - left.begin());
}

} // namespace

NodePlaces::NodePlaces(const NodeLocations* lines)
    : locations(lines)
{
}

NodePlaces::~NodePlaces() = default;

Nuv::UniString NodePlaces::PathOf(const DOMNode* node)
{
    if (!node)
        return {};
    std::vector<const DOMNode*> upwards;
    size_t length = 0;
    bool isCut = false;
    for (; node && !isCut && node->getNodeType() != DOMNode::DOCUMENT_NODE; node = ParentOf(node))
    {
        length += 1 + StepName(node).size();
        isCut = length > MaxPathLength && !upwards.empty();
        if (!isCut)
            upwards.push_back(node);
    }
    if (upwards.empty())
        return u"/";
    std::u16string path(isCut ? u"..." : u"");
    for (auto step = upwards.rbegin(); step != upwards.rend(); ++step)
    {
        const bool isAttribute = (*step)->getNodeType() == DOMNode::ATTRIBUTE_NODE;
        path.append(isAttribute ? u"/@" : u"/").append(StepName(*step));
        const unsigned int position = isAttribute ? 0 : PositionOf(*step);
        if (position != 0)
            path.append(u"[").append(Nuv::UniString::FromUTF8(std::to_string(position)).View()).append(u"]");
    }
    return Nuv::UniString(path);
}

/// 0 for a node that shares its name with no sibling.
unsigned int NodePlaces::PositionOf(const DOMNode* node)
{
    auto known = positionOfNode.find(node);
    if (known == positionOfNode.end())
    {
        NumberChildrenOf(node->getParentNode());
        known = positionOfNode.find(node);
    }
    return known == positionOfNode.end() ? 0 : known->second;
}

/// Lack of memory leaves some children without a number, none with a wrong one.
void NodePlaces::NumberChildrenOf(const DOMNode* parent)
{
    if (!parent)
        return;
    struct Group
    {
        unsigned int size = 0;
        unsigned int numbered = 0;
    };
    std::unordered_map<std::u16string_view, Group> groups;
    const auto forEachChild = [parent](auto action)
    {
        for (const DOMNode* child = parent->getFirstChild(); child; child = child->getNextSibling())
            if (child->getNodeType() != DOMNode::DOCUMENT_TYPE_NODE) // has the name of the document element
                action(child);
    };
    forEachChild([&](const DOMNode* child) { ++groups[StepName(child)].size; });
    forEachChild(
        [&](const DOMNode* child)
        {
            Group& group = groups[StepName(child)];
            positionOfNode.try_emplace(child, group.size == 1 ? 0 : ++group.numbered);
        });
}

const NodePlaces::RecordedLines* NodePlaces::Recorded(const DOMNode* node)
{
    if (locations && linesOfNode.empty())
    {
        decltype(linesOfNode) lines;
        for (const auto* block = locations->first.get(); block; block = block->next.get())
        {
            const size_t used = block == locations->last ? locations->usedInLast : NodeLocations::BlockSize;
            for (size_t i = 0; i < used; ++i)
            {
                const unsigned int line = block->locations[i].lineNumber;
                lines.try_emplace(block->nodes[i], RecordedLines{line, line}).first->second.last = line;
            }
        }
        linesOfNode = std::move(lines);
    }
    const auto found = linesOfNode.find(node);
    return found == linesOfNode.end() ? nullptr : &found->second;
}

unsigned int NodePlaces::LineOf(const DOMNode* node)
{
    if (node && IsText(node))
    {
        const std::u16string_view value = ViewOf(node->getNodeValue());
        return LineOf(static_cast<const DOMText*>(node), value.find_last_not_of(u" \t\r\n"));
    }
    for (; node; node = ParentOf(node))
        if (const RecordedLines* const lines = Recorded(node); lines && lines->first != 0)
            return lines->first;
    return 0;
}

unsigned int NodePlaces::LineOf(const DOMText* text, size_t offset)
{
    const RecordedLines* const lines = Recorded(text);
    if (!lines || lines->last == 0)
        return LineOf(ParentOf(text));
    const std::u16string_view value = ViewOf(text->getNodeValue());
    const unsigned int below = offset < value.size() ? LineFeedsIn(value.substr(offset)) : 0;
    return below < lines->last ? lines->last - below : 1;
}

unsigned int NodePlaces::LineOfDifference(const DOMNode* node, const DOMNode* otherNode)
{
    if (!node || !otherNode || !IsText(node) || !IsText(otherNode))
        return LineOf(node);
    const std::u16string_view value = ViewOf(node->getNodeValue());
    const std::u16string_view start = WithoutLeadingSpace(value);
    const size_t offset = value.size() - start.size() +
                          CommonLength(start, WithoutLeadingSpace(ViewOf(otherNode->getNodeValue())));
    return offset < value.size() ? LineOf(static_cast<const DOMText*>(node), offset) : LineOf(node);
}

} // namespace NuvXML
