// Printing under every name of an encoding that there is.
#include "tests/NuvXMLUtils/PrinterSupport.hpp"

#include <unicode/ucnv.h>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace
{

using namespace NuvTest;
using namespace xercesc_3_0;

/// The name that ICU itself uses; empty where it does not know the encoding.
std::string CanonicalName(const std::string& name)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(name.c_str(), &status),
                                                                       &ucnv_close);
    return converter ? ucnv_getName(converter.get(), &status) : "";
}

/// All names and aliases.
std::set<std::string> NamesOfICU()
{
    std::set<std::string> names;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UEnumeration, decltype(&uenum_close)> all(ucnv_openAllNames(&status), &uenum_close);
    while (const char* const name = uenum_next(all.get(), nullptr, &status))
    {
        names.insert(name);
        for (uint16_t i = 0; i < ucnv_countAliases(name, &status); ++i)
            names.insert(ucnv_getAlias(name, i, &status));
    }
    EXPECT_TRUE(U_SUCCESS(status));
    return names;
}

std::set<std::string> NamesOfXerces()
{
    std::set<std::string> names;
    for (const XMLCh* const name : {XMLUni::fgEBCDICEncodingString,     XMLUni::fgIBM037EncodingString,
                                    XMLUni::fgIBM037EncodingString2,    XMLUni::fgIBM1047EncodingString,
                                    XMLUni::fgIBM1047EncodingString2,   XMLUni::fgIBM1140EncodingString,
                                    XMLUni::fgIBM1140EncodingString2,   XMLUni::fgIBM1140EncodingString3,
                                    XMLUni::fgIBM1140EncodingString4,   XMLUni::fgISO88591EncodingString,
                                    XMLUni::fgISO88591EncodingString2,  XMLUni::fgISO88591EncodingString3,
                                    XMLUni::fgISO88591EncodingString4,  XMLUni::fgISO88591EncodingString5,
                                    XMLUni::fgISO88591EncodingString6,  XMLUni::fgISO88591EncodingString7,
                                    XMLUni::fgISO88591EncodingString8,  XMLUni::fgISO88591EncodingString9,
                                    XMLUni::fgISO88591EncodingString10, XMLUni::fgISO88591EncodingString11,
                                    XMLUni::fgISO88591EncodingString12, XMLUni::fgUCS4EncodingString,
                                    XMLUni::fgUCS4EncodingString2,      XMLUni::fgUCS4EncodingString3,
                                    XMLUni::fgUCS4EncodingString4,      XMLUni::fgUCS4EncodingString5,
                                    XMLUni::fgUCS4BEncodingString,      XMLUni::fgUCS4BEncodingString2,
                                    XMLUni::fgUCS4LEncodingString,      XMLUni::fgUCS4LEncodingString2,
                                    XMLUni::fgUSASCIIEncodingString,    XMLUni::fgUSASCIIEncodingString2,
                                    XMLUni::fgUSASCIIEncodingString3,   XMLUni::fgUSASCIIEncodingString4,
                                    XMLUni::fgUTF8EncodingString,       XMLUni::fgUTF8EncodingString2,
                                    XMLUni::fgUTF16EncodingString,      XMLUni::fgUTF16EncodingString2,
                                    XMLUni::fgUTF16EncodingString3,     XMLUni::fgUTF16EncodingString4,
                                    XMLUni::fgUTF16EncodingString5,     XMLUni::fgUTF16EncodingString6,
                                    XMLUni::fgUTF16EncodingString7,     XMLUni::fgUTF16BEncodingString,
                                    XMLUni::fgUTF16BEncodingString2,    XMLUni::fgUTF16LEncodingString,
                                    XMLUni::fgUTF16LEncodingString2,    XMLUni::fgWin1252EncodingString,
                                    XMLUni::fgXMLChEncodingString})
        names.insert(Nuv::UniString(name).ToUTF8());
    return names;
}

/// The name in lower case, and in two spellings that ICU takes for the same and XML does not allow.
std::set<std::string> SpellingsOf(const std::string& name)
{
    std::string lower = name;
    std::string spaced = name;
    std::transform(name.begin(), name.end(), lower.begin(),
                   [](char letter) { return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter; });
    std::replace(spaced.begin(), spaced.end(), '-', ' ');
    return {name, lower, spaced, name + "\"?><!--"};
}

/// What the document calls its encoding.
std::string DeclaredName(const DOMDocument& document)
{
    return Nuv::UniString(document.getXmlEncoding()).ToUTF8();
}

/// Whether the documents are printed in the encoding, and then read back; nothing is written otherwise.
bool ArePrinted(const std::string& name, const std::vector<Document>& documents)
{
    size_t printed = 0;
    for (const Document& document : documents)
    {
        Nuv::MemoryOChannel channel;
        if (!FormatXMLDoc(document.get(), &channel, Nuv::UniString::FromUTF8(name).ToUTF16(), true))
        {
            EXPECT_EQ(channel.GetBytes(), "") << name;
            continue;
        }
        ++printed;
        const Document parsed = Parse(channel.GetBytes());
        EXPECT_TRUE(parsed->isEqualNode(document.get())) << name;
        const std::string canonical = CanonicalName(name);
        const std::string declared = CanonicalName(DeclaredName(*parsed));
        EXPECT_TRUE(canonical.empty() || declared.empty() || declared == canonical || declared == "UTF-16")
            << name << " became " << DeclaredName(*parsed);
    }
    EXPECT_TRUE(printed == 0 || printed == documents.size()) << name;
    return printed != 0;
}

TEST(EncodingNames, EveryNameMakesADocumentThatReadsBackOrNone)
{
    std::set<std::string> names = NamesOfICU();
    names.merge(NamesOfXerces());
    std::vector<Document> documents;
    documents.push_back(Parse("<r/>"));
    documents.push_back(DocumentGenerator(7).Make());
    documents.push_back(DocumentGenerator(8).Make());
    size_t printed = 0;
    for (const std::string& name : names)
        for (const std::string& spelling : SpellingsOf(name))
            printed += ArePrinted(spelling, documents) ? 1 : 0;
    EXPECT_GT(names.size(), 1000u);
    EXPECT_GT(printed, names.size());
}

/// The name in the declaration.
std::string NameFor(const char16_t* name) { return DeclaredName(*Parse(Print(*NewDocument(), name))); }

TEST(EncodingNames, AreDeclaredAsTheyAreWhereXMLAllowsThem)
{
    for (const char16_t* const name : {u"KOI8-R", u"ibm-437_P100-1995", u"x-IBM1006", u"l2"})
        EXPECT_EQ(NameFor(name), Nuv::UniString(name).ToUTF8());
}

TEST(EncodingNames, AreReplacedWhereXMLDoesNotAllowThem)
{
    EXPECT_EQ(NameFor(u"437"), "IBM437");
    EXPECT_EQ(NameFor(u"8859_15"), "ISO-8859-15");
    EXPECT_EQ(NameFor(u"ISO_8859-1:1987"), "ISO-8859-1");
    EXPECT_EQ(NameFor(u"ISO_646.irv:1991"), "US-ASCII");
    EXPECT_EQ(NameFor(u"KOI8-R\"?><!--"), "KOI8-R");
    EXPECT_EQ(NameFor(u"utf 8"), "UTF-8");
    EXPECT_EQ(NameFor(u"UCS-4 (LE)"), "UCS-4LE");
    EXPECT_EQ(NameFor(u"ucs-4 (be)"), "UCS-4BE");
    EXPECT_EQ(NameFor(u"ibm-1047_P100-1995,swaplfnl"), "ibm-1047-s390");
    EXPECT_EQ(NameFor(u"big5-hkscs:unicode3.0"), "ibm-5471_P100-2006") << "Big5-HKSCS is another edition";
}

TEST(EncodingNames, AreRefusedWhereTheirDeclarationCannotBeRead)
{
    const Document document = NewDocument();
    for (const char16_t* const name :
         {u"ibm-290", u"IBM290", u"csIBM290", u"cp290", u"ibm-8482", u"IBM1026", u"1026", u"ibm-1155"})
    {
        Nuv::MemoryOChannel channel;
        EXPECT_FALSE(FormatXMLDoc(document.get(), &channel, name, true)) << Nuv::UniString(name);
        EXPECT_EQ(channel.GetBytes(), "") << Nuv::UniString(name);
    }
}

} // namespace
