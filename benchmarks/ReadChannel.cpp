/// @file
/// Opening a document of about 15 MB and reading its values back through the input channel, against bare DOM
/// calls and pugixml; and a document that no channel wrote.
#include "InputOutput/File.hpp"
#include "InputOutput/FileSystem.hpp"
#include "InputOutput/Folder.hpp"
#include "NuvRoot/ValueText.hpp"
#include "benchmarks/Documents.hpp"
#include "benchmarks/Inputs.hpp"
#include "benchmarks/Peers.hpp"
#include "benchmarks/Ratios.hpp"

#include <xercesc/dom/DOM.hpp>

namespace
{

using namespace Benchmarks;

constexpr size_t ValueCount = 400'000;
constexpr char WrongValue[] = "a value is not what was written";

/// A document as a file that is removed at the end.
class TemporaryFile
{
  public:
    explicit TemporaryFile(const std::string& bytes)
    {
        IO::FileSystem::GetSpecialLocation(IO::FileSystem::TemporaryFolder, location);
        IO::Name name;
        IO::Folder(location).GenerateUnusedName(u"Benchmark_", name);
        location.AppendToLocal(name);
        IO::File file(location, IO::CreateWhenNotFound);
        file.Open(IO::WriteMode, IO::ReportAccessDenied);
        file.Write(bytes.data(), bytes.size());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { IO::FileSystem::Delete(location, IO::DeleteForGood, IO::ReportAccessDenied); }

    const IO::Location& Location() const { return location; }

  private:
    IO::Location location;
};

InputChannel Open(const std::string& bytes)
{
    return InputChannel(NuvXML::CreateXMLIChannelFromMemory(
        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned int>(bytes.size()), true));
}

/// Reads the values in the order in which they were written; false when one is not what was written.
bool ReadValues(Nuv::XMLIChannel& channel, size_t groupSize)
{
    Nuv::UniString text;
    for (size_t i = 0; i < ValueCount;)
    {
        if (channel.ReadStartElement("Group") != Nuv::Success)
            return false;
        for (const size_t end = i + groupSize; i < end; ++i)
        {
            int integer = 0;
            if (IsText(i) ? channel.ReadXML("Text", text) != Nuv::Success || text.IsEmpty()
                          : channel.ReadXML("Integer", integer) != Nuv::Success || integer != IntegerAt(i))
                return false;
        }
        if (channel.ReadEndElement("Group") != Nuv::Success)
            return false;
    }
    return true;
}

void ReadBack(Nuv::XMLIChannel& channel, size_t groupSize)
{
    Expect(ReadValues(channel, groupSize), WrongValue);
    channel.ReadEndElement("Values");
    channel.ReadStartElement("Values");
}

/// The values of one group, one after the other, without a look at the names.
void ReadWithBareCalls(const xercesc_3_0::DOMDocument& document)
{
    const auto* element = document.getDocumentElement()->getFirstElementChild()->getFirstElementChild();
    for (size_t i = 0; i < ValueCount; ++i, element = element->getNextElementSibling())
    {
        const Nuv::UniString text(element->getFirstChild()->getNodeValue());
        int integer = 0;
        Expect(IsText(i) ? !text.IsEmpty() : Nuv::strtovalue(text.View(), integer) && integer == IntegerAt(i),
               WrongValue);
    }
}

void ReadWithPugixml(const pugi::xml_document& document)
{
    pugi::xml_node element = document.document_element().first_child().first_child();
    for (size_t i = 0; i < ValueCount; ++i, element = element.next_sibling())
    {
        Expect(IsText(i) ? !std::string(element.child_value()).empty()
                         : element.text().as_int() == IntegerAt(i),
               WrongValue);
    }
}

const char* const LanguageAttributes[] = {"id", "type", "name"};
constexpr size_t LanguageCount = 7'000;

void ReadLanguages(Nuv::XMLIChannel& channel)
{
    size_t count = 0;
    for (; channel.GetNextTokenType() == Nuv::XMLStartElement; ++count)
    {
        Nuv::UniString value;
        channel.ReadStartElement("iso_639_3_entry");
        for (const char* attribute : LanguageAttributes)
            Expect(channel.ReadXMLAttr(attribute, value) == Nuv::Success, "an attribute is missing");
        channel.ReadEndElement("iso_639_3_entry");
    }
    Expect(count > LanguageCount, "languages are missing");
    channel.ReadEndElement("iso_639_3_entries");
    channel.ReadStartElement("iso_639_3_entries");
}

void ReadLanguagesWithBareCalls(const xercesc_3_0::DOMDocument& document)
{
    size_t count = 0;
    for (const auto* element = document.getDocumentElement()->getFirstElementChild(); element;
         element = element->getNextElementSibling(), ++count)
        for (const char16_t* attribute : {u"id", u"type", u"name"})
            Expect(!Nuv::UniString(element->getAttribute(attribute)).IsEmpty(), "an attribute is missing");
    Expect(count > LanguageCount, "languages are missing");
}

void ReadLanguagesWithPugixml(const pugi::xml_document& document)
{
    size_t count = 0;
    for (const pugi::xml_node element : document.document_element().children("iso_639_3_entry"))
    {
        for (const char* attribute : LanguageAttributes)
            Expect(!std::string(element.attribute(attribute).value()).empty(), "an attribute is missing");
        ++count;
    }
    Expect(count > LanguageCount, "languages are missing");
}

} // namespace

int main(int argc, char** argv)
{
    const std::string text = MakeDocument(ValueCount, ValueCount);
    const std::string languages = Languages().text;
    const TemporaryFile file(text);
    const InputChannel siblings = Open(text);
    const InputChannel groups = Open(MakeDocument(ValueCount, 100));
    const InputChannel languageChannel = Open(languages);
    const XercesDocument ofXerces = ParseWithXerces(text);
    const XercesDocument languagesOfXerces = ParseWithXerces(languages);
    const pugi::xml_document ofPugixml = ParseWithPugixml(text, pugi::parse_default);
    const pugi::xml_document languagesOfPugixml = ParseWithPugixml(languages, pugi::parse_default);

    const std::string opening = "400,000 values, opened";
    const std::string reading = "400,000 values, read";
    const std::string languagesRead = "iso_639-3.xml, read";
    return RunAndCompare(
        argc, argv,
        {
            {opening, "CreateXMLIChannel", Whose::Ours,
             [&] { InputChannel(NuvXML::CreateXMLIChannel(file.Location(), true)); }},
            {opening, "Xerces' parser", Whose::Peers, [&] { ParseWithXerces(text); }},
            {opening, "libxml2", Whose::Peers, [&] { ParseWithLibxml2(text); }},
            {opening, "pugixml", Whose::Peers, [&] { ParseWithPugixml(text, KeepAll); }},
            {reading, "DOMReader, siblings", Whose::Ours, [&] { ReadBack(*siblings, ValueCount); }},
            {reading, "DOMReader, groups of 100", Whose::Ours, [&] { ReadBack(*groups, 100); }},
            {reading, "bare DOM calls", Whose::Peers, [&] { ReadWithBareCalls(*ofXerces); }},
            {reading, "pugixml", Whose::Peers, [&] { ReadWithPugixml(ofPugixml); }},
            {languagesRead, "DOMReader", Whose::Ours, [&] { ReadLanguages(*languageChannel); }},
            {languagesRead, "bare DOM calls", Whose::Peers,
             [&] { ReadLanguagesWithBareCalls(*languagesOfXerces); }},
            {languagesRead, "pugixml", Whose::Peers, [&] { ReadLanguagesWithPugixml(languagesOfPugixml); }},
        },
        {
            LimitOf(opening, "CreateXMLIChannel", "Xerces' parser", 1.05),
            LimitOf(reading, "DOMReader, siblings", "DOMReader, groups of 100", 1.20),
            {"400,000 values: read / opened", reading + "/DOMReader, siblings",
             opening + "/CreateXMLIChannel", 0.35},
        });
}
