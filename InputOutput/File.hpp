#pragma once

#include "InputOutput/ErrorCodes.hpp"
#include "InputOutput/Export.hpp"
#include "InputOutput/Location.hpp"
#include "NuvRoot/Channels.hpp"

#include <string>

namespace IO
{

/// What a File does about a file that does not exist.
enum OnNotFound
{
    FailWhenNotFound = 0,
    CreateWhenNotFound = 1 ///< the file is made when it is opened for writing
};

enum OpenMode
{
    ReadMode = 0,
    WriteMode = 1 ///< from an empty file
};

/// What is done when the operating system denies access.
enum AccessDeniedTreatment
{
    ReportAccessDenied = 2 ///< the operation returns IO::AccessDenied
};

/// A file on disk as a channel to write to or to read from. Every operation returns 0 for success or one of
/// the codes in ErrorCodes.hpp. Writes go to the operating system at once.
class INPUTOUTPUT_API File : public Nuv::OChannel, public Nuv::IChannel
{
  public:
    File(const Location& location, OnNotFound onNotFound);
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Closes the file, if it is open.
    ~File() override;

    /// What the constructor found when it looked for an existing file: 0, NotFound or what else kept it from
    /// finding one. 0 when it had no need to look.
    int GetStatus() const { return status; }

    /// Opens the file; folders are refused. An open file is closed first.
    int Open(OpenMode mode, AccessDeniedTreatment treatment);

    /// Makes the file and opens it for writing, to put it in the place of the one at `replaced` later (see
    /// FileSystem::Replace). Fails when anything has its name.
    ///
    /// Its permissions are those of the file at `replaced`, from the beginning, so that nobody reads a part
    /// of it who may not read that file. Owner and group are the same where the system allows it. With
    /// another group, the group may do what everybody may. When there is no file at `replaced`, or a link,
    /// they are those of any new file.
    int OpenNew(const Location& replaced);

    /// Returns when what was written is on the device.
    int Flush();

    /// NotOpen when the file is not open.
    int Close();

    /// Closes the file, if it is open, and deletes it. Needs no memory.
    int Delete();

    /// Writes all bytes; what a failing write had written before it failed stays in the file.
    int Write(const void* bytes, size_t count) override;

    /// Reads until `capacity` bytes are read or the file ends; EndOfFile only when there was nothing left.
    int Read(void* bytes, size_t capacity, size_t& count) override;

  private:
    std::string path;
    OnNotFound onNotFound;
    int status = NoError;
    int descriptor = -1;
};

} // namespace IO
