#include "CommandLine.hpp"

#include "Commands.hpp"

#include <cmath>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

namespace Tool
{
namespace
{

const std::map<std::string, OutputFormat> Formats{{"json", OutputFormat::JSON}, {"text", OutputFormat::Text}};
const std::map<std::string, ColorChoice> ColorChoices{
    {"always", ColorChoice::Always}, {"auto", ColorChoice::Auto}, {"never", ColorChoice::Never}};

/// For names that a script may have left empty by mistake.
CLI::Validator Named()
{
    return {[](const std::string& text) { return std::string(text.empty() ? "must not be empty" : ""); }, ""};
}

/// Help that fits into a terminal of 80 columns.
class NarrowFormatter : public CLI::Formatter
{
  public:
    std::string make_help(const CLI::App* command, std::string name, CLI::AppFormatMode mode) const override
    {
        std::istringstream help(CLI::Formatter::make_help(command, std::move(name), mode));
        std::string result;
        for (std::string line; std::getline(help, line);)
            result += Broken(line) + "\n";
        return result;
    }

  private:
    /// Breaks a line; descriptions go on below their beginnings.
    std::string Broken(std::string line) const
    {
        constexpr size_t Width = 80;
        const size_t indentation = line.starts_with("  ") ? get_column_width() : 0;
        std::string result;
        while (line.size() > Width)
        {
            const size_t end = line.rfind(' ', Width);
            result += line.substr(0, end) + "\n";
            line.replace(0, end + 1, indentation, ' ');
        }
        return result + line;
    }
};

/// An option whose value is one of `words`.
template <class Value>
void AddChoice(CLI::App& command, const char* name, Value& value, const std::map<std::string, Value>& words,
               const char* description)
{
    std::string choices;
    for (const auto& [word, meaning] : words)
        choices.append(choices.empty() ? "" : "|").append(word);
    command
        .add_option_function<std::string>(
            name,
            [&value, &words, name, choices](const std::string& word)
            {
                const auto found = words.find(word);
                if (found == words.end())
                    throw CLI::ValidationError(name, "must be " + choices);
                value = found->second;
            },
            description)
        ->type_name(choices);
}

} // namespace

template <class Settings>
CLI::App* CommandLine::AddCommand(const char* name, const char* description, Settings& settings,
                                  ExitStatus (*command)(const Settings&, Output&))
{
    CLI::App* const added = app.add_subcommand(name, description);
    added->add_flag("--trusted", settings.trusted,
                    "Follow references to other files and the network, and set no limits");
    added->callback([this, &settings, command]
                    { run = [&settings, command](Output& output) { return command(settings, output); }; });
    return added;
}

CommandLine::CommandLine()
    : app("Compares, prints, validates and echoes XML documents.", "nuvxml")
{
    app.set_version_flag("--version", "nuvxml " NUVXML_VERSION);
    app.require_subcommand(1);
    app.formatter(std::make_shared<NarrowFormatter>());
    app.footer("The exit status is 0 for success, 1 for differences or faults found, 2 for trouble.\n"
               "'nuvxml COMMAND --help' tells the options of a command.");
    AddCompare();
    AddPrint();
    AddValidate();
    AddEcho();
    AddLines();
}

void CommandLine::AddCompare()
{
    CLI::App& command = *AddCommand(
        "compare", "Tell where two documents, or the documents of two folders, differ", compare, Compare);
    command.add_option("LEFT", compare.left, "A file, a folder, or - for standard input")
        ->required()
        ->type_name("");
    command.add_option("RIGHT", compare.right, "The same")->required()->type_name("");
    command.add_option("--eps", compare.epsilon, "Numbers whose difference is below E are equal (1e-05)")
        ->type_name("E")
        ->check(CLI::Validator(
            [](const std::string& text)
            {
                double value = 0;
                const bool isUsable =
                    CLI::detail::lexical_cast(text, value) && std::isfinite(value) && value >= 0;
                return isUsable ? std::string() : "must be a number that is not negative";
            },
            ""));
    command.add_flag("--by-markers", compare.byMarkers,
                     "Obey the attributes nuv_type and nuv_eps of the documents");
    command
        .add_option("--ignore-attribute", compare.ignoredAttributes,
                    "Do not compare attributes of this name; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.add_flag("--case-sensitive", compare.caseSensitive, "Distinguish A and a, in names and values");
    command.add_flag("--keep-whitespace", compare.keepWhitespace,
                     "Compare text that consists of white space too");
    command.add_flag("--comments", compare.comments, "Compare comments and processing instructions too");
    command.add_flag("--all", compare.all, "Show every difference, not only the first of two documents");
    command.add_flag("--quiet,-q", compare.quiet, "Show nothing; the exit status tells");
    command
        .add_option("--extension", compare.extensions,
                    "Compare the files of this extension in folders (xml); may be repeated")
        ->type_name("EXT")
        ->allow_extra_args(false);
    AddChoice(command, "--format", compare.format, Formats,
              "How to show differences: json is one object a line");
    AddChoice(command, "--color", compare.color, ColorChoices, "When to use colors; auto obeys NO_COLOR");
    command.footer(
        "Elements are paired by position. Values are compared as numbers where both are numbers, else as "
        "text without regard to case. A CDATA section is the text that it holds.");
}

void CommandLine::AddPrint()
{
    CLI::App& command = *AddCommand("print", "Print a document in any encoding", print, Print);
    command.add_option("FILE", print.file, "A file, or - for standard input")->required()->type_name("");
    command
        .add_option("--encoding", print.encoding, "The encoding to print in, instead of that of the document")
        ->type_name("E")
        ->check(Named());
    command.add_option("-o,--output", print.output, "Write to this file, which may be FILE itself")
        ->type_name("OUT")
        ->check(Named());
    command.footer("Characters that the encoding lacks are printed as character references.");
}

void CommandLine::AddValidate()
{
    CLI::App& command = *AddCommand(
        "validate", "Show the faults of documents, one a line: file:line: message", validate, Validate);
    command.add_option("FILE", validate.files, "Files, or - for standard input")->required()->type_name("");
    command.add_option("--schema", validate.schema, "An XML Schema to validate against")
        ->type_name("XSD")
        ->check(Named());
    command.footer(
        "Without a schema, documents are validated against the document type definition that they have.");
}

void CommandLine::AddEcho()
{
    CLI::App& command = *AddCommand(
        "echo", "Write a document as it is parsed, in constant memory, whatever its size", echo, Echo);
    command.add_option("FILE", echo.file, "A file, or - for standard input")->required()->type_name("");
    command.add_option("--encoding", echo.encoding, "The encoding to write in (UTF-8)")->type_name("E");
    command.footer("Comments, CDATA markup and the document type are not echoed. Prefixes must be declared.");
}

void CommandLine::AddLines()
{
    CLI::App& command = *AddCommand(
        "lines", "Show each element with its source line and path: file:line: path", lines, Lines);
    command.add_option("FILE", lines.file, "A file, or - for standard input")->required()->type_name("");
    command.footer("The line is that on which the start tag ends.");
}

} // namespace Tool
