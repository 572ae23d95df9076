// Any document, read as tags in two code pages: every getter gives a value or throws ConvException.

#include "fuzz/Support.hpp"

#include "NuvXMLUtils/DOMHelpers.hpp"

namespace
{

using namespace Fuzz;
using namespace NuvXMLUtils;

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
    Check(ReadTextNode(element, name, text) && ReadLongNode(element, name, number));
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
    Check(children == GetChildElementCount(element));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    NodeLocations lines;
    const Document document = Parse(TextOf(bytes, size), true, &lines);
    if (!document)
        return 0;
    document->setUserData(u"NodeLocations", &lines, nullptr);
    for (const char* codePage : {"UTF-8", "windows-1252"})
    {
        Nuv::SetLocalCodePage(codePage);
        Walk(document->getDocumentElement());
    }
    return 0;
}
