#include "NuvXMLUtils/TagBuilders.hpp"

#include "NuvXMLUtils/DOMHelperSupport.hpp"
#include "NuvXMLUtils/ElementWriters.hpp"

#include <xercesc/dom/DOMCDATASection.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMText.hpp>

#include <charconv>
#include <optional>

namespace NuvXMLUtils
{
namespace
{

using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;

DOMElement* NewElement(DOMElement* parent, const Nuv::UniString& name)
{
    return Checked(parent->getOwnerDocument()->createElement(name.ToUTF16()));
}

DOMNode* NewText(DOMElement* parent, const Nuv::UniString& text)
{
    return Checked(parent->getOwnerDocument()->createTextNode(text.ToUTF16()));
}

DOMNode* NewQuotedCDATA(DOMElement* parent, Nuv::UniString text)
{
    MakeItTAMString(text);
    CorrectCDATA(text);
    return Checked(parent->getOwnerDocument()->createCDATASection(text.ToUTF16()));
}

DOMElement* AppendLine(DOMElement* parent, DOMElement* element, int tabs)
{
    Tabs(parent, tabs);
    parent->appendChild(element);
    NewLine(parent);
    return element;
}

Nuv::UniString UnitsOf(const unsigned short* text)
{
    return FromUnits(text, static_cast<size_t>(EndOf(text) - text));
}

Nuv::UniString UnitsOf(const char16_t* text) { return text; }

Nuv::UniString UpToZero(const Nuv::UniString& text) { return text.ToUTF16(); }

Nuv::UniString FirstUnits(const unsigned short* text, size_t length)
{
    return UpToZero(FromUnits(text, length));
}

Nuv::UniString FirstUnits(const char16_t* text, size_t length) { return UpToZero({text, length}); }

template <class Unit>
std::optional<Nuv::UniString> ContentOf(const char* value, const Unit* uvalue)
{
    if (value)
        return Nuv::UniString(value);
    if (uvalue)
        return UnitsOf(uvalue);
    return std::nullopt;
}

DOMElement* AppendTag(DOMElement* parent, const char* name, const std::optional<Nuv::UniString>& content,
                      int tabs, bool quoted)
{
    DOMElement* const element = NewElement(parent, Nuv::UniString(name));
    if (quoted)
        element->appendChild(NewQuotedCDATA(parent, content.value_or(Nuv::UniString())));
    else if (content)
        element->appendChild(NewText(parent, *content));
    return AppendLine(parent, element, tabs);
}

template <class Unit>
DOMElement* NewTagOfUnits(DOMElement* parent, const char* name, const Unit* value, int length, int tabs)
{
    std::optional<Nuv::UniString> content;
    try
    {
        if (value)
            content = FirstUnits(value, static_cast<size_t>(std::max(length, 0)));
    }
    catch (const std::bad_alloc&)
    {
        throw DOMMemoryError();
    }
    return AppendTag(parent, name, content, tabs, true);
}

/// Twelve significant digits. The exponent has at least three digits and zero has no sign, so that every
/// platform writes the same.
Nuv::UniString TextOfDouble(double value)
{
    char digits[32];
    const char* const end =
        std::to_chars(digits, std::end(digits), value, std::chars_format::general, 12).ptr;
    std::u16string text(static_cast<const char*>(digits), end);
    if (const size_t exponent = text.find(u'e');
        exponent != std::u16string::npos && text.size() - exponent < 5)
        text.insert(exponent + 2, 1, u'0');
    return text == u"-0" ? std::u16string_view(u"0") : std::u16string_view(text);
}

const XMLCh* BooleanText(bool value) { return value ? u"true" : u"false"; }

const XMLCh* LegacyBooleanText(bool value) { return value ? u"yes" : u"no"; }

void SetAttribute(DOMElement* elem, const char* name, const Nuv::UniString& value)
{
    elem->setAttribute(Nuv::UniString(name).ToUTF16(), value.ToUTF16());
}

/// No conversion gives an empty text, so that an attribute that is missing is told by its parser.
std::unique_ptr<char[]> AttributeText(const DOMElement* elem, const Nuv::UniString& name)
{
    const Nuv::UniString value(elem->getAttribute(name.ToUTF16()));
    return std::unique_ptr<char[]>(value.IsEmpty() ? new char[1]{} : UnicodeToString(value, false));
}

template <class Parse>
auto GetAttribute(const DOMElement* elem, const Nuv::UniString& name, Parse parse)
{
    const std::unique_ptr<char[]> text = AttributeText(elem, name);
    try
    {
        char* trimmed = text.get();
        CutTabSpace(trimmed);
        return parse(trimmed);
    }
    catch (ConvException& exception)
    {
        AddContext(exception, u"Attribute: '" + name + u"' (missing or incorrect); ", elem);
        throw;
    }
}

} // namespace

DOMElement* NewTag(DOMElement* parent, const char* name, const char* value, int tabs, bool quoted,
                   const unsigned short* uvalue)
{
    return AppendTag(parent, name, ContentOf(value, uvalue), tabs, quoted);
}

template <std::same_as<char16_t> Unit>
DOMElement* NewTag(DOMElement* parent, const char* name, const char* value, int tabs, bool quoted,
                   const Unit* uvalue)
{
    return AppendTag(parent, name, ContentOf(value, uvalue), tabs, quoted);
}

template NUVXMLUTILS_API DOMElement* NewTag(DOMElement*, const char*, const char*, int, bool,
                                            const char16_t*);

DOMElement* NewTextTag(DOMElement* parent, const char* name, const char* value, int tabs)
{
    return NewTag(parent, name, value, tabs, false, nullptr);
}

DOMElement* NewTextTag(DOMElement* parent, const Nuv::UniString& name, const Nuv::UniString& value, int tabs)
{
    DOMElement* const element = NewElement(parent, name);
    element->appendChild(NewText(parent, value));
    return AppendLine(parent, element, tabs);
}

DOMElement* NewStringTag(DOMElement* parent, const char* name, const char* value, int tabs)
{
    return NewTag(parent, name, value, tabs, true, nullptr);
}

DOMElement* NewStringTag(DOMElement* parent, const char* name, const unsigned short* value, int tabs)
{
    return NewTag(parent, name, nullptr, tabs, true, value);
}

DOMElement* NewStringTag(DOMElement* parent, const char* name, const char16_t* value, int tabs)
{
    return NewTag(parent, name, nullptr, tabs, true, value);
}

DOMElement* NewStringTag(DOMElement* parent, const char* name, std::nullptr_t, int tabs)
{
    return NewTag(parent, name, nullptr, tabs, true, nullptr);
}

DOMElement* NewStringWLenTag(DOMElement* parent, const char* name, const unsigned short* value, int length,
                             int tabs)
{
    return NewTagOfUnits(parent, name, value, length, tabs);
}

template <std::same_as<char16_t> Unit>
DOMElement* NewStringWLenTag(DOMElement* parent, const char* name, const Unit* value, int length, int tabs)
{
    return NewTagOfUnits(parent, name, value, length, tabs);
}

template NUVXMLUTILS_API DOMElement* NewStringWLenTag(DOMElement*, const char*, const char16_t*, int, int);

DOMElement* NewSLongTag(DOMElement* parent, const char* name, int value, int tabs)
{
    return AppendTag(parent, name, DecimalText(value), tabs, false);
}

DOMElement* NewULongTag(DOMElement* parent, const char* name, unsigned int value, int tabs)
{
    return AppendTag(parent, name, DecimalText(value), tabs, false);
}

DOMElement* NewDoubleTag(DOMElement* parent, const char* name, double value, int tabs)
{
    return AppendTag(parent, name, TextOfDouble(value), tabs, false);
}

DOMElement* NewBoolTag(DOMElement* parent, const char* name, unsigned char value, int tabs)
{
    return AppendTag(parent, name, BooleanText(value != 0), tabs, false);
}

DOMElement* NewLegacyBoolTag(DOMElement* parent, const char* name, unsigned char value, int tabs)
{
    return AppendTag(parent, name, LegacyBooleanText(value != 0), tabs, false);
}

void WriteBits(DOMElement* parent, const char* name, unsigned int value, const BitNames* names, int tabs)
{
    if (value == 0)
        return;
    DOMElement* const element = NewElement(parent, Nuv::UniString(name));
    NewLine(element);
    for (const BitNames* row = names; row->mask != 0; ++row)
        if (value & row->mask)
            NewTag(element, row->name, nullptr, tabs + 1, false, nullptr);
    Tabs(parent, tabs);
    Tabs(element, tabs);
    parent->appendChild(element);
    NewLine(parent);
}

void SetSLongAttr(DOMElement* elem, const char* name, int value)
{
    SetAttribute(elem, name, DecimalText(value));
}

void SetULongAttr(DOMElement* elem, const char* name, unsigned int value)
{
    SetAttribute(elem, name, DecimalText(value));
}

void SetBooleanAttr(DOMElement* elem, const char* name, bool value)
{
    SetAttribute(elem, name, BooleanText(value));
}

void SetLegacyBooleanAttr(DOMElement* elem, const char* name, bool value)
{
    SetAttribute(elem, name, LegacyBooleanText(value));
}

int GetSLongAttr(const DOMElement* elem, const Nuv::UniString& name)
{
    return GetAttribute(elem, name, GetSignedLong);
}

int GetSLongAttr(const DOMElement* elem, const char* name)
{
    return GetSLongAttr(elem, Nuv::UniString(name));
}

unsigned int GetULongAttr(const DOMElement* elem, const Nuv::UniString& name)
{
    return GetAttribute(elem, name, GetULong);
}

unsigned int GetULongAttr(const DOMElement* elem, const char* name)
{
    return GetULongAttr(elem, Nuv::UniString(name));
}

bool GetBooleanAttr(const DOMElement* elem, const Nuv::UniString& name)
{
    return GetAttribute(elem, name, GetBoolean);
}

bool GetBooleanAttr(const DOMElement* elem, const char* name)
{
    return GetBooleanAttr(elem, Nuv::UniString(name));
}

} // namespace NuvXMLUtils
