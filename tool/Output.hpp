/// @file
/// Where the tool writes.
#pragma once

#include "NuvRoot/Channels.hpp"
#include "NuvRoot/UniString.hpp"

#include <filesystem>
#include <string>
#include <string_view>

namespace Tool
{

/// An open file descriptor that is written in blocks. Not closed.
class Output : public Nuv::OChannel
{
  public:
    /// @param nameForMessages of the file
    Output(int openDescriptor, std::string nameForMessages);

    /// Always 0.
    /// @throws Trouble when a block cannot be written
    int Write(const void* bytes, size_t count) override;

    void Write(std::string_view text) { Write(text.data(), text.size()); }
    void Write(const Nuv::UniString& text) { Write(text.ToUTF8()); }

    /// To be called at the end: what is written later is lost otherwise.
    /// @throws Trouble
    void Flush();

    /// Whether something waits to be written.
    bool IsPending() const { return !buffer.empty(); }

    bool IsTerminal() const;

  private:
    int descriptor;
    std::string name;
    std::string buffer;
};

/// A file that takes the place of the one of its name only when it is complete. What is no ordinary file,
/// such as /dev/null, is written at once.
class OutputFile
{
  public:
    /// @throws Trouble
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    Output& Channel() { return channel; }

    /// @throws Trouble, with the old file as it was
    void Commit();

  private:
    std::filesystem::path target;
    std::filesystem::path written;
    int descriptor;
    Output channel;
};

/// Text as a terminal may have it: control characters, but for tabs and line feeds, are replaced.
std::string Printable(const Nuv::UniString& text);

/// The same of text in UTF-8 that must stay on one line, such as the name of a file or a message.
std::string PrintableLine(std::string_view text);

} // namespace Tool
