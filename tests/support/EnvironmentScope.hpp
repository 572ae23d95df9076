#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace NuvTest
{

/// Sets a variable of the environment and puts the old value back at the end of the scope.
class EnvironmentScope
{
  public:
    EnvironmentScope(const char* variable, const std::string& value)
        : name(variable)
    {
        if (const char* old = std::getenv(variable))
            saved = old;
        setenv(variable, value.c_str(), 1);
    }
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;
    ~EnvironmentScope()
    {
        if (saved)
            setenv(name.c_str(), saved->c_str(), 1);
        else
            unsetenv(name.c_str());
    }

  private:
    std::string name;
    std::optional<std::string> saved;
};

} // namespace NuvTest
