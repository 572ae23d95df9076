/// @file
/// The texts that the benchmarks of loading, printing, echoing and comparing work on.
#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace Benchmarks
{

struct Input
{
    std::string name;
    std::string text;
};

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

/// A document of the system, with a DTD in it.
inline Input RealDocument(const std::string& folder, const std::string& name, const std::string& package)
{
    std::ifstream file(folder + name, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (text.empty())
        throw std::runtime_error("The benchmarks need " + folder + name + " (package " + package + ").");
    return {name, std::move(text)};
}

/// Empty elements with attributes, one on each line.
inline Input Languages() { return RealDocument("/usr/share/xml/iso-codes/", "iso_639-3.xml", "iso-codes"); }

/// Short texts in 60 languages.
inline Input MimeTypes()
{
    return RealDocument("/usr/share/mime/packages/", "freedesktop.org.xml", "shared-mime-info");
}

/// A large document that is generated, and the real ones.
inline std::vector<Input> AllInputs()
{
    return {{"15 MB of records", MakeRecords(15'000'000)}, Languages(), MimeTypes()};
}

} // namespace Benchmarks
