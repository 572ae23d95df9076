#pragma once

#include "NuvRoot/UniString.hpp"

#include <string>

namespace NuvTest
{

/// Sets the local code page and puts the old one back at the end of the scope.
class LocalCodePageScope
{
  public:
    explicit LocalCodePageScope(const char* ianaName)
        : saved(Nuv::GetLocalCodePage())
    {
        Nuv::SetLocalCodePage(ianaName);
    }
    LocalCodePageScope(const LocalCodePageScope&) = delete;
    LocalCodePageScope& operator=(const LocalCodePageScope&) = delete;
    ~LocalCodePageScope() { Nuv::SetLocalCodePage(saved.c_str()); }

  private:
    std::string saved;
};

} // namespace NuvTest
