#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include "tests/support/ScratchFolder.hpp"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* Valid = "<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b EMPTY>]>\n<a><b/></a>";
constexpr const char* Invalid = "<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b EMPTY>]>\n<a>\n<c/></a>";

/// A parser with a handler that keeps every error as a line and a text.
class ErrorHandlerTest : public testing::Test
{
  protected:
    ErrorHandlerTest() { parser.SetErrorHandler(Keep()); }

    ValidatingXMLParser::ErrorHandler Keep()
    {
        return [this](const NodeLocationInfo& where, const Nuv::UniString& text)
        { errors.push_back(std::to_string(where.lineNumber) + ": " + text.ToUTF8()); };
    }

    bool Parses(std::string_view text)
    {
        return NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(parser.Parse(
                   reinterpret_cast<const unsigned char*>(text.data()),
                   static_cast<unsigned int>(text.size()), xercesc_3_0::AbstractDOMParser::Val_Auto, false,
                   Nuv::UniString(u"test"), nullptr, &place, &message)) != nullptr;
    }

    ValidatingXMLParser parser;
    std::vector<std::string> errors;
    NodeLocationInfo place;
    Nuv::UniString message;
};

TEST_F(ErrorHandlerTest, IsNotToldOfAValidDocument)
{
    EXPECT_TRUE(Parses(Valid));
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(ErrorHandlerTest, IsToldEveryErrorOfADocumentThatLoadsForAllThat)
{
    EXPECT_TRUE(Parses(Invalid));
    EXPECT_THAT(errors, ElementsAre("3: no declaration found for element 'c'",
                                    "3: element 'c' is not allowed for content model '(b)*'"));
    EXPECT_TRUE(message.IsEmpty());
}

TEST_F(ErrorHandlerTest, IsNotToldOfTextThatIsNotWellFormed)
{
    EXPECT_FALSE(Parses("<a>\n<b></a>"));
    EXPECT_THAT(errors, IsEmpty());
    EXPECT_EQ(place.lineNumber, 2u);
    EXPECT_EQ(message, Nuv::UniString(u"expected end of tag 'b'"));
}

TEST_F(ErrorHandlerTest, IsToldBreachesOfALoadedSchema)
{
    const NuvTest::ScratchFolder folder;
    ASSERT_TRUE(parser.LoadSchema(
        IO::Location(folder.Write("a.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                           "<xs:element name='a' type='xs:int'/></xs:schema>")),
        nullptr, nullptr));
    EXPECT_TRUE(Parses("<a>\nx</a>"));
    EXPECT_THAT(errors, ElementsAre("2: value 'x' does not match regular expression facet '[+\\-]?[0-9]+'"));
}

TEST_F(ErrorHandlerTest, GivesWayToTheFirstErrorWhenItIsTakenAway)
{
    parser.SetErrorHandler({});
    EXPECT_FALSE(Parses(Invalid));
    EXPECT_THAT(errors, IsEmpty());
    EXPECT_EQ(message, Nuv::UniString(u"no declaration found for element 'c'"));
}

TEST_F(ErrorHandlerTest, EndsTheParseByThrowing)
{
    parser.SetErrorHandler([](const NodeLocationInfo&, const Nuv::UniString&)
                           { throw std::runtime_error("enough"); });
    EXPECT_FALSE(Parses(Invalid));
    EXPECT_EQ(message, Nuv::UniString(u"Failed to parse XML document"));
    parser.SetErrorHandler(Keep());
    EXPECT_TRUE(Parses(Valid));
}

TEST_F(ErrorHandlerTest, CannotUseTheParserThatCallsIt)
{
    const NuvTest::ScratchFolder scratch;
    const IO::Location schema(
        scratch.Write("a.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'/>"));
    NodeLocationInfo innerPlace;
    Nuv::UniString innerMessage;
    const std::string_view inner = "<a/>";
    std::vector<bool> results;
    parser.SetErrorHandler(
        [&](const NodeLocationInfo& where, const Nuv::UniString& text)
        {
            Keep()(where, text);
            results.push_back(parser.LoadSchema(schema, nullptr, nullptr));
            results.push_back(parser.Parse(reinterpret_cast<const unsigned char*>(inner.data()), 4,
                                           xercesc_3_0::AbstractDOMParser::Val_Auto, false,
                                           Nuv::UniString(u"inner"), nullptr, &innerPlace,
                                           &innerMessage) != nullptr);
        });
    EXPECT_TRUE(Parses("<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b EMPTY>]>\n<a>\n<c/>\n<d/></a>")) << message;
    EXPECT_THAT(results, testing::Each(false));
    EXPECT_THAT(innerMessage.ToUTF8(), testing::HasSubstr("in progress"));
    EXPECT_THAT(errors, ElementsAre(testing::StartsWith("3: "), testing::StartsWith("4: "),
                                    testing::StartsWith("4: ")));
    EXPECT_TRUE(Parses(Valid));
}

} // namespace
