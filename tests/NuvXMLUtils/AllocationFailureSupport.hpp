/// @file
/// What the tests of the channels and of loading share that make each allocation fail in turn: the same calls
/// of Xerces as ours, without us, and what is expected of a failure.
#pragma once

#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/Xerces.hpp"
#include "tests/support/FailingAllocator.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLGrammarPoolImpl.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace AllocationFailureTests
{

using namespace NuvTest::FailingAllocator;
using Nuv::UniString;
using Document = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;

inline constexpr std::string_view DocumentText =
    "<?xml version='1.0'?>\n"
    "<Wall Mv='1' Sv='2' Guid='00112233-4455-6677-8899-AABBCCDDEEFF' Count='12'>\n"
    "<Name>the northern wall of the house</Name><!-- comment -->\n"
    "<Height>275</Height><Flag>yes</Flag><![CDATA[4142434445464748]]></Wall>";

inline const unsigned char* Data(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

inline unsigned int Size(std::string_view text) { return static_cast<unsigned int>(text.size()); }

/// The same calls of Xerces as ours, without us.
template <class Calls>
auto Bare(Calls calls)
{
    return [calls]
    {
        try
        {
            calls();
        }
        catch (const xercesc_3_0::OutOfMemoryException&)
        {
        }
    };
}

inline Document BareDocument()
{
    return Document(xercesc_3_0::DOMImplementation::getImplementation()->createDocument(
        nullptr, nullptr, nullptr, xercesc_3_0::XMLPlatformUtils::fgMemoryManager));
}

inline void BareParse(const xercesc_3_0::InputSource& source)
{
    auto* const memory = xercesc_3_0::XMLPlatformUtils::fgMemoryManager;
    const auto schemas = std::make_unique<xercesc_3_0::XMLGrammarPoolImpl>(memory);
    const auto parser = std::make_unique<xercesc_3_0::XercesDOMParser>(nullptr, memory, schemas.get());
    parser->parse(source);
    Document(parser->adoptDocument()).reset();
}

inline void BareParseOfMemory()
{
    BareParse(*std::make_unique<xercesc_3_0::MemBufInputSource>(Data(DocumentText), DocumentText.size(),
                                                                u"system id"));
}

/// Expects that the factory makes a channel or throws the exception with this message.
template <class Exception, class Create, class Dispose>
void ExpectMessage(const char16_t* message, Create create, Dispose dispose)
{
    try
    {
        dispose(create());
    }
    catch (const Exception& exception)
    {
        const Pause pause;
        EXPECT_EQ(exception.GetMessage(), UniString(message));
    }
    catch (const Nuv::OutOfMemoryException&)
    {
        // There was no memory for the exception with the message either.
    }
}

/// A named call of a channel.
template <class Channel>
struct Operation
{
    const char* name;
    void (*call)(Channel&);

    friend void PrintTo(const Operation& operation, std::ostream* stream) { *stream << operation.name; }
};

inline std::string LongText(size_t length) { return std::string(length, 'x'); }

} // namespace AllocationFailureTests
