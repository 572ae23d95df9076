/// @file
/// The local code page of the process, and the converters of ICU.
#pragma once

#include <unicode/ucnv.h>

#include <memory>
#include <string>

namespace Nuv
{

struct CloseConverter
{
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

/// Returns a new converter; null when ICU does not know the name.
/// @throws OutOfMemoryException
Converter OpenConverter(const char* name);

/// What conversions need to know of the code page.
struct LocalCodePage
{
    LocalCodePage(std::string codePage, UConverter* converter);

    std::string name;
    bool isUTF8;

    /// Whether ASCII text is the same text in the code page, so that it needs no converter. False for EBCDIC,
    /// for UTF-16 and for code pages with escape sequences.
    bool holdsASCII;
};

/// The code page that SetLocalCodePage has set, or else that of the environment.
const LocalCodePage& Local();

} // namespace Nuv
