#include "CompareSupport.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "tests/support/FailingAllocator.hpp"

#include <memory>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using NuvTest::FailingAllocator::Pause;
using NuvTest::FailingAllocator::Sweep;

constexpr char Equal[] = "<a><b nuv_type='double' k='1'>1</b><c><d>word</d></c></a>";
constexpr char EqualToo[] = "<a><b nuv_type='double' k='1.0'>1.0</b><c><d>WORD</d></c></a>";
constexpr char Different[] = "<a><b nuv_type='double' k='1'>2</b></a>";

/// Compares with walkers made beforehand: those live in the documents, which never give memory back.
class Comparison
{
  public:
    Comparison(const char* leftText, const char* rightText)
        : left(Parse(leftText))
        , right(Parse(rightText))
        , leftWalker(WalkerOf(left))
        , rightWalker(WalkerOf(right))
    {
    }

    void Run()
    {
        const Nuv::Ref<AttrRuledCompareOptions> options(new AttrRuledCompareOptions);
        XMLCompareStrictOrder().CompareNodes(leftWalker, rightWalker, *options);
    }

    void ExpectWalkersOnTheRoots() const
    {
        EXPECT_EQ(leftWalker->getCurrentNode(), left->getDocumentElement());
        EXPECT_EQ(rightWalker->getCurrentNode(), right->getDocumentElement());
    }

  private:
    static DOMTreeWalker* WalkerOf(const Document& document)
    {
        return document->createTreeWalker(document->getDocumentElement(), DOMNodeFilter::SHOW_ALL, nullptr,
                                          false);
    }

    Document left;
    Document right;
    DOMTreeWalker* leftWalker;
    DOMTreeWalker* rightWalker;
};

TEST(XMLCompareAllocationFailure, EndsAComparisonByTheHostsException)
{
    Comparison comparison(Equal, EqualToo);
    Sweep(
        [&]
        {
            try
            {
                comparison.Run();
            }
            catch (const Nuv::OutOfMemoryException&)
            {
                const Pause pause;
                comparison.ExpectWalkersOnTheRoots();
            }
        });
}

TEST(XMLCompareAllocationFailure, LosesNothingWhileADifferenceIsReported)
{
    Comparison comparison(Equal, Different);
    Sweep(
        [&]
        {
            try
            {
                comparison.Run();
            }
            catch (const TextNodeValuesDontMatchException& difference)
            {
                try
                {
                    difference.GetText();
                    TextNodeValuesDontMatchException copy(difference);
                    copy = difference;
                }
                catch (const Nuv::OutOfMemoryException&)
                {
                }
            }
            catch (const Nuv::OutOfMemoryException&)
            {
                const Pause pause;
                comparison.ExpectWalkersOnTheRoots();
            }
        });
}

TEST(XMLCompareAllocationFailure, LeavesAMarkerNameAsItWas)
{
    Sweep(
        []
        {
            std::unique_ptr<AttrRuledCompareOptions> options;
            try
            {
                options = std::make_unique<AttrRuledCompareOptions>();
                options->SetEpsAtt(u"a name that is too long to stand in the string itself");
            }
            catch (const Nuv::OutOfMemoryException&)
            {
                const Pause pause;
                EXPECT_TRUE(!options || options->GetEpsAtt() == u"nuv_eps");
            }
        });
}

TEST(XMLCompareAllocationFailure, EndsAComparisonOfDocumentsByTheHostsException)
{
    const StrictOrderAutoValueCompareOptions options;
    // Every comparison leaves two walkers in the documents, so that these need another block now and then.
    const Document left = Parse(Equal);
    const Document right = Parse(EqualToo);
    for (int comparison = 0; comparison < 2000; ++comparison)
    {
        XMLCompareStrictOrder comparator;
        NuvTest::FailingAllocator::FailAt(1, NuvTest::FailingAllocator::Mode::FromThere);
        EXPECT_THROW(DoXMLCompare(left.get(), right.get(), &comparator, nullptr, options),
                     Nuv::OutOfMemoryException);
        NuvTest::FailingAllocator::Disarm();
        EXPECT_NO_THROW(DoXMLCompare(left.get(), right.get(), &comparator, nullptr, options));
    }
}

/// Makes each allocation fail of what is done with an exception.
template <class Exception>
void SweepException(const Exception& difference)
{
    const auto sweep = [](auto use)
    { EXPECT_GT(Sweep([&] { NuvTest::FailingAllocator::ExpectOutOfMemoryOnly(use); }), 0u); };
    sweep([&] { Exception copy(difference); });
    sweep([&] { difference.GetText(); });
    sweep([&] { difference.GetNodePath(XMLCompareException::Left); });
    sweep([&] { difference.GetNodePathUniString(XMLCompareException::Right); });
    Exception other(difference);
    sweep([&] { other = Exception(difference); });
}

TEST(XMLCompareAllocationFailure, OfEveryExceptionLeavesNothingBehind)
{
    const Document document = Parse("<a_long_element_name><another_long_name with_an_attribute='value'>"
                                    "text</another_long_name></a_long_element_name>");
    const DOMNode* const element = document->getDocumentElement()->getFirstChild();
    const DOMNode* const text = element->getFirstChild();
    const auto* const attribute =
        static_cast<const xercesc_3_0::DOMElement*>(element)->getAttributeNode(u"with_an_attribute");
    SweepException(XMLCompareException(element, text));
    SweepException(AttributeMissingException(element, text, attribute, XMLCompareException::Left));
    SweepException(AttributesDontMatchException(element, text, attribute, attribute));
    SweepException(NodeNamesDontMatchException(element, text));
    SweepException(NodeTypesDontMatchException(element, text));
    SweepException(NotSupportedNodeTypesException(element, text));
    SweepException(OneNodeHasMoreChildrenThanTheOtherException(element, text, XMLCompareException::Right));
    SweepException(OneNodeIsElementOneIsTextException(element, text));
    SweepException(TextNodeValuesDontMatchException(text, text));
}

TEST(XMLCompareAllocationFailure, OfAnEmptyDocumentsExceptionLeavesNothingBehind)
{
    const NoElementsInDocumentException difference(XMLCompareException::Left);
    Sweep([&] { NuvTest::FailingAllocator::ExpectOutOfMemoryOnly([&] { difference.GetText(); }); });
}

template <class Comparator>
class AllocationFailureOfValueComparator : public testing::Test
{
};
using Comparators = testing::Types<XMLCompareString, XMLCompareStringCaseSensitive, XMLCompareInt,
                                   XMLCompareDouble, XMLCompareAuto>;
TYPED_TEST_SUITE(AllocationFailureOfValueComparator, Comparators);

TYPED_TEST(AllocationFailureOfValueComparator, LeavesItUsable)
{
    const StrictOrderAutoValueCompareOptions options;
    const Nuv::UniString one(u"                    1");
    const Nuv::UniString two(u"2                    ");
    EXPECT_GT(Sweep(
                  [&]
                  {
                      TypeParam comparator;
                      NuvTest::FailingAllocator::ExpectOutOfMemoryOnly(
                          [&] { EXPECT_FALSE(comparator.CompareValues(one, two, options)); });
                      const Pause pause;
                      EXPECT_TRUE(comparator.CompareValues(two, two, options));
                      EXPECT_FALSE(comparator.CompareValues(one, two, options));
                      comparator = TypeParam();
                  }),
              0u);
}

TYPED_TEST(AllocationFailureOfValueComparator, DoesNotHappenWithTextNodes)
{
    const StrictOrderAutoValueCompareOptions options;
    const Document document = Parse("<a>                   1                </a>");
    const auto* const text = static_cast<const DOMText*>(document->getDocumentElement()->getFirstChild());
    EXPECT_EQ(Sweep(
                  [&]
                  {
                      TypeParam comparator;
                      EXPECT_TRUE(comparator.CompareValues(text, text, options));
                  }),
              0u);
}

TEST(XMLCompareAllocationFailure, LeavesTheTypeMarkerAsItWasAndTheClone)
{
    const Nuv::UniString name(u"a name that is too long to stand in the string itself");
    AttrRuledCompareOptions options;
    options.SetTypeDeciderAtt(u"type");
    EXPECT_GT(Sweep(
                  [&]
                  {
                      AttrRuledCompareOptions copy(options);
                      NuvTest::FailingAllocator::ExpectOutOfMemoryOnly([&] { copy.SetTypeDeciderAtt(name); });
                      NuvTest::FailingAllocator::ExpectOutOfMemoryOnly([&] { copy.GetTypeDeciderAtt(); });
                      const Pause pause;
                      const Nuv::UniString set = copy.GetTypeDeciderAtt();
                      EXPECT_TRUE(set == u"type" || set == name);
                      EXPECT_EQ(options.GetTypeDeciderAtt(), u"type");
                      copy = options;
                  }),
              1u);
}

} // namespace
