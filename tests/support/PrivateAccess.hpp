/// @file
/// Lets a test call a private member whose behaviour is promised all the same. The language permits naming
/// private members in an explicit instantiation:
///
///     struct Count { using Member = int (Reader::*)(); friend Member Reveal(Count); };
///     template struct NuvTest::Revealed<Count, &Reader::Count>;
///     ... (reader.*Reveal(Count()))()
#pragma once

namespace NuvTest
{

template <class Tag, typename Tag::Member member>
struct Revealed
{
    friend typename Tag::Member Reveal(Tag) { return member; }
};

} // namespace NuvTest
