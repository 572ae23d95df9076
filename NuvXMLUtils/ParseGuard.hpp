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

#include <string_view>

namespace NuvXML
{

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

    /// In the document's content.
    void StartEntity(const xercesc_3_0::XMLEntityDecl& entity);

    void StartElement(const xercesc_3_0::XMLElementDecl& element,
                      const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attributes, size_t attributeCount)
    {
        if (depth >= limits.maxNesting)
            RefuseNesting();
        if (element.getId() > limits.maxElementNames) // Xerces numbers the names as it meets them
            RefuseElementNames();
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
    void CheckStates(std::u16string_view contentModel, const XMLCh* name) const;
    void CheckDeclarationLength(size_t length, const char16_t* kind, const XMLCh* name) const;
    void CountDefaultAttributes(const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attributes,
                                size_t attributeCount);
    [[noreturn]] void RefuseAttributes() const;
    [[noreturn]] void RefuseElementNames() const;
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
};

} // namespace NuvXML
