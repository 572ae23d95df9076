#pragma once

namespace Nuv
{

/// The version of a class as its objects write it. The first two bytes together are one 16-bit field.
struct ClassVersion
{
    unsigned char majorNumber = 0;
    unsigned char minorNumber = 0;
    unsigned short buildNumber = 0;
};

} // namespace Nuv
