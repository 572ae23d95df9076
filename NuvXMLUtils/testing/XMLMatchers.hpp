/// @file
/// GoogleMock matchers for XML text.
///
/// ```cpp
/// EXPECT_THAT(text, NuvXML::EqualsXML("<Wall><Height>275</Height></Wall>"));
/// EXPECT_THAT(text, NuvXML::EqualsXMLFile("expected/walls.xml", options));
/// ```
///
/// A failure is told with the report of the comparison, and for each side with line, path and source line:
///
/// ```
/// which differs from the expected document:
/// Diff at nodes:
///     - Wall/Height
///     - Wall/Height
///     Text node values "275" and "276" don't match.
/// expected (left), line 1, /Wall/Height/text(): <Wall><Height>275</Height></Wall>
/// actual (right), line 3, /Wall/Height/text(): <Height>276</Height>
/// ```
///
/// What is equal is up to the options (XMLCompareOptions.hpp). The standard ones take names and words for
/// equal whose case differs, and numbers that are closer than 1e-05; `<Height>2.0</Height>` equals
/// `<height>2</height>`. Options that ask for more are a class of your own.
///
/// Whatever the options, these do not count:
/// - text of nothing but white space, such as the indentation between elements;
/// - comments and processing instructions: what stands on both sides of one is one text;
/// - how characters are written: a CDATA section, a character reference and an entity reference are the text
///   that they stand for. A CDATA section of nothing but white space does not count either.
/// - the XML declaration and the document type, but for the attributes and entities that it declares.
///
/// The header needs GoogleMock and nothing of its own to link: the library does not use it.
#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/NodePlaces.hpp"
#include "NuvXMLUtils/SourceText.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"
#include "NuvXMLUtils/XMLDifferences.hpp"

#include <gmock/gmock.h>

#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <concepts>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace NuvXML
{

/// What the matchers are made of.
namespace XMLMatching
{

/// XML text as a matcher takes it: bytes in the encoding that they declare, or UTF-16.
struct Text
{
    Text(const std::string& text)
        : bytes(text)
    {
    }

    Text(std::string_view text)
        : bytes(text)
    {
    }

    /// Null is an empty text.
    Text(const char* text)
        : bytes(text ? text : "")
    {
    }

    /// Whatever encoding it declares. Not as UTF-8, where half a surrogate pair would become a character.
    Text(const Nuv::UniString& text)
        : bytes(reinterpret_cast<const char*>(text.ToUTF16()), text.GetLength() * sizeof(Nuv::UniChar))
        , encoding(xercesc_3_0::XMLUni::fgXMLChEncodingString)
    {
    }

    /// The text as it is shown: bytes as they are.
    std::string ToUTF8() const
    {
        return encoding ? Nuv::UniString(reinterpret_cast<const Nuv::UniChar*>(bytes.data()),
                                         bytes.size() / sizeof(Nuv::UniChar))
                              .ToUTF8()
                        : bytes;
    }

    std::string bytes;
    const XMLCh* encoding = nullptr; ///< null for the one that the bytes declare
    Nuv::UniString systemId;         ///< what names of external entities are relative to
};

/// One side of a comparison, and where its nodes stand.
class Document
{
  public:
    /// @param text remains alive while the document does
    explicit Document(const Text& text)
        : source(text)
    {
        xercesc_3_0::MemBufInputSource input(reinterpret_cast<const XMLByte*>(source.bytes.data()),
                                             source.bytes.size(), source.systemId.ToUTF16());
        if (source.encoding)
            input.setEncoding(source.encoding);
        xercesc_3_0::HandlerBase errorHandler; // throws fatal errors
        ValidatingXMLParser::LineInfoParser parser;
        parser.setErrorHandler(&errorHandler);
        parser.setValidationScheme(ValidatingXMLParser::LineInfoParser::Val_Never);
        parser.SetParsedNodes({.cdataSections = false, .comments = false});
        parser.setCreateEntityReferenceNodes(false);
        parser.SetNodeLocations(&lines);
        try
        {
            parser.parse(input);
            document.reset(parser.adoptDocument());
        }
        catch (const xercesc_3_0::SAXParseException& exception)
        {
            failure = "line " + std::to_string(exception.getLineNumber()) + ": " +
                      Nuv::UniString(exception.getMessage()).ToUTF8();
        }
    }

    /// Null when the text is not well-formed.
    const xercesc_3_0::DOMDocument* Get() const { return document.get(); }

    /// Why it is null.
    const std::string& GetFailure() const { return failure; }

    /// Line, path and source line of a node; of a text, the line on which it begins to differ from the
    /// other side.
    std::string Describe(const xercesc_3_0::DOMNode* node, const xercesc_3_0::DOMNode* otherSide)
    {
        const unsigned int line = places.LineOfDifference(node, otherSide);
        const SourceText lineText =
            source.encoding ? SourceText(source.bytes, source.encoding) : SourceText(source.bytes, *document);
        return "line " + std::to_string(line) + ", " + places.PathOf(node).ToUTF8() + ": " +
               lineText.Line(line).ToUTF8();
    }

  private:
    const Text& source;
    NodeLocations lines;
    NodePlaces places{&lines};
    XercesPtr<xercesc_3_0::DOMDocument> document;
    std::string failure;
};

/// The expected text, or why there is none.
struct Expectation
{
    Text text;
    std::string description;
    std::string failure;
};

inline Expectation ReadExpectation(const std::filesystem::path& path)
{
    Expectation expectation{"", "the file " + path.string(), ""};
    std::error_code error;
    std::string& bytes = expectation.text.bytes;
    if (const auto size = std::filesystem::file_size(path, error); !error)
    {
        bytes.resize(size);
        if (!std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(size)))
            error = std::make_error_code(std::errc::io_error);
    }
    if (error)
        expectation.failure = expectation.description + " cannot be read: " + error.message();
    expectation.text.systemId = Nuv::UniString(path.u16string());
    return expectation;
}

/// The matcher. It keeps the expected text and a copy of the options.
class Matcher
{
  public:
    using is_gtest_matcher = void;

    template <class Options>
    Matcher(Expectation callersExpectation, const Options& callersOptions)
        : expectation(std::move(callersExpectation))
        , options(std::make_shared<const Options>(callersOptions))
    {
    }

    template <class ActualText>
    bool MatchAndExplain(const ActualText& actual, testing::MatchResultListener* listener) const
    {
        return IsEqual(Text(actual), *listener);
    }

    void DescribeTo(std::ostream* stream) const { *stream << "is XML equal to " << expectation.description; }

    void DescribeNegationTo(std::ostream* stream) const
    {
        *stream << "is not XML equal to " << expectation.description;
    }

  private:
    bool IsEqual(const Text& actualText, testing::MatchResultListener& listener) const
    {
        if (!expectation.failure.empty())
        {
            listener << "which cannot be compared: " << expectation.failure;
            return false;
        }
        Document expected(expectation.text);
        Document actual(actualText);
        if (!expected.Get())
            listener << "which cannot be compared: the expected document is not well-formed, "
                     << expected.GetFailure();
        else if (!actual.Get())
            listener << "which is not well-formed, " << actual.GetFailure();
        else
            return IsEqual(expected, actual, listener);
        return false;
    }

    bool IsEqual(Document& expected, Document& actual, testing::MatchResultListener& listener) const
    try
    {
        XMLCompareStrictOrder comparator;
        SkipWhitespaceTextsCompareFilter filter;
        DoXMLCompare(expected.Get(), actual.Get(), &comparator, &filter, *options);
        return true;
    }
    catch (const XMLCompareException& difference)
    {
        if (listener.IsInterested())
            Explain(difference.GetText(), expected, actual, listener);
        return false;
    }

    /// A comparison throws without nodes, which a search knows. Its first difference is another one where the
    /// options pair children in their own way; theirs is told without places.
    void Explain(const Nuv::UniString& report, Document& expected, Document& actual,
                 testing::MatchResultListener& listener) const
    {
        listener << "which differs from the expected document:\n" << report.ToUTF8();
        SkipWhitespaceTextsCompareFilter filter;
        FindDifferences(expected.Get(), actual.Get(), &filter, *options,
                        [&](const XMLDifference& first)
                        {
                            if (first.exception.GetText() == report)
                                listener << "\nexpected (left), "
                                         << expected.Describe(first.left, first.right) << "\nactual (right), "
                                         << actual.Describe(first.right, first.left);
                            return false;
                        });
    }

    Expectation expectation;
    std::shared_ptr<const IXMLCompareOptions> options;
};

} // namespace XMLMatching

/// What may be given as options. They are copied as an object of the class that they are declared to have: a
/// reference to a base class of theirs gives options of the base class.
template <class Options>
concept XMLCompareOptionsClass =
    std::derived_from<Options, IXMLCompareOptions> && std::copy_constructible<Options>;

/// Matches text that is the same document as `expected`.
///
/// Expected and actual text are each a `std::string`, `std::string_view` or `const char*` in the encoding
/// that the text declares, UTF-8 if it declares none, or a Nuv::UniString, whatever the text declares. A text
/// that is not well-formed matches nothing, and the failure tells its line and the reason; so
/// `Not(EqualsXML(...))` is true for it.
template <XMLCompareOptionsClass Options = StrictOrderAutoValueCompareOptions>
XMLMatching::Matcher EqualsXML(const XMLMatching::Text& expected, const Options& options = Options())
{
    return {{expected, expected.ToUTF8(), ""}, options};
}

/// The same with the text of a file, which is read here. A file that cannot be read matches nothing, and the
/// failure tells why.
template <XMLCompareOptionsClass Options = StrictOrderAutoValueCompareOptions>
XMLMatching::Matcher EqualsXMLFile(const std::filesystem::path& path, const Options& options = Options())
{
    return {XMLMatching::ReadExpectation(path), options};
}

} // namespace NuvXML
