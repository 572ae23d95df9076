#include "InputOutput/Location.hpp"

#include "InputOutput/PercentEncoding.hpp"

#include <charconv>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace IO
{
namespace
{

constexpr std::u16string_view FileScheme = u"file:";
constexpr std::string_view LocalHost = "//localhost/";

/// What a path segment of a URL may hold (RFC 3986, "pchar"), and the slash between segments.
bool MayStandInURLPath(unsigned char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           (byte != 0 && std::strchr("-._~!$&'()*+,;=:@/", byte) != nullptr);
}

bool IsFileURL(std::u16string_view text)
{
    return Nuv::EqualIgnoringCase(text.substr(0, FileScheme.size()), FileScheme);
}

/// The path part of what follows `file:`.
std::string_view WithoutAuthority(std::string_view rest)
{
    if (rest.substr(0, LocalHost.size()) == LocalHost)
        rest.remove_prefix(LocalHost.size() - 1);
    else if (rest.substr(0, 2) == "//")
        rest.remove_prefix(2);
    return rest;
}

std::u16string_view WithoutTrailingSlashes(std::u16string_view path)
{
    while (!path.empty() && path.back() == u'/')
        path.remove_suffix(1);
    return path;
}

} // namespace

std::string PercentDecode(std::string_view text)
{
    std::string decoded;
    while (!text.empty())
    {
        unsigned char value = 0;
        const bool isEncoded =
            text.size() >= 3 && text[0] == '%' &&
            std::from_chars(text.data() + 1, text.data() + 3, value, 16).ptr == text.data() + 3 && value != 0;
        decoded += isEncoded ? static_cast<char>(value) : text[0];
        text.remove_prefix(isEncoded ? 3 : 1);
    }
    return decoded;
}

Location::Location(const Nuv::UniString& pathOrURL) { Set(pathOrURL); }

void Location::Set(const Nuv::UniString& pathOrURL)
{
    if (!IsFileURL(pathOrURL.View()))
    {
        path = pathOrURL;
        return;
    }
    const std::string rest = Nuv::UniString(pathOrURL.View().substr(FileScheme.size())).ToUTF8();
    path = Nuv::UniString::FromUTF8(PercentDecode(WithoutAuthority(rest)));
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

} // namespace IO
