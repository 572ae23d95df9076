// Any document, read as tags: every getter gives a value or throws ConvException, and the first byte chooses
// the code page of the 8-bit ones.

#include "NuvXMLUtils/DOMHelpers.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace
{

using namespace NuvXMLUtils;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;

template <class Read>
void Try(Read read)
{
    try
    {
        read();
    }
    catch (const ConvException&)
    {
        // The document holds something else.
    }
}

void ReadTag(const DOMElement* tag)
{
    Nuv::VAArray<WarningData> warnings;
    Try([&] { delete[] GetTagText(tag); });
    Try([&] { GetTagTextU(tag); });
    Try([&] { GetSLongTag(tag); });
    Try([&] { GetULongTag(tag); });
    Try([&] { GetDoubleTag(tag); });
    Try([&] { GetBoolTag(tag); });
    Try([&] { delete[] GetStringTag(tag, &warnings); });
    Try([&] { delete[] GetStringTagU(tag); });
    Try([&] { GetSLongAttr(tag, "a"); });
    Try([&] { GetBooleanAttr(tag, "a"); });
}

void ReadElement(const DOMElement* element)
{
    const Nuv::UniString name(element->getTagName());
    Nuv::UniString text;
    int number = 0;
    if (!ReadTextNode(element, name, text) || !ReadLongNode(element, name, number))
        std::abort();
}

void Walk(const DOMElement* element)
{
    ReadTag(element);
    ReadElement(element);
    DOMNode* cursor = element->getFirstChild();
    Try(
        [&]
        {
            while (GetNextTag(cursor))
            {
            }
        });
    unsigned int children = 0;
    for (const DOMElement* child = GetFirstElementChild(element); child; child = GetNextElementSibling(child))
    {
        Walk(child);
        ++children;
    }
    if (children != GetChildElementCount(element))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    NodeLocations lines;
    const NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
        ParseXMLDoc(bytes, static_cast<unsigned int>(size), xercesc_3_0::AbstractDOMParser::Val_Never, true,
                    u"fuzz", &lines, nullptr, nullptr));
    if (!document || !document->getDocumentElement())
        return 0;
    document->setUserData(u"NodeLocations", &lines, nullptr);
    for (const char* codePage : {"UTF-8", "windows-1252"})
    {
        Nuv::SetLocalCodePage(codePage);
        Walk(document->getDocumentElement());
    }
    return 0;
}
