#include "InputOutput/RelativeLocation.hpp"

#include "InputOutput/PercentEncoding.hpp"

#include <iterator>

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
    Nuv::Array<Name> appended = location.names; // of this location itself, perhaps
    names.insert(names.end(), std::move_iterator(appended.begin()), std::move_iterator(appended.end()));
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
