#include "Trouble.hpp"

#include "Output.hpp"

#include <system_error>

namespace Tool
{

Trouble FileTrouble(std::string_view file, int error)
{
    return Trouble(PrintableLine(file) + ": " + std::generic_category().message(error));
}

} // namespace Tool
