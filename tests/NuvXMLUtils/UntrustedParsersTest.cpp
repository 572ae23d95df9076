#include "tests/NuvXMLUtils/UntrustedInput.hpp"
#include "tests/support/CurrentFolderScope.hpp"
#include "tests/support/OutsideWorld.hpp"
#include "tests/support/ScratchFolder.hpp"

#include "NuvXMLUtils/SAXWriters.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <string>

namespace
{

using Nuv::UniString;
using NuvTest::Loaded;
using NuvTest::Refused;
using NuvTest::Repeat;

const Loaded IsLoaded{true, NuvTest::NoLine, {}};
const Loaded IsTooDeep = Refused(1, u"elements are nested deeper than the limit of 1 levels");

constexpr char TwoLevels[] = "<a><b/></a>";

ParserLimits OneLevel()
{
    ParserLimits limits;
    limits.maxNesting = 1;
    return limits;
}

// The values.

TEST(ParserLimits, AreOffUntilTheyAreSet)
{
    const ParserLimits limits;
    for (const size_t limit : {limits.maxEntityExpansions, limits.maxExpandedContent, limits.maxDeclarations,
                               limits.maxDeclarationLength, limits.maxElementNames,
                               limits.maxDefaultAttributes, limits.maxAttributes, limits.maxNesting})
        EXPECT_EQ(limit, ParserLimits::Unlimited);
    EXPECT_FALSE(limits.allowExpansionInDocumentType || limits.forbidDocumentTypes ||
                 limits.forbidExternalEntities || limits.forbidNetwork);
}

TEST(ParserLimits, AreAllSetForUntrustedInputButThatDocumentTypesAreAccepted)
{
    const ParserLimits limits = ParserLimits::ForUntrustedInput();
    EXPECT_EQ(limits.maxEntityExpansions, 10'000u);
    EXPECT_EQ(limits.maxExpandedContent, 1'000'000u);
    EXPECT_EQ(limits.maxDeclarations, 500u);
    EXPECT_EQ(limits.maxDeclarationLength, 1'000u);
    EXPECT_EQ(limits.maxDefaultAttributes, 10'000u);
    EXPECT_EQ(limits.maxAttributes, 1'000u);
    EXPECT_EQ(limits.maxElementNames, 2'000u);
    EXPECT_EQ(limits.maxNesting, 1'000u);
    EXPECT_TRUE(limits.forbidExternalEntities && limits.forbidNetwork);
    EXPECT_FALSE(limits.allowExpansionInDocumentType || limits.forbidDocumentTypes);
}

TEST(ParserLimits, CountTheExpansionsOfEntitiesExactly)
{
    ParserLimits limits;
    limits.maxEntityExpansions = 3;
    const std::string declarations = "<!DOCTYPE r [<!ENTITY e 'x'><!ENTITY f '&e;'>]>";
    const std::string within = declarations + "<r a='&e;&lt;&#65;'>&f;&amp;</r>";
    const std::string beyond = declarations + "<r a='&e;&e;'>&f;</r>";
    EXPECT_EQ(NuvTest::LoadTree(within, limits), IsLoaded);
    EXPECT_EQ(NuvTest::LoadStream(within, limits), IsLoaded);
    EXPECT_FALSE(NuvTest::LoadTree(beyond, limits).isLoaded);
    EXPECT_FALSE(NuvTest::LoadStream(beyond, limits).isLoaded);
}

TEST(ParserLimits, LeaveEntitiesUncountedWhenTheyAreOff)
{
    const std::string text = "<!DOCTYPE r [<!ENTITY e ''>]><r>" + Repeat("&e;", 60'000) + "</r>";
    EXPECT_EQ(NuvTest::LoadTree(text, ParserLimits()), IsLoaded);
    EXPECT_EQ(NuvTest::LoadStream(text, ParserLimits()), IsLoaded);
}

TEST(ParserLimits, CanTrustADocumentTypeAndCountTheEntitiesOfTheDocument)
{
    ParserLimits limits;
    limits.maxEntityExpansions = 2;
    limits.allowExpansionInDocumentType = true;
    const std::string declarations = "<!DOCTYPE r [<!ENTITY % p '<!ENTITY e \"x\">'>%p;"
                                     "<!ATTLIST r a CDATA '&e;&e;&e;'>]>";
    EXPECT_EQ(NuvTest::LoadTree(declarations + "<r>&e;&e;</r>", limits), IsLoaded);
    EXPECT_FALSE(NuvTest::LoadTree(declarations + "<r>&e;&e;&e;</r>", limits).isLoaded);
}

// The tree parser.

TEST(UntrustedTree, IsLimitedUntilTheLimitsAreLifted)
{
    ValidatingXMLParser parser;
    EXPECT_EQ(NuvTest::LoadTree(parser, TwoLevels), IsLoaded);
    parser.SetLimits(OneLevel());
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(NuvTest::LoadTree(parser, TwoLevels), IsTooDeep);
        EXPECT_EQ(NuvTest::LoadTree(parser, "<a/>"), IsLoaded);
        EXPECT_FALSE(parser.RanOutOfMemory());
    }
    parser.SetLimits(ParserLimits());
    EXPECT_EQ(NuvTest::LoadTree(parser, TwoLevels), IsLoaded);
    EXPECT_EQ(NuvTest::LoadTree(parser, "<!DOCTYPE r [<!ENTITY % p ''>%p;]><r/>"), IsLoaded);
}

TEST(UntrustedTree, CountsEachDocumentForItself)
{
    ValidatingXMLParser parser;
    ParserLimits limits;
    limits.maxEntityExpansions = 3;
    limits.maxDefaultAttributes = 3;
    parser.SetLimits(limits);
    const char text[] = "<!DOCTYPE r [<!ATTLIST a b CDATA ''><!ENTITY e '<a/>'>]><r>&e;&e;&e;</r>";
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(NuvTest::LoadTree(parser, text), IsLoaded);
}

TEST(UntrustedTree, IsTheSameWithinTheLimits)
{
    const std::string text = "<!DOCTYPE r [<!ATTLIST a b CDATA 'c'><!ENTITY e 'x<a/>'>]>"
                             "<r d='&lt;'>&e;<!-- c --><?p i?><![CDATA[<]]>&e;</r>";
    const auto parse = [&](const ParserLimits& limits)
    {
        ValidatingXMLParser parser;
        parser.SetLimits(limits);
        return NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(
            parser.Parse(NuvTest::Bytes(text), static_cast<unsigned int>(text.size()),
                         ValidatingXMLParser::LineInfoParser::Val_Never, true, UniString(u"memory"), nullptr,
                         nullptr, nullptr));
    };
    const auto plain = parse(ParserLimits());
    const auto limited = parse(ParserLimits::ForUntrustedInput());
    ASSERT_TRUE(plain && limited);
    EXPECT_TRUE(plain->getDocumentElement()->isEqualNode(limited->getDocumentElement()));
}

/// Imports a namespace without telling where its schema is.
constexpr char HintedSchema[] =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:h'>"
    "<xs:import namespace='urn:nowhere'/><xs:element name='e' type='xs:int'/></xs:schema>";

constexpr char HintingDocument[] =
    "<h:e xmlns:h='urn:h' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
    "xsi:schemaLocation='urn:h hinted.xsd'>12</h:e>";

class UntrustedTreeWithSchema : public testing::Test
{
  protected:
    UntrustedTreeWithSchema()
    {
        scratch.Write("part.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                  "<xs:element name='r' type='xs:int'/></xs:schema>");
        scratch.Write("other.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' "
                                   "targetNamespace='urn:o'><xs:element name='r'/></xs:schema>");
        const IO::Location whole(scratch.Write("whole.xsd",
                                               "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                               "<xs:include schemaLocation='part.xsd'/></xs:schema>"));
        parser.SetLimits(ParserLimits::ForUntrustedInput());
        EXPECT_TRUE(parser.LoadSchema(whole, nullptr, nullptr)) << "Schemas are trusted.";
    }

    NuvTest::ScratchFolder scratch;
    NuvTest::CurrentFolderScope current{scratch.Path()};
    ValidatingXMLParser parser;
};

TEST_F(UntrustedTreeWithSchema, IsValidated)
{
    EXPECT_EQ(NuvTest::LoadTree(parser, "<r>12</r>"), IsLoaded);
    EXPECT_FALSE(NuvTest::LoadTree(parser, "<r>twelve</r>").isLoaded);
    EXPECT_EQ(NuvTest::LoadTree(parser, "<!DOCTYPE r SYSTEM 'r.dtd'><r>12</r>"),
              Refused(1, u"external entities are forbidden; the document refers to 'r.dtd'"));
}

TEST_F(UntrustedTreeWithSchema, ReadsNoSchemaAtAHintOfTheDocument)
{
    NuvTest::WatchedFolder watch(scratch);
    const std::string hint = " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
                             " xsi:schemaLocation='urn:o other.xsd' xsi:noNamespaceSchemaLocation='part.xsd'";
    EXPECT_EQ(NuvTest::LoadTree(parser, "<r" + hint + ">12</r>"), IsLoaded);
    const std::string other = "<o:r xmlns:o='urn:o'" + hint + "/>";
    EXPECT_FALSE(NuvTest::LoadTree(parser, other).isLoaded);
    EXPECT_FALSE(watch.WasTouched());
    parser.SetLimits(ParserLimits());
    EXPECT_EQ(NuvTest::LoadTree(parser, other), IsLoaded);
    EXPECT_TRUE(watch.WasTouched());
}

TEST_F(UntrustedTreeWithSchema, AsksNoServerAtAHintOfTheDocument)
{
    NuvTest::CountingServer server;
    ParserLimits limits;
    limits.forbidNetwork = true;
    parser.SetLimits(limits);
    const std::string text = "<o:r xmlns:o='urn:o' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                             "xsi:schemaLocation='urn:o " +
                             server.URL() + "'/>";
    EXPECT_EQ(NuvTest::LoadTree(parser, text),
              Refused(1, UniString(u"the network is forbidden; the document refers to '") +
                             UniString::FromUTF8(server.URL()) + u"'"));
    EXPECT_EQ(server.CountConnections(), 0);
}

TEST_F(UntrustedTreeWithSchema, MayHintAtASchemaThatImportsFromNowhere)
{
    scratch.Write("hinted.xsd", HintedSchema);
    ParserLimits limits;
    limits.forbidNetwork = true;
    parser.SetLimits(limits);
    EXPECT_EQ(NuvTest::LoadTree(parser, HintingDocument), IsLoaded);
}

// The stream reader.

/// Counts what a reader tells it.
class CountingHandler : public xercesc_3_0::DefaultHandler
{
  public:
    int locators = 0;
    int documents = 0;
    int elements = 0;
    int chunks = 0;
    int entities = 0;
    int declarations = 0;
    int fatalErrors = 0;
    int resolved = 0;

    void setDocumentLocator(const xercesc_3_0::Locator*) override { ++locators; }
    void startDocument() override { ++documents; }
    void startElement(const XMLCh*, const XMLCh*, const XMLCh*, const xercesc_3_0::Attributes&) override
    {
        ++elements;
    }
    void characters(const XMLCh*, XMLSize_t) override { ++chunks; }
    void startEntity(const XMLCh*) override { ++entities; }
    void internalEntityDecl(const XMLCh*, const XMLCh*) override { ++declarations; }
    void fatalError(const xercesc_3_0::SAXParseException&) override { ++fatalErrors; }
    xercesc_3_0::InputSource* resolveEntity(const XMLCh*, const XMLCh*) override
    {
        ++resolved;
        return nullptr;
    }
};

/// Counts what Xerces' newer interface asks it.
class CountingResolver : public xercesc_3_0::XMLEntityResolver
{
  public:
    int resolved = 0;

    xercesc_3_0::InputSource* resolveEntity(xercesc_3_0::XMLResourceIdentifier*) override
    {
        ++resolved;
        return new xercesc_3_0::MemBufInputSource(NuvTest::Bytes(""), 0, u"nothing");
    }
};

constexpr char SmallDocument[] = "<!DOCTYPE r [<!ENTITY e '<a/>'>]><r>&e;&e;</r>";

TEST(UntrustedStream, CountsEmptyElementsOnTheirOwnLevelOnly)
{
    ParserLimits limits;
    limits.maxNesting = 2;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    for (const bool processesNamespaces : {true, false})
    {
        reader->setFeature(xercesc_3_0::XMLUni::fgSAX2CoreNameSpaces, processesNamespaces);
        EXPECT_EQ(NuvTest::LoadStream(*reader, "<a><b/><b/><b></b><b/></a>"), IsLoaded);
    }
}

TEST(UntrustedStream, LeavesAllHandlersToTheCaller)
{
    const auto reader = NuvXML::CreateSAX2Reader(ParserLimits::ForUntrustedInput());
    CountingHandler handler;
    reader->setContentHandler(&handler);
    reader->setLexicalHandler(&handler);
    reader->setDeclarationHandler(&handler);
    reader->setDTDHandler(&handler);
    EXPECT_EQ(NuvTest::LoadStream(*reader, SmallDocument), IsLoaded);
    EXPECT_EQ(handler.locators, 1);
    EXPECT_EQ(handler.documents, 1);
    EXPECT_EQ(handler.elements, 3);
    EXPECT_EQ(handler.entities, 2);
    EXPECT_EQ(handler.declarations, 1);
}

TEST(UntrustedStream, IsLimitedWithoutHandlersToo)
{
    const auto reader = NuvXML::CreateSAX2Reader(OneLevel());
    EXPECT_EQ(NuvTest::LoadStream(*reader, TwoLevels), IsTooDeep);
    reader->setContentHandler(nullptr);
    reader->setErrorHandler(nullptr);
    reader->setDTDHandler(nullptr);
    reader->setLexicalHandler(nullptr);
    reader->setDeclarationHandler(nullptr);
    reader->setEntityResolver(nullptr);
    EXPECT_EQ(NuvTest::LoadStream(*reader, TwoLevels), IsTooDeep);
    EXPECT_EQ(NuvTest::LoadStream(*reader, "<a/>"), IsLoaded);
}

TEST(UntrustedStream, RefusesDocumentTypesWhateverHandlersAreTakenAway)
{
    ParserLimits limits;
    limits.forbidDocumentTypes = true;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    CountingHandler handler;
    reader->setLexicalHandler(&handler);
    reader->setLexicalHandler(nullptr);
    const Loaded refused = Refused(1, u"document types are forbidden");
    EXPECT_EQ(NuvTest::LoadStream(*reader, SmallDocument), refused);
    reader->setDeclarationHandler(nullptr);
    EXPECT_EQ(NuvTest::LoadStream(*reader, SmallDocument), refused);
    reader->setDTDHandler(nullptr);
    EXPECT_EQ(NuvTest::LoadStream(*reader, SmallDocument), refused);
}

TEST(UntrustedStream, DoesNotAskTheResolverOrTheErrorHandlerOfTheCaller)
{
    const auto reader = NuvXML::CreateSAX2Reader(ParserLimits::ForUntrustedInput());
    CountingHandler handler;
    reader->setEntityResolver(&handler);
    reader->setErrorHandler(&handler);
    EXPECT_EQ(NuvTest::LoadStream(*reader, "<!DOCTYPE r SYSTEM 'r.dtd'><r/>"),
              Refused(1, u"external entities are forbidden; the document refers to 'r.dtd'"));
    EXPECT_EQ(handler.resolved, 0);
    EXPECT_EQ(handler.fatalErrors, 0);
}

TEST(UntrustedStream, MayReadASchemaThatImportsFromNowhere)
{
    const NuvTest::ScratchFolder scratch;
    const NuvTest::CurrentFolderScope current(scratch.Path());
    scratch.Write("hinted.xsd", HintedSchema);
    ParserLimits limits;
    limits.forbidNetwork = true;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    EXPECT_EQ(NuvTest::LoadStream(*reader, HintingDocument), IsLoaded);
    limits = ParserLimits::ForUntrustedInput();
    const xercesc_3_0::MemBufInputSource schema(NuvTest::Bytes(HintedSchema), sizeof HintedSchema - 1,
                                                u"schema");
    EXPECT_TRUE(
        NuvXML::CreateSAX2Reader(limits)->loadGrammar(schema, xercesc_3_0::Grammar::SchemaGrammarType, true));
}

TEST(UntrustedStream, TellsTheErrorHandlerOfTooManyEntities)
{
    ParserLimits limits;
    limits.maxEntityExpansions = 1;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    EXPECT_FALSE(NuvTest::LoadStream(*reader, SmallDocument).isLoaded);
    CountingHandler handler;
    reader->setErrorHandler(&handler);
    NuvTest::LoadStream(*reader, SmallDocument);
    EXPECT_EQ(handler.fatalErrors, 1);
}

TEST(UntrustedStream, CanBeEchoed)
{
    xercesc_3_0::MemBufFormatTarget target;
    xercesc_3_0::XMLFormatter formatter(xercesc_3_0::XMLUni::fgUTF8EncodingString, &target,
                                        xercesc_3_0::XMLFormatter::NoEscapes,
                                        xercesc_3_0::XMLFormatter::UnRep_CharRef);
    NuvXML::SAX2Writer writer(formatter, false);
    const auto reader = NuvXML::CreateSAX2Reader(ParserLimits::ForUntrustedInput());
    reader->setContentHandler(&writer);
    EXPECT_EQ(NuvTest::LoadStream(*reader, "<r a='1'>text<b>&lt;</b></r>"), IsLoaded);
    const std::string echo(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen());
    EXPECT_NE(echo.find("<r a=\"1\">text<b>&lt;</b></r>"), echo.npos) << echo;
}

// What a caller can set.

xercesc_3_0::SAX2XMLReaderImpl& ImplementationOf(xercesc_3_0::SAX2XMLReader& reader)
{
    return dynamic_cast<xercesc_3_0::SAX2XMLReaderImpl&>(reader);
}

const Loaded IsExternal = Refused(1, u"external entities are forbidden; the document refers to 'r.dtd'");
constexpr char ExternalDocument[] = "<!DOCTYPE r SYSTEM 'r.dtd'><r/>";

TEST(UntrustedStream, KeepsItsLimitsWhateverResolverIsSet)
{
    const auto reader = NuvXML::CreateSAX2Reader(ParserLimits::ForUntrustedInput());
    auto& implementation = ImplementationOf(*reader);
    CountingHandler handler;
    CountingResolver resolver;
    implementation.setXMLEntityResolver(nullptr);
    EXPECT_EQ(NuvTest::LoadStream(*reader, ExternalDocument), IsExternal);
    implementation.setXMLEntityResolver(&resolver);
    EXPECT_EQ(NuvTest::LoadStream(*reader, ExternalDocument), IsExternal);
    implementation.setEntityResolver(&handler);
    implementation.setXMLEntityResolver(nullptr);
    EXPECT_EQ(NuvTest::LoadStream(*reader, ExternalDocument), IsExternal);
    EXPECT_EQ(resolver.resolved + handler.resolved, 0);
}

TEST(UntrustedStream, AsksTheLastResolverWithinItsLimits)
{
    const NuvTest::XercesLeakScope leaks;
    const auto reader = NuvXML::CreateSAX2Reader(OneLevel());
    CountingHandler handler;
    CountingResolver resolver;
    reader->setEntityResolver(&handler);
    ImplementationOf(*reader).setXMLEntityResolver(&resolver);
    EXPECT_EQ(NuvTest::LoadStream(*reader, ExternalDocument), IsLoaded);
    EXPECT_EQ(resolver.resolved, 1);
    reader->setEntityResolver(&handler);
    NuvTest::LoadStream(*reader, "<!DOCTYPE r [<!ENTITY e SYSTEM 'no such file'>]><r>&e;</r>");
    EXPECT_EQ(handler.resolved, 1);
    EXPECT_EQ(resolver.resolved, 1);
}

TEST(UntrustedStream, DoesNotLetGoOfItsSecurityManager)
{
    ParserLimits limits;
    limits.maxEntityExpansions = 1;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    xercesc_3_0::SecurityManager lenient;
    for (xercesc_3_0::SecurityManager* const other :
         {&lenient, static_cast<xercesc_3_0::SecurityManager*>(nullptr)})
        EXPECT_THROW(reader->setProperty(xercesc_3_0::XMLUni::fgXercesSecurityManager, other),
                     xercesc_3_0::SAXNotSupportedException);
    EXPECT_FALSE(NuvTest::LoadStream(*reader, SmallDocument).isLoaded);
    EXPECT_NO_THROW(NuvXML::CreateSAX2Reader(OneLevel())
                        ->setProperty(xercesc_3_0::XMLUni::fgXercesSecurityManager, &lenient));
}

TEST(UntrustedStream, EndsAtTooManyEntitiesThoughItIsToGoOnAfterErrors)
{
    ParserLimits limits;
    limits.maxEntityExpansions = 2;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    CountingHandler handler;
    reader->setContentHandler(&handler);
    reader->setErrorHandler(&handler);
    reader->setExitOnFirstFatalError(false);
    const std::string text = "<!DOCTYPE r [<!ENTITY e '<a/>'>]><r>" + Repeat("&e;", 100) + "</r>";
    EXPECT_FALSE(NuvTest::LoadStream(*reader, text).isLoaded);
    EXPECT_EQ(handler.elements, 3);
    EXPECT_EQ(handler.fatalErrors, 1);
    EXPECT_EQ(NuvTest::LoadStream(*reader, "<r></s>"), IsLoaded) << "Other errors are the handler's.";
}

TEST(UntrustedStream, TakesNoScannerThatWouldPassOverForbiddenDocumentTypes)
{
    using xercesc_3_0::XMLUni;
    ParserLimits limits;
    limits.forbidDocumentTypes = true;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    for (const XMLCh* const scanner : {XMLUni::fgWFXMLScanner, XMLUni::fgSGXMLScanner})
        EXPECT_THROW(reader->setProperty(XMLUni::fgXercesScannerName, const_cast<XMLCh*>(scanner)),
                     xercesc_3_0::SAXNotSupportedException);
    for (const XMLCh* const scanner : {XMLUni::fgDGXMLScanner, XMLUni::fgIGXMLScanner})
    {
        reader->setProperty(XMLUni::fgXercesScannerName, const_cast<XMLCh*>(scanner));
        EXPECT_EQ(NuvTest::LoadStream(*reader, SmallDocument), Refused(1, u"document types are forbidden"));
    }
}

TEST(UntrustedStream, KeepsItsLimitsWithEveryScanner)
{
    using xercesc_3_0::XMLUni;
    const auto reader = NuvXML::CreateSAX2Reader(OneLevel());
    for (const XMLCh* const scanner :
         {XMLUni::fgWFXMLScanner, XMLUni::fgSGXMLScanner, XMLUni::fgDGXMLScanner, XMLUni::fgIGXMLScanner})
    {
        reader->setProperty(XMLUni::fgXercesScannerName, const_cast<XMLCh*>(scanner));
        EXPECT_EQ(NuvTest::LoadStream(*reader, TwoLevels), IsTooDeep);
    }
}

TEST(UntrustedStream, KeepsItsLimitsWhateverElseIsSet)
{
    const NuvTest::ScratchFolder scratch;
    const NuvTest::CurrentFolderScope current(scratch.Path());
    scratch.Write("hinted.xsd", HintedSchema);
    ParserLimits limits = ParserLimits::ForUntrustedInput();
    limits.maxNesting = 1;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    const auto other = NuvXML::CreateSAX2Reader(limits);
    auto& implementation = ImplementationOf(*reader);
    implementation.installAdvDocHandler(&ImplementationOf(*other));
    implementation.removeAdvDocHandler(&ImplementationOf(*other));
    implementation.setPSVIHandler(nullptr);
    EXPECT_EQ(NuvTest::LoadStream(*reader, TwoLevels), IsTooDeep);
    NuvTest::WatchedFolder watch(scratch);
    reader->setFeature(xercesc_3_0::XMLUni::fgXercesLoadSchema, true);
    EXPECT_EQ(NuvTest::LoadStream(*reader, HintingDocument),
              Refused(1, u"external entities are forbidden; the document refers to 'hinted.xsd'"));
    EXPECT_FALSE(watch.WasTouched());
}

TEST(UntrustedStream, KeepsItsSettingsFromDocumentToDocument)
{
    using xercesc_3_0::XMLUni;
    ParserLimits limits;
    limits.maxElementNames = 1;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    const XMLCh* const features[] = {XMLUni::fgXercesGenerateSyntheticAnnotations,
                                     XMLUni::fgXercesValidateAnnotations,
                                     XMLUni::fgXercesIgnoreCachedDTD,
                                     XMLUni::fgXercesIgnoreAnnotations,
                                     XMLUni::fgXercesDisableDefaultEntityResolution,
                                     XMLUni::fgXercesSkipDTDValidation,
                                     XMLUni::fgXercesHandleMultipleImports,
                                     XMLUni::fgXercesCalculateSrcOfs,
                                     XMLUni::fgXercesLoadExternalDTD};
    XMLSize_t lowWaterMark = 77;
    reader->setProperty(XMLUni::fgXercesLowWaterMark, &lowWaterMark);
    for (const bool value : {true, false})
    {
        for (const XMLCh* const feature : features)
            reader->setFeature(feature, value);
        for (const char* text : {"<a/>", "<b/>", "<c/>"})
            EXPECT_EQ(NuvTest::LoadStream(*reader, text), IsLoaded);
        for (const XMLCh* const feature : features)
            EXPECT_EQ(reader->getFeature(feature), value) << UniString(feature);
        EXPECT_EQ(*static_cast<XMLSize_t*>(reader->getProperty(XMLUni::fgXercesLowWaterMark)), 77u);
    }
}

TEST(UntrustedStream, KeepsItsBufferSizeFromDocumentToDocument)
{
    ParserLimits limits;
    limits.maxElementNames = 1;
    const auto reader = NuvXML::CreateSAX2Reader(limits);
    CountingHandler handler;
    reader->setContentHandler(&handler);
    reader->setInputBufferSize(4'000'000);
    const std::string text = Repeat("x", 1'500'000);
    for (const std::string& name : {std::string("a"), std::string("b"), std::string("c")})
        EXPECT_EQ(NuvTest::LoadStream(*reader, "<" + name + ">" + text + "</" + name + ">"), IsLoaded);
    EXPECT_EQ(handler.chunks, 3);
}

} // namespace
