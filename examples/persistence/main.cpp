// Writes a generated project to a file and reads it back, reads a project of an older version, a file of
// another program and a damaged file, and shows what it did.
//
// usage: persistence [number of building elements]

#include "Model.hpp"

#include "InputOutput/File.hpp"
#include "InputOutput/FileSystem.hpp"
#include "InputOutput/Folder.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace
{

using Nuv::UniString;
using Persistence::BuildingElement;
using Persistence::Project;
using Persistence::Storey;

constexpr char LanguagesFile[] = "/usr/share/xml/iso-codes/iso_639-3.xml";

/// What a step of the demonstration has to show.
struct Outcome
{
    bool succeeded;
    std::uintmax_t bytes;
    std::string text;
};

class Table
{
  public:
    Table() { std::printf("%-42s %10s %12s  %s\n", "step", "ms", "bytes", "result"); }

    template <class Step>
    void Run(const char* name, Step step)
    {
        const auto start = std::chrono::steady_clock::now();
        const Outcome outcome = step();
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        std::printf("%-42s %10.1f %12ju  %s%s\n", name, time.count(), outcome.bytes,
                    outcome.succeeded ? "" : "FAILED: ", outcome.text.c_str());
        allSucceeded = allSucceeded && outcome.succeeded;
    }

    bool AllSucceeded() const { return allSucceeded; }

  private:
    bool allSucceeded = true;
};

/// An unused file in the folder for temporary files; removed at the end of the scope.
class ScratchFile
{
  public:
    ScratchFile()
    {
        IO::FileSystem::GetSpecialLocation(IO::FileSystem::TemporaryFolder, location);
        IO::Name name;
        IO::Folder(location).GenerateUnusedName(u"Project_", name);
        name.AppendExtension(u"xml");
        location.AppendToLocal(name);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { IO::FileSystem::Delete(location, IO::DeleteForGood, IO::ReportAccessDenied); }

    const IO::Location& Location() const { return location; }

  private:
    IO::Location location;
};

std::uintmax_t SizeOf(const IO::Location& location)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(location.ToNativePath(), error);
    return error ? 0 : size;
}

std::string Counted(size_t count, const char* what) { return std::to_string(count) + " " + what; }

size_t NumberOfElements(const Project& project)
{
    size_t count = 0;
    for (const Storey& storey : project.storeys)
        count += storey.elements.size();
    return count;
}

Project GenerateProject(size_t elementCount)
{
    constexpr size_t ElementsOfAStorey = 500;
    static const UniString kinds[] = {u"Wall", u"Slab", u"Door", u"Window", u"Beam"};
    std::mt19937 random(42);
    std::uniform_real_distribution<double> lengths(0.1, 12.0);

    Project project;
    project.id = Nuv::Guid::Generate();
    project.name = u"Town Hall \u2013 Umbau & Erweiterung";
    project.author = u"J\u00FCrgen \u5C71\u7530";
    for (size_t i = 0; i < elementCount; ++i)
    {
        if (i % ElementsOfAStorey == 0)
        {
            const int level = static_cast<int>(project.storeys.size());
            project.storeys.push_back({u"Storey", level, level * 3.2, {}});
        }
        BuildingElement element;
        element.id = Nuv::Guid::Generate();
        element.kind = kinds[random() % std::size(kinds)];
        element.name.Printf("%S %u", element.kind, i);
        if (random() % 4 != 0)
            element.height = lengths(random);
        if (random() % 8 == 0)
            element.note = u"<b>Check</b> on site: tolerance < 5 mm && level \u2264 0.1\u00B0";
        element.properties.push_back({u"LoadBearing", random() % 2 == 0});
        element.properties.push_back({u"FireRating", static_cast<long long>(random() % 5 * 30)});
        element.properties.push_back({u"Width", lengths(random)});
        element.properties.push_back({u"Supplier", UniString(u"\"M\u00FCller\" <S\u00F6hne>")});
        project.storeys.back().elements.push_back(element);
    }
    return project;
}

//! [save]
Outcome WriteProject(const Project& project, const IO::Location& location)
{
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(location, true);
    const NuvXML::XMLOChannelGuard guard(&channel);
    try
    {
        project.Write(*channel);
    }
    catch (...)
    {
        NuvXML::DiscardXMLOChannel(channel); // else the guard writes the part that is there
        throw;
    }
    UniString reason;
    if (!NuvXML::SaveXMLOChannel(channel, &reason))
        return {false, SizeOf(location), reason.ToUTF8()};
    return {true, SizeOf(location), Counted(NumberOfElements(project), "building elements written")};
}
//! [save]

Outcome ReadProject(const IO::Location& location, Project& project)
{
    Nuv::Array<UniString> messages;
    bool succeeded = false;
    {
        Nuv::XMLIChannel* channel = NuvXML::CreateXMLIChannel(location, true);
        const NuvXML::XMLIChannelGuard guard(&channel, &messages);
        succeeded = project.Read(*channel);
    }
    return {succeeded, SizeOf(location),
            Counted(NumberOfElements(project), "building elements, ") +
                Counted(messages.size(), "optional fields missing")};
}

struct Language
{
    UniString id;
    UniString type;
    UniString name;
};

/// A file that no program of ours wrote: one empty element for each language, with attributes only.
Outcome ReadLanguages(const IO::Location& location)
{
    Nuv::XMLIChannel* channel = NuvXML::CreateXMLIChannel(location, true);
    const NuvXML::XMLIChannelGuard guard(&channel);
    Nuv::Array<Language> languages;
    while (channel->GetNextTokenType() == Nuv::XMLStartElement)
    {
        Language& language = languages.emplace_back();
        if (channel->ReadStartElement("iso_639_3_entry") != Nuv::Success ||
            channel->ReadXMLAttr("id", language.id) != Nuv::Success ||
            channel->ReadXMLAttr("type", language.type) != Nuv::Success ||
            channel->ReadXMLAttr("name", language.name) != Nuv::Success ||
            channel->ReadEndElement("iso_639_3_entry") != Nuv::Success)
            return {false, SizeOf(location), "an entry lacks an attribute"};
    }
    const auto isConstructed = [](const Language& language) { return language.type == UniString(u"C"); };
    const auto constructed = std::count_if(languages.begin(), languages.end(), isConstructed);
    return {!languages.empty(), SizeOf(location),
            Counted(languages.size(), "languages, ") +
                Counted(static_cast<size_t>(constructed), "constructed, last ") +
                languages.back().name.ToUTF8()};
}

/// Copies the file with the last end tag of an element renamed.
void DamageCopy(const IO::Location& source, const IO::Location& copy)
{
    std::string text(SizeOf(source), '\0');
    size_t count = 0;
    IO::File input(source, IO::FailWhenNotFound);
    input.Open(IO::ReadMode, IO::ReportAccessDenied);
    input.Read(text.data(), text.size(), count);
    if (const size_t tag = text.rfind("</Element>"); tag != std::string::npos)
        text.replace(tag, 10, "</Elemant>");
    IO::File output(copy, IO::CreateWhenNotFound);
    output.Open(IO::WriteMode, IO::ReportAccessDenied);
    output.Write(text.data(), text.size());
}

/// The exception of the channel says that the file cannot be read; parsing it again tells where and why.
Outcome ReadDamaged(const IO::Location& location)
{
    try
    {
        NuvXML::DisposeXMLIChannel(NuvXML::CreateXMLIChannel(location, true));
        return {false, SizeOf(location), "the damage was not noticed"};
    }
    catch (const NuvXML::XMLIChannelException& exception)
    {
        const NuvXML::Loaded loaded = NuvXML::LoadDocument(location);
        UniString text;
        text.Printf("%S, line %u: %S", exception.GetMessage(), loaded.place.lineNumber, loaded.reason);
        return {loaded.place.lineNumber != 0, SizeOf(location), text.ToUTF8()};
    }
}

/// The project file that is shipped beside this program's source.
IO::Location OlderProject()
{
    return IO::Location(UniString::FromUTF8(PERSISTENCE_FOLDER "/older-project.xml"));
}

} // namespace

int main(int argc, char** argv)
try
{
    const size_t elementCount = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10'000;
    const ScratchFile file;
    const ScratchFile damaged;
    Project written;
    Project read;
    Project older;

    Table table;
    table.Run("generate a project",
              [&]
              {
                  written = GenerateProject(elementCount);
                  return Outcome{true, 0, Counted(NumberOfElements(written), "building elements")};
              });
    table.Run("write it to a file", [&] { return WriteProject(written, file.Location()); });
    table.Run("read it back", [&] { return ReadProject(file.Location(), read); });
    table.Run("compare",
              [&]
              {
                  return Outcome{read == written, 0,
                                 read == written ? "equal" : "what was read differs from what was written"};
              });
    table.Run("read a project of an older version", [&] { return ReadProject(OlderProject(), older); });
    table.Run("read the languages of ISO 639-3",
              [] { return ReadLanguages(IO::Location(UniString(LanguagesFile))); });
    DamageCopy(file.Location(), damaged.Location());
    table.Run("read a damaged copy", [&] { return ReadDamaged(damaged.Location()); });
    return table.AllSucceeded() ? 0 : 1;
}
catch (const Nuv::NuvException& exception)
{
    std::fprintf(stderr, "%s: %s\n", exception.GetName(), exception.GetMessage().ToUTF8().c_str());
    return 2;
}
