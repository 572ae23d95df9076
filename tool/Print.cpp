#include "Commands.hpp"
#include "Input.hpp"
#include "Trouble.hpp"

#include "NuvXMLUtils/FormatXMLDoc.hpp"

#include <optional>

namespace Tool
{
namespace
{

void Write(const Document& document, const std::string& encoding, Output& output)
{
    const bool isGiven = !encoding.empty();
    const Nuv::UniString given = Nuv::UniString::FromUTF8(encoding);
    if (FormatXMLDoc(&document.DOM(), &output, isGiven ? given.ToUTF16() : nullptr, isGiven))
        return;
    // The output throws when it fails, so this is about the encoding.
    const XMLCh* const declared = document.DOM().getXmlEncoding();
    throw Trouble("cannot print in the encoding \"" +
                  Printable(isGiven || !declared ? given : Nuv::UniString(declared)) + "\"");
}

} // namespace

ExitStatus Print(const PrintSettings& settings, Output& output)
{
    const Document document(settings.file, true, settings.trusted);
    if (settings.output.empty())
    {
        Write(document, settings.encoding, output);
        return Success;
    }
    OutputFile file(settings.output);
    Write(document, settings.encoding, file.Channel());
    file.Commit();
    return Success;
}

} // namespace Tool
