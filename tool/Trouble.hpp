#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace Tool
{

/// The reason why the work could not be done, as the user sees it.
class Trouble : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// The operating system could not use a file; `error` is its errno.
Trouble FileTrouble(std::string_view file, int error);

} // namespace Tool
