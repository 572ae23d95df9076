#pragma once

#include "NuvRoot/Export.hpp"
#include "NuvRoot/UniString.hpp"

#include <array>

namespace Nuv
{

/// A 128-bit identifier (RFC 4122). A default one is null: all bytes are zero.
class NUVROOT_API Guid
{
  public:
    Guid() = default;

    /// A new random identifier (version 4).
    /// @throws GeneralException when the system has no random numbers
    static Guid Generate();

    /// Reads `xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx`, hexadecimal digits in either case, with or without
    /// braces around it.
    /// @return Success, or Failure with the value unchanged
    int ConvertFromString(const UniString& text);

    /// The same form in upper case, without braces.
    UniString ToUniString() const;

    bool IsNull() const { return *this == Guid(); }

    friend bool operator==(const Guid&, const Guid&) = default;

  private:
    std::array<unsigned char, 16> bytes{};
};

} // namespace Nuv
