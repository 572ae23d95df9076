#include "NuvXMLUtils/XMLDifferences.hpp"

#include "NuvXMLUtils/TreeComparison.hpp"

#include <exception>

using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMNodeFilter;

namespace NuvXML
{
namespace
{

/// Ends a search through the levels of the comparison.
struct SearchEnd
{
};

/// Gives differences to the handler of a caller.
class HandlerSink : public DifferenceSink
{
  public:
    explicit HandlerSink(const XMLDifferenceHandler& callersHandler)
        : handler(callersHandler)
    {
    }

    void Take(const XMLCompareException& difference, const DOMNode* left, const DOMNode* right) override
    {
        try
        {
            if (handler({difference, left, right}))
                return;
        }
        catch (const XMLCompareException&)
        {
            thrown = std::current_exception(); // which is not a difference that the search has found
        }
        throw SearchEnd();
    }

    void RethrowWhatTheHandlerThrew() const
    {
        if (thrown)
            std::rethrow_exception(thrown);
    }

  private:
    const XMLDifferenceHandler& handler;
    std::exception_ptr thrown;
};

} // namespace

void FindDifferences(const DOMDocument* left, const DOMDocument* right, DOMNodeFilter* filter,
                     const IXMLCompareOptions& options, const XMLDifferenceHandler& handler)
{
    HandlerSink sink(handler);
    try
    {
        TreeComparison::Compare(left, right, nullptr, filter, options, &sink);
    }
    catch (const SearchEnd&)
    {
        sink.RethrowWhatTheHandlerThrew();
    }
}

} // namespace NuvXML
