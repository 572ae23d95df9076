/// @file
/// What keeps a parse within its limits. Private to NuvXMLUtils.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/ParserLimits.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/framework/XMLEntityDecl.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/util/RefVectorOf.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/validators/DTD/DTDAttDef.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace NuvXML
{

/// Names of a document. Names that are chosen to share a hash are in order, so that no choice makes it slow.
class NameSet
{
  public:
    size_t GetSize() const { return size; }

    bool Contains(std::u16string_view name) const
    {
        const auto withHash = names.find(std::hash<std::u16string_view>()(name));
        return withHash != names.end() && withHash->second.contains(name);
    }

    /// Adds a name that it does not contain.
    void Add(std::u16string_view name)
    {
        names[std::hash<std::u16string_view>()(name)].emplace(name);
        ++size;
    }

    void Clear()
    {
        names.clear();
        size = 0;
    }

  private:
    std::map<size_t, std::set<std::u16string, std::less<>>> names; ///< by hash
    size_t size = 0;
};

/// Told of the events of a parse, before anything else is done with them, it throws a
/// xercesc_3_0::SAXParseException with the current line when one goes beyond a limit.
class ParseGuard
{
  public:
    explicit ParseGuard(const ParserLimits& parserLimits)
        : limits(parserLimits)
    {
        securityManager.setEntityExpansionLimit(limits.maxEntityExpansions);
    }

    const ParserLimits& GetLimits() const { return limits; }

    /// What makes Xerces count entity expansions; null when they are not limited.
    xercesc_3_0::SecurityManager* GetSecurityManager()
    {
        return limits.maxEntityExpansions == ParserLimits::Unlimited ? nullptr : &securityManager;
    }

    /// Where the parse stands; not owned. Null, and any call between parses, means that the place is unknown.
    void SetLocator(const xercesc_3_0::Locator* newLocator) { locator = newLocator; }

    void StartDocument();
    void DocumentType() const;
    void StartAttributeList(const xercesc_3_0::DTDElementDecl& element);
    void AttributeDeclaration(const xercesc_3_0::DTDAttDef& attribute);
    void ElementDeclaration(const xercesc_3_0::DTDElementDecl& element);
    void EntityDeclaration(const xercesc_3_0::DTDEntityDecl& entity, bool isParameterEntity);
    void NotationDeclaration() { CountDeclaration(); }
    void ExternalEntity(const xercesc_3_0::XMLResourceIdentifier& entity) const;

    /// How many names the elements of the document have had so far; none are counted without a limit.
    size_t CountElementNames() const { return elementNames.GetSize(); }

    /// In the document's content.
    void StartEntity(const xercesc_3_0::XMLEntityDecl& entity);

    /// @param prefix null where name spaces are not processed
    void StartElement(const xercesc_3_0::XMLElementDecl& element, const XMLCh* prefix,
                      const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attributes, size_t attributeCount)
    {
        if (depth >= limits.maxNesting)
            RefuseNesting();
        if (limits.maxElementNames != ParserLimits::Unlimited)
            CountElementName(element, prefix);
        if (attributeCount > limits.maxAttributes)
            RefuseAttributes();
        ++depth;
        if (hasDefaultAttributes)
            CountDefaultAttributes(attributes, attributeCount);
    }

    /// Empty elements end too.
    void EndElement() { --depth; }

  private:
    bool RefusesExpansionInDocumentType() const;
    void CountDeclaration();
    void CountElementName(const xercesc_3_0::XMLElementDecl& element, const XMLCh* prefix);
    void CountNamesOf(std::u16string_view contentModel);
    void CheckStates(std::u16string_view contentModel, const XMLCh* name) const;
    void CheckDeclarationLength(size_t length, const char16_t* kind, const XMLCh* name) const;
    void CountDefaultAttributes(const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attributes,
                                size_t attributeCount);
    [[noreturn]] void RefuseAttributes() const;
    [[noreturn]] void RefuseNesting() const;
    [[noreturn]] void Refuse(const Nuv::UniString& message) const;

    const ParserLimits limits;
    xercesc_3_0::SecurityManager securityManager;
    const xercesc_3_0::Locator* locator = nullptr;
    size_t depth = 0;
    size_t defaultAttributes = 0;
    size_t declarations = 0;
    size_t expandedContent = 0;
    bool hasDefaultAttributes = false;
    bool hasEntities = false;
    std::u16string qualifiedName; ///< of the last element with a prefix; kept for its memory

    NameSet elementNames;
    NameSet contentModelNames;
};

} // namespace NuvXML
