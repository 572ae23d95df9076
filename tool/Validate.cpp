#include "Commands.hpp"
#include "Input.hpp"
#include "Trouble.hpp"

#include "InputOutput/Location.hpp"

#include <algorithm>
#include <iostream>

namespace Tool
{
namespace
{

/// What the validation of some files comes to.
struct Totals
{
    size_t files = 0;
    size_t faultyFiles = 0;
    size_t faults = 0;
    size_t unreadFiles = 0;

    ExitStatus Status() const
    {
        if (unreadFiles != 0)
            return Failure;
        return faults != 0 ? Findings : Success;
    }

    std::string Text() const
    {
        const std::string ofFiles = std::to_string(files) + (files == 1 ? " file" : " files");
        const std::string unread =
            unreadFiles != 0 ? ", " + std::to_string(unreadFiles) + " could not be read" : std::string();
        if (faults == 0)
            return ofFiles + ", no faults" + unread;
        return ofFiles + ", " + std::to_string(faults) + (faults == 1 ? " fault" : " faults") + " in " +
               std::to_string(faultyFiles) + unread;
    }
};

void LoadSchema(ValidatingXMLParser& parser, const std::string& schema)
{
    NodeLocationInfo place;
    Nuv::UniString message;
    const std::string& file = schema == StandardInput ? "/dev/stdin" : schema;
    if (!parser.LoadSchema(IO::Location(Nuv::UniString::FromUTF8(file)), &place, &message))
        throw Trouble(FaultText(DisplayName(schema), place.lineNumber, message));
}

/// Shows the faults of a file and gives their number.
size_t ShowFaults(ValidatingXMLParser& parser, const std::string& path, Output& output)
{
    size_t faults = 0;
    const auto show = [&](const NodeLocationInfo& place, const Nuv::UniString& message)
    {
        ++faults;
        output.Write(FaultText(DisplayName(path), place.lineNumber, message) + "\n");
    };
    parser.SetErrorHandler(show);
    NodeLocationInfo place;
    Nuv::UniString message;
    const auto document = ParseAll(parser, path, ReadAll(path), ValidatingXMLParser::LineInfoParser::Val_Auto,
                                   false, nullptr, place, message);
    if (!document)
        show(place, message);
    return faults;
}

void ValidateFile(ValidatingXMLParser& parser, const std::string& path, Output& output, Totals& totals)
try
{
    ++totals.files;
    const size_t faults = ShowFaults(parser, path, output);
    totals.faults += faults;
    totals.faultyFiles += faults != 0 ? 1 : 0;
    output.Flush(); // so that it stands before what comes on standard error
}
catch (const Trouble& trouble)
{
    ++totals.unreadFiles;
    std::cerr << "nuvxml: " << trouble.what() << '\n';
}

} // namespace

ExitStatus Validate(const ValidateSettings& settings, Output& output)
{
    const auto readings = std::count(settings.files.begin(), settings.files.end(), StandardInput) +
                          (settings.schema == StandardInput ? 1 : 0);
    if (readings > 1)
        throw Trouble("standard input can be read once only");
    ValidatingXMLParser parser;
    parser.SetLimits(LimitsFor(settings.trusted));
    if (!settings.schema.empty())
        LoadSchema(parser, settings.schema);
    Totals totals;
    for (const std::string& path : settings.files)
        ValidateFile(parser, path, output, totals);
    output.Write(totals.Text() + "\n");
    return totals.Status();
}

} // namespace Tool
