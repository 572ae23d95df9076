#include "NuvXMLUtils/ReplaceFile.hpp"

#include "InputOutput/ErrorCodes.hpp"
#include "InputOutput/File.hpp"
#include "InputOutput/FileSystem.hpp"
#include "InputOutput/Folder.hpp"

namespace NuvXML
{
namespace
{

/// An unused name in the folder of `location`.
int FindUnusedLocation(const IO::Location& location, IO::Location& unused)
{
    IO::Location folder;
    if (!location.GetFolder(folder))
        return IO::NotFound;
    IO::Name name;
    const int code = IO::Folder(folder).GenerateUnusedName(u"NuvXML_unfinished_", name);
    if (code != IO::NoError)
        return code;
    name.AppendExtension(u"tmp");
    folder.AppendToLocal(name);
    unused = folder;
    return IO::NoError;
}

/// Deletes a new file at the end of the scope unless it is kept. That needs no memory.
class NewFileScope
{
  public:
    explicit NewFileScope(IO::File& newFile)
        : file(newFile)
    {
    }
    NewFileScope(const NewFileScope&) = delete;
    NewFileScope& operator=(const NewFileScope&) = delete;
    ~NewFileScope()
    {
        if (!isKept)
            file.Delete();
    }

    void Keep() { isKept = true; }

  private:
    IO::File& file;
    bool isKept = false;
};

} // namespace

int ReplaceFile(const IO::Location& location, std::string_view bytes)
{
    IO::Location newLocation;
    int code = FindUnusedLocation(location, newLocation);
    if (code != IO::NoError)
        return code;
    IO::File file(newLocation, IO::CreateWhenNotFound);
    code = file.OpenNew(location);
    if (code != IO::NoError)
        return code;
    NewFileScope scope(file);
    code = file.Write(bytes.data(), bytes.size());
    if (code == IO::NoError)
        code = file.Flush();
    if (code == IO::NoError)
        code = file.Close();
    if (code == IO::NoError)
        code = IO::FileSystem::Replace(newLocation, location);
    if (code == IO::NoError)
        scope.Keep();
    return code;
}

Nuv::UniString TextOfWritingError(int code)
{
    switch (code)
    {
    case IO::NotFound:
        return u"there is no such folder";
    case IO::AccessDenied:
        return u"access is denied";
    case IO::IsAFolder:
        return u"a folder has its name";
    case IO::NoSpace:
        return u"the device is full";
    default:
        return u"the system refuses it";
    }
}

} // namespace NuvXML
