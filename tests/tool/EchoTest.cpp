#include "ToolTest.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <thread>

namespace
{

using namespace ToolTests;
using testing::IsEmpty;

using EchoTest = ToolTest;

TEST_F(EchoTest, WritesWhatItParses)
{
    const ProcessResult result = Run(
        {"echo", Write("1.xml", "<?xml version='1.0' encoding='ISO-8859-1'?>\n<p:a xmlns:p='u' b='&quot;'>"
                                "\n<c/>\xE9 &lt;<!-- not this --><?p x?></p:a>")});
    EXPECT_EQ(result.status, Success);
    EXPECT_EQ(result.output, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<p:a xmlns:p=\"u\" b=\"&quot;\">"
                             "\n<c></c>é &lt;<?p x?></p:a>");
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(EchoTest, LeavesPrefixesAsTheyAre)
{
    constexpr const char* Text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<a xmlns=\"u\" xmlns:p=\"v\"><p:b p:c=\"1\" xml:lang=\"en\"></p:b></a>";
    EXPECT_EQ(Run({"echo", "-"}, Text).output, Text);
    EXPECT_EQ(Run({"echo", "-"}, "<q:a/>").errors,
              "nuvxml: (standard input):1: prefix 'q' can not be resolved to namespace URI\n");
}

TEST_F(EchoTest, WritesInAnotherEncoding)
{
    EXPECT_EQ(Run({"echo", "--encoding", "US-ASCII", "-"}, "<a>5 €</a>").output,
              "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n<a>5 &#x20AC;</a>");
    const ProcessResult result = Run({"echo", "--encoding", "klingon", "-"}, "<a/>");
    EXPECT_EQ(result.status, Failure);
    EXPECT_EQ(result.errors, "nuvxml: cannot write in the encoding \"klingon\"\n");
}

TEST_F(EchoTest, TellsWhereADocumentIsDamaged)
{
    const ProcessResult result = Run({"echo", "-"}, "<a>\n<b></a>");
    EXPECT_EQ(result.status, Failure);
    EXPECT_EQ(result.errors, "nuvxml: (standard input):2: expected end of tag 'b'\n");
}

TEST_F(EchoTest, TellsWhyItCannotRead)
{
    EXPECT_EQ(Run({"echo", PathOf("none.xml")}).errors, "nuvxml: none.xml: No such file or directory\n");
    EXPECT_THAT(Run({"echo", folder.Path().string()}).errors, testing::EndsWith(": Is a directory\n"));
}

TEST_F(EchoTest, EndsWithTheFirstErrorOfItsOutput)
{
    const std::string text = "<a>" + std::string(1'000'000, 'x') + "</a>";
    const NuvTest::NamelessFile input(text);
    const NuvTest::NamelessFile errors;
    const int full = open("/dev/full", O_WRONLY);
    const ProcessResult result = NuvTest::WaitFor(
        NuvTest::Start(Command({"echo", "-"}), {input.Descriptor(), full, errors.Descriptor()}));
    close(full);
    EXPECT_EQ(result.status, Failure);
    EXPECT_EQ(errors.Contents(), "nuvxml: standard output: No space left on device\n");
}

/// Writes a document of about `size` bytes to a pipe.
void WriteRecords(int pipe, size_t size)
{
    std::string block;
    while (block.size() < 60'000)
        block += "<record id=\"1\"><name>Wall &amp; roof</name><height>2.75</height></record>\n";
    std::string text = "<records>\n" + block;
    for (size_t written = 0; written < size; text = block)
        for (size_t done = 0; done < text.size();)
        {
            const ssize_t count = write(pipe, text.data() + done, text.size() - done);
            if (count <= 0)
                return;
            done += static_cast<size_t>(count);
            written += static_cast<size_t>(count);
        }
    const std::string_view end = "</records>";
    EXPECT_EQ(write(pipe, end.data(), end.size()), static_cast<ssize_t>(end.size()));
}

TEST_F(EchoTest, NeedsNoMoreMemoryForAGigabyte)
{
    int pipe[2];
    ASSERT_EQ(pipe2(pipe, O_CLOEXEC), 0);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const NuvTest::NamelessFile errors;
    const pid_t tool = NuvTest::Start(Command({"echo", "-"}), {pipe[0], nowhere, errors.Descriptor()});
    close(pipe[0]);
    WriteRecords(pipe[1], ECHOED_BYTES);
    const long peakMemory = NuvTest::PeakMemoryOf(tool); // what waits in the pipe is the end only
    close(pipe[1]);
    const ProcessResult result = NuvTest::WaitFor(tool);
    close(nowhere);
    EXPECT_EQ(result.status, Success);
    EXPECT_THAT(errors.Contents(), IsEmpty());
    EXPECT_GT(peakMemory, 0);
    EXPECT_LT(peakMemory, ECHO_MEMORY);
}

} // namespace
