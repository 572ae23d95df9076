/// @file
/// The lines of a document's source text, for messages that show them.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace NuvXML
{

/// Decoded text, with its lines as XML counts them.
class NUVXMLUTILS_API SourceText
{
  public:
    /// Where a long line is cut.
    static constexpr size_t MaxLineLength = 200;

    /// Decodes `bytes`, which are not needed after the call.
    /// @param document the document that was parsed from them; it knows their encoding
    SourceText(std::string_view bytes, const xercesc_3_0::DOMDocument& document);

    /// The same with a given encoding. Text that cannot be decoded has no lines.
    SourceText(std::string_view bytes, const XMLCh* encoding);

    ~SourceText();

    /// Returns a line, counted from 1, without the white space at its ends. A line longer than MaxLineLength
    /// is cut there and ends with " ...". Empty when there is no such line.
    Nuv::UniString Line(unsigned int number) const;

  private:
    std::u16string text;
    std::vector<size_t> starts;
};

} // namespace NuvXML
