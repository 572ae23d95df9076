/// @file
/// The command line, from which the tool, its help, its manual page and its completion are made.
#pragma once

#include "Settings.hpp"

#include <CLI/CLI.hpp>

#include <functional>

namespace Tool
{

class Output;

/// Parses the arguments into the settings of the subcommand that they name.
class CommandLine
{
  public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    CLI::App& App() { return app; }

    /// Runs the subcommand that the arguments named.
    ExitStatus Run(Output& output) const { return run(output); }

  private:
    template <class Settings>
    CLI::App* AddCommand(const char* name, const char* description, Settings& settings,
                         ExitStatus (*command)(const Settings&, Output&));
    void AddCompare();
    void AddPrint();
    void AddValidate();
    void AddEcho();
    void AddLines();

    CLI::App app;
    CompareSettings compare;
    PrintSettings print;
    ValidateSettings validate;
    EchoSettings echo;
    LinesSettings lines;
    std::function<ExitStatus(Output&)> run;
};

} // namespace Tool
