// What a parser with a schema keeps of the documents that it has parsed.

#include "ValidatingXMLParserSupport.hpp"

#include "tests/support/CurrentFolderScope.hpp"

#include <gtest/gtest.h>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <unordered_map>

namespace
{

using namespace ParserTests;
using xercesc_3_0::XMLPlatformUtils;

/// Counts the bytes that Xerces uses, of what it takes while this lives.
class MeasuredMemory : public xercesc_3_0::MemoryManager
{
  public:
    MeasuredMemory() { XMLPlatformUtils::fgMemoryManager = this; }
    MeasuredMemory(const MeasuredMemory&) = delete;
    MeasuredMemory& operator=(const MeasuredMemory&) = delete;
    ~MeasuredMemory() override { XMLPlatformUtils::fgMemoryManager = &base; }

    size_t GetUsed() const { return used; }

    void* allocate(XMLSize_t size) override
    {
        void* const block = base.allocate(size);
        sizes.emplace(block, size);
        used += size;
        return block;
    }
    void deallocate(void* block) override
    {
        if (const auto known = sizes.find(block); known != sizes.end())
        {
            used -= known->second;
            sizes.erase(known);
        }
        base.deallocate(block);
    }
    MemoryManager* getExceptionMemoryManager() override { return &base; }

  private:
    MemoryManager& base = *XMLPlatformUtils::fgMemoryManager;
    std::unordered_map<void*, size_t> sizes;
    size_t used = 0;
};

constexpr size_t MaxKept = 2'000'000;

/// Lets elements r hold whatever no schema declares, besides integers e.
constexpr char LaxSchema[] =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
    "<xs:element name='e' type='xs:int'/>"
    "<xs:element name='r'><xs:complexType mixed='true'><xs:sequence>"
    "<xs:any processContents='lax' minOccurs='0' maxOccurs='unbounded'/></xs:sequence>"
    "<xs:anyAttribute processContents='lax'/></xs:complexType></xs:element></xs:schema>";

std::string InRoot(const std::string& content) { return "<r>" + content + "</r>"; }

std::string Many(size_t count, const std::string& text)
{
    std::string all;
    for (size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

/// So many elements; what is between `start` and `end` is different for each, in each document.
std::string Numbered(int document, int count, const std::string& start, const std::string& end)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += start + std::to_string(document) + "-" + std::to_string(i) + end;
    return all;
}

/// A kind of documents that leave something behind.
struct Kind
{
    const char* name;
    int count;
    std::string (*make)(int number);
};

void PrintTo(const Kind& kind, std::ostream* stream) { *stream << kind.name; }

class KeptMemory : public testing::TestWithParam<Kind>
{
};

const Kind Kinds[] = {
    {"NewNames", 40, [](int number) { return InRoot(Numbered(number, 1'000, "<n", "/>")); }},
    {"ManyNewNames", 2, [](int number) { return InRoot(Numbered(number, 10'000, "<n", "/>")); }},
    {"LongNames", 20,
     [](int number) { return InRoot("<n" + std::to_string(number) + Many(100'000, "n") + "/>"); }},
    {"NewNamespaces", 40,
     [](int number) { return InRoot(Numbered(number, 1'000, "<n xmlns='urn:", "'/>")); }},
    {"NewAttributes", 50,
     [](int number) { return InRoot("<n" + Numbered(number, 1'000, " a", "=''") + "/>"); }},
    {"LongAttributes", 2, [](int) { return InRoot("<n a='" + Many(3'000'000, "x") + "'/>"); }},
    {"LongComments", 2, [](int) { return InRoot("<!--" + Many(3'000'000, "x") + "-->"); }},
    {"DeepElements", 2, [](int) { return InRoot(Many(10'000, "<n>") + Many(10'000, "</n>")); }},
    {"ManyChildren", 2, [](int) { return InRoot(Many(500'000, "<n/>")); }},
    {"ManyEntities", 2,
     [](int number)
     { return "<!DOCTYPE r [" + Numbered(number, 30'000, "<!ENTITY e", " 'text'>") + "]>" + InRoot(""); }},
    {"GrowingEntities", 2,
     [](int)
     {
         return "<!DOCTYPE r [<!ENTITY e '" + Many(1'000, "x") + "'><!ENTITY f '" + Many(3'000, "&e;") +
                "'>]><r a='&f;'/>";
     }},
    {"Failures", 20, [](int number) { return "<r>" + Numbered(number, 1'000, "<n", "/>"); }},
};

INSTANTIATE_TEST_SUITE_P(, KeptMemory, testing::ValuesIn(Kinds),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(KeptMemory, IsLittleWhateverTheDocuments)
{
    const NuvTest::ScratchFolder scratch;
    MeasuredMemory memory;
    ValidatingXMLParser parser;
    const auto parse = [&](const std::string& text)
    {
        return NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(
                   parser.Parse(Bytes(text), Size(text), LineInfoParser::Val_Never, false,
                                UniString(u"memory"), nullptr, nullptr, nullptr)) != nullptr;
    };
    ASSERT_TRUE(parser.LoadSchema(IO::Location(scratch.Write("a.xsd", LaxSchema)), nullptr, nullptr));
    const size_t usedBySchema = memory.GetUsed();
    for (int number = 0; number < GetParam().count; ++number)
    {
        EXPECT_EQ(parse(GetParam().make(number)), std::string(GetParam().name) != "Failures");
        EXPECT_LT(memory.GetUsed() - usedBySchema, MaxKept) << "after document " << number;
    }
    EXPECT_TRUE(parse("<e>12</e>"));
    EXPECT_FALSE(parse("<e>twelve</e>")) << "The schema stays in force.";
}

TEST(ParserMemory, IsLittleWithoutASchemaToo)
{
    MeasuredMemory memory;
    ValidatingXMLParser parser;
    for (const Kind& kind : Kinds)
        for (int number = 0; number < 2; ++number)
        {
            const std::string text = kind.make(number);
            NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(
                parser.Parse(Bytes(text), Size(text), LineInfoParser::Val_Never, false, UniString(u"memory"),
                             nullptr, nullptr, nullptr));
            EXPECT_LT(memory.GetUsed(), MaxKept) << "after " << kind.name;
        }
}

TEST(ParserMemory, IsLittleAfterAHintToALargeSchema)
{
    const NuvTest::ScratchFolder scratch;
    const NuvTest::CurrentFolderScope current(scratch.Path());
    scratch.Write("hinted.xsd",
                  "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:h'>" +
                      Numbered(0, 10'000, "<xs:element name='n", "' type='xs:int'/>") + "</xs:schema>");
    const std::string text = "<r xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                             "xsi:schemaLocation='urn:h hinted.xsd'><n0-1 xmlns='urn:h'>1</n0-1></r>";
    MeasuredMemory memory;
    ValidatingXMLParser parser;
    ASSERT_TRUE(parser.LoadSchema(IO::Location(scratch.Write("a.xsd", LaxSchema)), nullptr, nullptr));
    const size_t usedBySchema = memory.GetUsed();
    for (int i = 0; i < 3; ++i)
    {
        const NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
            parser.Parse(Bytes(text), Size(text), LineInfoParser::Val_Never, false, UniString(u"memory"),
                         nullptr, nullptr, nullptr));
        ASSERT_TRUE(document);
        EXPECT_LT(memory.GetUsed() - usedBySchema, MaxKept);
    }
}

TEST(ParserMemory, DoesNotHoldTheDocument)
{
    auto parser = std::make_unique<ValidatingXMLParser>();
    const std::string text = InRoot("text");
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
        parser->Parse(Bytes(text), Size(text), LineInfoParser::Val_Never, false, UniString(u"memory"),
                      nullptr, nullptr, nullptr));
    parser.reset();
    ASSERT_TRUE(document);
    document->getDocumentElement()->appendChild(document->createComment(u"comment"));
    EXPECT_EQ(RootTextOf(document), UniString(u"text"));
}

} // namespace
