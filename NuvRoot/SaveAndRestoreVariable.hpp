#pragma once

#include <utility>

namespace Nuv
{

/// Puts the value of a variable back at the end of the scope.
template <class T>
class SaveAndRestoreVariable
{
  public:
    explicit SaveAndRestoreVariable(T& target)
        : variable(target)
        , saved(target)
    {
    }
    SaveAndRestoreVariable(T& target, T newValue)
        : SaveAndRestoreVariable(target)
    {
        variable = std::move(newValue);
    }
    SaveAndRestoreVariable(const SaveAndRestoreVariable&) = delete;
    SaveAndRestoreVariable& operator=(const SaveAndRestoreVariable&) = delete;
    ~SaveAndRestoreVariable() { variable = std::move(saved); }

  private:
    T& variable;
    T saved;
};

} // namespace Nuv
