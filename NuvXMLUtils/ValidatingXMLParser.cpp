#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include "InputOutput/File.hpp"
#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/SaveAndRestoreVariable.hpp"
#include "NuvXMLUtils/LocationInputSource.hpp"
#include "NuvXMLUtils/OutOfMemory.hpp"
#include "NuvXMLUtils/ParseGuard.hpp"
#include "NuvXMLUtils/SchemaSet.hpp"

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/URLInputSource.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/EntityResolver.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/IOException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>
#include <xercesc/util/XMLURL.hpp>
#include <xercesc/validators/common/Grammar.hpp>

namespace
{

/// The file of an external entity. Xerces owns it, and takes lack of memory for a file that cannot be opened.
class EntitySource : public LocationInputSource
{
  public:
    /// @param memoryFlag is set when memory runs out; must outlive the source
    EntitySource(const IO::Location& file, bool& memoryFlag)
        : LocationInputSource(file)
        , ranOutOfMemory(memoryFlag)
    {
    }

    xercesc_3_0::BinInputStream* makeStream() const override
    {
        xercesc_3_0::BinInputStream* stream = LocationInputSource::makeStream();
        ranOutOfMemory = ranOutOfMemory || RanOutOfMemory();
        return stream;
    }

  private:
    bool& ranOutOfMemory;
};

/// Has external entities read through the application's file library.
class NuvEntityResolver : public xercesc_3_0::EntityResolver
{
  public:
    /// Xerces asks without a system id for what a schema imports and names no place for.
    xercesc_3_0::InputSource* resolveEntity(const XMLCh* const, const XMLCh* const systemId) override
    try
    {
        if (!systemId)
            return nullptr;
        static constexpr XMLCh NoBase[] = u"";
        const xercesc_3_0::XMLURL url(NoBase, systemId);
        if (!url.isRelative())
            return new (xercesc_3_0::XMLPlatformUtils::fgMemoryManager) xercesc_3_0::URLInputSource(url);
        const xercesc_3_0::LocalFileInputSource file(NoBase, systemId);
        return new (xercesc_3_0::XMLPlatformUtils::fgMemoryManager)
            EntitySource(IO::Location(Nuv::UniString(file.getSystemId())), ranOutOfMemory);
    }
    catch (...)
    {
        if (!NuvXML::IsOutOfMemory())
            throw;
        ranOutOfMemory = true;
        return nullptr;
    }

    /// Whether memory ran out for an entity, after which a parse may still succeed.
    bool RanOutOfMemory() const { return ranOutOfMemory; }

  private:
    bool ranOutOfMemory = false;
};

/// Ends the parse with the first error that its owner does not take; warnings are dropped.
class DOMTreeErrorReporter : public xercesc_3_0::ErrorHandler
{
  public:
    explicit DOMTreeErrorReporter(ValidatingXMLParser::ErrorHandler ownersHandler = {})
        : handler(std::move(ownersHandler))
    {
    }

    void warning(const xercesc_3_0::SAXParseException&) override {}
    void error(const xercesc_3_0::SAXParseException& exception) override
    {
        if (!handler)
            throw exception;
        handler({static_cast<unsigned int>(exception.getLineNumber())}, exception.getMessage());
    }
    void fatalError(const xercesc_3_0::SAXParseException& exception) override { throw exception; }
    void resetErrors() override {}

  private:
    ValidatingXMLParser::ErrorHandler handler;
};

/// One call of the parser: it has its handlers for the time of the call only, for they do not outlive it.
/// When the call ends the parser is fit for the next one, and holds nothing of a document that failed.
class CallScope
{
  public:
    CallScope(ValidatingXMLParser::LineInfoParser& borrower, xercesc_3_0::ErrorHandler& errorHandler,
              xercesc_3_0::EntityResolver* entityResolver, NuvXML::ParseGuard* guard)
        : parser(borrower)
    {
        parser.setErrorHandler(&errorHandler);
        parser.setEntityResolver(entityResolver);
        parser.SetGuard(guard);
    }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
    ~CallScope()
    {
        parser.FreeDocument();
        parser.setErrorHandler(nullptr);
        parser.setEntityResolver(nullptr);
        parser.SetGuard(nullptr);
    }

  private:
    ValidatingXMLParser::LineInfoParser& parser;
};

constexpr XMLFileLoc UnknownLine = 0;

/// Where an operation tells what went wrong, as far as its caller wants to know.
struct FailureReport
{
    NodeLocationInfo* location;
    Nuv::UniString* message;

    /// Needs memory only for a message that the caller wants to know.
    void Write(XMLFileLoc line, const XMLCh* text) const
    {
        if (location)
            location->lineNumber = static_cast<unsigned int>(line);
        if (message)
            *message = text;
    }

    /// The result of a failing parse.
    std::nullptr_t Null(const XMLCh* text) const
    {
        Write(UnknownLine, text);
        return nullptr;
    }
};

bool CanBeOpened(const IO::Location& file)
{
    return IO::File(file, IO::FailWhenNotFound).Open(IO::ReadMode, IO::ReportAccessDenied) == IO::NoError;
}

constexpr char16_t FailedToParse[] = u"Failed to parse XML document";

/// Null when memory runs out, the only reason why a source cannot be made.
template <class Source, class... Arguments>
std::unique_ptr<Source> MakeSource(const Arguments&... arguments)
try
{
    return std::unique_ptr<Source>(new (xercesc_3_0::XMLPlatformUtils::fgMemoryManager) Source(arguments...));
}
catch (...)
{
    return nullptr;
}

} // namespace

ValidatingXMLParser::ValidatingXMLParser() { EnsureParser(); }

ValidatingXMLParser::~ValidatingXMLParser() = default;

/// Makes a parser where there is none; false when Xerces is not running or memory runs out.
bool ValidatingXMLParser::EnsureParser()
{
    if (parser || isBusy)
        return true;
    if (!xercesc_3_0::DOMImplementation::getImplementation())
        return false;
    try
    {
        if (!schemas)
            schemas = std::make_unique<NuvXML::SchemaSet>();
        parser = schemas->MakeParser();
    }
    catch (...)
    {
        ranOutOfMemory = NuvXML::IsOutOfMemory();
    }
    return parser != nullptr;
}

/// A handler or a source can call the parser that calls it.
void ValidatingXMLParser::EnsureIdle() const
{
    if (isBusy)
        throw xercesc_3_0::IOException("ValidatingXMLParser", __LINE__,
                                       xercesc_3_0::XMLExcepts::Gen_ParseInProgress,
                                       xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
}

/// Xerces' scanner keeps its buffers, the names of elements that no schema declares, and the URIs of all
/// namespaces, and looks new ones up among them. Documents within limits must not slow down others.
bool ValidatingXMLParser::MayKeepParser() const
{
    constexpr size_t MaxBytesOfDocuments = 1'000'000;
    return schemas->CountBytesOfDocuments() <= MaxBytesOfDocuments &&
           (schemas->IsEmpty() || limits == ParserLimits());
}

/// Lack of memory leaves the scanner of Xerces in a state from which the next parse would crash.
void ValidatingXMLParser::HandleUnknownFailure()
{
    ranOutOfMemory = NuvXML::IsOutOfMemory();
    if (!ranOutOfMemory || !schemas)
        return;
    hasLostSchema = hasLostSchema || !schemas->IsEmpty();
    parser.reset();
    schemas.reset();
}

bool ValidatingXMLParser::LoadSchema(const IO::Location& schema, NodeLocationInfo* errorLocation,
                                     Nuv::UniString* errorMessage)
{
    const FailureReport failure{errorLocation, errorMessage};
    ranOutOfMemory = false;
    try
    {
        if (!CanBeOpened(schema))
        {
            failure.Write(UnknownLine, u"Could not open the XML Schema file.");
            return false;
        }
        if (!xercesc_3_0::DOMImplementation::getImplementation())
            throw Nuv::NuvException();
        EnsureIdle();
        const Nuv::SaveAndRestoreVariable<bool> busy(isBusy, true);
        parser.reset(); // which the schemas must not have now
        if (!schemas)
            schemas = std::make_unique<NuvXML::SchemaSet>();
        DOMTreeErrorReporter errorReporter;
        schemas->Load(schema, errorReporter);
        hasLostSchema = false;
        return true;
    }
    catch (const xercesc_3_0::SAXParseException& exception)
    {
        failure.Write(exception.getLineNumber(), exception.getMessage());
    }
    catch (const xercesc_3_0::SAXException& exception)
    {
        failure.Write(UnknownLine, exception.getMessage());
    }
    catch (const xercesc_3_0::XMLException& exception)
    {
        failure.Write(exception.getSrcLine(), exception.getMessage());
    }
    catch (const xercesc_3_0::DOMException& exception)
    {
        failure.Write(UnknownLine, exception.getMessage());
    }
    catch (...)
    {
        HandleUnknownFailure();
        failure.Write(UnknownLine, u"Could not load the XML Schema.");
    }
    return false;
}

xercesc_3_0::DOMDocument* ValidatingXMLParser::Parse(xercesc_3_0::InputSource& source, ValSchemes scheme,
                                                     bool createEntityRefNodes, NodeLocations* nodeLocations,
                                                     NodeLocationInfo* errorLocation,
                                                     Nuv::UniString* errorMessage)
{
    const FailureReport failure{errorLocation, errorMessage};
    NuvEntityResolver entityResolver;
    xercesc_3_0::DOMDocument* document = nullptr;
    try
    {
        EnsureIdle();
        const Nuv::SaveAndRestoreVariable<bool> busy(isBusy, true);
        parser->SetNodeLocations(nodeLocations);
        parser->SetParsedNodes(parsedNodes);
        DOMTreeErrorReporter errorReporter(errorHandler);
        parser->reset();
        parser->ForgetXMLVersion();
        const bool validatesAgainstSchema = parser->getDoSchema();
        parser->setValidationScheme(validatesAgainstSchema ? LineInfoParser::Val_Always : scheme);
        parser->setDoNamespaces(validatesAgainstSchema);
        parser->setCreateEntityReferenceNodes(createEntityRefNodes);
        NuvXML::ParseGuard guard(limits);
        const CallScope call(*parser, errorReporter, &entityResolver,
                             limits == ParserLimits() ? nullptr : &guard);
        parser->parse(source);
        document = parser->adoptDocument();
    }
    catch (const xercesc_3_0::SAXParseException& exception)
    {
        failure.Write(exception.getLineNumber(), exception.getMessage());
    }
    catch (const xercesc_3_0::XMLException& exception)
    {
        failure.Write(exception.getSrcLine(), exception.getMessage());
    }
    catch (...)
    {
        HandleUnknownFailure();
        failure.Write(UnknownLine, FailedToParse);
    }
    if (parser && !isBusy && !MayKeepParser())
        parser.reset();
    ranOutOfMemory = ranOutOfMemory || (!document && entityResolver.RanOutOfMemory());
    return document;
}

xercesc_3_0::DOMDocument* ValidatingXMLParser::Parse(const IO::Location& file, ValSchemes scheme,
                                                     bool createEntityRefNodes, NodeLocations* nodeLocations,
                                                     NodeLocationInfo* errorLocation,
                                                     Nuv::UniString* errorMessage)
{
    const FailureReport failure{errorLocation, errorMessage};
    ranOutOfMemory = false;
    if (hasLostSchema || !EnsureParser())
        return failure.Null(FailedToParse);
    const auto source = MakeSource<LocationInputSource>(file);
    ranOutOfMemory = !source;
    if (!source)
        return failure.Null(u"Memory error");
    auto* document = Parse(*source, scheme, createEntityRefNodes, nodeLocations, errorLocation, errorMessage);
    ranOutOfMemory = ranOutOfMemory || source->RanOutOfMemory();
    return document;
}

xercesc_3_0::DOMDocument* ValidatingXMLParser::Parse(const unsigned char* buffer, unsigned int size,
                                                     ValSchemes scheme, bool createEntityRefNodes,
                                                     const Nuv::UniString& systemId,
                                                     NodeLocations* nodeLocations,
                                                     NodeLocationInfo* errorLocation,
                                                     Nuv::UniString* errorMessage)
{
    return ParseMemory(buffer, size, nullptr, scheme, createEntityRefNodes, systemId, nodeLocations,
                       errorLocation, errorMessage);
}

xercesc_3_0::DOMDocument*
ValidatingXMLParser::ParseMemory(const unsigned char* buffer, size_t size, const XMLCh* encoding,
                                 ValSchemes scheme, bool createEntityRefNodes, const Nuv::UniString& systemId,
                                 NodeLocations* nodeLocations, NodeLocationInfo* errorLocation,
                                 Nuv::UniString* errorMessage)
{
    const FailureReport failure{errorLocation, errorMessage};
    ranOutOfMemory = false;
    if (hasLostSchema || !EnsureParser())
        return failure.Null(FailedToParse);
    const auto source = MakeSource<xercesc_3_0::MemBufInputSource>(buffer, size, systemId.ToUTF16());
    ranOutOfMemory = !source;
    if (!source)
        return failure.Null(FailedToParse);
    if (encoding)
        source->setEncoding(encoding);
    return Parse(*source, scheme, createEntityRefNodes, nodeLocations, errorLocation, errorMessage);
}

xercesc_3_0::DOMDocument* ValidatingXMLParser::Parse(const unsigned char* buffer, unsigned int size,
                                                     ValSchemes scheme, bool createEntityRefNodes,
                                                     const IO::Location& systemId,
                                                     NodeLocations* nodeLocations,
                                                     NodeLocationInfo* errorLocation,
                                                     Nuv::UniString* errorMessage)
{
    return Parse(buffer, size, scheme, createEntityRefNodes, systemId.ToPath(), nodeLocations, errorLocation,
                 errorMessage);
}

xercesc_3_0::DOMDocument* ParseXMLDoc(const IO::Location& file, ValidatingXMLParser::ValSchemes scheme,
                                      bool createEntityRefNodes, NodeLocations* nodeLocations,
                                      NodeLocationInfo* errorLocation, Nuv::UniString* errorMessage)
{
    return ValidatingXMLParser().Parse(file, scheme, createEntityRefNodes, nodeLocations, errorLocation,
                                       errorMessage);
}

xercesc_3_0::DOMDocument* ParseXMLDoc(const unsigned char* buffer, unsigned int size,
                                      ValidatingXMLParser::ValSchemes scheme, bool createEntityRefNodes,
                                      const Nuv::UniString& systemId, NodeLocations* nodeLocations,
                                      NodeLocationInfo* errorLocation, Nuv::UniString* errorMessage)
{
    return ValidatingXMLParser().Parse(buffer, size, scheme, createEntityRefNodes, systemId, nodeLocations,
                                       errorLocation, errorMessage);
}

xercesc_3_0::DOMDocument* ParseXMLDoc(const unsigned char* buffer, unsigned int size,
                                      ValidatingXMLParser::ValSchemes scheme, bool createEntityRefNodes,
                                      const IO::Location& systemId, NodeLocations* nodeLocations,
                                      NodeLocationInfo* errorLocation, Nuv::UniString* errorMessage)
{
    return ParseXMLDoc(buffer, size, scheme, createEntityRefNodes, systemId.ToPath(), nodeLocations,
                       errorLocation, errorMessage);
}
