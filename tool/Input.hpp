/// @file
/// Documents that the tool reads.
#pragma once

#include "Paths.hpp"

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/NodeLocations.hpp"
#include "NuvXMLUtils/NodePlaces.hpp"
#include "NuvXMLUtils/ParserLimits.hpp"
#include "NuvXMLUtils/SourceText.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

#include <optional>
#include <string>

namespace Tool
{

/// All bytes of a file, or of standard input.
/// @throws Trouble, also when they are more than can be parsed at once
std::string ReadAll(const std::string& path);

/// A file, or standard input, as a source of Xerces that is read as it is parsed.
class FileSource : public xercesc_3_0::InputSource
{
  public:
    explicit FileSource(const std::string& file);

    /// @throws Trouble when the file cannot be opened, and reading from the stream when it cannot be read
    xercesc_3_0::BinInputStream* makeStream() const override;

  private:
    std::string path;
};

/// Limits for a document that is, or is not, to be trusted.
ParserLimits LimitsFor(bool trusted);

/// Parses the bytes of a file. Null, with the reason, when that fails.
NuvXML::XercesPtr<xercesc_3_0::DOMDocument> ParseAll(ValidatingXMLParser& parser, const std::string& path,
                                                     const std::string& bytes,
                                                     ValidatingXMLParser::ValSchemes scheme,
                                                     bool createEntityRefNodes, NodeLocations* locations,
                                                     NodeLocationInfo& place, Nuv::UniString& message);

/// A document that has been read, with all that can be told of its nodes.
class Document
{
  public:
    /// @throws Trouble, in the form `file:line: message` when the text is not well formed
    Document(const std::string& path, bool createEntityRefNodes, bool trusted,
             const ValidatingXMLParser::ParsedNodes& parsedNodes = {});
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document();

    const xercesc_3_0::DOMDocument& DOM() const { return *document; }
    const std::string& Name() const { return name; }
    NuvXML::NodePlaces& Places() { return places; }
    Nuv::UniString SourceLine(unsigned int number);

  private:
    std::string name;
    std::string bytes;
    NodeLocations locations;
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document;
    NuvXML::NodePlaces places{&locations};
    std::optional<NuvXML::SourceText> source; ///< made when it is needed
};

/// `file:line: message`, as compilers write it, for a terminal; without the line when it is not known.
std::string FaultText(const std::string& file, unsigned int line, const Nuv::UniString& message);

} // namespace Tool
