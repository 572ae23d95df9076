// The first line is a script, the rest a document that a DOMReader reads as the script says. Each letter is
// an operation, the digit behind it chooses the name that is looked for. What fails leaves the reader where
// it was and values as they were.

#include "fuzz/Support.hpp"

#include "NuvXMLUtils/NuvXMLDOMReader.hpp"

#include <iterator>
#include <memory>

namespace
{

using namespace Fuzz;
using Nuv::Success;
using NuvXML::DOMReader;

constexpr const char* Names[] = {nullptr, "a", "b", "c", "p:a", "\xC3\xA4"};

struct Position
{
    const DOMNode* node;
    Nuv::XMLTokenType type;

    explicit Position(DOMReader& reader)
        : node(reader.GetActualNode())
        , type(reader.GetTokenType())
    {
    }
    bool operator==(const Position&) const = default;
};

/// Whether an element `name` is a child of the actual node or, on an end token, of its parent.
bool HasElement(const Position& position, const char* name)
{
    const Nuv::UniString wanted(name);
    const DOMNode* const parent =
        position.type == Nuv::XMLStartElement ? position.node : position.node->getParentNode();
    const DOMNode* child = parent ? parent->getFirstChild() : nullptr;
    while (child && (child->getNodeType() != DOMNode::ELEMENT_NODE ||
                     (name && Nuv::UniString(child->getNodeName()) != wanted)))
        child = child->getNextSibling();
    return child;
}

void ReadStart(DOMReader& reader, const char* name)
{
    const Position before(reader);
    const bool hasElement = HasElement(before, name);
    Check((reader.ReadStartElement(name) == Success) == hasElement);
    Check(hasElement ? reader.GetTokenType() == Nuv::XMLStartElement : Position(reader) == before);
}

void ReadEnd(DOMReader& reader, const char* name)
{
    const Position before(reader);
    if (reader.ReadEndElement(name) == Success)
        Check(reader.GetTokenType() == Nuv::XMLEndElement);
    else
        Check(Position(reader) == before);
}

/// The next token is the one that was told before.
void ReadToken(DOMReader& reader, const char*)
{
    const Position before(reader);
    Nuv::UniString expectedName;
    const Nuv::XMLTokenType expected = reader.GetNextTokenTypeName(expectedName);
    Check(Position(reader) == before);
    Nuv::UniString name;
    if (reader.ReadToken(0) == Success)
        Check(reader.GetTokenTypeName(name) == expected && name == expectedName);
    else
        Check(expected == Nuv::XMLNoToken && Position(reader) == before);
}

template <Nuv::XMLTokenType Type>
void SkipTo(DOMReader& reader, const char*)
{
    if (reader.ReadToken(Type) == Success)
        Check(reader.GetTokenType() == Type);
}

template <class T>
void ReadNumber(DOMReader& reader, const char* name)
{
    constexpr T Untouched = 99;
    const Position before(reader);
    T value = Untouched;
    Check(reader.ReadXMLAttr(name ? name : "a", value) == Success || value == Untouched);
    Check(Position(reader) == before);
    value = Untouched;
    const bool hasElement = HasElement(before, name);
    Check(reader.ReadXML(name, value) == Success || value == Untouched);
    Check(hasElement || Position(reader) == before);
}

void ReadText(DOMReader& reader, const char* name)
{
    const Position before(reader);
    Nuv::UniString text(u"untouched");
    if (reader.ReadXMLCDATAString(text) != Success && reader.ReadXMLAttr(name ? name : "a", text) != Success)
        Check(text == Nuv::UniString(u"untouched"));
    Check(Position(reader) == before);
    reader.ReadXML(name, text);
}

/// Reads into buffers of exactly their size, so that the sanitizer sees what is written behind them.
template <unsigned int Size>
void ReadBytes(DOMReader& reader, const char* name)
{
    const std::unique_ptr<char[]> buffer(new char[Size]);
    reader.ReadXMLAttr(name ? name : "a", buffer.get(), Size);
    reader.ReadXMLCDATAString(buffer.get(), Size);
    reader.ReadXMLCDATAHexToBin(buffer.get(), Size);
    reader.ReadXML(name, buffer.get(), Size);
    char* bytes = nullptr;
    reader.ReadXMLCDATAHexToBin(&bytes);
    delete[] bytes;
}

void ReadOthers(DOMReader& reader, const char* name)
{
    Nuv::Guid guid;
    Nuv::ClassVersion version;
    IO::Location location;
    bool flag = false;
    reader.ReadXMLVersionAttr(version);
    reader.ReadXMLAttr(name ? name : "a", guid);
    reader.ReadXMLAttr(name ? name : "a", flag);
    Check(reader.GetLocation(location));
    reader.ReadXML(name, guid);
    reader.ReadXML(name, flag);
}

struct Operation
{
    char letter;
    void (*run)(DOMReader& reader, const char* name);
};

constexpr Operation Operations[] = {{'s', ReadStart},
                                    {'e', ReadEnd},
                                    {'t', ReadToken},
                                    {'S', SkipTo<Nuv::XMLStartElement>},
                                    {'E', SkipTo<Nuv::XMLEndElement>},
                                    {'x', ReadText},
                                    {'o', ReadOthers},
                                    {'0', ReadBytes<0>},
                                    {'1', ReadBytes<1>},
                                    {'9', ReadBytes<9>},
                                    {'i', ReadNumber<int>},
                                    {'h', ReadNumber<short>},
                                    {'u', ReadNumber<unsigned long long>},
                                    {'l', ReadNumber<long>},
                                    {'d', ReadNumber<double>},
                                    {'f', ReadNumber<float>},
                                    {'c', ReadNumber<char>}};

void Run(DOMReader& reader, Script script)
{
    while (!script.IsAtEnd())
    {
        const char letter = script.Next();
        const auto* const operation = std::ranges::find(Operations, letter, &Operation::letter);
        if (operation != std::end(Operations))
            operation->run(reader, script.Choose(Names));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const Parts parts = Divide(TextOf(bytes, size));
    try
    {
        DOMReader reader(reinterpret_cast<const unsigned char*>(parts.document.data()),
                         static_cast<unsigned int>(parts.document.size()));
        Run(reader, Script(parts.script));
    }
    catch (const NuvXML::DOMReaderException&)
    {
        // It is not well-formed.
    }
    return 0;
}
