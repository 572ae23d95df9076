#include "NuvXMLUtils/DOMHelperSupport.hpp"

#include <limits>

namespace NuvXMLUtils
{

std::unique_ptr<char[]> Encoded(std::u16string_view text, bool lossy)
{
    if (text.size() > static_cast<size_t>(std::numeric_limits<int>::max()))
        return nullptr;
    const auto convert = [&](char* out, int capacity) {
        return CHUnicode2ANSI(text.data(), static_cast<int>(text.size()), out, capacity, Nuv::CC_Default,
                              lossy);
    };

    const int count = convert(nullptr, 0);
    std::unique_ptr<char[]> bytes(new char[static_cast<size_t>(count) + 1]);
    if (convert(bytes.get(), count + 1) <= 0)
        return nullptr;
    bytes[static_cast<size_t>(count)] = '\0';
    return bytes;
}

bool GetBoolean(const char* text)
{
    const std::string_view word(text);
    if (word == "yes" || word == "true" || word == "1")
        return true;
    if (word == "no" || word == "false" || word == "0")
        return false;
    throw ConvException(u"'yes/true' or 'no/false' expected, '" + Nuv::UniString(text) + u"' found", nullptr);
}

locale_t CLocale()
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

unsigned int LineOf(const xercesc_3_0::DOMNode* node)
{
    const xercesc_3_0::DOMDocument* const document = node ? node->getOwnerDocument() : nullptr;
    const void* const store = document ? document->getUserData(u"NodeLocations") : nullptr;
    const NodeLocationInfo* const location =
        store ? static_cast<const NodeLocations*>(store)->Find(node) : nullptr;
    return location ? location->lineNumber : 0;
}

void AddContext(ConvException& exception, const Nuv::UniString& context, const xercesc_3_0::DOMNode* node)
{
    exception.message = context + exception.message;
    exception.StoreErrLoc(node);
}

} // namespace NuvXMLUtils
