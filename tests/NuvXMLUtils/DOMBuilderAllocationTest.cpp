#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "tests/support/FailingAllocator.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <string>
#include <vector>

namespace
{

using namespace NuvTest;
using Nuv::UniString;
using NuvXML::DOMBuilder;
using NuvXML::XercesPtr;
using Operation = void (*)(DOMBuilder&);

/// Long enough for a block of its own in a DOM document, which allocates short texts in advance.
const UniString longText(std::u16string(20000, u'x'));
const UniString longTextWithLineEnds = UniString(u"\r\n") + longText;
const std::string longName(20000, 'n');

/// What writes a document with every kind of node.
const std::vector<Operation> operations = {
    [](DOMBuilder& builder) { builder.WriteStartElement(longName.c_str()); },
    [](DOMBuilder& builder) { builder.WriteXMLAttr("a", longText); },
    [](DOMBuilder& builder) {
        builder.WriteXMLVersionAttr({3, 1});
    },
    [](DOMBuilder& builder) { builder.WriteXML("v", longTextWithLineEnds); },
    [](DOMBuilder& builder) { builder.WriteStartElement("c"); },
    [](DOMBuilder& builder) { builder.WriteXML(longName.c_str(), 1); },
    [](DOMBuilder& builder) { builder.WriteXMLTextNode(longText); },
    [](DOMBuilder& builder) { builder.WriteXMLCDATAString(longText); },
    [](DOMBuilder& builder) { builder.WriteEndElement(); },
    [](DOMBuilder& builder) { builder.WriteEndElement(); },
    [](DOMBuilder& builder) { builder.WriteEndDocument(); },
    [](DOMBuilder& builder) { builder.AddMessage(longText); },
};

/// Calls until no allocation fails any more: first with its first allocation failing, then with its second
/// and so on. Only the application's exception may come of that.
/// @return how many calls failed
template <class Call>
int RepeatUntilDone(Call call)
{
    int failures = 0;
    for (bool done = false; !done;)
    {
        FailingAllocator::FailAt(failures + 1, FailingAllocator::Mode::Once);
        try
        {
            call();
            done = true;
        }
        catch (const Nuv::OutOfMemoryException&)
        {
            ++failures;
        }
        FailingAllocator::Disarm();
    }
    return failures;
}

/// A builder that has a long way to indent, so that layout needs memory too.
class IndentedBuilder
{
  public:
    IndentedBuilder()
    {
        builder.WriteStartElement("root");
        for (int level = 0; level < 100; ++level)
            builder.WriteStartElement("e");
    }
    DOMBuilder builder;
};

TEST(DOMBuilderAllocation, FailsAsTheApplicationsExceptionAndTheCallCanBeRepeated)
{
    IndentedBuilder expected;
    IndentedBuilder actual;
    int failures = 0;
    for (const Operation operation : operations)
    {
        operation(expected.builder);
        failures += RepeatUntilDone([&] { operation(actual.builder); });
    }
    EXPECT_GT(failures, 10);
    EXPECT_TRUE(actual.builder.Export() == expected.builder.Export());
    EXPECT_EQ(actual.builder.GetNumberOfMessage(), 1);
}

TEST(DOMBuilderAllocation, FailsInExportAsTheApplicationsException)
{
    IndentedBuilder indented;
    indented.builder.WriteXML("v", longText);
    const UniString expected = indented.builder.Export();
    UniString actual;
    EXPECT_GT(RepeatUntilDone([&] { actual = indented.builder.Export(); }), 5);
    EXPECT_TRUE(actual == expected);
    Nuv::MemoryOChannel channel;
    EXPECT_GT(RepeatUntilDone([&] { indented.builder.Export(channel); }), 5);
    EXPECT_TRUE(channel.GetBytes() == expected.ToUTF8());
}

TEST(DOMBuilderAllocation, FailsInTheConstructorsAsTheApplicationsException)
{
    const IO::Location nowhere(UniString(u"/nowhere/a.xml"));
    EXPECT_GT(RepeatUntilDone([] { DOMBuilder builder; }), 5);
    EXPECT_GT(RepeatUntilDone([&] { DOMBuilder builder(nowhere); }), 2);
}

/// The calls of Xerces that make a document and, when `serialised`, its text.
void CallXercesAlone(bool serialised)
{
    auto* memoryManager = xercesc_3_0::XMLPlatformUtils::fgMemoryManager;
    auto* implementation = xercesc_3_0::DOMImplementation::getImplementation();
    try
    {
        const XercesPtr<xercesc_3_0::DOMDocument> document(
            implementation->createDocument(nullptr, nullptr, nullptr, memoryManager));
        if (!serialised)
            return;
        const XercesPtr<xercesc_3_0::DOMLSOutput> output(implementation->createLSOutput(memoryManager));
        xercesc_3_0::MemBufFormatTarget target(1023, memoryManager);
        output->setEncoding(u"UTF-8");
        output->setByteStream(&target);
        const XercesPtr<xercesc_3_0::DOMLSSerializer> serializer(
            implementation->createLSSerializer(memoryManager));
        serializer->write(document.get(), output.get());
    }
    catch (const xercesc_3_0::OutOfMemoryException&)
    {
    }
}

TEST(DOMBuilderAllocation, LeavesNothingBehindButWhatXercesLeaves)
{
    FailingAllocator::SweepBeside([] { CallXercesAlone(false); },
                                  []
                                  {
                                      try
                                      {
                                          DOMBuilder builder;
                                          for (const Operation operation : operations)
                                              operation(builder);
                                      }
                                      catch (const Nuv::OutOfMemoryException&)
                                      {
                                      }
                                  });
}

TEST(DOMBuilderAllocation, LeavesNothingBehindInExportButWhatXercesLeaves)
{
    FailingAllocator::SweepBeside([] { CallXercesAlone(true); },
                                  []
                                  {
                                      try
                                      {
                                          DOMBuilder builder;
                                          builder.Export();
                                      }
                                      catch (const Nuv::OutOfMemoryException&)
                                      {
                                      }
                                  });
}

TEST(DOMBuilderAllocation, OfAClonedExceptionFailsAsTheApplicationsException)
{
    const NuvXML::DOMBuilderException exception(longText, "Unit", 1);
    EXPECT_GT(RepeatUntilDone([&] { delete exception.Clone(); }), 1);
}

} // namespace
