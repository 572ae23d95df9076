/// @file
/// The members that every exception class of the library has. Included by the headers that declare
/// exceptions; of no use to callers.
#pragma once

#include "NuvRoot/Exceptions.hpp"

namespace NuvXML
{

/// What GetID of every exception of the library returns.
inline constexpr int LibraryExceptionID = -36;

} // namespace NuvXML

/// Declares the constructors and the overridden operations of an exception class `Class` with the direct base
/// `Base`. It adds no data; copying and assigning are those of the base classes.
#define NUVXML_EXCEPTION_MEMBERS(Class, Base)                                                                \
  public:                                                                                                    \
    Class(const char* text, const char* sourceFile, unsigned int sourceLine)                                 \
        : Class(Nuv::UniString(text), sourceFile, sourceLine)                                                \
    {                                                                                                        \
    }                                                                                                        \
    Class(const char* text, const char* sourceFile, unsigned int sourceLine,                                 \
          const Nuv::NuvException& causedBy)                                                                 \
        : Class(Nuv::UniString(text), sourceFile, sourceLine, causedBy)                                      \
    {                                                                                                        \
    }                                                                                                        \
    Class(const Nuv::UniString& text, const char* sourceFile, unsigned int sourceLine)                       \
        : Nuv::NuvException(text, sourceFile, sourceLine, nullptr, NuvXML::LibraryExceptionID)               \
    {                                                                                                        \
    }                                                                                                        \
    Class(const Nuv::UniString& text, const char* sourceFile, unsigned int sourceLine,                       \
          const Nuv::NuvException& causedBy)                                                                 \
        : Nuv::NuvException(text, sourceFile, sourceLine, &causedBy, NuvXML::LibraryExceptionID)             \
    {                                                                                                        \
    }                                                                                                        \
    Class()                                                                                                  \
        : Nuv::NuvException(Nuv::UniString(), nullptr, 0, nullptr, NuvXML::LibraryExceptionID)               \
    {                                                                                                        \
    }                                                                                                        \
    Class(const Class&) = default;                                                                           \
    Class& operator=(const Class&) = default;                                                                \
    ~Class() override;                                                                                       \
    const char* GetName() const override;                                                                    \
    Nuv::NuvException* Clone() const override;

/// Defines what NUVXML_EXCEPTION_MEMBERS declares, in the source unit of the class.
#define NUVXML_DEFINE_EXCEPTION(Class)                                                                       \
    Class::~Class() = default;                                                                               \
    const char* Class::GetName() const { return #Class; }                                                    \
    Nuv::NuvException* Class::Clone() const { return new Class(*this); }
