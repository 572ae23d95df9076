#include "NuvRoot/LocalCodePage.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/UniString.hpp"

#include <langinfo.h>
#include <locale.h>
#include <utility>

namespace Nuv
{
namespace
{

/// Whether ICU has its table of names. If there was no memory for it when it was first needed, ICU finds no
/// name from then on.
bool HasTableOfNames()
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_countAliases("UTF-8", &status);
    return U_SUCCESS(status);
}

bool IsUTF8(UConverter* converter) { return ucnv_getType(converter) == UCNV_UTF8; }

bool HoldsASCII(UConverter* converter)
{
    for (UChar expected = 0; expected < 0x80; ++expected)
    {
        UErrorCode status = U_ZERO_ERROR;
        UChar unit[4];
        const char byte = static_cast<char>(expected);
        const int32_t length = ucnv_toUChars(converter, unit, 4, &byte, 1, &status);
        if (U_FAILURE(status) || length != 1 || unit[0] != expected)
            return false;
    }
    return true;
}

constexpr char UTF8Name[] = "UTF-8";

/// The code set that the environment asks for, which need not be the one of the process's C locale.
std::string CodeSetOfEnvironment()
{
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (!locale)
        return UTF8Name;
    std::string codeSet = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    const Converter converter = OpenConverter(codeSet.c_str());
    if (codeSet.empty() || !converter || ucnv_getType(converter.get()) == UCNV_US_ASCII)
        return UTF8Name;
    return codeSet;
}

LocalCodePage& CurrentCodePage()
{
    static LocalCodePage page = []
    {
        const std::string name = CodeSetOfEnvironment();
        return LocalCodePage(name, OpenConverter(name.c_str()).get());
    }();
    return page;
}

} // namespace

Converter OpenConverter(const char* name)
{
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &status));
    if (status == U_MEMORY_ALLOCATION_ERROR || (U_FAILURE(status) && !HasTableOfNames()))
        throw OutOfMemoryException();
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

LocalCodePage::LocalCodePage(std::string codePage, UConverter* converter)
    : name(std::move(codePage))
    , isUTF8(IsUTF8(converter))
    , holdsASCII(HoldsASCII(converter))
{
}

const LocalCodePage& Local() { return CurrentCodePage(); }

void SetLocalCodePage(const char* ianaName)
{
    const Converter converter = ianaName && *ianaName ? OpenConverter(ianaName) : nullptr;
    if (!converter)
        throw GeneralException(UniString(u"Unknown code page: ") + UniString(ianaName), "LocalCodePage",
                               __LINE__);
    CurrentCodePage() = LocalCodePage(ianaName, converter.get());
}

const char* GetLocalCodePage() { return Local().name.c_str(); }

} // namespace Nuv
