#include "InputOutput/Name.hpp"

namespace IO
{

Name::Name(const Nuv::UniString& name)
    : text(name)
{
}

void Name::AppendExtension(const Nuv::UniString& extension) { text += Nuv::UniString(u".") + extension; }

} // namespace IO
