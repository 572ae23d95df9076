/// @file
/// The application's names for the containers of the standard library.
#pragma once

#include <unordered_set>
#include <vector>

namespace Nuv
{

template <class T>
using Array = std::vector<T>;

template <class T>
using VAArray = std::vector<T>;

template <class T>
using HashSet = std::unordered_set<T>;

} // namespace Nuv
