/// @file
/// NUVROOT_API marks what libNuvRoot exports; everything else of the library is hidden.
#pragma once

#define NUVROOT_API __attribute__((visibility("default")))
