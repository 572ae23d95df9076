/// @file
/// A C locale whose decimal mark is a comma and whose code set is ISO-8859-1, made by `localedef` for the
/// test, so that it is there on every machine.
#pragma once

#include "tests/support/EnvironmentScope.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <clocale>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace NuvTest
{

/// The locale `de_DE` in a folder of its own, where LOCPATH can lead to it.
class GeneratedLocale
{
  public:
    GeneratedLocale()
    {
        const std::string target = (folder.Path() / Name).string();
        if (std::system(("localedef -i de_DE -f ISO-8859-1 '" + target + "'").c_str()) != 0)
            throw std::runtime_error("localedef failed; are the locale sources installed?");
    }

    static constexpr const char* Name = "de_DE";
    std::string Folder() const { return folder.Path().string(); }

  private:
    ScratchFolder folder;
};

/// Makes that locale the one of the process until the end of the scope.
class CommaLocale
{
  public:
    CommaLocale()
        : locpath("LOCPATH", generated.Folder())
        , saved(std::setlocale(LC_ALL, nullptr))
    {
        if (!std::setlocale(LC_ALL, GeneratedLocale::Name))
            throw std::runtime_error("The generated locale could not be set.");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() { std::setlocale(LC_ALL, saved.c_str()); }

  private:
    GeneratedLocale generated;
    EnvironmentScope locpath;
    std::string saved;
};

} // namespace NuvTest
