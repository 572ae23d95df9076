/// @file
/// Lack of memory has two faces: the application's exception, which is a std::bad_alloc, and Xerces' own,
/// into which Xerces turns the first. Private to NuvXMLUtils.
#pragma once

#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/util/OutOfMemoryException.hpp>

#include <new>

namespace NuvXML
{

/// Whether the exception that is being handled tells of lack of memory.
inline bool IsOutOfMemory()
{
    try
    {
        throw;
    }
    catch (const std::bad_alloc&)
    {
        return true;
    }
    catch (const xercesc_3_0::OutOfMemoryException&)
    {
        return true;
    }
    catch (...)
    {
        return false;
    }
}

/// Calls Xerces, and turns its exception for lack of memory back into the application's.
template <class Call>
auto WithOwnOutOfMemory(Call call)
{
    try
    {
        return call();
    }
    catch (const xercesc_3_0::OutOfMemoryException&)
    {
        throw Nuv::OutOfMemoryException();
    }
}

} // namespace NuvXML
