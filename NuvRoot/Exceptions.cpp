#include "NuvRoot/Exceptions.hpp"

#include "NuvRoot/Channels.hpp"

namespace Nuv
{
namespace
{

void ThrowOutOfMemory() { throw OutOfMemoryException(); }

/// Stands in this source unit, beside what it throws, so that no linker drops it.
[[maybe_unused]] const std::new_handler previousHandler = std::set_new_handler(ThrowOutOfMemory);

NuvException* CloneOf(const NuvException* exception) { return exception ? exception->Clone() : nullptr; }

UniString LineOf(const NuvException& exception)
{
    UniString line;
    line.Printf("%s: %S", exception.GetName(), exception.GetMessage());
    if (exception.GetFileName())
    {
        UniString place;
        place.Printf(" (%s:%u)", exception.GetFileName(), exception.GetLineNumber());
        line += place;
    }
    return line += u'\n';
}

void WriteText(OChannel& channel, const UniString& text)
{
    const std::string bytes = text.ToUTF8();
    channel.Write(bytes.data(), bytes.size());
}

} // namespace

NuvException::NuvException(const UniString& text, const char* sourceFile, unsigned int sourceLine,
                           const NuvException* causedBy, int identifier)
    : message(text)
    , fileName(sourceFile)
    , lineNumber(sourceLine)
    , cause(CloneOf(causedBy))
    , id(identifier)
{
}

NuvException::NuvException(const NuvException& other)
    : NuvException(other.message, other.fileName, other.lineNumber, other.cause.get(), other.id)
{
}

NuvException& NuvException::operator=(const NuvException& other)
{
    std::unique_ptr<NuvException> newCause(CloneOf(other.cause.get()));
    message = other.message;
    fileName = other.fileName;
    lineNumber = other.lineNumber;
    cause = std::move(newCause);
    id = other.id;
    return *this;
}

NuvException::~NuvException() = default;

const char* NuvException::GetName() const { return "NuvException"; }

int NuvException::GetID() const { return id; }

const UniString& NuvException::GetMessage() const { return message; }

const char* NuvException::GetFileName() const { return fileName; }

unsigned int NuvException::GetLineNumber() const { return lineNumber; }

NuvException* NuvException::Clone() const { return new NuvException(*this); }

void NuvException::Print(OChannel& channel) const { WriteText(channel, LineOf(*this)); }

void NuvException::Dump(OChannel& channel) const { WriteText(channel, GetStack()); }

NuvException* NuvException::GetCause() { return cause.get(); }

const NuvException* NuvException::GetCause() const { return cause.get(); }

UniString NuvException::GetStack() const
{
    UniString stack;
    for (const NuvException* exception = this; exception; exception = exception->GetCause())
        stack += LineOf(*exception);
    return stack;
}

GeneralException::GeneralException(const UniString& text, const char* sourceFile, unsigned int sourceLine,
                                   const NuvException* causedBy, int identifier)
    : NuvException(text, sourceFile, sourceLine, causedBy, identifier)
{
}

GeneralException::~GeneralException() = default;

const char* GeneralException::GetName() const { return "GeneralException"; }

NuvException* GeneralException::Clone() const { return new GeneralException(*this); }

RunTimeErrorException::RunTimeErrorException(const UniString& text, const char* sourceFile,
                                             unsigned int sourceLine, const NuvException* causedBy,
                                             int identifier)
    : NuvException(text, sourceFile, sourceLine, causedBy, identifier)
{
}

RunTimeErrorException::~RunTimeErrorException() = default;

const char* RunTimeErrorException::GetName() const { return "RunTimeErrorException"; }

NuvException* RunTimeErrorException::Clone() const { return new RunTimeErrorException(*this); }

OutOfMemoryException::OutOfMemoryException(const UniString& text, const char* sourceFile,
                                           unsigned int sourceLine, const NuvException* causedBy,
                                           int identifier)
    : NuvException(text, sourceFile, sourceLine, causedBy, identifier)
{
}

OutOfMemoryException::~OutOfMemoryException() = default;

const char* OutOfMemoryException::GetName() const { return "OutOfMemoryException"; }

NuvException* OutOfMemoryException::Clone() const { return new OutOfMemoryException(*this); }

} // namespace Nuv
