#include "InputOutput/PercentEncoding.hpp"

#include <charconv>

namespace IO
{

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

} // namespace IO
