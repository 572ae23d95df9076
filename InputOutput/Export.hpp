/// @file
/// INPUTOUTPUT_API marks what libInputOutput exports; everything else of the library is hidden.
#pragma once

#define INPUTOUTPUT_API __attribute__((visibility("default")))
