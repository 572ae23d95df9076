// Keeps the settings of an editor in an XML file that people may edit.
//
// usage: settings write FILE
//        settings read FILE

#include "InputOutput/File.hpp"
#include "NuvXMLUtils/DOMHelpers.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"

#include <xercesc/dom/DOMImplementation.hpp>

#include <iostream>
#include <memory>
#include <string_view>

namespace
{

using namespace NuvXMLUtils;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;

struct Settings
{
    unsigned int version = 2;
    int left = 0;
    int top = 0;
    bool maximised = false;
    Nuv::UniString title;
    double zoom = 1;
    bool autosave = true;
    unsigned int panels = 0;
};

constexpr BitNames PanelNames[] = {{1, "layers"}, {2, "colours"}, {4, "history"}, {0, nullptr}};

// Writing.

//! [write]
/// Element writers: every element says by its result whether it was written.
bool WriteWindow(DOMElement* root, const Settings& settings)
{
    DOMElement* window = nullptr;
    return BeginWriteElement(root, window, "window") && WriteLongElement(window, "left", settings.left, 2) &&
           WriteLongElement(window, "top", settings.top, 2) &&
           WriteBooleanElement(window, "maximised", settings.maximised, 2) &&
           EndWriteElement(root, window, 1);
}

/// Tag builders: a failure is an exception.
void WriteEditor(DOMElement* root, const Settings& settings)
{
    NewStringTag(root, "title", settings.title.ToUTF16(), 1);
    NewDoubleTag(root, "zoom", settings.zoom, 1);
    NewBoolTag(root, "autosave", settings.autosave, 1);
    WriteBits(root, "panels", settings.panels, PanelNames, 1);
}
//! [write]

bool Write(const Settings& settings, const IO::Location& location)
{
    const NuvXML::XercesPtr<DOMDocument> document(
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"settings", nullptr));
    DOMElement* const root = document->getDocumentElement();
    SetULongAttr(root, "version", settings.version);
    NewLine(root);
    if (!WriteWindow(root, settings))
        return false;
    WriteEditor(root, settings);

    IO::File file(location, IO::CreateWhenNotFound);
    return file.Open(IO::WriteMode, IO::ReportAccessDenied) == 0 &&
           FormatXMLDoc(document.get(), &file, u"UTF-8", true) && file.Close() == 0;
}

// Reading.

//! [read]
/// Element readers: what is missing or no number is 0, and nothing is said about it.
void ReadWindow(const DOMElement* window, Settings& settings)
{
    for (const DOMElement* child = GetFirstElementChild(window); child; child = GetNextElementSibling(child))
        if (IsNodeOk(child, "left"))
            ReadLongNode(child, "left", settings.left);
        else if (IsNodeOk(child, "top"))
            ReadLongNode(child, "top", settings.top);
        else
            ReadBooleanNode(child, "maximised", settings.maximised);
}
//! [read]

unsigned int ReadPanels(const DOMElement* panels)
{
    unsigned int bits = 0;
    for (const DOMElement* child = GetFirstElementChild(panels); child; child = GetNextElementSibling(child))
        for (const BitNames* row = PanelNames; row->mask != 0; ++row)
            if (IsNodeOk(child, row->name))
                bits |= row->mask;
    return bits;
}

Nuv::UniString ReadString(const DOMElement* tag)
{
    const std::unique_ptr<unsigned short[]> units(GetStringTagU(tag, nullptr));
    std::u16string text;
    for (const unsigned short* unit = units.get(); *unit; ++unit)
        text += static_cast<char16_t>(*unit);
    return Nuv::UniString(std::u16string_view(text));
}

//! [read tags]
/// Tag getters: a value that is not exactly right is an exception, which tells where it stands.
void ReadTag(const DOMElement* tag, Settings& settings)
{
    if (IsNodeOk(tag, "window"))
        ReadWindow(tag, settings);
    else if (IsNodeOk(tag, "title"))
        settings.title = ReadString(tag);
    else if (IsNodeOk(tag, "zoom"))
        settings.zoom = GetDoubleTag(tag);
    else if (IsNodeOk(tag, "autosave"))
        settings.autosave = GetBoolTag(tag);
    else if (IsNodeOk(tag, "panels"))
        settings.panels = ReadPanels(tag);
}
//! [read tags]

/// Reads values and tells of every one that is wrong, as compilers do.
class FaultTeller
{
  public:
    explicit FaultTeller(const IO::Location& location)
        : file(location)
    {
    }

    template <class Read>
    void Try(Read read)
    {
        try
        {
            read();
        }
        catch (const ConvException& exception)
        {
            Tell(exception.line, exception.message);
        }
    }

    void Tell(unsigned int line, const Nuv::UniString& message)
    {
        std::cout << file.ToLogText() << ":" << line << ": " << message << "\n";
        found = true;
    }

    bool HasFoundNone() const { return !found; }

  private:
    IO::Location file;
    bool found = false;
};

bool Read(const IO::Location& location, Settings& settings)
{
    FaultTeller faults(location);
    //! [lines]
    NuvXML::Loaded loaded = NuvXML::LoadDocument(location);
    if (!loaded)
    {
        faults.Tell(loaded.place.lineNumber, loaded.reason);
        return false;
    }
    // The exceptions look up their lines here.
    loaded.document->setUserData(u"NodeLocations", &loaded.lines, nullptr);
    //! [lines]

    const DOMElement* const root = loaded.document->getDocumentElement();
    faults.Try([&] { settings.version = GetULongAttr(root, "version"); });
    for (const DOMElement* tag = GetFirstElementChild(root); tag; tag = GetNextElementSibling(tag))
        faults.Try([&] { ReadTag(tag, settings); });
    return faults.HasFoundNone();
}

std::ostream& operator<<(std::ostream& out, const Settings& settings)
{
    return out << "version " << settings.version << ", window at " << settings.left << "," << settings.top
               << (settings.maximised ? ", maximised" : "") << "\ntitle " << settings.title << ", zoom "
               << settings.zoom << (settings.autosave ? ", autosave" : "") << ", panels " << settings.panels
               << "\n";
}

Settings SettingsToWrite()
{
    Settings settings;
    settings.left = -8;
    settings.top = 120;
    settings.title = u"Plan \"A\" [[1]]";
    settings.zoom = 1.25;
    settings.panels = 5;
    return settings;
}

bool ReadAndShow(const IO::Location& location)
{
    Settings settings;
    if (!Read(location, settings))
        return false;
    std::cout << settings;
    return true;
}

} // namespace

int main(int count, char** arguments)
{
    const std::string_view command = count == 3 ? arguments[1] : "";
    const IO::Location location(Nuv::UniString::FromUTF8(count == 3 ? arguments[2] : ""));
    if (command == "write")
        return Write(SettingsToWrite(), location) ? 0 : 1;
    if (command == "read")
        return ReadAndShow(location) ? 0 : 1;
    std::cerr << "usage: settings write FILE\n       settings read FILE\n";
    return 2;
}
