#include "NuvXMLUtils/ParseGuard.hpp"

#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLURL.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>

namespace NuvXML
{

namespace
{

using Nuv::UniString;

UniString LimitText(size_t limit) { return UniString(u"the limit of ") + UniString(std::to_string(limit)); }

UniString Quoted(const XMLCh* text) { return UniString(u"'") + UniString(text) + u"'"; }

bool IsEmpty(const XMLCh* text) { return !text || !*text; }

/// The base as Xerces chooses it.
const XMLCh* BaseOf(const xercesc_3_0::XMLResourceIdentifier& entity)
{
    const xercesc_3_0::Locator* const locator = entity.getLocator();
    return IsEmpty(entity.getBaseURI()) && locator ? locator->getSystemId() : entity.getBaseURI();
}

/// Whether reading the entity needs the network. For a relative id that depends on where the document is
/// from.
bool IsOnNetwork(const xercesc_3_0::XMLResourceIdentifier& entity)
{
    xercesc_3_0::XMLURL url;
    if (!url.setURL(BaseOf(entity), entity.getSystemId(), url) || url.isRelative())
        return false;
    const bool isLocalHost =
        IsEmpty(url.getHost()) || xercesc_3_0::XMLString::equals(url.getHost(), u"localhost");
    return url.getProtocol() != xercesc_3_0::XMLURL::File || !isLocalHost;
}

/// Calls `action` with each name in a content model, as often as it stands there; `#PCDATA` is one too.
template <class Action>
void ForEachName(std::u16string_view contentModel, Action action)
{
    if (!contentModel.starts_with(u'(')) // EMPTY or ANY
        return;
    while (!contentModel.empty())
    {
        const std::u16string_view word = contentModel.substr(0, contentModel.find_first_of(u"(),|?*+ "));
        contentModel.remove_prefix(std::min(word.size() + 1, contentModel.size()));
        if (!word.empty())
            action(word);
    }
}

} // namespace

void ParseGuard::StartDocument()
{
    depth = 0;
    defaultAttributes = 0;
    declarations = 0;
    expandedContent = 0;
    hasDefaultAttributes = false;
    hasEntities = false;
    elementNames.Clear();
    contentModelNames.Clear();
}

void ParseGuard::DocumentType() const
{
    if (limits.forbidDocumentTypes)
        Refuse(u"document types are forbidden");
}

void ParseGuard::StartAttributeList(const xercesc_3_0::DTDElementDecl& element)
{
    CountDeclaration();
    if (hasEntities && RefusesExpansionInDocumentType())
        Refuse(UniString(u"attributes must be declared before entities where entity expansion is limited; "
                         u"the list of element ") +
               Quoted(element.getFullName()) + u" is not");
}

void ParseGuard::AttributeDeclaration(const xercesc_3_0::DTDAttDef& attribute)
{
    CountDeclaration();
    if (attribute.getEnumeration())
        CheckDeclarationLength(xercesc_3_0::XMLString::stringLen(attribute.getEnumeration()),
                               u"list of values of attribute ", attribute.getFullName());
    if (!attribute.getValue())
        return;
    hasDefaultAttributes = true;
    CheckDeclarationLength(xercesc_3_0::XMLString::stringLen(attribute.getValue()), u"default of attribute ",
                           attribute.getFullName());
}

void ParseGuard::ElementDeclaration(const xercesc_3_0::DTDElementDecl& element)
{
    CountDeclaration();
    if (limits.maxDeclarationLength == ParserLimits::Unlimited &&
        limits.maxDeclarations == ParserLimits::Unlimited)
        return;
    const std::u16string_view contentModel(element.getFormattedContentModel());
    CheckDeclarationLength(contentModel.size(), u"content model of element ", element.getFullName());
    CheckStates(contentModel, element.getFullName());
    CountNamesOf(contentModel);
}

void ParseGuard::EntityDeclaration(const xercesc_3_0::DTDEntityDecl& entity, bool isParameterEntity)
{
    CountDeclaration();
    if (isParameterEntity && RefusesExpansionInDocumentType())
        Refuse(UniString(u"parameter entities are forbidden where entity expansion is limited; the document "
                         u"declares ") +
               Quoted(entity.getName()));
    hasEntities = hasEntities || !isParameterEntity;
    if (entity.isExternal())
        return;
    CheckDeclarationLength(entity.getValueLen(), u"text of entity ", entity.getName());
}

void ParseGuard::StartEntity(const xercesc_3_0::XMLEntityDecl& entity)
{
    expandedContent += entity.getValueLen();
    if (expandedContent > limits.maxExpandedContent)
        Refuse(UniString(u"entities put more characters into the document than ") +
               LimitText(limits.maxExpandedContent));
}

void ParseGuard::ExternalEntity(const xercesc_3_0::XMLResourceIdentifier& entity) const
{
    const XMLCh* const systemId = entity.getSystemId();
    if (!systemId) // an import that names no schema: there is nothing to read
        return;
    if (limits.forbidExternalEntities)
        Refuse(UniString(u"external entities are forbidden; the document refers to ") + Quoted(systemId));
    if (limits.forbidNetwork && IsOnNetwork(entity))
        Refuse(UniString(u"the network is forbidden; the document refers to ") + Quoted(systemId));
}

bool ParseGuard::RefusesExpansionInDocumentType() const
{
    return limits.maxEntityExpansions != ParserLimits::Unlimited && !limits.allowExpansionInDocumentType;
}

void ParseGuard::CountDeclaration()
{
    if (++declarations > limits.maxDeclarations)
        Refuse(UniString(u"the document type declares more than ") + LimitText(limits.maxDeclarations));
}

void ParseGuard::CountElementName(const xercesc_3_0::XMLElementDecl& element, const XMLCh* prefix)
{
    std::u16string_view name(prefix ? element.getBaseName() : element.getFullName());
    if (!IsEmpty(prefix))
        name = qualifiedName.assign(prefix).append(u":").append(name);
    if (elementNames.Contains(name))
        return;
    if (elementNames.GetSize() >= limits.maxElementNames)
        Refuse(UniString(u"the document has more names of elements than ") +
               LimitText(limits.maxElementNames));
    elementNames.Add(name);
}

/// A content model can name elements that nothing else declares.
void ParseGuard::CountNamesOf(std::u16string_view contentModel)
{
    ForEachName(contentModel,
                [this](std::u16string_view name)
                {
                    if (name == u"#PCDATA" || contentModelNames.Contains(name))
                        return;
                    if (contentModelNames.GetSize() >= limits.maxDeclarations)
                        Refuse(UniString(u"the content models of the document type have more names than ") +
                               LimitText(limits.maxDeclarations));
                    contentModelNames.Add(name);
                });
}

/// Each state is a set of places at which the same name stands.
void ParseGuard::CheckStates(std::u16string_view contentModel, const XMLCh* name) const
{
    std::unordered_map<std::u16string_view, size_t> statesOfName;
    size_t states = 0;
    ForEachName(contentModel,
                [&](std::u16string_view word)
                {
                    size_t& statesHere = statesOfName.try_emplace(word, 1).first->second;
                    states += statesHere;
                    statesHere *= 2;
                    if (states > limits.maxDeclarationLength)
                        Refuse(UniString(u"the content model of element ") + Quoted(name) +
                               u" may need more states than " + LimitText(limits.maxDeclarationLength));
                });
}

void ParseGuard::CheckDeclarationLength(size_t length, const char16_t* kind, const XMLCh* name) const
{
    if (length > limits.maxDeclarationLength)
        Refuse(UniString(u"the ") + kind + Quoted(name) + u" is longer than " +
               LimitText(limits.maxDeclarationLength) + u" characters");
}

void ParseGuard::CountDefaultAttributes(const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attributes,
                                        size_t attributeCount)
{
    for (size_t i = 0; i < attributeCount; ++i)
        defaultAttributes += attributes.elementAt(i)->getSpecified() ? 0 : 1;
    if (defaultAttributes > limits.maxDefaultAttributes)
        Refuse(UniString(u"the document type adds more attributes to elements than ") +
               LimitText(limits.maxDefaultAttributes));
}

void ParseGuard::RefuseAttributes() const
{
    Refuse(UniString(u"an element has more attributes than ") + LimitText(limits.maxAttributes));
}

void ParseGuard::RefuseNesting() const
{
    Refuse(UniString(u"elements are nested deeper than ") + LimitText(limits.maxNesting) + u" levels");
}

void ParseGuard::Refuse(const UniString& message) const
{
    auto* const memory = xercesc_3_0::XMLPlatformUtils::fgMemoryManager;
    if (locator)
        throw xercesc_3_0::SAXParseException(message.ToUTF16(), *locator, memory);
    throw xercesc_3_0::SAXParseException(message.ToUTF16(), nullptr, nullptr, 0, 0, memory);
}

} // namespace NuvXML
