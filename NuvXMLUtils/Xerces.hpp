/// @file
/// How this library names Xerces-C++ and owns its objects.
#pragma once

#include <xercesc/util/XercesDefs.hpp>

#include <memory>
#include <type_traits>

/// Code written against Xerces-C++ 3.0 compiles with any later 3.x.
namespace xercesc_3_0 = XERCES_CPP_NAMESPACE;

static_assert(std::is_same_v<XMLCh, char16_t>,
              "Xerces-C++ must be built with char16_t as its character type");

namespace NuvXML
{

/// Frees an object of Xerces in the way that Xerces wants it.
struct ReleaseXercesObject
{
    template <class T>
    void operator()(T* object) const
    {
        object->release();
    }
};

/// Owns a document, serializer or other object of Xerces that is freed with `release()`.
template <class T>
using XercesPtr = std::unique_ptr<T, ReleaseXercesObject>;

} // namespace NuvXML
