/// @file
/// What the cursors of both channels need. Private to NuvXMLUtils.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMElement.hpp>

namespace NuvXML
{

/// A channel's cursor is typed as an element and may still stand on the document node, around the root
/// element. Elements and documents are different classes, so this is no static_cast; it holds because DOMNode
/// is the first and only base of DOMElement. Nothing of an element may be called before the node type has
/// been looked at.
inline xercesc_3_0::DOMElement* AsCursor(xercesc_3_0::DOMNode* node)
{
    return reinterpret_cast<xercesc_3_0::DOMElement*>(node);
}

/// An 8-bit name as UTF-16 text. Short names are converted on the stack, for every value has one.
class NameText
{
  public:
    explicit NameText(const char* name)
    {
        if (CHANSI2Unicode(name, -1, shortText, ShortLength, Nuv::CC_Default) == 0)
        {
            longText = name;
            text = longText.ToUTF16();
        }
    }
    NameText(const NameText&) = delete;
    NameText& operator=(const NameText&) = delete;

    operator const XMLCh*() const { return text; }

  private:
    static constexpr int ShortLength = 64;

    Nuv::UniChar shortText[ShortLength];
    Nuv::UniString longText;
    const Nuv::UniChar* text = shortText;
};

} // namespace NuvXML
