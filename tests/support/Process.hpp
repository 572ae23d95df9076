/// @file
/// Runs programs as a user would.
#pragma once

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace NuvTest
{

/// What a process has left behind.
struct ProcessResult
{
    int status = -1; ///< the exit status, or the negative number of the signal that ended it
    std::string output;
    std::string errors;
};

/// A file without a name, which the descriptor alone keeps.
class NamelessFile
{
  public:
    explicit NamelessFile(const std::string& contents = {})
    {
        std::string pattern = "/tmp/NuvTest-XXXXXX";
        descriptor = mkstemp(pattern.data());
        if (descriptor < 0 || unlink(pattern.c_str()) != 0 ||
            write(descriptor, contents.data(), contents.size()) != static_cast<ssize_t>(contents.size()) ||
            lseek(descriptor, 0, SEEK_SET) != 0)
            throw std::runtime_error("No temporary file could be made.");
    }
    NamelessFile(const NamelessFile&) = delete;
    NamelessFile& operator=(const NamelessFile&) = delete;
    ~NamelessFile() { close(descriptor); }

    int Descriptor() const { return descriptor; }

    std::string Contents() const
    {
        lseek(descriptor, 0, SEEK_SET);
        std::string all;
        char block[0x10000];
        for (ssize_t count; (count = read(descriptor, block, sizeof block)) > 0;)
            all.append(block, static_cast<size_t>(count));
        return all;
    }

  private:
    int descriptor;
};

/// The three descriptors and the changes to the environment that a process gets.
struct ProcessSetup
{
    int input;
    int output;
    int errors;
    std::map<std::string, std::string> environment{};
};

/// Starts `command`, a program and its arguments, and gives the id of the process.
inline pid_t Start(const std::vector<std::string>& command, const ProcessSetup& setup)
{
    const pid_t child = fork();
    if (child != 0)
        return child;
    dup2(setup.input, STDIN_FILENO);
    dup2(setup.output, STDOUT_FILENO);
    dup2(setup.errors, STDERR_FILENO);
    for (const auto& [name, value] : setup.environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str())); // which execvp does not change
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

/// The most memory in KiB that a running process has needed so far; 0 when that is not known. (What the
/// system tells of a process that has ended includes the memory of the one that started it.)
inline long PeakMemoryOf(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;)
        if (long amount = 0; word == "VmHWM:" && status >> amount)
            return amount;
    return 0;
}

/// Waits for a process; its output and errors are left to the caller.
inline ProcessResult WaitFor(pid_t child)
{
    int status = 0;
    if (waitpid(child, &status, 0) != child)
        throw std::runtime_error("A process was lost.");
    ProcessResult result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return result;
}

/// Runs a program to its end.
inline ProcessResult RunProcess(const std::vector<std::string>& command, const std::string& input = {},
                                const std::map<std::string, std::string>& environment = {})
{
    const NamelessFile in(input);
    const NamelessFile out;
    const NamelessFile err;
    ProcessResult result =
        WaitFor(Start(command, {in.Descriptor(), out.Descriptor(), err.Descriptor(), environment}));
    result.output = out.Contents();
    result.errors = err.Contents();
    return result;
}

/// Runs a program whose output and errors go to a terminal; both are in `output`.
/// @param atFirstOutput is called before more than a few lines of output are taken off the terminal
inline ProcessResult RunOnTerminal(const std::vector<std::string>& command,
                                   const std::map<std::string, std::string>& environment,
                                   const std::function<void()>& atFirstOutput = {})
{
    int terminal = -1;
    int end = -1;
    if (openpty(&terminal, &end, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("No terminal could be made.");
    const NamelessFile in;
    const pid_t child = Start(command, {in.Descriptor(), end, end, environment});
    close(end);
    std::string output;
    char block[0x1000];
    for (ssize_t count; (count = read(terminal, block, sizeof block)) > 0;)
    {
        if (output.empty() && atFirstOutput)
            atFirstOutput();
        output.append(block, static_cast<size_t>(count));
    }
    close(terminal);
    ProcessResult result = WaitFor(child);
    result.output = output;
    return result;
}

} // namespace NuvTest
