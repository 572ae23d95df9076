#pragma once

#include "InputOutput/Export.hpp"
#include "InputOutput/Name.hpp"
#include "InputOutput/RelativeLocation.hpp"
#include "NuvRoot/UniString.hpp"

#include <string>

namespace IO
{

/// Where a file or folder is, or nowhere (empty). Names in the file system are UTF-8, whatever the local code
/// page is. Nothing here touches the file system but ToURL, which needs the current folder for relative
/// paths. When memory runs out a location stays as it was.
class INPUTOUTPUT_API Location
{
  public:
    Location() = default;
    explicit Location(const Nuv::UniString& pathOrURL);

    /// Takes a path as it is, or a `file:` URL (RFC 8089; `file:///a`, `file://localhost/a` and `file:/a`
    /// mean the same; scheme and host in any case), whose percent-encoded bytes are decoded as UTF-8. A `%`
    /// without two hexadecimal digits behind it means itself, and so do `%00`, `?` and `#`. A URL of another
    /// host, or with bytes that are not UTF-8, makes the location empty.
    void Set(const Nuv::UniString& pathOrURL);

    bool IsEmpty() const { return path.IsEmpty(); }

    /// The path as it was given; relative paths stay relative.
    const Nuv::UniString& ToPath() const { return path; }

    /// The path as UTF-8, as the operating system takes it. Empty, so that no file is found, for a path that
    /// no file can have: with a zero unit, where the operating system would take a shorter name, or with half
    /// a surrogate pair.
    std::string ToNativePath() const;

    /// `file:///...` of the absolute path, percent-encoded UTF-8. Set gives the same path back. Empty for an
    /// empty location, for a path that no file can have, and for a relative path when the current folder is
    /// not known (because it is deleted).
    Nuv::UniString ToURL() const;

    /// The path, for messages; empty for an empty location.
    const Nuv::UniString& ToLogText() const { return path; }

    /// Goes down to `name`; from an empty location, to the relative path `name`.
    void AppendToLocal(const Name& name);
    void AppendToLocal(const RelativeLocation& location);

    /// The last name of the path; false, with `name` untouched, when there is none.
    bool GetLastLocalName(Name& name) const;

    /// The path without its last name, and "." when the last name is all of it. False, with `folder`
    /// untouched, when there is no last name.
    bool GetFolder(Location& folder) const;

    friend bool operator==(const Location& left, const Location& right) { return left.path == right.path; }

  private:
    Nuv::UniString path;
};

} // namespace IO
