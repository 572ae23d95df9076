/// @file
/// NUVXMLUTILS_API marks what libNuvXMLUtils exports; everything else of the library is hidden.
#pragma once

#define NUVXMLUTILS_API __attribute__((visibility("default")))
