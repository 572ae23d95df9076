// Loading a document of about 15 MB, and reading its values back through the input channel.

#include "Documents.hpp"
#include "Ratios.hpp"

#include "InputOutput/File.hpp"
#include "InputOutput/FileSystem.hpp"
#include "InputOutput/Folder.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

namespace
{

using namespace Benchmarks;

constexpr size_t ValueCount = 400'000;

/// The document with all values in one group, in memory and as a file that is removed at the end.
class Input
{
  public:
    Input()
        : bytes(MakeDocument(ValueCount, ValueCount))
    {
        IO::FileSystem::GetSpecialLocation(IO::FileSystem::TemporaryFolder, location);
        IO::Name name;
        IO::Folder(location).GenerateUnusedName(u"Benchmark_", name);
        location.AppendToLocal(name);
        IO::File file(location, IO::CreateWhenNotFound);
        file.Open(IO::WriteMode, IO::ReportAccessDenied);
        file.Write(bytes.data(), bytes.size());
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;
    ~Input() { IO::FileSystem::Delete(location, IO::DeleteForGood, IO::ReportAccessDenied); }

    const std::string& Bytes() const { return bytes; }
    const IO::Location& Location() const { return location; }

  private:
    std::string bytes;
    IO::Location location;
};

const Input& GetInput()
{
    static const Input input;
    return input;
}

const unsigned char* Data(const std::string& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

InputChannel Open(const std::string& bytes)
{
    return InputChannel(
        NuvXML::CreateXMLIChannelFromMemory(Data(bytes), static_cast<unsigned int>(bytes.size()), true));
}

void ChannelFromFile(benchmark::State& state)
{
    for (auto _ : state)
        InputChannel(NuvXML::CreateXMLIChannel(GetInput().Location(), true));
}
BENCHMARK(ChannelFromFile)->Unit(benchmark::kMillisecond);

void BareParser(benchmark::State& state)
{
    const std::string& bytes = GetInput().Bytes();
    for (auto _ : state)
    {
        xercesc_3_0::XercesDOMParser parser;
        const xercesc_3_0::MemBufInputSource source(Data(bytes), bytes.size(), u"Benchmark");
        parser.parse(source);
    }
}
BENCHMARK(BareParser)->Unit(benchmark::kMillisecond);

void Load(benchmark::State& state, bool withLines)
{
    for (auto _ : state)
    {
        NodeLocations lines;
        const NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
            ParseXMLDoc(GetInput().Location(), ValidatingXMLParser::LineInfoParser::Val_Auto, true,
                        withLines ? &lines : nullptr, nullptr, nullptr));
        if (!document)
            state.SkipWithError("The document could not be loaded.");
    }
}

void LoadWithLines(benchmark::State& state) { Load(state, true); }
BENCHMARK(LoadWithLines)->Unit(benchmark::kMillisecond);

void LoadWithoutLines(benchmark::State& state) { Load(state, false); }
BENCHMARK(LoadWithoutLines)->Unit(benchmark::kMillisecond);

/// Reads the values in the order in which they were written; false when one is not what was written.
bool ReadValues(Nuv::XMLIChannel& channel, size_t groupSize)
{
    Nuv::UniString text;
    for (size_t i = 0; i < ValueCount;)
    {
        if (channel.ReadStartElement("Group") != Nuv::Success)
            return false;
        for (const size_t end = i + groupSize; i < end; ++i)
        {
            int integer = 0;
            if (IsText(i) ? channel.ReadXML("Text", text) != Nuv::Success || text.IsEmpty()
                          : channel.ReadXML("Integer", integer) != Nuv::Success || integer != IntegerAt(i))
                return false;
        }
        if (channel.ReadEndElement("Group") != Nuv::Success)
            return false;
    }
    return true;
}

void ReadBack(benchmark::State& state, size_t groupSize)
{
    const InputChannel channel = Open(MakeDocument(ValueCount, groupSize));
    for (auto _ : state)
    {
        if (!ReadValues(*channel, groupSize))
            state.SkipWithError("A value is not what was written.");
        channel->ReadEndElement("Values");
        channel->ReadStartElement("Values");
    }
}

void ReadBackSiblings(benchmark::State& state) { ReadBack(state, ValueCount); }
BENCHMARK(ReadBackSiblings)->Unit(benchmark::kMillisecond);

void ReadBackGroups(benchmark::State& state) { ReadBack(state, 100); }
BENCHMARK(ReadBackGroups)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    std::printf("The document has %zu bytes.\n", GetInput().Bytes().size());
    return RunAndCompare(
        argc, argv,
        {
            {"CreateXMLIChannel on a file to a bare parser in memory", "ChannelFromFile", "BareParser", 1.05},
            {"ParseXMLDoc with lines to without", "LoadWithLines", "LoadWithoutLines", 1.20},
            {"reading all values back to parsing them", "ReadBackSiblings", "ChannelFromFile", 0.35},
            {"a value among 400,000 siblings to one among 100", "ReadBackSiblings", "ReadBackGroups", 1.20},
        });
}
