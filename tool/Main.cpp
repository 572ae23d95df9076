#include "CommandLine.hpp"
#include "Output.hpp"
#include "Trouble.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/UniString.hpp"

#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>

namespace
{

Tool::ExitStatus Complain(const std::string& reason)
{
    std::cerr << "nuvxml: " << reason << '\n';
    return Tool::Failure;
}

Tool::ExitStatus Run(Tool::CommandLine& commandLine, int argc, char** argv)
try
{
    commandLine.App().parse(argc, argv);
    Tool::Output output(STDOUT_FILENO, "standard output");
    const Tool::ExitStatus status = commandLine.Run(output);
    output.Flush();
    return status;
}
catch (const CLI::Success& help)
{
    commandLine.App().exit(help);
    return std::cout.flush() ? Tool::Success : Complain("standard output: cannot be written");
}
catch (const CLI::ParseError& error)
{
    commandLine.App().exit(error, std::cerr, std::cerr);
    return Tool::Failure;
}
catch (const Nuv::OutOfMemoryException&)
{
    return Complain("not enough memory");
}
catch (const std::exception& trouble)
{
    return Complain(trouble.what());
}

} // namespace

int main(int argc, char** argv)
{
    // A reader that has seen enough, such as head, ends the tool without a word, even where the caller of the
    // tool ignores the signal.
    std::signal(SIGPIPE, SIG_DFL);
    Nuv::SetLocalCodePage("UTF-8"); // what the tool writes is UTF-8 wherever it runs
    Tool::CommandLine commandLine;
    return Run(commandLine, argc, argv);
}
