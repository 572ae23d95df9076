#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/DOMHelpers.hpp"
#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/FailingAllocator.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;
using FailingAllocator::Pause;
using FailingAllocator::Sweep;
using xercesc_3_0::DOMElement;

/// How the runs of an operation end.
enum Ending : unsigned int
{
    Returns = 1,
    DOMMemoryError = 2,        ///< a DOMException "Memory error"
    ConversionMemoryError = 4, ///< a ConvException whose message ends with "Memory error"
    OutOfMemory = 8,           ///< the application's exception
    XercesOutOfMemory = 16,
    OtherFailure = 32 ///< a ConvException with any other message
};

template <class Operation>
Ending EndingOf(Operation operation)
{
    try
    {
        operation();
        return Returns;
    }
    catch (const ConvException& exception)
    {
        return exception.message.View().ends_with(u"Memory error") ? ConversionMemoryError : OtherFailure;
    }
    catch (const xercesc_3_0::DOMException& exception)
    {
        const Pause pause;
        EXPECT_EQ(Visible(exception.getMessage()), "Memory error");
        return DOMMemoryError;
    }
    catch (const Nuv::OutOfMemoryException&)
    {
        return OutOfMemory;
    }
    catch (const xercesc_3_0::OutOfMemoryException&)
    {
        return XercesOutOfMemory;
    }
}

/// Makes each allocation of the operation fail, expects that nothing is left behind, and gives all the ways
/// it ended.
template <class Operation>
unsigned int EndingsOf(Operation operation)
{
    unsigned int endings = 0;
    Sweep([&] { endings |= EndingOf(operation); });
    return endings;
}

/// A document for one run of an operation.
class FreshDocument
{
  public:
    FreshDocument()
    {
        const Pause pause;
        document.reset(
            xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"root", nullptr));
        root = document->getDocumentElement();
    }

  private:
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document;

  public:
    DOMElement* root = nullptr;
};

/// The same for an operation that gets the root of a new document in each run.
template <class Operation>
unsigned int EndingsWithRoot(Operation operation)
{
    return EndingsOf(
        [&]
        {
            const FreshDocument document;
            operation(document.root);
        });
}

constexpr char LongText[] = "longer than any string that needs no memory";
constexpr char16_t LongTextU[] = u"longer than any string that needs no memory";

template <class Unit>
void Free(Unit* array)
{
    delete[] array;
}

// What the others stand on.

TEST(AllocationFailureInDOMBasics, IsAMemoryErrorOfAConversion)
{
    EXPECT_EQ(EndingsOf([] { StringToUnicode(LongText); }), Returns | DOMMemoryError);
    EXPECT_EQ(EndingsOf([] { Free(UnicodeToString(LongTextU, false)); }),
              Returns | ConversionMemoryError | OutOfMemory);
}

TEST(AllocationFailureInDOMBasics, PassesFromStrings)
{
    EXPECT_EQ(EndingsOf(
                  []
                  {
                      Nuv::UniString text(u"a text with ]] and \r\n");
                      MakeItTAMString(text);
                      CorrectCDATA(text);
                      ConvertCDATA(text);
                  }),
              Returns | OutOfMemory);
    const Tree tree("<element/>");
    EXPECT_EQ(EndingsOf([&] { IsNodeOk(tree.root, Nuv::String(LongText)); }), Returns | OutOfMemory);
}

TEST(AllocationFailureInDOMBasics, PassesFromTheMessagesOfExceptions)
{
    EXPECT_EQ(EndingsOf([] { GetIntNum("12a4"); }), OtherFailure | OutOfMemory);
    EXPECT_EQ(EndingsOf([] { GetDouble("abc"); }), OtherFailure | OutOfMemory);
    EXPECT_EQ(EndingsOf(
                  []
                  {
                      char text[] = "unquoted";
                      GetStringValue(text);
                  }),
              OtherFailure | OutOfMemory);
    const Tree tree("<r><?p d?></r>");
    EXPECT_EQ(EndingsOf(
                  [&]
                  {
                      xercesc_3_0::DOMNode* cursor = tree.root->getFirstChild();
                      GetNextTag(cursor);
                  }),
              OtherFailure | OutOfMemory);
}

// Writing and reading elements.

TEST(AllocationFailureInElementWriters, PassesAsWhatTheStringOrXercesThrows)
{
    constexpr unsigned int Expected = Returns | OutOfMemory | XercesOutOfMemory;
    const auto expectPassed = [&](auto write) { EXPECT_EQ(EndingsWithRoot(write), Expected); };
    expectPassed([](DOMElement* root) { WriteTabs(root, 5000); });
    expectPassed([](DOMElement* root) { Tabs(root, 5000); });
    expectPassed([](DOMElement* root) { WriteTextElement(root, "name", std::string(5000, 'x'), 20); });
    expectPassed([](DOMElement* root) { WriteLongElement(root, "a_long_name", -2147483647, 5000); });
    expectPassed([](DOMElement* root) { WriteBooleanElement(root, u"name", true, 5000); });
    expectPassed(
        [](DOMElement* root)
        {
            DOMElement* child = nullptr;
            BeginWriteElement(root, child, std::string(5000, 'n'));
            EndWriteElement(root, child, 5000);
        });
}

TEST(AllocationFailureInElementWriters, PassesFromTheStyleSheet)
{
    const std::string href(487, 'x');
    EXPECT_EQ(
        EndingsWithRoot([&](DOMElement* root) { WriteStyleSheet(root->getOwnerDocument(), href.c_str()); }) &
            ~XercesOutOfMemory,
        Returns | OutOfMemory);
}

TEST(AllocationFailureInElementReaders, LeavesTheTextAsItWas)
{
    const Tree tree("<element>a text of more than a few characters</element>");
    const Nuv::UniString name = u"element";
    Sweep(
        [&]
        {
            Nuv::UniString text = u"old";
            bool isRead = false;
            EndingOf([&] { isRead = ReadTextNode(tree.root, name, text); });
            const Pause pause;
            EXPECT_EQ(text, isRead ? u"a text of more than a few characters" : u"old");
        });
}

TEST(AllocationFailureInElementReaders, IsAResultOfFalseWithTheNumberZero)
{
    const Tree tree("<element>1234567890</element>");
    const Nuv::UniString name = u"element";
    bool hasFailed = false;
    EXPECT_EQ(EndingsOf(
                  [&]
                  {
                      int number = 5;
                      const bool isRead = ReadLongNode(tree.root, name, number);
                      hasFailed = hasFailed || !isRead;
                      const Pause pause;
                      EXPECT_EQ(number, isRead ? 1234567890 : 0);
                  }),
              Returns | OutOfMemory);
    EXPECT_TRUE(hasFailed);
}

TEST(AllocationFailureInElementReaders, LeavesNothingBehindWithEightBitNames)
{
    const Tree tree("<a_long_element_name>1</a_long_element_name>");
    EXPECT_EQ(EndingsOf(
                  [&]
                  {
                      const Nuv::String name = "a_long_element_name";
                      Nuv::String text;
                      ReadTextNode(tree.root, name, text);
                      bool flag = false;
                      ReadBooleanNode(tree.root, name, flag);
                      unsigned short number = 0;
                      ReadUShortNode(tree.root, name, number);
                  }),
              Returns | OutOfMemory);
}

// Building and reading tags.

TEST(AllocationFailureInTagBuilders, LeavesNothingBehind)
{
    constexpr unsigned int Expected = Returns | OutOfMemory | XercesOutOfMemory;
    const auto expectPassed = [&](auto build) { EXPECT_EQ(EndingsWithRoot(build), Expected); };
    const std::string text(5000, ']');
    const BitNames names[] = {{1, "the_first_bit"}, {0, nullptr}};
    expectPassed([&](DOMElement* root) { NewTextTag(root, "a_long_name", text.c_str(), 20); });
    expectPassed([&](DOMElement* root) { NewTextTag(root, u"a_long_name", u"x", 5000); });
    expectPassed([&](DOMElement* root) { NewStringTag(root, "a_long_name", text.c_str(), 20); });
    expectPassed([&](DOMElement* root) { NewStringTag(root, "a_long_name", LongTextU, 5000); });
    expectPassed([&](DOMElement* root) { NewDoubleTag(root, "a_long_name", 1.0 / 3, 5000); });
    expectPassed([&](DOMElement* root) { NewBoolTag(root, "a_long_name", true, 5000); });
    expectPassed([&](DOMElement* root) { WriteBits(root, "a_long_name", 1, names, 5000); });
    const std::string name(5000, 'n');
    expectPassed([&](DOMElement* root) { SetSLongAttr(root, name.c_str(), 1234567890); });
}

TEST(AllocationFailureInTagBuilders, IsAMemoryErrorInTheTextOfAGivenLength)
{
    const std::u16string text(1000, u'x');
    EXPECT_EQ(
        EndingsWithRoot([&](DOMElement* root) { NewStringWLenTag(root, "name", text.data(), 1000, 20); }) &
            ~XercesOutOfMemory,
        Returns | DOMMemoryError | OutOfMemory);
    const std::vector<unsigned short> units(1000, 'x');
    EXPECT_EQ(
        EndingsWithRoot([&](DOMElement* root) { NewStringWLenTag(root, "name", units.data(), 1000, 20); }) &
            ~XercesOutOfMemory,
        Returns | DOMMemoryError | OutOfMemory);
}

TEST(AllocationFailureInAttributeGetters, IsAMemoryErrorOrPasses)
{
    const Tree tree("<r number='1234567890' word='perhaps'/>");
    EXPECT_EQ(EndingsOf([&] { GetSLongAttr(tree.root, "number"); }),
              Returns | ConversionMemoryError | OutOfMemory);
    EXPECT_EQ(EndingsOf([&] { GetULongAttr(tree.root, "missing"); }), OtherFailure | OutOfMemory);
    EXPECT_EQ(EndingsOf([&] { GetBooleanAttr(tree.root, "word"); }),
              OtherFailure | ConversionMemoryError | OutOfMemory);
}

TEST(AllocationFailureInTagGetters, IsAMemoryErrorOrPasses)
{
    constexpr unsigned int Expected = Returns | ConversionMemoryError | OutOfMemory;
    const Tree number("<number>\n1234567890\n</number>");
    EXPECT_EQ(EndingsOf([&] { Free(GetTagText(number.root)); }), Expected);
    EXPECT_EQ(EndingsOf([&] { GetTagTextU(number.root); }), Returns | OutOfMemory);
    EXPECT_EQ(EndingsOf([&] { GetSLongTag(number.root); }), Expected);
    EXPECT_EQ(EndingsOf([&] { GetDoubleTag(number.root); }), Expected);
    EXPECT_EQ(EndingsOf([&] { GetBoolTag(number.root); }),
              OtherFailure | ConversionMemoryError | OutOfMemory);
    const Tree string("<string><![CDATA['first line\nsecond line]] ']]></string>");
    EXPECT_EQ(EndingsOf([&] { Free(GetCDATANodeU(string.root)); }), Expected);
    EXPECT_EQ(EndingsOf([&] { Free(GetStringTagU(string.root)); }), Expected);
    EXPECT_EQ(EndingsOf([&] { Free(GetStringTag(string.root)); }), Expected);
    // A strict conversion that fails is tried again, lossily.
    EXPECT_EQ(EndingsOf([&] { Free(GetCDATANode(string.root)); }), Returns | OutOfMemory);
}

TEST(AllocationFailureInTagGetters, PassesFromTheirMessages)
{
    const Tree tree(
        "<r><empty/><unquoted><![CDATA[a text]]></unquoted><two><![CDATA[1]]><![CDATA[2]]></two></r>");
    const DOMElement* const empty = tree.Find(u"empty");
    const DOMElement* const two = tree.Find(u"two");
    const DOMElement* const unquoted = tree.Find(u"unquoted");
    EXPECT_EQ(EndingsOf([&] { GetSLongTag(empty); }), OtherFailure | OutOfMemory);
    EXPECT_EQ(EndingsOf([&] { GetStringTag(two); }), OtherFailure | OutOfMemory);
    EXPECT_EQ(EndingsOf([&] { GetStringTagU(unquoted); }),
              OtherFailure | ConversionMemoryError | OutOfMemory);
}

TEST(AllocationFailureInTagGetters, LeavesNothingBehindWithWarnings)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<string><![CDATA['a text with \xE4\xB8\xAD\n in it']]></string>");
    EXPECT_EQ(EndingsOf(
                  [&]
                  {
                      Nuv::VAArray<WarningData> warnings;
                      const std::unique_ptr<char[]> text(GetStringTag(tree.root, &warnings));
                      const Pause pause;
                      EXPECT_STREQ(text.get(), "a text with ?\r\n in it");
                      EXPECT_EQ(warnings.size(), 1u);
                  }),
              Returns | ConversionMemoryError | OutOfMemory);
}

// Every operation that the tests above do not name.

/// Expects that lack of memory is told in one of the documented ways, and told at all.
void ExpectMemoryErrorsOnly(unsigned int endings)
{
    constexpr unsigned int MemoryErrors =
        DOMMemoryError | ConversionMemoryError | OutOfMemory | XercesOutOfMemory;
    EXPECT_EQ(endings & ~MemoryErrors, Returns);
    EXPECT_NE(endings & MemoryErrors, 0u);
}

TEST(AllocationFailureInTheOtherWriters, IsAMemoryErrorOrPasses)
{
    using Write = void (*)(DOMElement*);
    static const std::string name(5000, 'n');
    static const Nuv::UniString nameU(name);
    for (const Write write :
         {
             Write([](DOMElement* root) { WriteTextElement(root, nameU, nameU, 5000); }),
             Write([](DOMElement* root) { WriteShortElement(root, name, -1, 5000); }),
             Write([](DOMElement* root) { WriteShortElement(root, nameU, -1, 5000); }),
             Write([](DOMElement* root) { WriteUShortElement(root, name, 1, 5000); }),
             Write([](DOMElement* root) { WriteUShortElement(root, nameU, 1, 5000); }),
             Write([](DOMElement* root) { WriteLongElement(root, nameU, -1, 5000); }),
             Write([](DOMElement* root) { WriteULongElement(root, name, 1, 5000); }),
             Write([](DOMElement* root) { WriteULongElement(root, nameU, 1, 5000); }),
             Write([](DOMElement* root) { WriteBooleanElement(root, name, true, 5000); }),
             Write([](DOMElement* root) { NewTag(root, name.c_str(), "value", 5000, true, nullptr); }),
             Write([](DOMElement* root) { NewStringTag(root, name.c_str(), nullptr, 5000); }),
             Write([](DOMElement* root) { NewSLongTag(root, name.c_str(), -1, 5000); }),
             Write([](DOMElement* root) { NewULongTag(root, name.c_str(), 1, 5000); }),
             Write([](DOMElement* root) { NewLegacyBoolTag(root, name.c_str(), 1, 5000); }),
             Write([](DOMElement* root) { SetULongAttr(root, name.c_str(), 1); }),
             Write([](DOMElement* root) { SetBooleanAttr(root, name.c_str(), true); }),
             Write([](DOMElement* root) { SetLegacyBooleanAttr(root, name.c_str(), true); }),
         })
        ExpectMemoryErrorsOnly(EndingsWithRoot(write));
}

TEST(AllocationFailureInTheOtherReaders, IsAMemoryErrorOrPasses)
{
    const Tree number("<a_long_element_name number='1234567890'>1234567890</a_long_element_name>");
    const Tree word("<a_long_element_name word='false'>FALSE</a_long_element_name>");
    const Nuv::String name = "a_long_element_name";
    const Nuv::UniString nameU(name);
    int value = 0;
    unsigned int unsignedValue = 0;
    unsigned short shortValue = 0;
    short signedShortValue = 0;
    bool flag = true;
    ExpectMemoryErrorsOnly(EndingsOf([&] { ReadLongNode(number.root, name, value); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { ReadULongNode(number.root, name, unsignedValue); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { ReadULongNode(number.root, nameU, unsignedValue); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { ReadUShortNode(number.root, nameU, shortValue); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { ReadShortNode(number.root, name, signedShortValue); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { ReadShortNode(number.root, nameU, signedShortValue); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { ReadBooleanNode(word.root, name, flag); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { GetULongTag(number.root); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { GetULongAttr(number.root, "number"); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { GetBooleanAttr(word.root, "word"); }));
    ExpectMemoryErrorsOnly(EndingsOf([&] { Free(UnicodeToString(LongTextU, true)); }));
}

TEST(AllocationFailureInConvException, PassesFromItsText)
{
    const Tree tree("<element/>");
    const NodeLocationInfo place{3};
    const ConvException exception(LongTextU, &place);
    EXPECT_EQ(EndingsOf([&] { ConvException made(LongText, &place); }), Returns | OutOfMemory);
    EXPECT_EQ(EndingsOf([&] { ConvException made(LongTextU, tree.root); }), Returns | OutOfMemory);
    EXPECT_EQ(EndingsOf([&] { ConvException copy(exception); }), Returns | OutOfMemory);
    Sweep(
        [&]
        {
            ConvException assigned;
            EndingOf([&] { assigned = exception; });
            const Pause pause;
            EXPECT_TRUE(assigned.message == LongTextU || (assigned.message.IsEmpty() && assigned.line == 0));
            assigned = ConvException();
        });
}

TEST(AllocationFailureInSteps, DoesNotHappen)
{
    const Tree tree("<r> <a/> <b/> </r>");
    EXPECT_EQ(Sweep(
                  [&]
                  {
                      DOMElement* element = GetFirstElementChild(tree.root);
                      GetNextElementSibling(element);
                      GetPreviousElementSibling(GetLastElementChild(tree.root));
                      GetChildElementCount(tree.root);
                      xercesc_3_0::DOMNode* node = nullptr;
                      GetFirstChild(tree.root, node);
                      GetFirstChild(tree.root, element);
                      GetNextSibling(element, element);
                      SkipTextNodes(node);
                      GetNextTag(node);
                  }),
              0u);
}

} // namespace
