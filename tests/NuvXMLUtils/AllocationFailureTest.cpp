#include "NuvXMLUtils/NodeLocations.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/FailingAllocator.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace
{

using namespace NuvTest;
using FailingAllocator::Pause;
using FailingAllocator::Sweep;
using FailingAllocator::SweepBeside;
using Nuv::UniString;

constexpr std::string_view Text = "<a x='1'><b>1</b><c/></a>";

/// The calls of Xerces that make an empty document.
void CreateAndReleaseDocument()
{
    try
    {
        auto* implementation = xercesc_3_0::DOMImplementation::getImplementation();
        implementation
            ->createDocument(nullptr, nullptr, nullptr, xercesc_3_0::XMLPlatformUtils::fgMemoryManager)
            ->release();
    }
    catch (const xercesc_3_0::OutOfMemoryException&)
    {
    }
}

void Parse()
{
    try
    {
        std::unique_ptr<xercesc_3_0::XercesDOMParser> parser(new xercesc_3_0::XercesDOMParser);
        xercesc_3_0::MemBufInputSource source((const XMLByte*)Text.data(), Text.size(), u"x");
        parser->parse(source);
        auto*d =parser->adoptDocument();
        if(d)d->release();
    }
    catch (const xercesc_3_0::OutOfMemoryException&)
    {
    }
}

/// Makes a channel and disposes of it; the only failure is the exception with this message.
template <class Exception, class Create, class Dispose>
void ExpectMessageOnFailure(Create create, Dispose dispose, const char16_t* message)
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
    catch (const std::bad_alloc&)
    {
        // There was no memory for the exception either.
    }
}

TEST(AllocationFailure, OfAnOutputChannelIsReportedAsNotEnoughMemory)
{
    SweepBeside(CreateAndReleaseDocument, [] {
        ExpectMessageOnFailure<NuvXML::XMLOChannelException>(
            [] { return NuvXML::CreateXMLOChannel(true); }, NuvXML::DisposeXMLOChannel,
            u"Not enough memory in CreateXMLOChannel");
    });
}

TEST(AllocationFailure, OfAnInputChannelIsReportedAsNotEnoughMemory)
{
    SweepBeside(Parse, [] {
        ExpectMessageOnFailure<NuvXML::XMLIChannelException>(
            [] { return NuvXML::CreateXMLIChannelFromMemory((const unsigned char*)Text.data(), Text.size(), true); }, NuvXML::DisposeXMLIChannel,
            u"Not enough memory in CreateXMLIChannel");
    });
}

} // namespace
