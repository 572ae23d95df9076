/// @file
/// Loads documents that are not trusted, with the tree parser and with the stream reader alike, and makes
/// attacks.
#pragma once

#include "NuvXMLUtils/LimitedSAX2Reader.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/XercesLeakScope.hpp"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace NuvTest
{

/// What became of a document.
struct Loaded
{
    bool isLoaded = false;
    unsigned int line = 0;
    Nuv::UniString message;

    friend bool operator==(const Loaded&, const Loaded&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Loaded& loaded)
    {
        return loaded.isLoaded ? stream << "loaded"
                               : stream << "line " << loaded.line << ": " << loaded.message;
    }
};

inline Loaded Refused(unsigned int line, const Nuv::UniString& message) { return {false, line, message}; }

inline constexpr unsigned int NoLine = 0;

inline const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

inline Loaded LoadTree(ValidatingXMLParser& parser, std::string_view text)
{
    NodeLocationInfo location;
    Loaded loaded;
    loaded.isLoaded = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(parser.Parse(
                          Bytes(text), static_cast<unsigned int>(text.size()),
                          ValidatingXMLParser::LineInfoParser::Val_Never, false, Nuv::UniString(u"memory"),
                          nullptr, &location, &loaded.message)) != nullptr;
    loaded.line = location.lineNumber;
    return loaded;
}

inline Loaded LoadTree(std::string_view text, const ParserLimits& limits)
{
    ValidatingXMLParser parser;
    parser.SetLimits(limits);
    return LoadTree(parser, text);
}

inline Loaded LoadStream(xercesc_3_0::SAX2XMLReader& reader, std::string_view text)
{
    try
    {
        reader.parse(xercesc_3_0::MemBufInputSource(Bytes(text), text.size(), u"memory"));
        return {true, NoLine, {}};
    }
    catch (const xercesc_3_0::SAXParseException& exception)
    {
        return Refused(static_cast<unsigned int>(exception.getLineNumber()), exception.getMessage());
    }
}

inline Loaded LoadStream(std::string_view text, const ParserLimits& limits)
{
    return LoadStream(*NuvXML::CreateSAX2Reader(limits), text);
}

/// The same text in UTF-16 with a byte order mark; it must be ASCII.
inline std::string InUTF16(std::string_view text)
{
    std::string bytes("\xFF\xFE");
    for (const char character : text)
        bytes.append({character, '\0'});
    return bytes;
}

inline std::string Repeat(std::string_view text, size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    for (size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

/// So many names, up to 65,536, for which Xerces' hash gives the same: "ah" and "bB" do.
inline std::vector<std::string> CollidingNames(size_t count)
{
    std::vector<std::string> names(count);
    for (size_t i = 0; i < count; ++i)
        for (unsigned int bit = 0; bit < 16; ++bit)
            names[i] += (i >> bit) % 2 == 0 ? "ah" : "bB";
    return names;
}

/// Runs an action in a process of its own, and expects that to end within two seconds of processor time and
/// 256 MB of memory.
template <class Action>
void ExpectToBeCheap(Action action)
{
    constexpr long Seconds = 2;
#ifdef NUV_TEST_FINDS_LEAKS
    constexpr long KiB = 1024 * 1024; // with what the sanitizer needs and keeps
#else
    constexpr long KiB = 256 * 1024;
#endif
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        alarm(20);
        action();
        _exit(0);
    }
    int status = 0;
    rusage usage{};
    ASSERT_EQ(wait4(child, &status, 0, &usage), child);
    EXPECT_EQ(status, 0) << "the process ended by a signal";
    EXPECT_LT(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec, Seconds);
    EXPECT_LT(usage.ru_maxrss, KiB);
}

} // namespace NuvTest
