#pragma once

#include "NuvXMLUtils/Export.hpp"

namespace NuvXML
{

/// Starts Xerces-C++ when it is made and stops it when it is destroyed. The library holds one instance, so
/// that Xerces is up while the library is loaded.
///
/// There is one flag for the whole process and no count: a further instance does nothing while Xerces is up,
/// but the first instance to be destroyed stops Xerces for everyone, and the next one made starts it again. A
/// failed start is reported by the debug assertion "XML Initialize error" and leaves Xerces down.
class NUVXMLUTILS_API XercescInitializer
{
  public:
    XercescInitializer();
    XercescInitializer(const XercescInitializer& other);
    XercescInitializer& operator=(const XercescInitializer& other);
    virtual ~XercescInitializer();
};

} // namespace NuvXML
