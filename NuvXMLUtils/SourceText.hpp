/// @file
/// The lines of a document's source text, to be shown beside messages.
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

/// Text decoded, and its lines counted as XML counts them.
class NUVXMLUTILS_API SourceText
{
  public:
    /// Where a long line is cut.
    static constexpr size_t MaxLineLength = 200;

    /// @param bytes are not needed any longer afterwards
    /// @param document what has been parsed from them
    SourceText(std::string_view bytes, const xercesc_3_0::DOMDocument& document);

    /// The same in an encoding that is known. Text that cannot be decoded has no lines.
    SourceText(std::string_view bytes, const XMLCh* encoding);

    ~SourceText();

    /// A line, counted from 1, without the white space at its ends; what is longer than MaxLineLength ends
    /// with " ..." there. Empty when there is no such line.
    Nuv::UniString Line(unsigned int number) const;

  private:
    std::u16string text;
    std::vector<size_t> starts;
};

} // namespace NuvXML
