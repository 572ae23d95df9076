/// @file
/// Lack of memory has two exceptions: the application's, which is a std::bad_alloc, and Xerces' own. Xerces
/// turns the first into the second.
#pragma once

#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/util/OutOfMemoryException.hpp>

#include <new>

namespace NuvXML
{

/// Whether the exception being handled is for lack of memory.
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

/// Calls Xerces. Turns its exception for lack of memory into the application's.
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
