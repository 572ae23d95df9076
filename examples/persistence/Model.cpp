#include "Model.hpp"

#include "NuvRoot/ValueText.hpp"

#include <array>
#include <iterator>

namespace Persistence
{
namespace
{

using Nuv::UniString;

constexpr Nuv::ClassVersion ProjectVersion{1, 0, 0};
constexpr Nuv::ClassVersion ElementVersion{2, 1, 0};

//! [double]
/// The channels have no form for floating-point output: such a number is written as the shortest text that
/// reads back as the same number.
void WriteDouble(Nuv::XMLOChannel& channel, const char* name, double value)
{
    Nuv::UniChar text[64] = {};
    Nuv::valuetostr(value, text, std::size(text));
    channel.WriteXML(name, UniString(text));
}
//! [double]

/// Leaves `value` empty when there is no such element.
template <class T>
void ReadOptional(Nuv::XMLIChannel& channel, const char* name, std::optional<T>& value)
{
    T read{};
    if (channel.ReadXML(name, read) == Nuv::Success)
        value = std::move(read);
}

//! [list]
template <class Object>
void WriteList(Nuv::XMLOChannel& channel, const char* listName, const Nuv::Array<Object>& objects)
{
    channel.WriteStartElement(listName);
    for (const Object& object : objects)
    {
        channel.WriteStartElement(Object::ElementName);
        object.Write(channel);
        channel.WriteEndElement();
    }
    channel.WriteEndElement();
}

/// Reads the children of `listName` one after the other and passes over those that are no such objects. A
/// missing list is an empty one.
template <class Object>
bool ReadList(Nuv::XMLIChannel& channel, const char* listName, Nuv::Array<Object>& objects)
{
    objects.clear();
    if (channel.ReadStartElement(listName) != Nuv::Success)
        return true;
    UniString nextName;
    while (channel.GetNextTokenTypeName(nextName) == Nuv::XMLStartElement)
    {
        channel.ReadStartElement(nullptr);
        if (nextName == UniString(Object::ElementName) && !objects.emplace_back().Read(channel))
            return false;
        channel.ReadEndElement(nextName.ToString().c_str());
    }
    return channel.ReadEndElement(listName) == Nuv::Success;
}
//! [list]

/// False, with a message, when a newer program wrote the object in a way that this one may not understand.
bool CheckVersion(Nuv::XMLIChannel& channel, const Nuv::ClassVersion& known)
{
    Nuv::ClassVersion written;
    if (channel.ReadXMLVersionAttr(written) != Nuv::Success)
        return false;
    if (written.majorNumber <= known.majorNumber)
        return true;
    channel.AddMessage(UniString(u"The object was written by a newer version of the program."));
    return false;
}

constexpr std::array<const char16_t*, 4> PropertyTypes = {u"bool", u"integer", u"length", u"text"};

template <class T>
bool ReadValue(Nuv::XMLIChannel& channel, Property::Value& value)
{
    T read{};
    if (channel.ReadXML("Value", read) != Nuv::Success)
        return false;
    value = std::move(read);
    return true;
}

} // namespace

void Property::Write(Nuv::XMLOChannel& channel) const
{
    channel.WriteXMLAttr("Name", name);
    channel.WriteXMLAttr("Type", UniString(PropertyTypes[value.index()]));
    if (const double* length = std::get_if<double>(&value))
        WriteDouble(channel, "Value", *length);
    else if (const bool* flag = std::get_if<bool>(&value))
        channel.WriteXML("Value", *flag);
    else if (const long long* integer = std::get_if<long long>(&value))
        channel.WriteXML("Value", *integer);
    else
        channel.WriteXML("Value", std::get<UniString>(value));
}

bool Property::Read(Nuv::XMLIChannel& channel)
{
    UniString type;
    if (channel.ReadXMLAttr("Name", name) != Nuv::Success ||
        channel.ReadXMLAttr("Type", type) != Nuv::Success)
        return false;
    if (type == UniString(PropertyTypes[0]))
        return ReadValue<bool>(channel, value);
    if (type == UniString(PropertyTypes[1]))
        return ReadValue<long long>(channel, value);
    if (type == UniString(PropertyTypes[2]))
        return ReadValue<double>(channel, value);
    if (type == UniString(PropertyTypes[3]))
        return ReadValue<UniString>(channel, value);
    channel.AddMessage(UniString(u"Unknown type of property: ") + type);
    return false;
}

void BuildingElement::Write(Nuv::XMLOChannel& channel) const
{
    channel.WriteXMLVersionAttr(ElementVersion);
    channel.WriteXMLAttr("Guid", id);
    channel.WriteXML("Kind", kind);
    channel.WriteXML("Name", name);
    if (height)
        WriteDouble(channel, "Height", *height);
    if (note)
    {
        channel.WriteStartElement("Note");
        channel.WriteXMLCDATAString(*note);
        channel.WriteEndElement();
    }
    if (!properties.empty())
        WriteList(channel, "Properties", properties);
}

bool BuildingElement::Read(Nuv::XMLIChannel& channel)
{
    if (!CheckVersion(channel, ElementVersion) || channel.ReadXMLAttr("Guid", id) != Nuv::Success ||
        channel.ReadXML("Kind", kind) != Nuv::Success || channel.ReadXML("Name", name) != Nuv::Success)
        return false;
    ReadOptional(channel, "Height", height);
    if (channel.ReadStartElement("Note") == Nuv::Success)
    {
        channel.ReadXMLCDATAString(note.emplace());
        channel.ReadEndElement("Note");
    }
    return ReadList(channel, "Properties", properties);
}

void Storey::Write(Nuv::XMLOChannel& channel) const
{
    channel.WriteXML("Name", name);
    channel.WriteXML("Level", level);
    WriteDouble(channel, "Elevation", elevation);
    WriteList(channel, "Elements", elements);
}

bool Storey::Read(Nuv::XMLIChannel& channel)
{
    return channel.ReadXML("Name", name) == Nuv::Success && channel.ReadXML("Level", level) == Nuv::Success &&
           channel.ReadXML("Elevation", elevation) == Nuv::Success && ReadList(channel, "Elements", elements);
}

void Project::Write(Nuv::XMLOChannel& channel) const
{
    channel.WriteStartDocument();
    channel.WriteStartElement(ElementName);
    channel.WriteXMLVersionAttr(ProjectVersion);
    channel.WriteXMLAttr("Guid", id);
    channel.WriteXML("Name", name);
    channel.WriteXML("Author", author);
    WriteList(channel, "Storeys", storeys);
    channel.WriteEndElement();
    channel.WriteEndDocument();
}

bool Project::Read(Nuv::XMLIChannel& channel)
{
    if (!CheckVersion(channel, ProjectVersion) || channel.ReadXMLAttr("Guid", id) != Nuv::Success ||
        channel.ReadXML("Name", name) != Nuv::Success)
        return false;
    std::optional<UniString> writtenAuthor;
    ReadOptional(channel, "Author", writtenAuthor);
    author = writtenAuthor.value_or(UniString());
    return ReadList(channel, "Storeys", storeys);
}

} // namespace Persistence
