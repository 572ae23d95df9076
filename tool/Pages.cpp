// Writes the manual page or the bash completion of the tool from its command line.
//
// usage: nuvxml_pages man|bash

#include "CommandLine.hpp"

#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace
{

/// Text as roff has it, in which a line that begins with a point or an apostrophe is a request.
std::string Roff(const std::string& text)
{
    std::string result;
    for (const char character : text)
    {
        if ((result.empty() || result.back() == '\n') && (character == '.' || character == '\''))
            result += "\\&";
        if (character == '-' || character == '\\')
            result += '\\';
        result += character == '\\' ? 'e' : character;
    }
    return result;
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

/// The names of an option, the short ones first.
std::vector<std::string> NamesOf(const CLI::Option& option)
{
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

void WriteManualOption(const CLI::Option& option)
{
    std::string names;
    for (const std::string& name : NamesOf(option))
        names += (names.empty() ? "" : ", ") + name;
    std::cout << ".TP\n.B " << Roff(option.get_positional() ? option.get_name(true) : names);
    if (!option.get_positional() && !option.get_type_name().empty())
        std::cout << " \\fI" << Roff(option.get_type_name()) << "\\fR";
    std::cout << '\n' << Roff(option.get_description()) << '\n';
}

void WriteManualOptions(const CLI::App& app)
{
    const auto options = app.get_options();
    const auto write = [&options](bool positional)
    {
        for (const CLI::Option* option : options)
            if (option->get_positional() == positional)
                WriteManualOption(*option);
    };
    write(true);
    write(false);
}

void WriteManualCommand(const CLI::App& command)
{
    std::cout << ".SS nuvxml " << command.get_name() << " [\\fIOPTION\\fR]...";
    for (const CLI::Option* option : command.get_options())
        if (option->get_positional())
            std::cout << " \\fI" << option->get_name(true) << "\\fR"
                      << (option->get_expected_max() > 1 ? "..." : "");
    std::cout << '\n' << Roff(command.get_description()) << ".\n";
    WriteManualOptions(command);
    std::cout << ".PP\n" << Roff(command.get_footer()) << '\n';
}

void WriteManual(const CLI::App& app)
{
    std::cout << ".TH NUVXML 1 \"\" \"NuvXMLUtils\" \"User Commands\"\n"
              << ".SH NAME\nnuvxml \\- " << Roff(app.get_description()) << '\n'
              << ".SH SYNOPSIS\n.B nuvxml\n\\fICOMMAND\\fR [\\fIOPTION\\fR]... \\fIARGUMENT\\fR...\n"
              << ".SH DESCRIPTION\n"
              << Roff(app.get_footer()) << '\n';
    WriteManualOptions(app);
    std::cout << ".SH COMMANDS\n";
    for (const CLI::App* command : CommandsOf(app))
        WriteManualCommand(*command);
}

void WriteWords(const std::vector<std::string>& words)
{
    std::cout << "      words=\"";
    for (size_t i = 0; i < words.size(); ++i)
        std::cout << (i == 0 ? "" : " ") << words[i];
    std::cout << "\" ;;\n";
}

/// What `typeName` names, if it lists words.
std::vector<std::string> ChoicesOf(std::string typeName)
{
    if (typeName.find('|') == std::string::npos)
        return {};
    std::replace(typeName.begin(), typeName.end(), '|', ' ');
    return {typeName};
}

std::vector<std::string> OptionNamesOf(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : NamesOf(*option))
            names.push_back(name);
    return names;
}

void WriteCompletion(const CLI::App& app)
{
    std::cout
        << "# bash completion of nuvxml\n"
           "_nuvxml() {\n"
           "  local current=\"${COMP_WORDS[COMP_CWORD]}\" previous=\"${COMP_WORDS[COMP_CWORD-1]}\" words=\n"
           "  # --option=value is three words\n"
           "  [[ $current == = ]] && current=\n"
           "  [[ $previous == = ]] && previous=\"${COMP_WORDS[COMP_CWORD-2]}\"\n"
           "  case \"$previous\" in\n";
    for (const CLI::App* command : CommandsOf(app))
        for (const CLI::Option* option : command->get_options())
            if (const auto choices = ChoicesOf(option->get_type_name()); !choices.empty())
            {
                std::cout << "    " << NamesOf(*option).back() << ")\n";
                WriteWords(choices);
            }
    std::cout << "    *)\n      case \"$COMP_CWORD:${COMP_WORDS[1]}:$current\" in\n      1:*)\n";
    std::vector<std::string> first = OptionNamesOf(app);
    for (const CLI::App* command : CommandsOf(app))
        first.push_back(command->get_name());
    WriteWords(first);
    for (const CLI::App* command : CommandsOf(app))
    {
        std::cout << "      *:" << command->get_name() << ":-*)\n";
        WriteWords(OptionNamesOf(*command));
    }
    std::cout << "      esac ;;\n"
                 "  esac\n"
                 "  COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
                 "}\n"
                 "complete -o default -F _nuvxml nuvxml\n";
}

} // namespace

int main(int argc, char** argv)
{
    Tool::CommandLine commandLine;
    const std::string_view what = argc == 2 ? argv[1] : "";
    if (what == "man")
        WriteManual(commandLine.App());
    else if (what == "bash")
        WriteCompletion(commandLine.App());
    else
        return 2;
    return std::cout.flush() ? 0 : 1;
}
