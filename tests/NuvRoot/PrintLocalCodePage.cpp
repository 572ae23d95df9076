#include "NuvRoot/UniString.hpp"

#include <iostream>

/// Writes the name of the local code page, and whether the byte E4 is `ä` in it.
int main()
{
    const Nuv::UniString decoded("\xE4");
    std::cout << Nuv::GetLocalCodePage() << (decoded == Nuv::UniString(u"\u00E4") ? " E4" : "");
}
