#pragma once

#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <cstddef>
#include <new>

namespace NuvTest
{

/// Stops Xerces and starts it again at the end of the scope. No object of Xerces may be alive at either end.
class XercesDownScope
{
  public:
    XercesDownScope()
    {
        // Any instance that ends stops Xerces for everyone.
        const NuvXML::XercescInitializer ends;
    }
    XercesDownScope(const XercesDownScope&) = delete;
    XercesDownScope& operator=(const XercesDownScope&) = delete;
    ~XercesDownScope()
    {
        // This one never ends, so that Xerces stays up.
        alignas(NuvXML::XercescInitializer) static std::byte forever[sizeof(NuvXML::XercescInitializer)];
        new (forever) NuvXML::XercescInitializer;
    }
};

} // namespace NuvTest
