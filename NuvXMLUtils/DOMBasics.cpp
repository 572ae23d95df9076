#include "NuvXMLUtils/DOMBasics.hpp"

#include "NuvXMLUtils/DOMHelperSupport.hpp"

#include <cerrno>
#include <cstdlib>
#include <limits>

namespace NuvXMLUtils
{
namespace
{

using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;

DOMElement* AsElement(DOMNode* node)
{
    return node && node->getNodeType() == DOMNode::ELEMENT_NODE ? static_cast<DOMElement*>(node) : nullptr;
}

bool IsText(const DOMNode* node) { return node->getNodeType() == DOMNode::TEXT_NODE; }

DOMElement* FirstElementFrom(DOMNode* node)
{
    while (node && !AsElement(node))
        node = node->getNextSibling();
    return AsElement(node);
}

DOMElement* LastElementUpTo(DOMNode* node)
{
    while (node && !AsElement(node))
        node = node->getPreviousSibling();
    return AsElement(node);
}

DOMNode* SkipOneTextNode(DOMNode* node) { return node && IsText(node) ? node->getNextSibling() : node; }

template <class Unit>
bool IsTabOrSpace(Unit unit)
{
    return unit == ' ' || unit == '\t';
}

template <class Unit>
bool IsWhiteSpace(Unit unit)
{
    return IsTabOrSpace(unit) || unit == '\n' || unit == '\r';
}

template <class Unit>
void Cut(Unit*& s, bool (*isBlank)(Unit))
{
    while (isBlank(*s))
        ++s;
    Unit* const terminator = EndOf(s);
    Unit* end = terminator;
    while (end != s && isBlank(end[-1]))
        --end;
    if (end != terminator)
        *end = 0;
}

template <class Unit>
bool IsQuote(Unit unit)
{
    return unit == '"' || unit == '\'' || unit == '`';
}

template <class Unit>
Unit* Unquoted(Unit* s)
{
    Unit* const end = EndOf(s);
    if (end - s < 2 || !IsQuote(*s) || end[-1] != *s)
        throw ConvException(u"String value error", nullptr);
    end[-1] = 0;
    return s + 1;
}

Nuv::UniChar QuoteFor(std::u16string_view text)
{
    for (const Nuv::UniChar quote : {u'"', u'\'', u'`'})
        if (text.find(quote) == std::u16string_view::npos)
            return quote;
    return u'"';
}

} // namespace

ConvException::ConvException(const Nuv::UniString& msg, const NodeLocationInfo* loc)
    : message(msg)
    , line(loc ? loc->lineNumber : 0)
{
}

ConvException::ConvException(const char* msg, const NodeLocationInfo* loc)
    : ConvException(Nuv::UniString(msg), loc)
{
}

ConvException::ConvException(const Nuv::UniString& msg, const DOMNode* node)
    : message(msg)
    , line(LineOf(node))
{
}

ConvException::ConvException(const Nuv::UniString& msg, std::nullptr_t)
    : message(msg)
{
}

ConvException::~ConvException() = default;

const ConvException& ConvException::StoreErrLoc(const DOMNode* node)
{
    if (line == 0)
        line = LineOf(node);
    return *this;
}

DOMDocumentSentry::~DOMDocumentSentry()
{
    if (document)
        document->release();
}

DOMElement* GetFirstElementChild(const DOMElement* parent)
{
    return FirstElementFrom(parent->getFirstChild());
}

DOMElement* GetLastElementChild(const DOMElement* parent) { return LastElementUpTo(parent->getLastChild()); }

DOMElement* GetNextElementSibling(const DOMElement* elem) { return FirstElementFrom(elem->getNextSibling()); }

DOMElement* GetPreviousElementSibling(const DOMElement* elem)
{
    return LastElementUpTo(elem->getPreviousSibling());
}

unsigned int GetChildElementCount(const DOMElement* parent)
{
    unsigned int count = 0;
    for (const DOMElement* child = GetFirstElementChild(parent); child; child = GetNextElementSibling(child))
        ++count;
    return count;
}

void GetFirstChild(const DOMNode* node, DOMNode*& out) { out = SkipOneTextNode(node->getFirstChild()); }

void GetFirstChild(const DOMNode* node, DOMElement*& out)
{
    out = AsElement(SkipOneTextNode(node->getFirstChild()));
}

void GetNextSibling(const DOMNode* node, DOMNode*& out) { out = SkipOneTextNode(node->getNextSibling()); }

void GetNextSibling(const DOMNode* node, DOMElement*& out)
{
    out = AsElement(SkipOneTextNode(node->getNextSibling()));
}

void SkipTextNodes(DOMNode*& node)
{
    while (node && IsText(node))
        node = node->getNextSibling();
}

void SkipTextNodes(DOMElement*& node) { node = FirstElementFrom(node); }

DOMElement* GetNextTag(DOMNode*& cursor)
{
    for (; cursor; cursor = cursor->getNextSibling())
    {
        if (DOMElement* const element = AsElement(cursor))
        {
            cursor = cursor->getNextSibling();
            return element;
        }
        if (!IsText(cursor) && cursor->getNodeType() != DOMNode::COMMENT_NODE)
            throw ConvException(u"Unexpected XML node", cursor);
    }
    return nullptr;
}

bool IsNodeOk(const DOMNode* node, const Nuv::UniString& name)
{
    if (!node || node->getNodeType() != DOMNode::ELEMENT_NODE)
        return false;
    const XMLCh* const nodeName = node->getNodeName();
    return (nodeName ? std::u16string_view(nodeName) : std::u16string_view()) == name.View();
}

bool IsNodeOk(const DOMNode* node, const Nuv::String& name) { return IsNodeOk(node, Decoded(name)); }

Nuv::UniString StringToUnicode(const char* text)
{
    try
    {
        const int count = CHANSI2Unicode(text, -1, nullptr, 0, Nuv::CC_Default);
        std::u16string units(static_cast<size_t>(count), u'\0');
        if (CHANSI2Unicode(text, -1, units.data(), count, Nuv::CC_Default) <= 0)
            throw MakeDOMException(u"Failed to translate string to unicode");
        return Nuv::UniString(units.c_str());
    }
    catch (const std::bad_alloc&)
    {
        throw DOMMemoryError();
    }
}

char* UnicodeToString(Nuv::UniString text, bool flag)
{
    std::unique_ptr<char[]> bytes = OrMemoryError([&] { return Encoded(text.View(), flag); });
    if (!bytes)
        throw ConvException(u"Failed to transcode string.", nullptr);
    return bytes.release();
}

void CutTabSpace(char*& s) { Cut(s, IsTabOrSpace<char>); }

void CutWhSpace(char*& s) { Cut(s, IsWhiteSpace<char>); }

void CutWhSpaceU(unsigned short*& s) { Cut(s, IsWhiteSpace<unsigned short>); }

char* GetStringValue(char* s) { return Unquoted(s); }

unsigned short* GetStringValueU(unsigned short* s) { return Unquoted(s); }

void MakeItTAMString(Nuv::UniString& s)
{
    const Nuv::UniString quote(std::u16string(1, QuoteFor(s.View())));
    s = quote + s + quote;
}

void CorrectCDATA(Nuv::UniString& s)
{
    s.ReplaceAll(u"\r\n", u"\n");
    s.ReplaceAll(u"\r", u"\n");
    s.ReplaceAll(u"]]", u"]] ");
}

void ConvertCDATA(Nuv::UniString& s) { s.ReplaceAll(u"]] ", u"]]"); }

unsigned int GetIntNum(const char* s)
{
    if (!*s)
        throw ConvException();
    constexpr unsigned int Limit = std::numeric_limits<unsigned int>::max();
    unsigned int value = 0;
    for (; *s; ++s)
    {
        if (*s < '0' || *s > '9')
            throw ConvException(u"Too many data", nullptr);
        const auto digit = static_cast<unsigned int>(*s - '0');
        if (value > (Limit - digit) / 10)
            throw ConvException(u"Integer Overflow", nullptr);
        value = value * 10 + digit;
    }
    return value;
}

int GetSignedLong(const char* s)
{
    const bool negative = *s == '-';
    const unsigned int magnitude = GetIntNum(*s == '+' || negative ? s + 1 : s);
    constexpr unsigned int Limit = std::numeric_limits<int>::max();
    if (negative && magnitude > Limit + 1)
        throw ConvException(u"Integer Underflow", nullptr);
    if (!negative && magnitude > Limit)
        throw ConvException(u"Integer Overflow", nullptr);
    return static_cast<int>(negative ? 0 - magnitude : magnitude);
}

unsigned int GetULong(const char* s) { return GetIntNum(*s == '+' ? s + 1 : s); }

double GetDouble(const char* s)
{
    char* end = nullptr;
    errno = 0;
    const double value = strtod_l(s, &end, CLocale());
    if (end == s || (value != 0.0 && errno == ERANGE))
        throw ConvException(u"Floating point number error", nullptr);
    if (*end)
        throw ConvException(u"Too many data", nullptr);
    return value == 0.0 ? 0.0 : value;
}

} // namespace NuvXMLUtils
