#include "NuvXMLUtils/LocationInputSource.hpp"

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>

#include <memory>

namespace
{

constexpr char SourceFile[] = "LocationInputSource";

[[noreturn]] void ThrowCouldNotRead(XMLFileLoc line)
{
    throw xercesc_3_0::XMLPlatformUtilsException(SourceFile, line,
                                                 xercesc_3_0::XMLExcepts::File_CouldNotReadFromFile,
                                                 xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
}

} // namespace

LocationBinInputStream::LocationBinInputStream(const IO::Location& location)
    : file(location, IO::FailWhenNotFound)
{
    if (file.GetStatus() == IO::NoError)
        opened = file.Open(IO::ReadMode, IO::ReportAccessDenied) == IO::NoError;
}

LocationBinInputStream::~LocationBinInputStream()
{
    if (opened)
        file.Close();
}

XMLFilePos LocationBinInputStream::curPos() const { return position; }

XMLSize_t LocationBinInputStream::readBytes(XMLByte* toFill, XMLSize_t maxToRead)
{
    if (!opened)
        ThrowCouldNotRead(__LINE__);
    size_t count = 0;
    const int status = file.Read(toFill, maxToRead, count);
    position += static_cast<unsigned int>(count);
    if (status != IO::NoError && status != IO::EndOfFile)
        ThrowCouldNotRead(__LINE__);
    return count;
}

const XMLCh* LocationBinInputStream::getContentType() const { return nullptr; }

LocationInputSource::LocationInputSource(const IO::Location& file)
    : location(file)
{
    setSystemId(location.ToURL().ToUTF16());
}

LocationInputSource::~LocationInputSource() = default;

xercesc_3_0::BinInputStream* LocationInputSource::makeStream() const
{
    try
    {
        std::unique_ptr<LocationBinInputStream> stream(new (getMemoryManager())
                                                           LocationBinInputStream(location));
        return stream->IsOpened() ? stream.release() : nullptr;
    }
    catch (...)
    {
        return nullptr;
    }
}
