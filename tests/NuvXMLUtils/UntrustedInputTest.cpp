#include "tests/NuvXMLUtils/UntrustedInput.hpp"
#include "tests/support/CurrentFolderScope.hpp"
#include "tests/support/OutsideWorld.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/XercesLeakScope.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace
{

using Nuv::UniString;
using NuvTest::CollidingNames;
using NuvTest::InUTF16;
using NuvTest::Loaded;
using NuvTest::Refused;
using NuvTest::Repeat;

const Loaded IsLoaded{true, NuvTest::NoLine, {}};

/// Every test runs with the tree parser and with the stream reader.
struct Way
{
    const char* name;
    Loaded (*load)(std::string_view, const ParserLimits&);
};

const auto BothWays = testing::Values(Way{"Tree", NuvTest::LoadTree}, Way{"Stream", NuvTest::LoadStream});

std::string NameOfWay(const testing::TestParamInfo<Way>& way) { return way.param.name; }

class UntrustedInputTest : public testing::TestWithParam<Way>
{
  protected:
    static Loaded Load(std::string_view text, const ParserLimits& limits)
    {
        return GetParam().load(text, limits);
    }

    /// Expects that a document with this attack is refused at no great cost, in UTF-16 too, both within the
    /// limits for untrusted input and where document types are forbidden.
    static void ExpectAttackToFail(const std::string& text, const Loaded& expected)
    {
        ExpectToFail(text, ParserLimits::ForUntrustedInput(), expected);
        ParserLimits noDocumentTypes;
        noDocumentTypes.forbidDocumentTypes = true;
        ExpectToFail(text, noDocumentTypes, Refused(1, u"document types are forbidden"));
    }

    static void ExpectToFail(const std::string& text, const ParserLimits& limits, const Loaded& expected)
    {
        NuvTest::ExpectToBeCheap([&] { Load(text, limits); });
        EXPECT_EQ(Load(text, limits), expected);
        EXPECT_EQ(Load(InUTF16(text), limits), expected);
    }
};

INSTANTIATE_TEST_SUITE_P(, UntrustedInputTest, BothWays, NameOfWay);

const ParserLimits Untrusted = ParserLimits::ForUntrustedInput();

const Loaded TooManyExpansions =
    Refused(2, u"parser has encountered more than '10000' entity expansions in the document; this is the "
               u"limit imposed by the application");

/// Declarations of entities e0 to e9, each of which is ten times the one before.
std::string Laughs()
{
    std::string declarations = "<!ENTITY e0 'ha'>";
    for (int i = 1; i < 10; ++i)
        declarations +=
            "<!ENTITY e" + std::to_string(i) + " '" + Repeat("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    return declarations;
}

std::string WithDocumentType(const std::string& declarations, const std::string& root)
{
    return "<!DOCTYPE r [" + declarations + "]>\n" + root;
}

// Entities that grow.

TEST_P(UntrustedInputTest, EndsABillionLaughs)
{
    ExpectAttackToFail(WithDocumentType(Laughs(), "<r>&e9;</r>"), TooManyExpansions);
}

TEST_P(UntrustedInputTest, EndsABillionLaughsInAnAttribute)
{
    ExpectAttackToFail(WithDocumentType(Laughs(), "<r a='&e9;'/>"), TooManyExpansions);
}

TEST_P(UntrustedInputTest, EndsABillionLaughsInADefaultOfAnAttribute)
{
    ExpectAttackToFail(WithDocumentType(Laughs() + "<!ATTLIST r a CDATA '&e9;'>", "<r/>"),
                       Refused(1, u"attributes must be declared before entities where entity expansion is "
                                  u"limited; the list of element 'r' is not"));
}

TEST_P(UntrustedInputTest, EndsABillionLaughsOfParameterEntities)
{
    std::string declarations = "<!ENTITY % e0 ''>";
    for (int i = 1; i < 10; ++i)
        declarations += "<!ENTITY % e" + std::to_string(i) + " '" +
                        Repeat("&#37;e" + std::to_string(i - 1) + ";", 10) + "'>";
    ExpectAttackToFail(WithDocumentType(declarations + "%e9;", "<r/>"),
                       Refused(1, u"parameter entities are forbidden where entity expansion is limited; the "
                                  u"document declares 'e0'"));
}

TEST_P(UntrustedInputTest, EndsAQuadraticBlowUp)
{
    const std::string entity = "<!ENTITY e '" + Repeat("x", 100'000) + "'>";
    ExpectAttackToFail(WithDocumentType(entity, "<r>" + Repeat("&e;", 100'000) + "</r>"),
                       Refused(1, u"the text of entity 'e' is longer than the limit of 1000 characters"));
}

TEST_P(UntrustedInputTest, EndsAQuadraticBlowUpOfEntitiesThatAreNotTooLong)
{
    const std::string entity = "<!ENTITY e '" + Repeat("x", ParserLimits::SafeDeclarationLength) + "'>";
    const std::string references = Repeat("&e;", 100'000);
    ExpectAttackToFail(
        WithDocumentType(entity, "<r>" + references + "</r>"),
        Refused(2, u"entities put more characters into the document than the limit of 1000000"));
    ExpectAttackToFail(WithDocumentType(entity, "<r a='" + references + "'/>"), TooManyExpansions);
}

/// Declarations of so many entities, each of which but e0 refers to the one before.
std::string Chain(int length)
{
    std::string declarations = "<!ENTITY e0 '&#38;#60;'>";
    for (int i = 1; i < length; ++i)
        declarations += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    return declarations;
}

TEST_P(UntrustedInputTest, EndsAChainOfEntities)
{
    const Loaded refused = Refused(1, u"the document type declares more than the limit of 500");
    for (const char* root : {"<r>&e99999;</r>", "<r a='&e99999;'/>"})
        ExpectAttackToFail(WithDocumentType(Chain(100'000), root), refused);
}

TEST_P(UntrustedInputTest, BearsAChainOfEntitiesWithinTheLimits)
{
    for (const char* root : {"<r>&e499;</r>", "<r a='&e499;'/>"})
    {
        const std::string text = WithDocumentType(Chain(500), root);
        NuvTest::ExpectToBeCheap([&] { Load(text, Untrusted); });
        EXPECT_EQ(Load(text, Untrusted), IsLoaded);
    }
}

TEST_P(UntrustedInputTest, RefusesAnEntityWithinItself)
{
    for (const char* root : {"<r>&e;</r>", "<r a='&e;'/>"})
    {
        const Loaded loaded = Load(WithDocumentType("<!ENTITY e '&f;'><!ENTITY f '&e;'>", root), Untrusted);
        EXPECT_EQ(loaded, Refused(2, u"recursive entity expansion 'e'")) << root;
    }
}

// Declarations that grow.

TEST_P(UntrustedInputTest, EndsABombOfDefaultAttributes)
{
    std::string attributes;
    for (int i = 0; i < 400; ++i)
        attributes += " a" + std::to_string(i) + " CDATA 'x'";
    ExpectAttackToFail(
        WithDocumentType("<!ATTLIST a" + attributes + ">", "<r>" + Repeat("<a/>", 100'000) + "</r>"),
        Refused(2, u"the document type adds more attributes to elements than the limit of 10000"));
}

TEST_P(UntrustedInputTest, EndsABombOfLongDefaults)
{
    const std::string attribute = "<!ATTLIST a a CDATA '" + Repeat("x", 100'000) + "'>";
    ExpectAttackToFail(
        WithDocumentType(attribute, "<r>" + Repeat("<a/>", 100'000) + "</r>"),
        Refused(1, u"the default of attribute 'a' is longer than the limit of 1000 characters"));
}

TEST_P(UntrustedInputTest, EndsAContentModelOfManyStates)
{
    const std::string model = "<!ELEMENT r (" + Repeat("a?,", 50'000) + "a)>";
    ExpectAttackToFail(
        WithDocumentType(model, "<r/>"),
        Refused(1, u"the content model of element 'r' is longer than the limit of 1000 characters"));
}

/// The automaton must remember which of the last 25 were a's.
TEST_P(UntrustedInputTest, EndsAContentModelThatIsAmbiguous)
{
    const std::string model = "<!ELEMENT r ((a|b)*,a" + Repeat(",(a|b)", 25) + ")>";
    ExpectAttackToFail(
        WithDocumentType(model + "<!ELEMENT a EMPTY><!ELEMENT b EMPTY>", "<r>" + Repeat("<a/>", 30) + "</r>"),
        Refused(1, u"the content model of element 'r' may need more states than the limit of 1000"));
}

TEST_P(UntrustedInputTest, BearsNamesThatRepeatInAContentModel)
{
    const std::string model = "<!ELEMENT r ((a|b)*" + Repeat(",(a|b)", 7) + ")>";
    EXPECT_EQ(Load(WithDocumentType(model, "<r/>"), Untrusted), IsLoaded);
}

/// Declarations of so many things of a kind, such as `<!NOTATION n1 PUBLIC ''>`.
std::string Numbered(int count, const std::string& start, const std::string& end)
{
    std::string declarations;
    for (int i = 0; i < count; ++i)
        declarations += start + std::to_string(i) + end;
    return declarations;
}

TEST_P(UntrustedInputTest, EndsManyDeclarations)
{
    const std::string elements = Repeat("<a/>", 50'000);
    for (const std::string& declarations :
         {Numbered(50'000, "<!ENTITY e", " ''>"), Numbered(50'000, "<!NOTATION n", " PUBLIC ''>"),
          Numbered(50'000, "<!ELEMENT e", " ANY>"), Numbered(50'000, "<!ATTLIST e", ">"),
          "<!ATTLIST a" + Numbered(50'000, " a", " CDATA #IMPLIED") + ">"})
        ExpectAttackToFail(WithDocumentType(declarations, "<r>" + elements + "</r>"),
                           Refused(1, u"the document type declares more than the limit of 500"));
}

TEST_P(UntrustedInputTest, CountsDeclarationsExactly)
{
    EXPECT_EQ(Load(WithDocumentType(Numbered(500, "<!ENTITY e", " ''>"), "<r/>"), Untrusted), IsLoaded);
    EXPECT_EQ(Load(WithDocumentType(Numbered(501, "<!ENTITY e", " ''>"), "<r/>"), Untrusted),
              Refused(1, u"the document type declares more than the limit of 500"));
}

TEST_P(UntrustedInputTest, EndsAnEnumerationOfManyValues)
{
    const std::string attribute = "<!ATTLIST a a (x" + Numbered(50'000, "|v", "") + ") #IMPLIED>";
    ExpectAttackToFail(
        WithDocumentType(attribute, "<r>" + Repeat("<a a='v49999'/>", 50'000) + "</r>"),
        Refused(1, u"the list of values of attribute 'a' is longer than the limit of 1000 characters"));
}

TEST_P(UntrustedInputTest, EndsEntitiesOfManyElements)
{
    const std::string entity = "<!ENTITY e '" + Repeat("<a/>", 250) + "'>";
    ExpectAttackToFail(
        WithDocumentType(entity, "<r>" + Repeat("&e;", 10'000) + "</r>"),
        Refused(2, u"entities put more characters into the document than the limit of 1000000"));
}

TEST_P(UntrustedInputTest, EndsNamesOfElementsThatCollide)
{
    std::string elements;
    for (const std::string& name : CollidingNames(60'000))
        elements += "<" + name + "/>";
    ExpectToFail("<r>" + elements + "</r>", Untrusted,
                 Refused(1, u"the document has more names of elements than the limit of 2000"));
}

TEST_P(UntrustedInputTest, CountsTheNamesOfElementsExactly)
{
    ParserLimits limits;
    limits.maxElementNames = 3;
    const Loaded refused = Refused(2, u"the document has more names of elements than the limit of 3");
    EXPECT_EQ(Load("<a><b/><c>" + Repeat("<a/><b/><c/>", 100) + "</c></a>", limits), IsLoaded);
    EXPECT_EQ(Load("<a><b/><c>\n<d/></c></a>", limits), refused);
    EXPECT_EQ(Load("<a xmlns:p='u' xmlns:q='u'><p:b/><q:b/><p:b/></a>", limits), IsLoaded);
    EXPECT_EQ(Load("<a xmlns:p='u' xmlns:q='u'><p:b/><q:b/>\n<b xmlns='u'/></a>", limits), refused);
}

TEST_P(UntrustedInputTest, CountsNoNamesThatAreDeclaredOnly)
{
    ParserLimits limits;
    limits.maxElementNames = 1;
    EXPECT_EQ(Load(WithDocumentType(Numbered(3'000, "<!ELEMENT e", " EMPTY>") +
                                        "<!ELEMENT r (a|b|c)*><!ATTLIST d e CDATA ''>",
                                    "<r/>"),
                   limits),
              IsLoaded);
}

TEST_P(UntrustedInputTest, EndsNamesThatCollideInContentModels)
{
    const std::vector<std::string> names = CollidingNames(15'000);
    std::string declarations;
    for (size_t i = 0; i < names.size(); i += 30)
    {
        declarations += "<!ELEMENT e" + std::to_string(i) + " (r";
        for (size_t j = i; j < i + 30; ++j)
            declarations += "|" + names[j];
        declarations += ")>";
    }
    ExpectAttackToFail(
        WithDocumentType(declarations, "<r/>"),
        Refused(1, u"the content models of the document type have more names than the limit of 500"));
}

TEST_P(UntrustedInputTest, CountsTheNamesInContentModelsOnce)
{
    ParserLimits limits;
    limits.maxDeclarations = 2;
    EXPECT_EQ(Load(WithDocumentType("<!ELEMENT r (#PCDATA|a|b)*><!ELEMENT a (b,(r|a)?)>", "<r/>"), limits),
              Refused(1, u"the content models of the document type have more names than the limit of 2"));
    EXPECT_EQ(Load(WithDocumentType("<!ELEMENT r (#PCDATA|a|r)*><!ELEMENT a (r,(r|a)?)>", "<r/>"), limits),
              IsLoaded);
}

TEST_P(UntrustedInputTest, EndsANestedContentModel)
{
    const std::string model = "<!ELEMENT r " + Repeat("(b,", 1'000'000) + "a" + Repeat(")", 1'000'000) + ">";
    const std::string text = WithDocumentType(model, "<r/>");
    const NuvTest::XercesLeakScope leaks;
    NuvTest::ExpectToBeCheap([&] { Load(text, Untrusted); });
    EXPECT_EQ(Load(text, Untrusted), Refused(1, u"unterminated DOCTYPE declaration"));
}

TEST_P(UntrustedInputTest, EndsAnElementOfManyAttributes)
{
    std::string element = "<r";
    for (int i = 0; i < 100'000; ++i)
        element += " a" + std::to_string(i) + "=''";
    ExpectToFail(element + "/>", Untrusted,
                 Refused(1, u"an element has more attributes than the limit of 1000"));
}

// Nesting.

TEST_P(UntrustedInputTest, EndsANestingBomb)
{
    const std::string text = Repeat("<a>", 10'000'000);
    NuvTest::ExpectToBeCheap([&] { Load(text, Untrusted); });
    EXPECT_EQ(Load(text, Untrusted), Refused(1, u"elements are nested deeper than the limit of 1000 levels"));
}

TEST_P(UntrustedInputTest, LimitsNestingToTheLevel)
{
    ParserLimits limits;
    limits.maxNesting = 3;
    const Loaded tooDeep = Refused(2, u"elements are nested deeper than the limit of 3 levels");
    EXPECT_EQ(Load("<a><b><c/></b><b><c></c></b></a>", limits), IsLoaded);
    EXPECT_EQ(Load("<a><b><c>\n<d/></c></b></a>", limits), tooDeep);
    EXPECT_EQ(Load("<a><b><c>\n<d></d></c></b></a>", limits), tooDeep);
    EXPECT_EQ(Load(WithDocumentType("<!ENTITY e '<d/>'>", "<a><b><c>&e;</c></b></a>"), limits), tooDeep);
    EXPECT_EQ(Load("<a>" + Repeat("<b><c/></b><b/>", 1000) + "</a>", limits), IsLoaded);
    EXPECT_EQ(Load(Repeat("<a>", 5000) + Repeat("</a>", 5000), ParserLimits()), IsLoaded);
}

// What is outside.

class OutsideTest : public UntrustedInputTest
{
  protected:
    OutsideTest()
    {
        scratch.Write("secret", "text");
        scratch.Write("r.dtd", "<!ELEMENT r ANY>");
    }

    std::string PathOf(const char* name) const { return (scratch.Path() / name).string(); }

    /// Expects that the document is refused before the file is opened.
    void ExpectToBeRefused(const std::string& text, unsigned int line, const std::string& systemId)
    {
        NuvTest::WatchedFolder watch(scratch);
        const UniString quoted = UniString(u"'") + UniString::FromUTF8(systemId) + u"'";
        const Loaded refused =
            Refused(line, UniString(u"external entities are forbidden; the document refers to ") + quoted);
        EXPECT_EQ(Load(text, Untrusted), refused);
        EXPECT_EQ(Load(InUTF16(text), Untrusted), refused);
        ParserLimits noDocumentTypes;
        noDocumentTypes.forbidDocumentTypes = true;
        EXPECT_EQ(Load(text, noDocumentTypes), Refused(1, u"document types are forbidden"));
        EXPECT_FALSE(watch.WasTouched());
        const NuvTest::XercesLeakScope leaks;
        EXPECT_EQ(Load(text, ParserLimits()), IsLoaded);
        EXPECT_TRUE(watch.WasTouched()) << "The test would not have seen it.";
    }

    NuvTest::ScratchFolder scratch;
    NuvTest::CurrentFolderScope current{scratch.Path()};
};

INSTANTIATE_TEST_SUITE_P(, OutsideTest, BothWays, NameOfWay);

TEST_P(OutsideTest, StaysUnreadByExternalEntities)
{
    for (const std::string& systemId :
         {PathOf("secret"), "file://" + PathOf("secret"), std::string("secret"), std::string("./secret")})
        ExpectToBeRefused(WithDocumentType("<!ENTITY e SYSTEM '" + systemId + "'>", "<r>\n&e;</r>"), 3,
                          systemId);
}

TEST_P(OutsideTest, StaysUnreadByExternalDocumentTypes)
{
    for (const std::string& systemId : {"file://" + PathOf("r.dtd"), std::string("r.dtd")})
        ExpectToBeRefused("<!DOCTYPE r SYSTEM '" + systemId + "'><r/>", 1, systemId);
}

TEST_P(OutsideTest, StaysUnreadByExternalParameterEntities)
{
    const std::string text = WithDocumentType("<!ENTITY % p SYSTEM 'r.dtd'>%p;", "<r/>");
    NuvTest::WatchedFolder watch(scratch);
    EXPECT_EQ(Load(text, Untrusted).message,
              UniString(u"parameter entities are forbidden where entity expansion is limited; the document "
                        u"declares 'p'"));
    EXPECT_FALSE(watch.WasTouched());
    ParserLimits limits = Untrusted;
    limits.allowExpansionInDocumentType = true;
    EXPECT_EQ(Load(text, limits).message,
              UniString(u"external entities are forbidden; the document refers to 'r.dtd'"));
    EXPECT_FALSE(watch.WasTouched());
}

TEST_P(OutsideTest, MayBeDeclaredAndNotUsed)
{
    EXPECT_EQ(Load(WithDocumentType("<!ENTITY e SYSTEM 'secret'><!NOTATION n SYSTEM 'n'>"
                                    "<!ENTITY u SYSTEM 'secret' NDATA n>",
                                    "<r/>"),
                   Untrusted),
              IsLoaded);
}

TEST_P(OutsideTest, IsNotIncluded)
{
    NuvTest::WatchedFolder watch(scratch);
    EXPECT_EQ(
        Load("<r xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='secret' parse='text'/></r>",
             Untrusted),
        IsLoaded);
    EXPECT_FALSE(watch.WasTouched());
}

TEST_P(OutsideTest, StaysUnreadByHintsToSchemas)
{
    scratch.Write("r.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                           "<xs:element name='r'/></xs:schema>");
    NuvTest::WatchedFolder watch(scratch);
    EXPECT_EQ(Load("<r xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                   "xsi:noNamespaceSchemaLocation='r.xsd' xsi:schemaLocation='urn:n r.xsd'/>",
                   Untrusted),
              IsLoaded);
    EXPECT_FALSE(watch.WasTouched());
}

TEST_P(OutsideTest, IsNotAskedOverTheNetwork)
{
    NuvTest::CountingServer server;
    const std::string external = "<!DOCTYPE r SYSTEM '" + server.URL() + "'><r/>";
    const std::string entity = WithDocumentType("<!ENTITY e SYSTEM '" + server.URL() + "'>", "<r>&e;</r>");
    ParserLimits noNetwork;
    noNetwork.forbidNetwork = true;
    const UniString quoted = UniString(u"'") + UniString::FromUTF8(server.URL()) + u"'";
    const Loaded refused =
        Refused(1, UniString(u"the network is forbidden; the document refers to ") + quoted);
    EXPECT_EQ(Load(external, noNetwork), refused);
    EXPECT_EQ(Load(entity, noNetwork), Refused(2, refused.message));
    EXPECT_FALSE(Load(external, Untrusted).isLoaded);
    EXPECT_FALSE(Load(entity, Untrusted).isLoaded);
    EXPECT_EQ(server.CountConnections(), 0);
}

TEST_P(OutsideTest, IsAskedOverTheNetworkWithoutLimits)
{
    const NuvTest::XercesLeakScope leaks;
    NuvTest::CountingServer server;
    try
    {
        Load("<!DOCTYPE r SYSTEM '" + server.URL() + "'><r/>", ParserLimits());
    }
    catch (const xercesc_3_0::XMLException&)
    {
        // The server gives no answer.
    }
    EXPECT_GT(server.CountConnections(), 0);
}

TEST_P(OutsideTest, MayBeReadFromFilesWithoutTheNetwork)
{
    const NuvTest::XercesLeakScope leaks;
    ParserLimits limits;
    limits.forbidNetwork = true;
    for (const std::string& systemId : {PathOf("secret"), "file://" + PathOf("secret"),
                                        "file://localhost" + PathOf("secret"), std::string("secret")})
        EXPECT_EQ(Load(WithDocumentType("<!ENTITY e SYSTEM '" + systemId + "'>", "<r>&e;</r>"), limits),
                  IsLoaded);
    EXPECT_EQ(Load(WithDocumentType("<!ENTITY e SYSTEM 'file://host/e'>", "<r>&e;</r>"), limits),
              Refused(2, u"the network is forbidden; the document refers to 'file://host/e'"));
}

} // namespace
