#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include "NuvRoot/Debug.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace NuvXML
{
namespace
{

constexpr char SourceFile[] = "NuvXMLInterface";

bool xercesInitialized = false;

const XercescInitializer keepXercesUp;

} // namespace

XercescInitializer::XercescInitializer()
{
    if (xercesInitialized)
        return;
    try
    {
        xercesc_3_0::XMLPlatformUtils::Initialize(xercesc_3_0::XMLUni::fgXercescDefaultLocale, nullptr,
                                                  nullptr, nullptr);
        xercesInitialized = true;
    }
    catch (...)
    {
        DBBreak(SourceFile, __LINE__, "XML Initialize error",
                "NuvXML::XercescInitializer::XercescInitializer");
    }
}

XercescInitializer::XercescInitializer(const XercescInitializer&) {}

XercescInitializer& XercescInitializer::operator=(const XercescInitializer&) { return *this; }

XercescInitializer::~XercescInitializer()
{
    if (!xercesInitialized)
        return;
    xercesc_3_0::XMLPlatformUtils::Terminate();
    xercesInitialized = false;
}

} // namespace NuvXML
