#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace Tool
{

/// Why the work could not be done, as the user is told.
class Trouble : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// Trouble that the operating system has had with a file; `error` is an errno.
Trouble FileTrouble(std::string_view file, int error);

} // namespace Tool
