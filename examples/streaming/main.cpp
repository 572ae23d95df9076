// Writes a document of many records as a stream, echoes it from a parse, and prints a DOM document in three
// encodings. The memory that the process has needed at most shows that the streams do not grow with the
// document.
//
// usage: streaming [number of records]

#include "InputOutput/File.hpp"
#include "InputOutput/FileSystem.hpp"
#include "InputOutput/Folder.hpp"
#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/LocationInputSource.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"

#include <sys/resource.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace
{

using Nuv::UniString;

//! [buffer]
/// Collects the many small writes of a stream writer before they go to the file. The first error stays.
class BufferedChannel : public Nuv::OChannel
{
  public:
    explicit BufferedChannel(Nuv::OChannel& target)
        : channel(target)
    {
    }

    int Write(const void* bytes, size_t count) override
    {
        buffer.append(static_cast<const char*>(bytes), count);
        return buffer.size() < Capacity ? 0 : Flush();
    }

    int Flush()
    {
        if (error == 0)
            error = channel.Write(buffer.data(), buffer.size());
        buffer.clear();
        return error;
    }

  private:
    static constexpr size_t Capacity = 0x10000;

    Nuv::OChannel& channel;
    std::string buffer;
    int error = 0;
};
//! [buffer]

/// A file in the folder for temporary files that is open for writing; removed at the end of the scope.
class ScratchFile
{
  public:
    explicit ScratchFile(const char16_t* prefix)
        : location(UnusedLocation(prefix))
        , file(location, IO::CreateWhenNotFound)
    {
        file.Open(IO::WriteMode, IO::ReportAccessDenied);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile()
    {
        file.Close();
        IO::FileSystem::Delete(location, IO::DeleteForGood, IO::ReportAccessDenied);
    }

    const IO::Location& Location() const { return location; }
    IO::File& Channel() { return file; }
    std::uintmax_t Size() const { return std::filesystem::file_size(location.ToNativePath()); }

  private:
    static IO::Location UnusedLocation(const char16_t* prefix)
    {
        IO::Location unused;
        IO::FileSystem::GetSpecialLocation(IO::FileSystem::TemporaryFolder, unused);
        IO::Name name;
        IO::Folder(unused).GenerateUnusedName(prefix, name);
        name.AppendExtension(u"xml");
        unused.AppendToLocal(name);
        return unused;
    }

    IO::Location location;
    IO::File file;
};

/// The most memory that the process has needed so far, in KiB.
long PeakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// Runs a step and shows what it took. A step gives the size of what it wrote, or 0 for a failure.
template <class Step>
bool Run(const char* name, Step step)
{
    const auto start = std::chrono::steady_clock::now();
    const std::uintmax_t bytes = step();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    std::printf("%-34s %10.1f %12ju %12ld%s\n", name, time.count(), bytes, PeakMemory(),
                bytes != 0 ? "" : "  FAILED");
    return bytes != 0;
}

std::uintmax_t WriteRecords(ScratchFile& file, unsigned long count)
{
    BufferedChannel channel(file.Channel());
    NuvXML::NuvSAX2Writer writer(channel);
    writer.StartDocument();
    writer.StartElement(u"measurements");
    for (unsigned long i = 0; i < count; ++i)
    {
        const UniString number(std::to_string(i));
        NuvXML::NuvSAX2Writer::Attrs attributes;
        attributes.Add(u"id", number);
        attributes.Add(u"sensor", u"Hall & \u00DCberbau");
        writer.StartElement(u"measurement", attributes);
        writer.SimpleElement(u"value", number + u".5 \u00B0C");
        writer.SimpleElement(u"remark", u"0 < t < 30");
        writer.EndElement(u"measurement");
    }
    writer.EndElement(u"measurements");
    writer.EndDocument();
    return channel.Flush() == 0 ? file.Size() : 0;
}

std::uintmax_t Echo(const IO::Location& source, ScratchFile& copy)
{
    BufferedChannel channel(copy.Channel());
    NuvXML::OChannelXMLFormatTarget target(channel);
    xercesc_3_0::XMLFormatter formatter(xercesc_3_0::XMLUni::fgUTF8EncodingString, &target,
                                        xercesc_3_0::XMLFormatter::NoEscapes,
                                        xercesc_3_0::XMLFormatter::UnRep_CharRef);
    NuvXML::SAX2Writer writer(formatter, false);
    const std::unique_ptr<xercesc_3_0::SAX2XMLReader> reader(
        xercesc_3_0::XMLReaderFactory::createXMLReader());
    xercesc_3_0::DefaultHandler errors; // throws at damage; without it the copy would just end there
    reader->setContentHandler(&writer);
    reader->setErrorHandler(&errors);
    reader->parse(LocationInputSource(source));
    return channel.Flush() == 0 && target.GetErrorCode() == 0 ? copy.Size() : 0;
}

NuvXML::XercesPtr<xercesc_3_0::DOMDocument> MakeDocument()
{
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument());
    xercesc_3_0::DOMElement* const root = document->createElement(u"prices");
    root->setAttribute(u"title", u"\"M\u00FCller & S\u00F6hne\"");
    root->appendChild(document->createComment(u" \u00E0 la carte "));
    root->appendChild(document->createTextNode(u"5 \u20AC < 6 \u20AC \U0001F600"));
    document->appendChild(root);
    return document;
}

std::uintmax_t Print(const xercesc_3_0::DOMDocument& document, const char16_t* encoding)
{
    ScratchFile file(u"Printed_");
    return FormatXMLDoc(&document, &file.Channel(), encoding, true) ? file.Size() : 0;
}

} // namespace

int main(int argc, char** argv)
{
    const unsigned long count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1'000'000;
    std::printf("%-34s %10s %12s %12s\n", "step", "ms", "bytes", "peak KiB");

    ScratchFile few(u"Few_");
    ScratchFile records(u"Records_");
    ScratchFile copy(u"Copy_");
    bool succeeded = Run("write a hundredth of the records", [&] { return WriteRecords(few, count / 100); });
    const long peakOfFew = PeakMemory();
    succeeded = Run("write all records", [&] { return WriteRecords(records, count); }) && succeeded;
    const long growth = PeakMemory() - peakOfFew;
    succeeded = Run("echo them from a parse", [&] { return Echo(records.Location(), copy); }) && succeeded;

    const auto document = MakeDocument();
    succeeded = Run("print a DOM in UTF-8", [&] { return Print(*document, u"UTF-8"); }) && succeeded;
    succeeded = Run("print it in UTF-16", [&] { return Print(*document, u"UTF-16"); }) && succeeded;
    succeeded = Run("print it in ISO-8859-1", [&] { return Print(*document, u"ISO-8859-1"); }) && succeeded;

    constexpr long AllowedGrowth = 8192;
    std::printf("\nA hundred times as many records needed %ld KiB more.\n", growth);
    return succeeded && growth <= AllowedGrowth ? EXIT_SUCCESS : EXIT_FAILURE;
}
