#include "Output.hpp"

#include "Trouble.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace Tool
{
namespace
{

constexpr size_t BlockSize = 0x10000;

/// Descriptor and name of a new file beside `target`, or of the target itself where it is no ordinary file.
int OpenFor(const fs::path& target, fs::path& written)
{
    std::error_code ignored;
    const fs::file_status status = fs::status(target, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status))
    {
        written = target;
        return open(target.c_str(), O_WRONLY | O_CLOEXEC);
    }
    std::string pattern = target.string() + ".XXXXXX";
    const int descriptor = mkostemp(pattern.data(), O_CLOEXEC);
    written = pattern;
    if (descriptor >= 0)
    {
        const mode_t mask = umask(0);
        umask(mask);
        constexpr mode_t ReadAndWrite = 0666;
        fchmod(descriptor,
               fs::exists(status) ? static_cast<mode_t>(status.permissions()) : ReadAndWrite & ~mask);
    }
    return descriptor;
}

} // namespace

Output::Output(int openDescriptor, std::string nameForMessages)
    : descriptor(openDescriptor)
    , name(std::move(nameForMessages))
{
    buffer.reserve(2 * BlockSize);
}

int Output::Write(const void* bytes, size_t count)
{
    buffer.append(static_cast<const char*>(bytes), count);
    if (buffer.size() >= BlockSize)
        Flush();
    return 0;
}

void Output::Flush()
{
    const std::string block = std::exchange(buffer, std::string());
    for (size_t done = 0; done < block.size();)
    {
        const ssize_t count = write(descriptor, block.data() + done, block.size() - done);
        if (count >= 0)
            done += static_cast<size_t>(count);
        else if (errno != EINTR)
            throw FileTrouble(name, errno);
    }
    buffer.reserve(2 * BlockSize);
}

bool Output::IsTerminal() const { return isatty(descriptor) != 0; }

OutputFile::OutputFile(const std::string& path)
    : target(fs::weakly_canonical(path)) // so that a symbolic link stays one
    , descriptor(OpenFor(target, written))
    , channel(descriptor, path)
{
    if (descriptor < 0)
        throw FileTrouble(path, errno);
}

OutputFile::~OutputFile()
{
    if (descriptor < 0)
        return;
    close(descriptor);
    if (written != target)
        unlink(written.c_str());
}

void OutputFile::Commit()
{
    channel.Flush();
    const int closed = close(std::exchange(descriptor, -1));
    if (closed != 0 || (written != target && rename(written.c_str(), target.c_str()) != 0))
    {
        const int error = errno;
        if (written != target)
            unlink(written.c_str());
        throw FileTrouble(target.string(), error);
    }
}

std::string Printable(const Nuv::UniString& text)
{
    constexpr char16_t Replacement = u'\uFFFD';
    std::u16string printable(text.View());
    for (char16_t& unit : printable)
        if ((unit < u' ' && unit != u'\t' && unit != u'\n') || (unit >= 0x7F && unit < 0xA0))
            unit = Replacement;
    return Nuv::UniString(printable).ToUTF8();
}

std::string PrintableLine(std::string_view text)
{
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char character) { return character == '\t' || character == '\n'; },
        '\x1A');
    return Printable(Nuv::UniString::FromUTF8(line));
}

} // namespace Tool
