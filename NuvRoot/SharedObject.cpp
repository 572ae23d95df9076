#include "NuvRoot/SharedObject.hpp"

#include <atomic>

namespace Nuv
{

int AtomicIncrement(int& value) { return ++std::atomic_ref<int>(value); }

int AtomicDecrement(int& value) { return --std::atomic_ref<int>(value); }

SharedObject::~SharedObject() = default;

void SharedObject::AddReference() const { AtomicIncrement(referenceCount); }

void SharedObject::Release() const
{
    if (AtomicDecrement(referenceCount) == 0)
        delete this;
}

int SharedObject::GetReferenceCount() const { return std::atomic_ref<int>(referenceCount).load(); }

} // namespace Nuv
