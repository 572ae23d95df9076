// Makes each allocation of each operation of the exceptions fail in turn.

#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "tests/support/FailingAllocator.hpp"

namespace
{

using namespace NuvTest::FailingAllocator;
using Nuv::UniString;

TEST(AllocationFailure, OfAnExceptionsCloneLeavesNothingBehind)
{
    const Nuv::NuvException cause(UniString(u"a cause that is longer than a short string"));
    const NuvXML::XMLOChannelException exception("a message that is longer than a short string", "file", 1,
                                                 cause);
    Sweep([&] { ExpectOutOfMemoryOnly([&] { delete exception.Clone(); }); });
}

} // namespace
