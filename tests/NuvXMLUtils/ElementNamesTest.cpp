// The limit on names of elements: each document counts for itself, whatever the parser knows already.

#include "tests/NuvXMLUtils/UntrustedInput.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <unistd.h>
#include <xercesc/framework/XMLGrammarPoolImpl.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace
{

using NuvTest::Loaded;
using NuvTest::LoadStream;
using NuvTest::LoadTree;
using NuvTest::Refused;

const Loaded IsLoaded{true, NuvTest::NoLine, {}};
const Loaded HasTooManyNames = Refused(1, u"the document has more names of elements than the limit of 2000");
const ParserLimits Untrusted = ParserLimits::ForUntrustedInput();

/// `r` with anything in it, and integers e0 to e2999.
std::string LargeSchema()
{
    std::string text = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                       "<xs:element name='r'><xs:complexType><xs:sequence>"
                       "<xs:any processContents='lax' minOccurs='0' maxOccurs='unbounded'/>"
                       "</xs:sequence></xs:complexType></xs:element>";
    for (int i = 0; i < 3'000; ++i)
        text += "<xs:element name='e" + std::to_string(i) + "' type='xs:int'/>";
    return text + "</xs:schema>";
}

/// A document with so many names of its own besides that of the root.
std::string DocumentOfNames(int first, int count)
{
    std::string text = "<r>";
    for (int i = first; i < first + count; ++i)
        text += "<n" + std::to_string(i) + "/>";
    return text + "</r>";
}

/// Loads documents of 1,500 names, of 2,000 and of 2,001 in turn, all different.
template <class Load>
void ExpectEachDocumentToCountForItself(Load load)
{
    for (int i = 0; i < 5; ++i)
    {
        EXPECT_EQ(load(DocumentOfNames(i * 10'000, 1'500)), IsLoaded) << "document " << i;
        EXPECT_EQ(load(DocumentOfNames(i * 10'000 + 2'000, 1'999)), IsLoaded) << "document " << i;
        EXPECT_EQ(load(DocumentOfNames(i * 10'000 + 4'000, 2'000)), HasTooManyNames) << "document " << i;
    }
}

/// Loads many documents, each within the limits, whose names all share one hash.
template <class Load>
void ExpectCollidingNamesToBeForgotten(Load load)
{
    constexpr size_t NamesOfADocument = 1'000;
    std::vector<std::string> documents;
    const std::vector<std::string> names = NuvTest::CollidingNames(20 * NamesOfADocument);
    for (size_t i = 0; i < names.size(); ++i)
    {
        if (i % NamesOfADocument == 0)
            documents.emplace_back("<r>");
        documents.back() += "<" + names[i] + "/>";
    }
    NuvTest::ExpectToBeCheap(
        [&]
        {
            for (const std::string& document : documents)
                if (!load(document + "</r>").isLoaded)
                    _exit(1);
        });
}

TEST(ElementNames, AreThoseOfOneDocumentInATree)
{
    ValidatingXMLParser parser;
    parser.SetLimits(Untrusted);
    ExpectEachDocumentToCountForItself([&](const std::string& text) { return LoadTree(parser, text); });
}

TEST(ElementNames, AreThoseOfOneDocumentInATreeWithASchema)
{
    const NuvTest::ScratchFolder scratch;
    ValidatingXMLParser parser;
    parser.SetLimits(Untrusted);
    ASSERT_TRUE(parser.LoadSchema(IO::Location(scratch.Write("a.xsd", LargeSchema())), nullptr, nullptr));
    EXPECT_EQ(LoadTree(parser, "<e2999>1</e2999>"), IsLoaded);
    ExpectEachDocumentToCountForItself([&](const std::string& text) { return LoadTree(parser, text); });
    EXPECT_EQ(LoadTree(parser, "<e2999>1</e2999>"), IsLoaded);
    EXPECT_FALSE(LoadTree(parser, "<e2999>one</e2999>").isLoaded);
}

TEST(ElementNames, ThatCollideAreForgottenByATreeParser)
{
    const NuvTest::ScratchFolder scratch;
    ValidatingXMLParser parser;
    parser.SetLimits(Untrusted);
    ASSERT_TRUE(parser.LoadSchema(IO::Location(scratch.Write("a.xsd", LargeSchema())), nullptr, nullptr));
    ExpectCollidingNamesToBeForgotten([&](const std::string& text) { return LoadTree(parser, text); });
}

/// A stream reader with a scanner of Xerces, and with a schema or without.
struct Reader
{
    const char* name;
    const XMLCh* scanner;
    bool hasSchema;
};

void PrintTo(const Reader& reader, std::ostream* stream) { *stream << reader.name; }

class ElementNamesInAStream : public testing::TestWithParam<Reader>
{
  protected:
    ElementNamesInAStream()
    {
        using xercesc_3_0::XMLUni;
        const auto loader = NuvXML::CreateSAX2Reader(ParserLimits(), &pool);
        const std::string schema = LargeSchema();
        loader->loadGrammar(xercesc_3_0::MemBufInputSource(NuvTest::Bytes(schema), schema.size(), u"schema"),
                            xercesc_3_0::Grammar::SchemaGrammarType, true);
        reader->setProperty(XMLUni::fgXercesScannerName, const_cast<XMLCh*>(GetParam().scanner));
        reader->setFeature(XMLUni::fgXercesUseCachedGrammarInParse, GetParam().hasSchema);
        reader->setFeature(XMLUni::fgSAX2CoreValidation, GetParam().hasSchema);
    }

    xercesc_3_0::XMLGrammarPoolImpl pool{xercesc_3_0::XMLPlatformUtils::fgMemoryManager};
    std::unique_ptr<xercesc_3_0::SAX2XMLReader> reader = NuvXML::CreateSAX2Reader(Untrusted, &pool);
};

INSTANTIATE_TEST_SUITE_P(, ElementNamesInAStream,
                         testing::Values(Reader{"General", u"IGXMLScanner", false},
                                         Reader{"GeneralWithSchema", u"IGXMLScanner", true},
                                         Reader{"Schema", u"SGXMLScanner", false},
                                         Reader{"SchemaWithSchema", u"SGXMLScanner", true},
                                         Reader{"DocumentType", u"DGXMLScanner", false},
                                         Reader{"WellFormed", u"WFXMLScanner", false}),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(ElementNamesInAStream, AreThoseOfOneDocument)
{
    EXPECT_EQ(LoadStream(*reader, "<r/>"), IsLoaded);
    EXPECT_EQ(LoadStream(*reader, "<e2999>1</e2999>"), IsLoaded);
    ExpectEachDocumentToCountForItself([&](const std::string& text) { return LoadStream(*reader, text); });
    EXPECT_EQ(LoadStream(*reader, "<e2999>1</e2999>"), IsLoaded);
}

TEST_P(ElementNamesInAStream, ThatCollideAreForgotten)
{
    ExpectCollidingNamesToBeForgotten([&](const std::string& text) { return LoadStream(*reader, text); });
}

} // namespace
