#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/framework/XMLEntityDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RefVectorOf.hpp>

ValidatingXMLParser::LineInfoParser::LineInfoParser()
    : XercesDOMParser(nullptr, xercesc_3_0::XMLPlatformUtils::fgMemoryManager, nullptr)
    , locator(getScanner()->getLocator())
{
}

ValidatingXMLParser::LineInfoParser::~LineInfoParser() = default;

void ValidatingXMLParser::LineInfoParser::SetNodeLocations(NodeLocations* store) { nodeLocations = store; }

void ValidatingXMLParser::LineInfoParser::docCharacters(const XMLCh* chars, XMLSize_t length,
                                                        bool cdataSection)
{
    XercesDOMParser::docCharacters(chars, length, cdataSection);
    InsertNodeLocInfo();
}

void ValidatingXMLParser::LineInfoParser::docComment(const XMLCh* comment)
{
    XercesDOMParser::docComment(comment);
    InsertNodeLocInfo();
}

void ValidatingXMLParser::LineInfoParser::startElement(
    const xercesc_3_0::XMLElementDecl& declaration, unsigned int urlId, const XMLCh* elemPrefix,
    const xercesc_3_0::RefVectorOf<xercesc_3_0::XMLAttr>& attrList, XMLSize_t attrCount, bool isEmpty,
    bool isRoot)
{
    XercesDOMParser::startElement(declaration, urlId, elemPrefix, attrList, attrCount, isEmpty, isRoot);
    InsertNodeLocInfo();
}

void ValidatingXMLParser::LineInfoParser::startEntityReference(const xercesc_3_0::XMLEntityDecl& declaration)
{
    XercesDOMParser::startEntityReference(declaration);
    InsertNodeLocInfo();
}

void ValidatingXMLParser::LineInfoParser::InsertNodeLocInfo()
{
    if (!nodeLocations || !getCurrentNode())
        return;
    try
    {
        nodeLocations->AddNew(getCurrentNode(), static_cast<unsigned int>(locator->getLineNumber()));
    }
    catch (...)
    {
        // A document without some of its lines is better than none.
    }
}
