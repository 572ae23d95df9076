/// @file
/// Lets a test call a private member whose behaviour is promised all the same: the language permits naming
/// private members in an explicit instantiation.
///
///     namespace NuvTest
///     {
///     struct ReaderCount { using Member = int (Reader::*)(); friend Member Reveal(ReaderCount); };
///     template struct Revealed<ReaderCount, &Reader::Count>;
///     }
///     ... (reader.*Reveal(NuvTest::ReaderCount()))()
#pragma once

namespace NuvTest
{

template <class Tag, typename Tag::Member member>
struct Revealed
{
    friend typename Tag::Member Reveal(Tag) { return member; }
};

} // namespace NuvTest
