#include "NuvXMLUtils/ElementReaders.hpp"

#include "NuvXMLUtils/DOMHelperSupport.hpp"

#include <cstdlib>
#include <limits>

namespace NuvXMLUtils
{
namespace
{

using xercesc_3_0::DOMNode;

/// The text node to read, or null where `node` does not match.
const DOMNode* MatchingText(const DOMNode* node, const Nuv::UniString& name)
{
    const DOMNode* const child = IsNodeOk(node, name) ? node->getFirstChild() : nullptr;
    return child && child->getNodeType() == DOMNode::TEXT_NODE ? child : nullptr;
}

/// Null when memory runs out, too.
std::unique_ptr<char[]> EncodedOrNull(std::u16string_view text)
{
    try
    {
        return text.empty() ? std::make_unique<char[]>(1) : Encoded(text, true);
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

/// What `strtol` reads in the "C" locale, saturated at 64 bits.
long long LeadingInteger(const std::string& text) { return strtoll_l(text.c_str(), nullptr, 10, CLocale()); }

/// The result of `atol` where `long` has 32 bits.
int ToLong(const std::string& text)
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<long long>(LeadingInteger(text), Limits::min(), Limits::max()));
}

/// The result of `strtoul` where `long` has 32 bits.
unsigned int ToULong(const std::string& text)
{
    constexpr unsigned int Max = std::numeric_limits<unsigned int>::max();
    const long long value = LeadingInteger(text);
    const bool inRange = value <= static_cast<long long>(Max) && value >= -static_cast<long long>(Max);
    return inRange ? static_cast<unsigned int>(value) : Max;
}

/// Digits are parsed in UTF-8, where they are the same in every local code page.
template <class Number, class Parse>
bool ReadNumber(const DOMNode* node, const Nuv::UniString& name, Number& v, Parse parse)
{
    Nuv::UniString text;
    const bool isRead = ReadTextNode(node, name, text);
    v = static_cast<Number>(parse(text.ToUTF8()));
    return isRead;
}

} // namespace

bool ReadTextNode(const DOMNode* node, const Nuv::UniString& name, Nuv::UniString& value)
{
    const DOMNode* const textNode = MatchingText(node, name);
    if (!textNode)
        return true;
    const XMLCh* const text = textNode->getNodeValue();
    const std::unique_ptr<char[]> bytes =
        EncodedOrNull(text ? std::u16string_view(text) : std::u16string_view());
    if (!bytes)
        return false;
    value = bytes.get();
    return true;
}

bool ReadTextNode(const DOMNode* node, const Nuv::String& name, Nuv::String& value)
{
    Nuv::UniString text;
    const bool isRead = ReadTextNode(node, Decoded(name), text);
    value = text.ToString();
    return isRead;
}

bool ReadShortNode(const DOMNode* node, const Nuv::UniString& name, short& v)
{
    return ReadNumber(node, name, v, ToLong);
}

bool ReadShortNode(const DOMNode* node, const Nuv::String& name, short& v)
{
    return ReadShortNode(node, Decoded(name), v);
}

bool ReadUShortNode(const DOMNode* node, const Nuv::UniString& name, unsigned short& v)
{
    return ReadNumber(node, name, v, ToULong);
}

bool ReadUShortNode(const DOMNode* node, const Nuv::String& name, unsigned short& v)
{
    return ReadUShortNode(node, Decoded(name), v);
}

bool ReadLongNode(const DOMNode* node, const Nuv::UniString& name, int& v)
{
    return ReadNumber(node, name, v, ToLong);
}

bool ReadLongNode(const DOMNode* node, const Nuv::String& name, int& v)
{
    return ReadLongNode(node, Decoded(name), v);
}

bool ReadULongNode(const DOMNode* node, const Nuv::UniString& name, unsigned int& v)
{
    return ReadNumber(node, name, v, ToULong);
}

bool ReadULongNode(const DOMNode* node, const Nuv::String& name, unsigned int& v)
{
    return ReadULongNode(node, Decoded(name), v);
}

bool ReadBooleanNode(const DOMNode* node, const Nuv::UniString& name, bool& v)
{
    short number = 0;
    const bool isRead = ReadShortNode(node, name, number);
    v = number == 1;
    return isRead;
}

bool ReadBooleanNode(const DOMNode* node, const Nuv::String& name, bool& v)
{
    return ReadBooleanNode(node, Decoded(name), v);
}

} // namespace NuvXMLUtils
