#include "Input.hpp"

#include "Output.hpp"
#include "Trouble.hpp"

#include <fcntl.h>
#include <unistd.h>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLException.hpp>

#include <cerrno>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>

using xercesc_3_0::DOMDocument;

namespace Tool
{
namespace
{

/// Of a document that is parsed from memory.
constexpr size_t MaxSize = std::numeric_limits<unsigned int>::max();

Trouble TooLarge(const std::string& path)
{
    return Trouble(FaultText(DisplayName(path), 0, u"a document of 4 GiB or more can only be echoed"));
}

/// An open file, or standard input, which stays open.
class OpenFile
{
  public:
    /// @throws Trouble
    explicit OpenFile(const std::string& path)
        : name(DisplayName(path))
        , isStandardInput(path == StandardInput)
        , descriptor(isStandardInput ? STDIN_FILENO : Open(path))
    {
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile()
    {
        if (!isStandardInput)
            close(descriptor);
    }

    /// Up to `capacity` bytes, and none only at the end.
    /// @throws Trouble
    size_t Read(void* bytes, size_t capacity) const
    {
        for (;;)
        {
            const ssize_t count = read(descriptor, bytes, capacity);
            if (count >= 0)
                return static_cast<size_t>(count);
            if (errno != EINTR)
                throw FileTrouble(name, errno);
        }
    }

  private:
    static int Open(const std::string& path)
    {
        if (IsFolder(path))
            throw FileTrouble(path, EISDIR);
        const int opened = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (opened < 0)
            throw FileTrouble(path, errno);
        return opened;
    }

    std::string name;
    bool isStandardInput;
    int descriptor;
};

class FileStream : public xercesc_3_0::BinInputStream
{
  public:
    explicit FileStream(const std::string& path)
        : file(path)
    {
    }

    XMLFilePos curPos() const override { return position; }

    XMLSize_t readBytes(XMLByte* toFill, XMLSize_t maxToRead) override
    {
        const size_t count = file.Read(toFill, maxToRead);
        position += count;
        return count;
    }

    const XMLCh* getContentType() const override { return nullptr; }

  private:
    OpenFile file;
    XMLFilePos position = 0;
};

} // namespace

std::string ReadAll(const std::string& path)
{
    const OpenFile file(path);
    std::error_code unknown;
    const auto size = std::filesystem::file_size(path, unknown);
    constexpr size_t BlockSize = 0x10000;
    if (!unknown && size > MaxSize)
        throw TooLarge(path);
    std::string bytes(unknown ? BlockSize : static_cast<size_t>(size) + 1, '\0'); // one more, to see the end
    size_t used = 0;
    while (const size_t count = file.Read(bytes.data() + used, bytes.size() - used))
    {
        used += count;
        if (used > MaxSize)
            throw TooLarge(path);
        if (used == bytes.size())
            bytes.resize(2 * used);
    }
    bytes.resize(used);
    return bytes;
}

FileSource::FileSource(const std::string& file)
    : path(file)
{
    setSystemId(Nuv::UniString::FromUTF8(file).ToUTF16());
}

xercesc_3_0::BinInputStream* FileSource::makeStream() const { return new FileStream(path); }

ParserLimits LimitsFor(bool trusted) { return trusted ? ParserLimits() : ParserLimits::ForUntrustedInput(); }

NuvXML::XercesPtr<DOMDocument> ParseAll(ValidatingXMLParser& parser, const std::string& path,
                                        const std::string& bytes, ValidatingXMLParser::ValSchemes scheme,
                                        bool createEntityRefNodes, NodeLocations* locations,
                                        NodeLocationInfo& place, Nuv::UniString& message)
{
    return NuvXML::XercesPtr<DOMDocument>(parser.Parse(
        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned int>(bytes.size()), scheme,
        createEntityRefNodes, Nuv::UniString::FromUTF8(path), locations, &place, &message));
}

std::string FaultText(const std::string& file, unsigned int line, const Nuv::UniString& message)
{
    return PrintableLine(file) + ":" + (line != 0 ? std::to_string(line) + ":" : "") + " " +
           PrintableLine(message.ToUTF8());
}

Document::Document(const std::string& path, bool createEntityRefNodes, bool trusted,
                   const ValidatingXMLParser::ParsedNodes& parsedNodes)
    : name(DisplayName(path))
    , bytes(ReadAll(path))
{
    ValidatingXMLParser parser;
    parser.SetLimits(LimitsFor(trusted));
    parser.SetParsedNodes(parsedNodes);
    NodeLocationInfo place;
    Nuv::UniString message;
    document = ParseAll(parser, path, bytes, ValidatingXMLParser::LineInfoParser::Val_Never,
                        createEntityRefNodes, &locations, place, message);
    if (!document)
        throw Trouble(FaultText(name, place.lineNumber, message));
}

Document::~Document() = default;

Nuv::UniString Document::SourceLine(unsigned int number)
{
    if (!source)
        source.emplace(bytes, *document);
    return source->Line(number);
}

} // namespace Tool
