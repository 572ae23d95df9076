// Any bytes as a document, parsed with node locations: it is refused with a reason, or each node has a line,
// and lines never go back. A parser that has seen every input before gives the same as a new one.

#include "fuzz/Support.hpp"

#include "NuvXMLUtils/NodeLocations.hpp"

namespace
{

using namespace Fuzz;

struct Parsed
{
    NodeLocations lines;
    NodeLocationInfo errorLine;
    Nuv::UniString message;
    Document document;

    Parsed(ValidatingXMLParser& parser, std::string_view text)
        : document(parser.Parse(reinterpret_cast<const unsigned char*>(text.data()),
                                static_cast<unsigned int>(text.size()),
                                ValidatingXMLParser::LineInfoParser::Val_Auto, true, Nuv::UniString(u"input"),
                                &lines, &errorLine, &message))
    {
    }
};

bool HasLine(const DOMNode& node)
{
    return node.getNodeType() == DOMNode::ELEMENT_NODE || node.getNodeType() == DOMNode::TEXT_NODE ||
           node.getNodeType() == DOMNode::CDATA_SECTION_NODE || node.getNodeType() == DOMNode::COMMENT_NODE;
}

/// @param line of the node before, made that of the last node
void CheckLines(const DOMNode& node, const NodeLocations& lines, unsigned int& line)
{
    if (HasLine(node))
    {
        const NodeLocationInfo* const location = lines.Find(&node);
        Check(location && location->lineNumber >= line);
        line = location->lineNumber;
    }
    for (const DOMNode* child = node.getFirstChild(); child; child = child->getNextSibling())
        CheckLines(*child, lines, line);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static ValidatingXMLParser usedParser;
    ValidatingXMLParser newParser;
    const Parsed used(usedParser, TextOf(bytes, size));
    const Parsed parsed(newParser, TextOf(bytes, size));
    Check(used.message == parsed.message && used.errorLine.lineNumber == parsed.errorLine.lineNumber);
    Check(parsed.message.IsEmpty() == static_cast<bool>(parsed.document));
    Check(static_cast<bool>(used.document) == static_cast<bool>(parsed.document));
    if (!parsed.document)
        return 0;
    Check(TreeText(*used.document, Equality::Exact) == TreeText(*parsed.document, Equality::Exact));
    unsigned int line = 1;
    // The lines of an entity are counted from its own start.
    if (!parsed.document->getDoctype())
        CheckLines(*parsed.document, parsed.lines, line);
    Check(line <= size + 1);
    return 0;
}
