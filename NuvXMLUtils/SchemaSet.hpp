/// @file
/// The schemas of a parser, and the memory that documents leave behind in it. Private to NuvXMLUtils.
#pragma once

#include "InputOutput/Location.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/framework/XMLGrammarPoolImpl.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/StringPool.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace NuvXML
{

/// Counts the bytes that are in use. They come from Xerces' own memory manager.
class CountingMemory : public xercesc_3_0::MemoryManager
{
  public:
    size_t GetUsed() const { return used; }

    void* allocate(XMLSize_t size) override;
    void deallocate(void* bytes) override;
    MemoryManager* getExceptionMemoryManager() override { return base.getExceptionMemoryManager(); }

  private:
    xercesc_3_0::MemoryManager& base = *xercesc_3_0::XMLPlatformUtils::fgMemoryManager;
    size_t used = 0;
};

/// URIs of documents, numbered after those of the schemas, which stay as they are meanwhile.
class DocumentURIs : public xercesc_3_0::XMLStringPool
{
  public:
    DocumentURIs(const XMLStringPool& urisOfSchemas, xercesc_3_0::MemoryManager& memory);

    unsigned int addOrFind(const XMLCh* uri) override;
    bool exists(const XMLCh* uri) const override { return getId(uri) != 0; }
    bool exists(unsigned int id) const override { return id != 0 && id <= getStringCount(); }
    unsigned int getId(const XMLCh* uri) const override;
    const XMLCh* getValueForId(unsigned int id) const override;
    unsigned int getStringCount() const override { return schemaCount + XMLStringPool::getStringCount(); }

  private:
    const XMLStringPool& schemaURIs;
    const unsigned int schemaCount;
};

/// Keeps schemas apart from the parser that uses them, so that a new parser can take over and nothing of the
/// documents remains. All types of the schemas may refer to each other.
class SchemaSet
{
  public:
    bool IsEmpty() const { return schemas.empty(); }

    /// Adds a schema. One that came from the same file or has the same name space is replaced; then all are
    /// read again. There must be no parser.
    /// @throws what `errorHandler` and Xerces throw; then the schemas are as they were, except for lack of
    /// memory, which leaves them unfit for use
    /// @throws Nuv::NuvException when Xerces tells no reason
    void Load(const IO::Location& file, xercesc_3_0::ErrorHandler& errorHandler);

    /// Makes a parser that validates against the schemas, if there are any. It must not outlive them; only
    /// one may exist.
    std::unique_ptr<ValidatingXMLParser::LineInfoParser> MakeParser();

    /// How many bytes the parser uses more than when it was new.
    size_t CountBytesOfDocuments() const;

  private:
    struct Schema
    {
        Nuv::UniString path;
        std::u16string targetNamespace;
    };

    /// Grammars, which point to each other.
    class Pool : public xercesc_3_0::XMLGrammarPoolImpl
    {
      public:
        using XMLGrammarPoolImpl::XMLGrammarPoolImpl;

        bool cacheGrammar(xercesc_3_0::Grammar* grammar) override
        {
            return takesGrammars && XMLGrammarPoolImpl::cacheGrammar(grammar);
        }
        xercesc_3_0::XMLStringPool* getURIStringPool() override
        {
            return documentURIs ? documentURIs.get() : XMLGrammarPoolImpl::getURIStringPool();
        }

        std::unique_ptr<DocumentURIs> documentURIs; ///< while there is a parser
        bool takesGrammars = false;
    };

    class Loader;

    std::unique_ptr<Pool> MakePool() { return std::make_unique<Pool>(&memory); }
    bool Add(Pool& target, const Nuv::UniString& path, Schema& schema,
             xercesc_3_0::ErrorHandler& errorHandler);
    bool ReadAgain(std::vector<Schema>& wanted, size_t newest, xercesc_3_0::ErrorHandler& errorHandler);

    CountingMemory memory;
    std::unique_ptr<Pool> pool = MakePool();
    std::vector<Schema> schemas; ///< in the order in which they are read
    size_t usedByNewParser = 0;
};

} // namespace NuvXML
