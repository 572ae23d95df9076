#pragma once

#include <stdexcept>

#include <unistd.h>

namespace NuvTest
{

/// Makes file permissions bind until the end of the scope: for a superuser, by acting as a user who owns
/// nothing.
class WithoutPrivileges
{
  public:
    WithoutPrivileges()
    {
        if (user == 0 && seteuid(Nobody) != 0)
            throw std::runtime_error("The privileges could not be dropped.");
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;
    ~WithoutPrivileges()
    {
        if (user == 0 && seteuid(user) != 0)
            _exit(1);
    }

  private:
    static constexpr uid_t Nobody = 65534;
    uid_t user = geteuid();
};

} // namespace NuvTest
