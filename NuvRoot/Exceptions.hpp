/// @file
/// The exceptions of the application. Loading this module installs a new-handler that throws
/// OutOfMemoryException. So every failing `new` of the process throws the application's exception, which is a
/// std::bad_alloc too.
#pragma once

#include "NuvRoot/Export.hpp"
#include "NuvRoot/UniString.hpp"

#include <memory>
#include <new>

namespace Nuv
{

class OChannel;

/// Base of all exceptions of the application: a message, the place of the throw, an identifier and, perhaps,
/// the exception that caused it. Copies are independent, the cause included.
///
/// `sourceFile` is kept as a pointer and must outlive the exception. It usually is a literal.
class NUVROOT_API NuvException
{
  public:
    NuvException() = default;
    NuvException(const UniString& text, const char* sourceFile = nullptr, unsigned int sourceLine = 0,
                 const NuvException* causedBy = nullptr, int identifier = 0);
    NuvException(const NuvException& other);
    NuvException& operator=(const NuvException& other);
    virtual ~NuvException();

    /// The name of the class.
    virtual const char* GetName() const;
    virtual int GetID() const;
    virtual const UniString& GetMessage() const;

    /// Null and 0 when the place is not known.
    virtual const char* GetFileName() const;
    virtual unsigned int GetLineNumber() const;

    /// A copy on the heap, which the caller deletes.
    /// @throws OutOfMemoryException
    virtual NuvException* Clone() const;

    /// Writes one line to the channel, in UTF-8: name, message and place. Errors of the channel are ignored.
    virtual void Print(OChannel& channel) const;

    /// Writes the text of GetStack to the channel, in UTF-8. Errors of the channel are ignored.
    virtual void Dump(OChannel& channel) const;

    /// The exception that caused this one, or null; it belongs to this exception.
    virtual NuvException* GetCause();
    virtual const NuvException* GetCause() const;

    /// One line, as Print writes it, for this exception and for each cause below it.
    virtual UniString GetStack() const;

  private:
    UniString message;
    const char* fileName = nullptr;
    unsigned int lineNumber = 0;
    std::unique_ptr<NuvException> cause;
    int id = 0;
};

/// NuvException is a virtual base, which the class of an exception initialises itself: a class derived from
/// this one that does not has an empty message.
class NUVROOT_API GeneralException : public virtual NuvException
{
  public:
    GeneralException() = default;
    explicit GeneralException(const UniString& text, const char* sourceFile = nullptr,
                              unsigned int sourceLine = 0, const NuvException* causedBy = nullptr,
                              int identifier = 0);
    GeneralException(const GeneralException&) = default;
    GeneralException& operator=(const GeneralException&) = default;
    ~GeneralException() override;

    const char* GetName() const override;
    NuvException* Clone() const override;
};

class NUVROOT_API RunTimeErrorException : public GeneralException
{
  public:
    RunTimeErrorException() = default;
    explicit RunTimeErrorException(const UniString& text, const char* sourceFile = nullptr,
                                   unsigned int sourceLine = 0, const NuvException* causedBy = nullptr,
                                   int identifier = 0);
    RunTimeErrorException(const RunTimeErrorException&) = default;
    RunTimeErrorException& operator=(const RunTimeErrorException&) = default;
    ~RunTimeErrorException() override;

    const char* GetName() const override;
    NuvException* Clone() const override;
};

/// Thrown by every failing `new` of the process.
class NUVROOT_API OutOfMemoryException : public GeneralException, public std::bad_alloc
{
  public:
    OutOfMemoryException() = default;
    explicit OutOfMemoryException(const UniString& text, const char* sourceFile = nullptr,
                                  unsigned int sourceLine = 0, const NuvException* causedBy = nullptr,
                                  int identifier = 0);
    OutOfMemoryException(const OutOfMemoryException&) = default;
    OutOfMemoryException& operator=(const OutOfMemoryException&) = default;
    ~OutOfMemoryException() override;

    const char* GetName() const override;
    NuvException* Clone() const override;
};

} // namespace Nuv
