// Loading when what a document or a schema names by an absolute URL is to be had from the application's own
// net accessor only, which may fail in every way.
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>

#include <functional>
#include <stdexcept>
#include <string_view>

namespace
{

using Nuv::UniString;
using Document = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;

/// Answers each URL with what `fetch` returns or throws, until the end of the scope.
class NetAccessorScope : public xercesc_3_0::XMLNetAccessor
{
  public:
    using Fetch = std::function<std::string_view()>;

    explicit NetAccessorScope(Fetch answer)
        : fetch(std::move(answer))
    {
        xercesc_3_0::XMLPlatformUtils::fgNetAccessor = this;
    }
    ~NetAccessorScope() override { xercesc_3_0::XMLPlatformUtils::fgNetAccessor = original; }

    const XMLCh* getId() const override { return u"test"; }
    xercesc_3_0::BinInputStream* makeNew(const xercesc_3_0::XMLURL&,
                                         const xercesc_3_0::XMLNetHTTPInfo*) override
    {
        const std::string_view bytes = fetch();
        return xercesc_3_0::MemBufInputSource(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(),
                                              "test")
            .makeStream();
    }

  private:
    Fetch fetch;
    xercesc_3_0::XMLNetAccessor* const original = xercesc_3_0::XMLPlatformUtils::fgNetAccessor;
};

constexpr std::string_view RemoteSchema =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='n' type='xs:int'/></xs:schema>";
constexpr std::string_view SchemaThatIncludesIt =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n<xs:include "
    "schemaLocation='http://host/n.xsd'/>\n"
    "</xs:schema>";
constexpr std::string_view DocumentWithRemoteEntity =
    "<!DOCTYPE r [<!ELEMENT r ANY><!ENTITY e SYSTEM 'http://host/e.txt'>]>\n<r>&e;</r>";

[[noreturn]] std::string_view ThrowSAXException() { throw xercesc_3_0::SAXException(u"The host is asleep."); }

[[noreturn]] std::string_view ThrowDOMException()
{
    throw xercesc_3_0::DOMException(xercesc_3_0::DOMException::NOT_FOUND_ERR, 0);
}

[[noreturn]] std::string_view ThrowXMLException()
{
    ThrowXML(xercesc_3_0::RuntimeException, xercesc_3_0::XMLExcepts::NetAcc_ReadSocket);
}

[[noreturn]] std::string_view ThrowOther() { throw std::runtime_error("no net"); }

struct Report
{
    NodeLocationInfo location{7};
    UniString message{u"untouched"};
};

class NetAccessor : public testing::Test
{
  protected:
    bool LoadSchema(std::string_view text)
    {
        return parser.LoadSchema(IO::Location(scratch.Write("schema.xsd", text)), &report.location,
                                 &report.message);
    }

    Document Parse(std::string_view text)
    {
        return Document(parser.Parse(reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<unsigned int>(text.size()),
                                     ValidatingXMLParser::LineInfoParser::Val_Auto, false,
                                     UniString(u"sample"), nullptr, &report.location, &report.message));
    }

    void ExpectReport(unsigned int line, const UniString& message) const
    {
        EXPECT_EQ(report.location.lineNumber, line);
        EXPECT_EQ(report.message, message);
    }

    /// What a failure leaves: a parser that validates against no schema, and can be given one.
    void ExpectThatTheParserIsAsItWas()
    {
        const NetAccessorScope net([] { return RemoteSchema; });
        EXPECT_TRUE(Parse("<n>text</n>"));
        EXPECT_TRUE(LoadSchema(SchemaThatIncludesIt));
        EXPECT_TRUE(Parse("<n>1</n>"));
        EXPECT_FALSE(Parse("<n>text</n>"));
    }

    ValidatingXMLParser parser;
    Report report;

  private:
    NuvTest::ScratchFolder scratch;
};

TEST_F(NetAccessor, FetchesEntities)
{
    const NetAccessorScope net([] { return std::string_view("text"); });
    const Document document = Parse(DocumentWithRemoteEntity);
    ASSERT_TRUE(document);
    EXPECT_EQ(UniString(document->getDocumentElement()->getTextContent()), UniString(u"text"));
    ExpectReport(7, u"untouched");
}

TEST_F(NetAccessor, FetchesPartsOfSchemas) { ExpectThatTheParserIsAsItWas(); }

TEST_F(NetAccessor, EndsLoadingASchemaByASAXExceptionWithItsMessage)
{
    {
        const NetAccessorScope net(ThrowSAXException);
        EXPECT_FALSE(LoadSchema(SchemaThatIncludesIt));
    }
    ExpectReport(0, u"The host is asleep.");
    ExpectThatTheParserIsAsItWas();
}

TEST_F(NetAccessor, EndsLoadingASchemaByADOMExceptionWithItsMessage)
{
    {
        const NetAccessorScope net(ThrowDOMException);
        EXPECT_FALSE(LoadSchema(SchemaThatIncludesIt));
    }
    ExpectReport(0, xercesc_3_0::DOMException(xercesc_3_0::DOMException::NOT_FOUND_ERR, 0).getMessage());
    ExpectThatTheParserIsAsItWas();
}

TEST_F(NetAccessor, EndsLoadingASchemaByAnyOtherException)
{
    {
        const NetAccessorScope net(ThrowOther);
        EXPECT_FALSE(LoadSchema(SchemaThatIncludesIt));
    }
    ExpectReport(0, u"Could not load the XML Schema.");
    EXPECT_FALSE(parser.RanOutOfMemory());
    ExpectThatTheParserIsAsItWas();
}

TEST_F(NetAccessor, CannotLoadASchemaWithTheParserThatAsksIt)
{
    bool isLoaded = true;
    {
        const NetAccessorScope net(
            [&]
            {
                isLoaded = LoadSchema(RemoteSchema);
                return RemoteSchema;
            });
        EXPECT_TRUE(LoadSchema(SchemaThatIncludesIt));
    }
    EXPECT_FALSE(isLoaded);
    EXPECT_GT(report.location.lineNumber, 7U) << "a line of Xerces' source";
    EXPECT_NE(report.message.ToUTF8().find("in progress"), std::string::npos) << report.message;
    EXPECT_FALSE(Parse("<n>text</n>"));
}

TEST_F(NetAccessor, EndsLoadingADocumentByAnExceptionOfXercesWhereItStands)
{
    const NetAccessorScope net(ThrowXMLException);
    EXPECT_FALSE(Parse(DocumentWithRemoteEntity));
    EXPECT_EQ(report.location.lineNumber, 2U);
    EXPECT_NE(report.message, UniString(u"untouched"));
    EXPECT_NE(report.message, UniString(u"Failed to parse XML document"));
}

TEST_F(NetAccessor, EndsLoadingADocumentByAnyOtherException)
{
    for (const auto& fail : {ThrowSAXException, ThrowDOMException, ThrowOther})
    {
        report = Report();
        {
            const NetAccessorScope net(fail);
            EXPECT_FALSE(Parse(DocumentWithRemoteEntity));
        }
        ExpectReport(0, u"Failed to parse XML document");
        EXPECT_FALSE(parser.RanOutOfMemory());
        EXPECT_TRUE(Parse("<r/>"));
    }
}

} // namespace
