#include "InputOutput/RelativeLocation.hpp"

#include "InputOutput/PercentEncoding.hpp"

namespace IO
{
namespace
{

bool IsReadable(unsigned char byte) { return byte != '%' && byte != '/' && byte >= 0x20 && byte != 0x7F; }

} // namespace

RelativeLocation::RelativeLocation(const Name& name)
    : names{name}
{
}

void RelativeLocation::AppendToLocal(const Name& name) { names.push_back(name); }

void RelativeLocation::AppendToLocal(const RelativeLocation& location)
{
    names.reserve(names.size() + location.names.size());
    for (size_t i = 0, count = location.names.size(); i < count; ++i)
        names.push_back(location.names[i]);
}

Nuv::UniString RelativeLocation::ToURL() const
{
    std::string url = "file://";
    for (size_t i = 0; i < names.size(); ++i)
    {
        if (i != 0)
            url += '/';
        url += PercentEncode(names[i].ToUniString().ToUTF8(), IsReadable);
    }
    return Nuv::UniString::FromUTF8(url);
}

} // namespace IO
