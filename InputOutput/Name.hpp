#pragma once

#include "InputOutput/Export.hpp"
#include "NuvRoot/UniString.hpp"

namespace IO
{

/// The name of a file or folder, without a path. When memory runs out a name stays as it was.
class INPUTOUTPUT_API Name
{
  public:
    Name() = default;
    explicit Name(const Nuv::UniString& name);

    const Nuv::UniString& ToUniString() const { return text; }

    /// Adds a point and `extension`.
    void AppendExtension(const Nuv::UniString& extension);

    friend bool operator==(const Name& left, const Name& right) { return left.text == right.text; }

  private:
    Nuv::UniString text;
};

} // namespace IO
