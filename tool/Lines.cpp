#include "Commands.hpp"
#include "Input.hpp"

#include <xercesc/dom/DOMElement.hpp>

using xercesc_3_0::DOMElement;

namespace Tool
{
namespace
{

/// The element behind `element` in the order of the document, or null.
const DOMElement* Next(const DOMElement* element)
{
    if (const DOMElement* const child = element->getFirstElementChild())
        return child;
    for (; element; element = dynamic_cast<const DOMElement*>(element->getParentNode()))
        if (const DOMElement* const sibling = element->getNextElementSibling())
            return sibling;
    return nullptr;
}

} // namespace

ExitStatus Lines(const LinesSettings& settings, Output& output)
{
    Document document(settings.file, false, settings.trusted);
    for (const DOMElement* element = document.DOM().getDocumentElement(); element; element = Next(element))
        output.Write(
            FaultText(document.Name(), document.Places().LineOf(element), document.Places().PathOf(element)) +
            "\n");
    return Success;
}

} // namespace Tool
