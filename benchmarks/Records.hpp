/// @file
/// The document that the benchmarks of printing and echoing work on.
#pragma once

#include <string>

namespace Benchmarks
{

/// An indented document of about `size` bytes in UTF-8, as an application would store its objects: records of
/// elements and attributes with short texts, some of them with characters to escape and outside ASCII.
inline std::string MakeRecords(size_t size)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<project name=\"Tower\">\n";
    for (int i = 0; text.size() < size; ++i)
    {
        const std::string number = std::to_string(i);
        text += "\t<wall id=\"" + number + "\" layer=\"Structure &amp; walls\" visible=\"true\">\n";
        text += "\t\t<name>Au\xC3\x9F"
                "enwand " +
                number + "</name>\n";
        text += "\t\t<point x=\"" + number + ".25\" y=\"-17.5\" z=\"0\"/>\n";
        text += "\t\t<height unit=\"mm\">2750.125</height>\n";
        text +=
            "\t\t<note>Thickness &lt; 300 mm, checked on site; see the drawing of the first floor.</note>\n";
        text += "\t</wall>\n";
    }
    return text + "</project>\n";
}

} // namespace Benchmarks
