// Writes a document as a stream, then copies it as a stream: with another text in some elements, and in
// another encoding.

#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

#include <iostream>
#include <memory>
#include <string>

namespace
{

void Write(Nuv::OChannel& channel)
{
    NuvXML::NuvSAX2Writer writer(channel);
    writer.StartDocument();
    writer.StartElement(u"Offers");
    NuvXML::NuvSAX2Writer::Attrs attributes;
    attributes.Add(u"currency", u"€");
    for (const char16_t* price : {u"120", u"95"})
    {
        writer.StartElement(u"Offer");
        writer.SimpleElement(u"Text", u"Door & frame");
        writer.SimpleElement(u"Price", attributes, price);
        writer.EndElement(u"Offer");
    }
    writer.EndElement(u"Offers");
    writer.EndDocument();
}

/// Passes every event on, with another text in the elements `Price`.
class WithoutPrices : public NuvXML::SAX2Writer
{
  public:
    explicit WithoutPrices(xercesc_3_0::XMLFormatter& output)
        : SAX2Writer(output, false)
    {
    }

    void startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                      const xercesc_3_0::Attributes& attributes) override
    {
        const bool isPrice = Nuv::UniString(qname) == u"Price";
        SAX2Writer::startElement(uri, localname, qname, isPrice ? noAttributes : attributes);
        if (isPrice)
            SAX2Writer::characters(u"on request", 10);
        isInPrice = isPrice;
    }
    void endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname) override
    {
        SAX2Writer::endElement(uri, localname, qname);
        isInPrice = false;
    }
    void characters(const XMLCh* chars, XMLSize_t length) override
    {
        if (!isInPrice)
            SAX2Writer::characters(chars, length);
    }

  private:
    const NuvXML::NuvSAX2Writer::Attrs noAttributes;
    bool isInPrice = false;
};

/// The formatter decides the encoding and what becomes of characters that it lacks.
template <class Writer, class... Arguments>
bool Copy(const std::string& text, Nuv::OChannel& channel, const char16_t* encoding, Arguments... arguments)
{
    NuvXML::OChannelXMLFormatTarget target(channel);
    xercesc_3_0::XMLFormatter formatter(encoding, &target, xercesc_3_0::XMLFormatter::NoEscapes,
                                        xercesc_3_0::XMLFormatter::UnRep_CharRef);
    Writer writer(formatter, arguments...);
    const std::unique_ptr<xercesc_3_0::SAX2XMLReader> reader(
        xercesc_3_0::XMLReaderFactory::createXMLReader());
    reader->setContentHandler(&writer);
    xercesc_3_0::DefaultHandler errors; // throws; without it a damaged text would just end early
    reader->setErrorHandler(&errors);
    reader->parse(xercesc_3_0::MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                 u"offers"));
    return target.GetErrorCode() == 0;
}

} // namespace

int main()
try
{
    Nuv::MemoryOChannel written;
    Write(written);
    Nuv::MemoryOChannel filtered;
    Nuv::MemoryOChannel ascii;
    if (!Copy<WithoutPrices>(written.GetBytes(), filtered, u"UTF-8") ||
        !Copy<NuvXML::SAX2Writer>(written.GetBytes(), ascii, u"US-ASCII", false))
        return 1;
    std::cout << written.GetBytes() << '\n' << filtered.GetBytes() << "\n\n" << ascii.GetBytes() << "\n\n";
    Copy<WithoutPrices>("<Offers>\n<Offer></Offers>", filtered, u"UTF-8");
}
catch (const xercesc_3_0::SAXParseException& exception)
{
    std::cout << "line " << exception.getLineNumber() << ": " << Nuv::UniString(exception.getMessage())
              << '\n';
}
