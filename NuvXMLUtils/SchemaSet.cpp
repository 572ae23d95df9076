#include "NuvXMLUtils/SchemaSet.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/SaveAndRestoreVariable.hpp"

#include <xercesc/validators/common/Grammar.hpp>
#include <xercesc/validators/common/GrammarResolver.hpp>

#include <algorithm>

namespace NuvXML
{

// Memory.

namespace
{

/// Before each block its size is kept; the block must stay aligned.
constexpr size_t HeadSize = alignof(std::max_align_t);
static_assert(HeadSize >= sizeof(size_t));

} // namespace

// Not inline, for the compiler would guess that the base is of this class too, and put it into itself.
[[gnu::noinline]] void* CountingMemory::allocate(XMLSize_t size)
{
    void* const head = base.allocate(HeadSize + size);
    *static_cast<size_t*>(head) = size;
    used += size;
    return static_cast<std::byte*>(head) + HeadSize;
}

[[gnu::noinline]] void CountingMemory::deallocate(void* bytes)
{
    if (!bytes)
        return;
    void* const head = static_cast<std::byte*>(bytes) - HeadSize;
    used -= *static_cast<size_t*>(head);
    base.deallocate(head);
}

// URIs.

DocumentURIs::DocumentURIs(const XMLStringPool& urisOfSchemas, xercesc_3_0::MemoryManager& memory)
    : XMLStringPool(109, &memory)
    , schemaURIs(urisOfSchemas)
    , schemaCount(urisOfSchemas.getStringCount())
{
}

unsigned int DocumentURIs::addOrFind(const XMLCh* uri)
{
    const unsigned int id = schemaURIs.getId(uri);
    return id != 0 ? id : schemaCount + XMLStringPool::addOrFind(uri);
}

unsigned int DocumentURIs::getId(const XMLCh* uri) const
{
    if (const unsigned int id = schemaURIs.getId(uri); id != 0)
        return id;
    const unsigned int id = XMLStringPool::getId(uri);
    return id != 0 ? schemaCount + id : 0;
}

const XMLCh* DocumentURIs::getValueForId(unsigned int id) const
{
    return id <= schemaCount ? schemaURIs.getValueForId(id) : XMLStringPool::getValueForId(id - schemaCount);
}

// Schemas.

/// Reads a schema, with what it includes and imports.
class SchemaSet::Loader : public xercesc_3_0::XercesDOMParser
{
  public:
    Loader(CountingMemory& memory, Pool& target)
        : XercesDOMParser(nullptr, &memory, &target)
    {
    }

    /// Puts all that has been read into the pool.
    void PutIntoPool() { getGrammarResolver()->cacheGrammars(); }
};

namespace
{

/// The same after the current folder has changed, if that is known.
Nuv::UniString AbsolutePath(const IO::Location& file)
{
    const Nuv::UniString url = file.ToURL();
    return url.IsEmpty() ? file.ToPath() : IO::Location(url).ToPath();
}

} // namespace

void SchemaSet::Load(const IO::Location& file, xercesc_3_0::ErrorHandler& errorHandler)
{
    pool->documentURIs.reset();
    Schema schema{AbsolutePath(file), {}};
    auto replaced = std::find_if(schemas.begin(), schemas.end(),
                                 [&](const Schema& loaded) { return loaded.path == schema.path; });
    if (replaced == schemas.end())
    {
        if (Add(*pool, file.ToPath(), schema, errorHandler))
        {
            schemas.push_back(std::move(schema));
            return;
        }
        replaced = std::find_if(schemas.begin(), schemas.end(),
                                [&](const Schema& loaded)
                                { return loaded.targetNamespace == schema.targetNamespace; });
    }
    std::vector<Schema> wanted = schemas;
    const auto place = wanted.begin() + (replaced - schemas.begin());
    const auto newest = replaced != schemas.end() ? place : wanted.insert(wanted.begin(), schema);
    *newest = schema;
    if (ReadAgain(wanted, static_cast<size_t>(newest - wanted.begin()), errorHandler))
        return;
    std::rotate(wanted.begin(), newest, newest + 1); // before what imports another in its place
    ReadAgain(wanted, 0, errorHandler);
}

/// Makes all schemas anew. What one imports has precedence over later ones; false when that befalls the
/// newest.
bool SchemaSet::ReadAgain(std::vector<Schema>& wanted, size_t newest, xercesc_3_0::ErrorHandler& errorHandler)
{
    std::unique_ptr<Pool> renewed = MakePool();
    for (size_t i = 0; i < wanted.size(); ++i)
        if (!Add(*renewed, wanted[i].path, wanted[i], errorHandler) && i == newest)
            return false;
    pool = std::move(renewed);
    schemas = std::move(wanted);
    return true;
}

/// False when there is a schema for the name space; then nothing is added.
bool SchemaSet::Add(Pool& target, const Nuv::UniString& path, Schema& schema,
                    xercesc_3_0::ErrorHandler& errorHandler)
{
    Loader loader(memory, target);
    loader.setErrorHandler(&errorHandler);
    xercesc_3_0::Grammar* const grammar =
        loader.loadGrammar(path.ToUTF16(), xercesc_3_0::Grammar::SchemaGrammarType, true);
    if (!grammar)
        throw Nuv::NuvException();
    schema.targetNamespace = grammar->getTargetNamespace();
    if (target.retrieveGrammar(grammar->getGrammarDescription()))
        return false;
    const Nuv::SaveAndRestoreVariable<bool> taking(target.takesGrammars, true);
    loader.PutIntoPool();
    return true;
}

// Parsers.

std::unique_ptr<ValidatingXMLParser::LineInfoParser> SchemaSet::MakeParser()
{
    pool->documentURIs.reset();
    if (!IsEmpty())
        pool->documentURIs = std::make_unique<DocumentURIs>(*pool->getURIStringPool(), memory);
    auto parser = std::make_unique<ValidatingXMLParser::LineInfoParser>(memory, *pool);
    parser->setDoSchema(!IsEmpty());
    parser->useCachedGrammarInParse(!IsEmpty());
    usedByNewParser = memory.GetUsed();
    return parser;
}

size_t SchemaSet::CountBytesOfDocuments() const
{
    return memory.GetUsed() - std::min(memory.GetUsed(), usedByNewParser);
}

} // namespace NuvXML
