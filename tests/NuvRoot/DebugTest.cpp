#include "NuvRoot/Debug.hpp"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::string received;

void Receive(const char* file, unsigned int line, const char* message, const char* function)
{
    received = std::string(file) + "|" + std::to_string(line) + "|" + message + "|" + function;
}

void Ignore(const char*, unsigned int, const char*, const char*) {}

TEST(Debug, HandsAnAssertionToTheHandler)
{
    const Nuv::DBBreakHandler old = Nuv::SetDBBreakHandler(Receive);
    received.clear();
    DBBreak("File.cpp", 42, "The message.", "Function");
    Nuv::SetDBBreakHandler(old);
    EXPECT_EQ(received, "File.cpp|42|The message.|Function");
}

TEST(Debug, GivesTheOldHandlerBack)
{
    const Nuv::DBBreakHandler old = SetDBBreakHandler(Receive);
    EXPECT_EQ(SetDBBreakHandler(Ignore), &Receive);
    EXPECT_EQ(SetDBBreakHandler(nullptr), &Ignore);
    EXPECT_EQ(SetDBBreakHandler(old), old) << "null restores the default handler";
}

TEST(Debug, WritesALineToStandardErrorInDebugBuildsOnly)
{
    testing::internal::CaptureStderr();
    DBBreak("File.cpp", 42, "The message.", "Function");
    const std::string written = testing::internal::GetCapturedStderr();
#ifdef NDEBUG
    EXPECT_EQ(written, "");
#else
    EXPECT_EQ(written, "File.cpp:42: The message. (Function)\n");
#endif
}

} // namespace
