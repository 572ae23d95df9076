#include "InputOutput/Location.hpp"

#include "InputOutput/PercentEncoding.hpp"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace IO
{
namespace
{

constexpr std::u16string_view FileScheme = u"file:";
constexpr std::u16string_view AuthorityMark = u"//";
constexpr std::u16string_view LocalHost = u"localhost";

/// What a path segment of a URL may hold (RFC 3986, "pchar"), and the slash between segments.
bool MayStandInURLPath(unsigned char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           (byte != 0 && std::strchr("-._~!$&'()*+,;=:@/", byte) != nullptr);
}

char16_t ASCIILower(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

/// Schemes and hosts are ASCII: full case folding would take U+FB01 for "fi".
bool IsInAnyCase(std::u16string_view text, std::u16string_view lowerCase)
{
    return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
                      [](char16_t unit, char16_t lower) { return ASCIILower(unit) == lower; });
}

bool IsFileURL(std::u16string_view text)
{
    return IsInAnyCase(text.substr(0, FileScheme.size()), FileScheme);
}

/// The path in what follows `file:`; empty when the file is on another host.
std::u16string_view WithoutAuthority(std::u16string_view rest)
{
    if (!rest.starts_with(AuthorityMark))
        return rest;
    rest.remove_prefix(AuthorityMark.size());
    const size_t slash = std::min(rest.find(u'/'), rest.size());
    const std::u16string_view host = rest.substr(0, slash);
    return host.empty() || IsInAnyCase(host, LocalHost) ? rest.substr(slash) : std::u16string_view();
}

std::u16string_view WithoutTrailingSlashes(std::u16string_view path)
{
    while (!path.empty() && path.back() == u'/')
        path.remove_suffix(1);
    return path;
}

} // namespace

Location::Location(const Nuv::UniString& pathOrURL) { Set(pathOrURL); }

void Location::Set(const Nuv::UniString& pathOrURL)
{
    if (!IsFileURL(pathOrURL.View()))
    {
        path = pathOrURL;
        return;
    }
    const Nuv::UniString encoded(WithoutAuthority(pathOrURL.View().substr(FileScheme.size())));
    const std::string bytes = PercentDecode(encoded.ToUTF8());
    const Nuv::UniString decoded = Nuv::UniString::FromUTF8(bytes);
    path = decoded.ToUTF8() == bytes ? decoded : Nuv::UniString();
}

std::string Location::ToNativePath() const
{
    const std::string bytes = path.ToUTF8();
    const bool isPath = bytes.find('\0') == bytes.npos && Nuv::UniString::FromUTF8(bytes) == path;
    return isPath ? bytes : std::string();
}

Nuv::UniString Location::ToURL() const
{
    if (IsEmpty())
        return {};
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(ToNativePath(), error);
    if (error)
        return {};
    return Nuv::UniString::FromUTF8("file://" + PercentEncode(absolute.string(), MayStandInURLPath));
}

void Location::AppendToLocal(const Name& name)
{
    const bool needsSlash = !IsEmpty() && path[path.GetLength() - 1] != u'/';
    path += needsSlash ? Nuv::UniString(u"/") + name.ToUniString() : name.ToUniString();
}

void Location::AppendToLocal(const RelativeLocation& location)
{
    Location lower = *this;
    for (const Name& name : location.GetNames())
        lower.AppendToLocal(name);
    *this = std::move(lower);
}

bool Location::GetLastLocalName(Name& name) const
{
    const std::u16string_view names = WithoutTrailingSlashes(path.View());
    if (names.empty())
        return false;
    const size_t slash = names.rfind(u'/');
    name = Name(slash == names.npos ? names : names.substr(slash + 1));
    return true;
}

bool Location::GetFolder(Location& folder) const
{
    const std::u16string_view names = WithoutTrailingSlashes(path.View());
    if (names.empty())
        return false;
    const size_t slash = names.rfind(u'/');
    std::u16string_view upper = u".";
    if (slash != names.npos)
        upper = WithoutTrailingSlashes(names.substr(0, slash));
    folder.path = Nuv::UniString(upper.empty() ? u"/" : upper);
    return true;
}

} // namespace IO
