/// @file
/// The documents that the benchmarks of the channels work on.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <memory>
#include <string>
#include <vector>

namespace Benchmarks
{

/// One value element in three is a text, the others are integers.
inline bool IsText(size_t index) { return index % 3 == 0; }

inline int IntegerAt(size_t index) { return static_cast<int>(index * 7919 % 1'000'000'007); }

/// Some 30 characters, one of them not ASCII.
inline Nuv::UniString TextAt(size_t index)
{
    Nuv::UniString text;
    text.Printf("Property %u of an element ", index);
    text += u'\u00FC';
    return text;
}

struct DisposeChannel
{
    void operator()(Nuv::XMLOChannel* channel) const { NuvXML::DisposeXMLOChannel(channel); }
    void operator()(Nuv::XMLIChannel* channel) const { NuvXML::DisposeXMLIChannel(channel); }
};
using OutputChannel = std::unique_ptr<Nuv::XMLOChannel, DisposeChannel>;
using InputChannel = std::unique_ptr<Nuv::XMLIChannel, DisposeChannel>;

/// Writes `count` value elements into elements "Group" of `groupSize` values each.
inline std::string MakeDocument(size_t count, size_t groupSize)
{
    const OutputChannel channel(NuvXML::CreateXMLOChannel(true));
    channel->WriteStartElement("Values");
    for (size_t i = 0; i < count;)
    {
        channel->WriteStartElement("Group");
        for (const size_t end = i + groupSize; i < end; ++i)
        {
            if (IsText(i))
                channel->WriteXML("Text", TextAt(i));
            else
                channel->WriteXML("Integer", IntegerAt(i));
        }
        channel->WriteEndElement();
    }
    channel->WriteEndElement();
    return NuvXML::ExportOChannelToUniString(channel.get()).ToUTF8();
}

} // namespace Benchmarks
