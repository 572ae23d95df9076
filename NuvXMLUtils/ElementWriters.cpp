#include "NuvXMLUtils/ElementWriters.hpp"

#include "NuvXMLUtils/DOMHelperSupport.hpp"

#include <xercesc/dom/DOMProcessingInstruction.hpp>
#include <xercesc/dom/DOMText.hpp>

#include <cstring>

namespace NuvXMLUtils
{
namespace
{

using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMProcessingInstruction;
using xercesc_3_0::DOMText;

constexpr XMLCh WrittenLineEnd[] = u"\r\n";
constexpr XMLCh LineEnd[] = u"\n";

constexpr size_t MaxHrefLength = 487;

std::u16string TabText(int count) { return std::u16string(static_cast<size_t>(std::max(count, 0)), u'\t'); }

/// False when Xerces makes no node.
bool AppendText(DOMElement* elem, const XMLCh* text)
{
    DOMText* const node = elem->getOwnerDocument()->createTextNode(text);
    if (!node)
        return false;
    elem->appendChild(node);
    return true;
}

/// Returns the result of `write`, and false for an exception of the DOM.
template <class Write>
bool Succeeds(Write write)
{
    try
    {
        return write();
    }
    catch (const xercesc_3_0::DOMException&)
    {
        return false;
    }
}

} // namespace

bool WriteNewLine(DOMElement* elem)
{
    return Succeeds([&] { return AppendText(elem, WrittenLineEnd); });
}

bool WriteTabs(DOMElement* elem, int count)
{
    const std::u16string tabs = TabText(count);
    return Succeeds([&] { return AppendText(elem, tabs.c_str()); });
}

void NewLine(DOMElement* elem)
{
    if (!AppendText(elem, LineEnd))
        throw DOMMemoryError();
}

void Tabs(DOMElement* elem, int count)
{
    if (!AppendText(elem, TabText(count).c_str()))
        throw DOMMemoryError();
}

bool WriteTextElement(DOMElement* parent, const Nuv::UniString& name, const Nuv::UniString& value, int tabs)
{
    return Succeeds(
        [&]
        {
            DOMElement* const element = parent->getOwnerDocument()->createElement(name.ToUTF16());
            if (!element || !AppendText(element, value.ToUTF16()))
                return false;
            WriteTabs(parent, tabs);
            parent->appendChild(element);
            WriteNewLine(parent);
            return true;
        });
}

bool WriteTextElement(DOMElement* parent, const Nuv::String& name, const Nuv::String& value, int tabs)
{
    return WriteTextElement(parent, Decoded(name), Decoded(value), tabs);
}

bool WriteShortElement(DOMElement* parent, const Nuv::UniString& name, const short& v, int tabs)
{
    return WriteTextElement(parent, name, DecimalText(v), tabs);
}

bool WriteShortElement(DOMElement* parent, const Nuv::String& name, const short& v, int tabs)
{
    return WriteShortElement(parent, Decoded(name), v, tabs);
}

bool WriteUShortElement(DOMElement* parent, const Nuv::UniString& name, const unsigned short& v, int tabs)
{
    return WriteTextElement(parent, name, DecimalText(v), tabs);
}

bool WriteUShortElement(DOMElement* parent, const Nuv::String& name, const unsigned short& v, int tabs)
{
    return WriteUShortElement(parent, Decoded(name), v, tabs);
}

bool WriteLongElement(DOMElement* parent, const Nuv::UniString& name, const int& v, int tabs)
{
    return WriteTextElement(parent, name, DecimalText(v), tabs);
}

bool WriteLongElement(DOMElement* parent, const Nuv::String& name, const int& v, int tabs)
{
    return WriteLongElement(parent, Decoded(name), v, tabs);
}

bool WriteULongElement(DOMElement* parent, const Nuv::UniString& name, const unsigned int& v, int tabs)
{
    return WriteTextElement(parent, name, DecimalText(v), tabs);
}

bool WriteULongElement(DOMElement* parent, const Nuv::String& name, const unsigned int& v, int tabs)
{
    return WriteULongElement(parent, Decoded(name), v, tabs);
}

bool WriteBooleanElement(DOMElement* parent, const Nuv::UniString& name, const bool& v, int tabs)
{
    return WriteTextElement(parent, name, v ? u"1" : u"0", tabs);
}

bool WriteBooleanElement(DOMElement* parent, const Nuv::String& name, const bool& v, int tabs)
{
    return WriteBooleanElement(parent, Decoded(name), v, tabs);
}

bool BeginWriteElement(DOMElement* parent, DOMElement*& child, const Nuv::UniString& name)
{
    child = parent->getOwnerDocument()->createElement(name.ToUTF16());
    return child && WriteNewLine(child);
}

bool BeginWriteElement(DOMElement* parent, DOMElement*& child, const Nuv::String& name)
{
    return BeginWriteElement(parent, child, Decoded(name));
}

bool EndWriteElement(DOMElement* parent, DOMElement* child, int tabs)
{
    WriteTabs(child, tabs);
    WriteTabs(parent, tabs);
    return Succeeds(
        [&]
        {
            parent->appendChild(child);
            return WriteNewLine(parent);
        });
}

bool WriteStyleSheet(DOMDocument* doc, const char* href)
{
    if (!href || std::strlen(href) > MaxHrefLength)
        return false;
    const Nuv::UniString data = u"type=\"text/xsl\" href=\"" + Nuv::UniString(href) + u"\" ";
    return Succeeds(
        [&]
        {
            DOMProcessingInstruction* const instruction =
                doc->createProcessingInstruction(u"xml-stylesheet", data.ToUTF16());
            if (!instruction)
                return false;
            doc->insertBefore(instruction, doc->getDocumentElement());
            return true;
        });
}

} // namespace NuvXMLUtils
