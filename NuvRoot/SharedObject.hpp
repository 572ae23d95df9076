/// @file
/// Objects that are held by counted references.
#pragma once

#include "NuvRoot/Export.hpp"

#include <utility>

namespace Nuv
{

/// Adds 1 atomically and gives the new value.
NUVROOT_API int AtomicIncrement(int& value);

/// Takes 1 away atomically and gives the new value.
NUVROOT_API int AtomicDecrement(int& value);

/// Base of objects that die with their last reference. A new object has no reference, a copy too; references
/// are taken and dropped from any thread.
class NUVROOT_API SharedObject
{
  public:
    SharedObject() = default;
    SharedObject(const SharedObject&) {}
    SharedObject& operator=(const SharedObject&) { return *this; }
    virtual ~SharedObject();

    void AddReference() const;

    /// Drops one reference and deletes the object when it was the last.
    void Release() const;

    int GetReferenceCount() const;

  private:
    mutable int referenceCount = 0;
};

/// A counted reference, or null.
template <class T>
class Ref
{
  public:
    Ref() = default;
    Ref(T* target)
        : object(target)
    {
        if (object)
            object->AddReference();
    }
    Ref(const Ref& other)
        : Ref(other.object)
    {
    }
    Ref(Ref&& other) noexcept
        : object(std::exchange(other.object, nullptr))
    {
    }
    Ref& operator=(Ref other) noexcept
    {
        std::swap(object, other.object);
        return *this;
    }
    ~Ref()
    {
        if (object)
            object->Release();
    }

    T* Get() const { return object; }
    T* operator->() const { return object; }
    T& operator*() const { return *object; }
    explicit operator bool() const { return object != nullptr; }

    friend bool operator==(const Ref& left, const Ref& right) { return left.object == right.object; }

    /// Makes no reference: one to an object that nobody holds yet would end its life.
    friend bool operator==(const Ref& left, const T* right) { return left.object == right; }

  private:
    T* object = nullptr;
};

} // namespace Nuv
