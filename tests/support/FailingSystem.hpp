/// @file
/// Makes chosen calls of the operating system fail, or kills the process there. A test program that links
/// FailingSystem.cpp has the functions that change files replaced, for all libraries that it uses: those that
/// create, write, flush, close, rename and delete a file, and those that set its owner and permissions.
#pragma once

#include <string>
#include <vector>

namespace NuvTest::FailingSystem
{

/// What happens at the chosen call.
enum class Fault
{
    Failure,            ///< it fails
    FailureInTheMiddle, ///< a write fails when half of the bytes are written
    Kill,               ///< the process is killed before the call
    KillInTheMiddle     ///< the process is killed when half of the bytes of a write are written
};

/// Has the fault happen at call number `nth` from now on; the next one is number 1.
void FaultAt(int nth, Fault fault);

/// From now on all calls do what they should.
/// @return the names of the calls since FaultAt
std::vector<std::string> Disarm();

} // namespace NuvTest::FailingSystem
