// Printing in encodings that the application has taught Xerces, and that ICU knows nothing of.
#include "NuvXMLUtils/SAXWriters.hpp"
#include "tests/NuvXMLUtils/PrinterSupport.hpp"

#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransENameMap.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/TranscodingException.hpp>

#include <algorithm>

namespace
{

using namespace NuvTest;
using namespace xercesc_3_0;

constexpr char16_t Euro = u'\u20AC';
constexpr XMLByte EuroByte = 0x80;

/// ASCII with the Euro sign.
class EuroTranscoder : public XMLTranscoder
{
  public:
    EuroTranscoder(const XMLCh* name, XMLSize_t blockSize, MemoryManager* manager)
        : XMLTranscoder(name, blockSize, manager)
    {
    }

    XMLSize_t transcodeFrom(const XMLByte* bytes, XMLSize_t byteCount, XMLCh* units, XMLSize_t capacity,
                            XMLSize_t& bytesEaten, unsigned char* sizes) override
    {
        bytesEaten = std::min(byteCount, capacity);
        std::fill_n(sizes, bytesEaten, static_cast<unsigned char>(1));
        std::transform(bytes, bytes + bytesEaten, units,
                       [](XMLByte byte) { return byte == EuroByte ? Euro : static_cast<XMLCh>(byte); });
        return bytesEaten;
    }

    XMLSize_t transcodeTo(const XMLCh* units, XMLSize_t count, XMLByte* bytes, XMLSize_t capacity,
                          XMLSize_t& unitsEaten, UnRepOpts) override
    {
        unitsEaten = std::min(count, capacity);
        for (XMLSize_t i = 0; i < unitsEaten; ++i)
        {
            if (!canTranscodeTo(units[i]))
                ThrowXMLwithMemMgr(TranscodingException, XMLExcepts::Trans_Unrepresentable,
                                   getMemoryManager());
            bytes[i] = units[i] == Euro ? EuroByte : static_cast<XMLByte>(units[i]);
        }
        return unitsEaten;
    }

    bool canTranscodeTo(unsigned int character) override { return character < 0x80 || character == Euro; }
};

/// Takes at most so many units or bytes at a time, whatever there is.
template <XMLSize_t Limit>
class HesitantTranscoder : public EuroTranscoder
{
  public:
    using EuroTranscoder::EuroTranscoder;

    XMLSize_t transcodeFrom(const XMLByte* bytes, XMLSize_t byteCount, XMLCh* units, XMLSize_t capacity,
                            XMLSize_t& bytesEaten, unsigned char* sizes) override
    {
        return EuroTranscoder::transcodeFrom(bytes, std::min(byteCount, Limit), units, capacity, bytesEaten,
                                             sizes);
    }

    XMLSize_t transcodeTo(const XMLCh* units, XMLSize_t count, XMLByte* bytes, XMLSize_t capacity,
                          XMLSize_t& unitsEaten, UnRepOpts options) override
    {
        return EuroTranscoder::transcodeTo(units, std::min(count, Limit), bytes, capacity, unitsEaten,
                                           options);
    }
};

/// Takes nothing of more than so many units.
template <XMLSize_t Limit>
class StubbornTranscoder : public EuroTranscoder
{
  public:
    using EuroTranscoder::EuroTranscoder;

    XMLSize_t transcodeTo(const XMLCh* units, XMLSize_t count, XMLByte* bytes, XMLSize_t capacity,
                          XMLSize_t& unitsEaten, UnRepOpts options) override
    {
        return EuroTranscoder::transcodeTo(units, count > Limit ? 0 : count, bytes, capacity, unitsEaten,
                                           options);
    }
};

/// Teaches Xerces an encoding, for as long as Xerces is up.
template <class Transcoder>
void AddEncoding(const XMLCh* name)
{
    XMLTransService::addEncoding(name, new ENameMapFor<Transcoder>(name));
}

TEST(EncodingOfTheApplication, TakesTheCharactersItHasAndReferencesForAllOthers)
{
    AddEncoding<EuroTranscoder>(u"X-EURO");
    const Document document = Parse("<r a='1 \xE2\x82\xAC'>2 \xC2\xA3</r>");
    const std::string printed = Print(*document, u"X-EURO");
    EXPECT_EQ(printed, "<?xml version=\"1.0\" encoding=\"X-EURO\"?>\n<r a=\"1 \x80\">2 &#xA3;</r>\n");
    EXPECT_TRUE(Parse(printed)->isEqualNode(document.get()));
}

TEST(EncodingOfTheApplication, IsAskedAgainWhenItTakesFewerCharactersThanItIsOffered)
{
    AddEncoding<HesitantTranscoder<1>>(u"X-ONE");
    AddEncoding<HesitantTranscoder<7>>(u"X-SEVEN");
    const std::string text(20'000, 'x');
    const Document document = Parse("<r a='" + text + "'>1 \xE2\x82\xAC &lt; 2 \xC2\xA3 " + text + "</r>");
    for (const std::string name : {"X-ONE", "X-SEVEN"})
    {
        const std::string printed = Print(*document, Nuv::UniString(name).ToUTF16());
        EXPECT_TRUE(printed == "<?xml version=\"1.0\" encoding=\"" + name + "\"?>\n<r a=\"" + text +
                                   "\">1 \x80 &lt; 2 &#xA3; " + text + "</r>\n");
        EXPECT_TRUE(Parse(printed)->isEqualNode(document.get()));
    }
}

TEST(EncodingOfTheApplication, IsAskedAgainByTheSAXWritersToo)
{
    AddEncoding<HesitantTranscoder<1>>(u"X-ONE");
    AddEncoding<HesitantTranscoder<7>>(u"X-SEVEN");
    const std::string text(20'000, 'x');
    const std::u16string units(text.begin(), text.end());
    for (const std::string name : {"X-ONE", "X-SEVEN"})
    {
        MemBufFormatTarget target;
        XMLFormatter formatter(name.c_str(), "1.0", &target, XMLFormatter::NoEscapes,
                               XMLFormatter::UnRep_CharRef);
        NuvXML::SAX2Writer writer(formatter, false);
        NuvXML::NuvSAX2Writer::Attrs attributes;
        attributes.Add(u"a", (units + u"\u20AC\u00A3").c_str());
        writer.startElement(u"", u"r", u"r", attributes);
        writer.characters((u"<\u20AC" + units).c_str(), units.length() + 2);
        writer.endElement(u"", u"r", u"r");
        EXPECT_TRUE(std::string(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen()) ==
                    "<?xml version=\"1.0\" encoding=\"" + name + "\"?>\n<r a=\"" + text +
                        "\x80&#xA3;\">&lt;\x80" + text + "</r>");
    }
}

TEST(EncodingOfTheApplication, EndsPrintingWhenItTakesNothing)
{
    AddEncoding<StubbornTranscoder<100>>(u"X-STUBBORN");
    const Document document = Parse("<r>" + std::string(101, 'x') + "</r>");
    Nuv::MemoryOChannel channel;
    EXPECT_FALSE(FormatXMLDoc(document.get(), &channel, u"X-STUBBORN", true));
}

/// ASCII, each byte by one higher.
class ShiftedTranscoder : public EuroTranscoder
{
  public:
    using EuroTranscoder::EuroTranscoder;

    XMLSize_t transcodeFrom(const XMLByte* bytes, XMLSize_t byteCount, XMLCh* units, XMLSize_t capacity,
                            XMLSize_t& bytesEaten, unsigned char* sizes) override
    {
        const XMLSize_t count =
            EuroTranscoder::transcodeFrom(bytes, byteCount, units, capacity, bytesEaten, sizes);
        std::for_each(units, units + count, [](XMLCh& unit) { --unit; });
        return count;
    }

    XMLSize_t transcodeTo(const XMLCh* units, XMLSize_t count, XMLByte* bytes, XMLSize_t capacity,
                          XMLSize_t& unitsEaten, UnRepOpts options) override
    {
        const XMLSize_t written =
            EuroTranscoder::transcodeTo(units, count, bytes, capacity, unitsEaten, options);
        std::for_each(bytes, bytes + written, [](XMLByte& byte) { ++byte; });
        return written;
    }
};

TEST(EncodingOfTheApplication, IsRefusedWhereNoParserCanReadTheDeclaration)
{
    AddEncoding<EuroTranscoder>(u"X EURO");
    AddEncoding<ShiftedTranscoder>(u"X-SHIFTED");
    const Document document = NewDocument();
    for (const char16_t* const name : {u"X EURO", u"X-SHIFTED"})
    {
        Nuv::MemoryOChannel channel;
        EXPECT_FALSE(FormatXMLDoc(document.get(), &channel, name, true)) << Nuv::UniString(name);
        EXPECT_EQ(channel.GetBytes(), "") << Nuv::UniString(name);
    }
}

} // namespace
