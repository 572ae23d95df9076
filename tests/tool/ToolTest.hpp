/// @file
/// What the tests of the installed tool share.
#pragma once

#include "tests/support/Process.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace ToolTests
{

using NuvTest::ProcessResult;

/// How the tool tells its user.
enum Status
{
    Success = 0,
    Findings = 1,
    Failure = 2
};

/// Runs the tool with files in a folder of the test's own.
class ToolTest : public testing::Test
{
  protected:
    /// Writes a file and gives its path.
    std::string Write(const std::string& name, std::string_view text) const
    {
        std::filesystem::create_directories((folder.Path() / name).parent_path());
        return folder.Write(name, text).ToUTF8();
    }

    std::string PathOf(const std::string& name) const { return (folder.Path() / name).string(); }

    static std::vector<std::string> Command(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> command{NUVXML_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }

    /// The paths of the folder are taken out of what the tool writes.
    ProcessResult Run(const std::vector<std::string>& arguments, const std::string& input = {}) const
    {
        return WithoutFolder(NuvTest::RunProcess(Command(arguments), input));
    }

    ProcessResult RunOnTerminal(const std::vector<std::string>& arguments,
                                std::map<std::string, std::string> environment = {}) const
    {
        environment.try_emplace("TERM", "xterm");
        return WithoutFolder(NuvTest::RunOnTerminal(Command(arguments), environment));
    }

    NuvTest::ScratchFolder folder;

  private:
    ProcessResult WithoutFolder(ProcessResult result) const
    {
        const std::string prefix = folder.Path().string() + "/";
        for (std::string* text : {&result.output, &result.errors})
            for (size_t at; (at = text->find(prefix)) != std::string::npos;)
                text->erase(at, prefix.size());
        return result;
    }
};

} // namespace ToolTests
