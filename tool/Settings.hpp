/// @file
/// What the command line says, one structure a subcommand.
#pragma once

#include <string>
#include <vector>

namespace Tool
{

/// How the process ends.
enum ExitStatus : int
{
    Success = 0,
    Findings = 1, ///< documents that differ, or faults in them
    Failure = 2   ///< the work could not be done
};

enum class OutputFormat
{
    Text,
    JSON
};

enum class ColorChoice
{
    Auto,
    Always,
    Never
};

struct CompareSettings
{
    std::string left;
    std::string right;
    double epsilon = 1e-05;
    bool byMarkers = false;
    std::vector<std::string> ignoredAttributes;
    bool caseSensitive = false;
    bool keepWhitespace = false;
    bool comments = false;
    bool all = false;
    bool quiet = false;
    std::vector<std::string> extensions{"xml"};
    OutputFormat format = OutputFormat::Text;
    ColorChoice color = ColorChoice::Auto;
    bool trusted = false;
};

struct PrintSettings
{
    std::string file;
    std::string encoding; ///< empty: that of the document
    std::string output;   ///< empty: standard output
    bool trusted = false;
};

struct ValidateSettings
{
    std::vector<std::string> files;
    std::string schema; ///< empty: none
    bool trusted = false;
};

struct EchoSettings
{
    std::string file;
    std::string encoding = "UTF-8";
    bool trusted = false;
};

struct LinesSettings
{
    std::string file;
    bool trusted = false;
};

} // namespace Tool
