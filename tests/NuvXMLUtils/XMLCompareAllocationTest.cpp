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

} // namespace
