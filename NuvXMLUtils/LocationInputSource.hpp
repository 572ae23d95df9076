/// @file
/// Lets Xerces read files through the application's file library.
#pragma once

#include "InputOutput/File.hpp"
#include "InputOutput/Location.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

/// The bytes of an open file. Made by LocationInputSource.
class NUVXMLUTILS_API LocationBinInputStream : public xercesc_3_0::BinInputStream
{
  public:
    explicit LocationBinInputStream(const IO::Location& location);
    LocationBinInputStream(const LocationBinInputStream&) = delete;
    LocationBinInputStream& operator=(const LocationBinInputStream&) = delete;
    ~LocationBinInputStream() override;

    /// Whether the file could be opened.
    bool IsOpened() const { return opened; }

    /// How many bytes have been delivered, modulo 2^32.
    XMLFilePos curPos() const override;

    /// Reads up to `maxToRead` bytes and returns their number, 0 at the end of the file.
    /// @throws xercesc_3_0::XMLPlatformUtilsException (File_CouldNotReadFromFile) when the file is not open
    ///         or cannot be read
    XMLSize_t readBytes(XMLByte* toFill, XMLSize_t maxToRead) override;

    /// Null: the type is not known.
    const XMLCh* getContentType() const override;

  private:
    IO::File file;
    bool opened = false;
    unsigned int position = 0;
};

/// A file as a source of XML text. Its system id is the URL of the location.
class NUVXMLUTILS_API LocationInputSource : public xercesc_3_0::InputSource
{
  public:
    explicit LocationInputSource(const IO::Location& file);
    LocationInputSource(const LocationInputSource&) = delete;
    LocationInputSource& operator=(const LocationInputSource&) = delete;
    ~LocationInputSource() override;

    /// Returns a new stream, which the caller deletes. Null when the file cannot be opened or memory runs
    /// out.
    xercesc_3_0::BinInputStream* makeStream() const override;

    /// Whether the last makeStream returned null for lack of memory.
    bool RanOutOfMemory() const { return ranOutOfMemory; }

  private:
    IO::Location location;
    mutable bool ranOutOfMemory = false;
};
