// A document that parses: printed in any encoding and parsed again, it is the same tree.

#include "fuzz/Support.hpp"

using namespace Fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    constexpr const char16_t* UnicodeEncodings[] = {u"UTF-8", u"UTF-16LE", u"UTF-16BE", u"UCS4", u"GB18030"};
    constexpr const char16_t* SmallEncodings[] = {u"US-ASCII", u"ISO-8859-1", u"windows-1252", u"Shift_JIS"};
    const Document document = Parse(TextOf(bytes, size));
    if (!document || !IsXML10(*document))
        return 0;
    const auto check = [&document, tree = TreeText(*document, Equality::Printed)](const char16_t* encoding,
                                                                                  bool holdsEverything)
    {
        const Document printed = Parse(Print(*document, encoding));
        // Xerces gives an internal subset as it reads it, which may be another than what was written.
        if (holdsEverything && !document->getDoctype())
            Check(printed && TreeText(*printed, Equality::Printed) == tree);
    };
    for (const char16_t* const encoding : UnicodeEncodings)
        check(encoding, true);
    for (const char16_t* const encoding : SmallEncodings)
        check(encoding, CanBeASCII(*document));
    return 0;
}
