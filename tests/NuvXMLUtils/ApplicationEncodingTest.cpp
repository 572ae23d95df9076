// Printing in encodings that the application has taught Xerces, and that ICU knows nothing of.
#include "tests/NuvXMLUtils/PrinterSupport.hpp"

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

/// Reads one unit of a text at a time, whatever there is.
class HesitantTranscoder : public EuroTranscoder
{
  public:
    using EuroTranscoder::EuroTranscoder;

    XMLSize_t transcodeTo(const XMLCh* units, XMLSize_t count, XMLByte* bytes, XMLSize_t capacity,
                          XMLSize_t& unitsEaten, UnRepOpts options) override
    {
        return EuroTranscoder::transcodeTo(units, std::min<XMLSize_t>(count, 1), bytes, capacity, unitsEaten,
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

TEST(EncodingOfTheApplication, EndsPrintingWhenItLeavesCharactersUnread)
{
    AddEncoding<HesitantTranscoder>(u"X-HESITANT");
    const Document document = Parse("<r>text</r>");
    Nuv::MemoryOChannel channel;
    EXPECT_FALSE(FormatXMLDoc(document.get(), &channel, u"X-HESITANT", true));
}

} // namespace
