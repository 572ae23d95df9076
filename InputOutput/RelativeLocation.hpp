#pragma once

#include "InputOutput/Export.hpp"
#include "InputOutput/Name.hpp"
#include "NuvRoot/Containers.hpp"
#include "NuvRoot/UniString.hpp"

namespace IO
{

/// A way down from some folder: the names on it, from the outermost to the innermost. When memory runs out it
/// stays as it was.
class INPUTOUTPUT_API RelativeLocation
{
  public:
    RelativeLocation() = default;
    explicit RelativeLocation(const Name& name);

    void AppendToLocal(const Name& name);
    void AppendToLocal(const RelativeLocation& location);

    bool IsEmpty() const { return names.empty(); }
    const Nuv::Array<Name>& GetNames() const { return names; }

    /// A form to show: `file://` followed by the names, joined with `/`. Names stay readable: only `%`, `/`
    /// and ASCII control characters are percent-encoded (as UTF-8), so that `#text` shows as it is. It is not
    /// a URL that Location takes, which would read the first name as a host.
    Nuv::UniString ToURL() const;

    friend bool operator==(const RelativeLocation&, const RelativeLocation&) = default;

  private:
    Nuv::Array<Name> names;
};

} // namespace IO
