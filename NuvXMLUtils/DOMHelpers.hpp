/// @file
/// The DOM helper functions: small, indented documents written into a DOM tree and read from it by hand.
///
/// There are two ways to write a value. The element writers report failures by their result and end lines
/// with CR LF; the element readers, which take everything that is not a number for 0, belong to them. The tag
/// builders throw and end lines with LF; the tag getters, which refuse every value that is not exactly right,
/// belong to them.
#pragma once

#include "NuvXMLUtils/DOMBasics.hpp"
#include "NuvXMLUtils/ElementReaders.hpp"
#include "NuvXMLUtils/ElementWriters.hpp"
#include "NuvXMLUtils/TagBuilders.hpp"
#include "NuvXMLUtils/TagGetters.hpp"
