/// @file
/// A small model of a design project. Its objects write themselves through Nuv::XMLOChannel and read
/// themselves through Nuv::XMLIChannel; they know nothing of what stands behind the channels.
#pragma once

#include "NuvRoot/Containers.hpp"
#include "NuvRoot/Guid.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvRoot/XMLChannels.hpp"

#include <optional>
#include <variant>

namespace Persistence
{

/// A typed value with a name, such as a fire rating or a length.
struct Property
{
    using Value = std::variant<bool, long long, double, Nuv::UniString>;

    Nuv::UniString name;
    Value value;

    static constexpr char ElementName[] = "Property";
    void Write(Nuv::XMLOChannel& channel) const;
    bool Read(Nuv::XMLIChannel& channel);
    friend bool operator==(const Property&, const Property&) = default;
};

/// A wall, a slab, a door.
struct BuildingElement
{
    Nuv::Guid id;
    Nuv::UniString kind;
    Nuv::UniString name;
    std::optional<double> height;       ///< in metres
    std::optional<Nuv::UniString> note; ///< free text, with markup if the author likes
    Nuv::Array<Property> properties;

    static constexpr char ElementName[] = "Element";
    void Write(Nuv::XMLOChannel& channel) const;
    bool Read(Nuv::XMLIChannel& channel);
    friend bool operator==(const BuildingElement&, const BuildingElement&) = default;
};

struct Storey
{
    Nuv::UniString name;
    int level = 0;
    double elevation = 0; ///< in metres
    Nuv::Array<BuildingElement> elements;

    static constexpr char ElementName[] = "Storey";
    void Write(Nuv::XMLOChannel& channel) const;
    bool Read(Nuv::XMLIChannel& channel);
    friend bool operator==(const Storey&, const Storey&) = default;
};

struct Project
{
    Nuv::Guid id;
    Nuv::UniString name;
    Nuv::UniString author;
    Nuv::Array<Storey> storeys;

    static constexpr char ElementName[] = "Project";

    /// Writes the whole document.
    void Write(Nuv::XMLOChannel& channel) const;

    /// Reads from a channel that stands on the start of the root element. False when something that a project
    /// must have is missing or wrong; the channel's messages tell what. Optional fields that are missing are
    /// left empty.
    bool Read(Nuv::XMLIChannel& channel);

    friend bool operator==(const Project&, const Project&) = default;
};

} // namespace Persistence
