// Makes every mistake that the library has a text for, and writes the texts as a page of the manual.

#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/DOMHelpers.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLDOMReader.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

#include <xercesc/dom/DOMException.hpp>

#include <initializer_list>
#include <iostream>
#include <memory>
#include <string_view>

namespace
{

using Nuv::UniString;
using namespace NuvXMLUtils;
using NuvXML::CreateXMLIChannelFromMemory;

// How mistakes are made.

const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

/// The reason why a text cannot be loaded.
UniString Load(std::string_view text) { return NuvXML::LoadDocument(text).reason; }

UniString LoadSchema(const char16_t* file)
{
    ValidatingXMLParser parser;
    UniString reason;
    parser.LoadSchema(IO::Location(file), nullptr, &reason);
    return reason;
}

/// The message that a reader of the text has after `read`.
template <class Read>
UniString Message(const char16_t* text, Read read)
{
    Nuv::XMLIChannel* channel = CreateXMLIChannelFromMemory(UniString(text), true);
    const NuvXML::XMLIChannelGuard guard(&channel);
    read(*channel);
    UniString message;
    int code = 0;
    channel->GetMessage(channel->GetNumberOfMessage() - 1, message, code);
    return message;
}

/// The reason why the channel cannot be saved.
UniString Save(Nuv::XMLOChannel* channel)
{
    UniString reason;
    NuvXML::SaveXMLOChannel(channel, &reason);
    return reason;
}

/// The reason why a document with the text cannot be saved.
UniString Save(const IO::Location& location, const char16_t* text)
{
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(location, true);
    const NuvXML::XMLOChannelGuard guard(&channel);
    channel->WriteStartElement("Wall");
    channel->WriteXML("Name", UniString(text));
    return Save(channel);
}

/// A document, or its root element.
class Document
{
  public:
    explicit Document(std::string_view text)
        : document(NuvXML::LoadDocument(text).document)
    {
    }
    operator const xercesc_3_0::DOMElement*() const { return document->getDocumentElement(); }

  private:
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document;
};

template <class Comparator = NuvXML::XMLCompareStrictOrder>
void Compare(std::string_view left, std::string_view right)
{
    const Document leftDocument(left);
    const Document rightDocument(right);
    const xercesc_3_0::DOMElement* const leftRoot = leftDocument;
    const xercesc_3_0::DOMElement* const rightRoot = rightDocument;
    Comparator comparator;
    NuvXML::DoXMLCompare(leftRoot, rightRoot, &comparator, nullptr,
                         NuvXML::StrictOrderAutoValueCompareOptions());
}

// How they are told.

struct Mistake
{
    const char* what;

    /// Throws, or sets `text`.
    void (*make)(UniString& text);
};

UniString TextOf(const Mistake& mistake)
{
    UniString text;
    try
    {
        mistake.make(text);
    }
    catch (const Nuv::NuvException& exception)
    {
        text = exception.GetMessage();
    }
    catch (const ConvException& exception)
    {
        text = exception.message;
    }
    catch (const xercesc_3_0::DOMException& exception)
    {
        text = exception.getMessage();
    }
    catch (const NuvXML::XMLCompareException& difference)
    {
        text = difference.GetText();
    }
    return text;
}

void WriteTable(const char* title, const char* how, std::initializer_list<Mistake> mistakes)
{
    std::cout << "\n## " << title << "\n\n" << how << "\n\n| Text | When |\n|---|---|\n";
    for (const Mistake& mistake : mistakes)
        std::cout << "| ``" << TextOf(mistake) << "`` | " << mistake.what << " |\n";
}

void WriteReports(const char* title, const char* how, std::initializer_list<Mistake> differences)
{
    std::cout << "\n## " << title << "\n\n" << how << '\n';
    for (const Mistake& difference : differences)
        std::cout << "\nNuvXML::" << difference.what << ":\n\n```\n" << TextOf(difference) << "\n```\n";
}

void WriteChannelTexts()
{
    WriteTable("Making a channel",
               "Thrown as NuvXML::XMLIChannelException by the functions that make a channel, and as "
               "NuvXML::DOMReaderException "
               "by the constructors of the class behind it.",
               {{"the text is not well-formed or not valid, or there is no such file",
                 [](UniString&) { CreateXMLIChannelFromMemory(UniString(u"<Wall>"), true); }},
                {"the same, from the reader's own constructor",
                 [](UniString&) { NuvXML::DOMReader(Bytes("<Wall>"), 6); }},
                {"the same for a file", [](UniString&) { NuvXML::DOMReader(IO::Location(u"none.xml")); }}});
    WriteTable(
        "Saving the file of a channel",
        "The reason that NuvXML::SaveXMLOChannel gives, beside false. The first one can also end with "
        "\"access is denied\", \"a folder has its name\", \"the device is full\", or \"the system refuses "
        "it\". For a channel that is not a DOMBuilder it is \"The channel is of another kind.\"",
        {{"the file cannot be written",
          [](UniString& text) { text = Save(IO::Location(u"none/wall.xml"), u"North"); }},
         {"a text, a comment or an instruction has no form in XML, here U+0001",
          [](UniString& text) { text = Save(IO::Location(u"wall.xml"), u"\u0001"); }},
         {"the channel was made without a location",
          [](UniString& text)
          {
              Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(true);
              const NuvXML::XMLOChannelGuard guard(&channel);
              text = Save(channel);
          }},
         {"NuvXML::DiscardXMLOChannel was called before",
          [](UniString& text)
          {
              Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(IO::Location(u"wall.xml"), true);
              const NuvXML::XMLOChannelGuard guard(&channel);
              NuvXML::DiscardXMLOChannel(channel);
              text = Save(channel);
          }},
         {"the pointer to the channel is null", [](UniString& text) { text = Save(nullptr); }}});
    WriteTable("Reading from a channel",
               "Messages of the reader, beside the status -7003. The guard puts the location before them.",
               {{"there is no element of this name where the reader is",
                 [](UniString& text)
                 {
                     int height = 0;
                     text = Message(u"<Wall/>", [&](auto& channel) { channel.ReadXML("Height", height); });
                 }},
                {"the element holds no number, or one that is out of range",
                 [](UniString& text)
                 {
                     int height = 0;
                     text = Message(u"<Wall><Height>high</Height></Wall>",
                                    [&](auto& channel) { channel.ReadXML("Height", height); });
                 }},
                {"the element has no attribute of this name",
                 [](UniString& text)
                 {
                     int id = 0;
                     text = Message(u"<Wall/>", [&](auto& channel) { channel.ReadXMLAttr("Id", id); });
                 }},
                {"the attribute holds no number, or one that is out of range",
                 [](UniString& text)
                 {
                     int id = 0;
                     text =
                         Message(u"<Wall Id='A1'/>", [&](auto& channel) { channel.ReadXMLAttr("Id", id); });
                 }},
                {"there is no further token", [](UniString& text) {
                     text = Message(u"<Wall/>", [](auto& channel) { channel.ReadToken(Nuv::XMLNoToken); });
                 }}});
}

void WriteLoadingTexts()
{
    WriteTable("Loading and validating",
               "In `errorMessage`, beside null or false. Most texts are those of Xerces, in its words.",
               {{"an example of Xerces' own", [](UniString& text) { text = Load("<Wall></Well>"); }},
                {"the file of the schema does not exist, is a folder, or cannot be read",
                 [](UniString& text) { text = LoadSchema(u"none.xsd"); }},
                {"Xerces gave up without a reason, here at a document type with two colons",
                 [](UniString& text) { text = Load("<!DOCTYPE a:b:c [<!ELEMENT a EMPTY>]><a/>"); }}});
}

void WriteHelperTexts()
{
    WriteTable(
        "Small documents by hand",
        "Messages of NuvXMLUtils::ConvException, except for the last one. The functions on the way up have "
        "put "
        "there what is before the last `;`.",
        {{"not exactly a whole number: the text has something else in it",
          [](UniString&) { GetSLongTag(Document("<height>2.75</height>")); }},
         {"above 2147483647, of unsigned numbers above 4294967295",
          [](UniString&) { GetSLongTag(Document("<height>2147483648</height>")); }},
         {"below -2147483648", [](UniString&) { GetSLongTag(Document("<height>-2147483649</height>")); }},
         {"a sign and no digits: the reason is empty",
          [](UniString&) { GetSLongTag(Document("<height>-</height>")); }},
         {"not a floating-point number, or out of range",
          [](UniString&) { GetDoubleTag(Document("<zoom>high</zoom>")); }},
         {"something follows the number", [](UniString&) { GetDoubleTag(Document("<zoom>1,25</zoom>")); }},
         {"not one of the six words", [](UniString&) { GetBoolTag(Document("<autosave>maybe</autosave>")); }},
         {"the tag is empty, or holds more than one node",
          [](UniString&) { GetTagTextU(Document("<title/>")); }},
         {"a character that the local code page lacks",
          [](UniString&) { GetTagText(Document("<title>\u4E2D</title>")); }},
         {"a missing attribute, or an empty one",
          [](UniString&) { GetULongAttr(Document("<a/>"), "version"); }},
         {"an attribute of the wrong form",
          [](UniString&) { GetULongAttr(Document("<a version='2.0'/>"), "version"); }},
         {"a string without quotes",
          [](UniString&) { GetStringTagU(Document("<title><![CDATA[Plan]]></title>")); }},
         {"no CDATA section", [](UniString&) { GetCDATANodeU(Document("<title>'Plan'</title>")); }},
         {"two of them",
          [](UniString&) { GetCDATANodeU(Document("<title><![CDATA['a']]><![CDATA['b']]></title>")); }},
         {"an element beside the section",
          [](UniString&) { GetCDATANodeU(Document("<title><![CDATA['a']]><b/></title>")); }},
         {"the same, from the 8-bit forms", [](UniString&) { GetCDATANode(Document("<title/>")); }},
         {"the section is empty", [](UniString&) { GetCDATANode(Document("<title><![CDATA[]]></title>")); }},
         {"a warning: some characters became question marks",
          [](UniString& text)
          {
              Nuv::VAArray<WarningData> warnings;
              const std::unique_ptr<char[]> title(
                  GetStringTag(Document("<title><![CDATA['\u4E2D']]></title>"), &warnings));
              text = warnings.front().message;
          }},
         {"a DOMException of Xerces: 8-bit text that is null",
          [](UniString&) { StringToUnicode(nullptr); }}});
}

void WriteDifferences()
{
    WriteReports(
        "Comparing", "What NuvXML::XMLCompareException::GetText returns, under the name of each class.",
        {{"TextNodeValuesDontMatchException", [](UniString&) { Compare("<a>1</a>", "<a>2</a>"); }},
         {"AttributesDontMatchException", [](UniString&) { Compare("<a b='1'/>", "<a b='2'/>"); }},
         {"AttributeMissingException", [](UniString&) { Compare("<a b='1'/>", "<a/>"); }},
         {"NodeNamesDontMatchException", [](UniString&) { Compare("<a/>", "<b/>"); }},
         {"OneNodeHasMoreChildrenThanTheOtherException", [](UniString&) { Compare("<a><b/></a>", "<a/>"); }},
         {"OneNodeIsElementOneIsTextException", [](UniString&) { Compare("<a><b/></a>", "<a>text</a>"); }},
         {"NodeTypesDontMatchException", [](UniString&) { Compare("<a><b/></a>", "<a><!----></a>"); }},
         {"NotSupportedNodeTypesException",
          [](UniString&) { Compare("<a><!--b--></a>", "<a><!--b--></a>"); }},
         {"NoElementsInDocumentException", [](UniString&)
          { throw NuvXML::NoElementsInDocumentException(NuvXML::XMLCompareException::Left); }}});
}

void WriteFaultsOfTheProgram()
{
    WriteTable("Faults of the program", "Thrown as Nuv::NuvException or Nuv::GeneralException.",
               {{"no such code page", [](UniString&) { Nuv::SetLocalCodePage("klingon"); }},
                {"Nuv::UniString::Printf", [](UniString& text) { text.Printf("%d"); }},
                {"XMLCompareRotatedOrder",
                 [](UniString&) { Compare<NuvXML::XMLCompareRotatedOrder>("<a><b/></a>", "<a><b/></a>"); }},
                {"XMLCompareNoOrder",
                 [](UniString&) { Compare<NuvXML::XMLCompareNoOrder>("<a><b/></a>", "<a><b/></a>"); }}});
    {
        const NuvXML::XercescInitializer stopsXerces;
    }
    WriteTable("While Xerces is not running", "Only after somebody has stopped it.",
               {{"NuvXML::XMLOChannelException from CreateXMLOChannel",
                 [](UniString&) { NuvXML::CreateXMLOChannel(true); }},
                {"NuvXML::DOMBuilderException from a builder over no file",
                 [](UniString&) { NuvXML::DOMBuilder(); }},
                {"the same over a file", [](UniString&) { NuvXML::DOMBuilder(IO::Location(u"none.xml")); }},
                {"ParseXMLDoc", [](UniString& text) { text = Load("<Wall/>"); }},
                {"LoadSchema", [](UniString& text) { text = LoadSchema(u"walls.xsd"); }}});
}

} // namespace

int main()
{
    Nuv::SetLocalCodePage("ISO-8859-1");
    std::cout << "# All messages {#manual_messages}\n\nYou see a message and want to know where it comes "
                 "from. This "
                 "page lists the texts of the library, each with the mistake that leads to it. "
                 "`examples/manual/messages.cpp` makes each mistake once and has written the page.\n";
    WriteChannelTexts();
    WriteLoadingTexts();
    WriteHelperTexts();
    WriteDifferences();
    WriteFaultsOfTheProgram();
}
