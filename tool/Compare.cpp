#include "Commands.hpp"
#include "CompareRules.hpp"
#include "Differences.hpp"
#include "Folders.hpp"
#include "Input.hpp"
#include "Paths.hpp"
#include "Progress.hpp"
#include "Trouble.hpp"

#include "NuvXMLUtils/XMLDifferences.hpp"

#include <future>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

using xercesc_3_0::DOMDocument;

namespace Tool
{
namespace
{

/// Compares pairs of files by the same settings.
class FileComparison
{
  public:
    FileComparison(const CompareSettings& chosen, DifferenceReporter& target)
        : settings(chosen)
        , reporter(target)
        , rules(chosen)
    {
    }

    /// Whether two files are equal; reports their differences. Both are read at once, because parsing takes
    /// most of the time. When neither can be read, the trouble of the left one is reported.
    bool AreEqual(const std::string& leftPath, const std::string& rightPath)
    {
        auto right = std::async(std::launch::async, [&] { return Read(rightPath); });
        const std::unique_ptr<Document> left = Read(leftPath);
        return AreEqual(*left, *right.get());
    }

  private:
    std::unique_ptr<Document> Read(const std::string& path) const
    {
        return std::make_unique<Document>(
            path, false, settings.trusted,
            ValidatingXMLParser::ParsedNodes{.cdataSections = false, .comments = settings.comments});
    }

    xercesc_3_0::DOMNodeFilter* Filter()
    {
        if (settings.keepWhitespace)
            return nullptr;
        return settings.comments ? &commentsFilter : &contentFilter;
    }

    bool AreEqual(Document& left, Document& right)
    {
        bool areEqual = true;
        const NuvXML::XMLDifferenceHandler report = [&](const NuvXML::XMLDifference& difference)
        {
            reporter.Report(difference, left, right);
            areEqual = false;
            return settings.all;
        };
        const DOMDocument& leftDocument = left.DOM();
        const DOMDocument& rightDocument = right.DOM();
        const bool goesOn = !settings.comments || rules.CompareProlog(leftDocument, rightDocument, report);
        if (goesOn)
            NuvXML::FindDifferences(&leftDocument, &rightDocument, Filter(), rules, report);
        if (settings.comments && (areEqual || settings.all))
            rules.CompareEpilog(leftDocument, rightDocument, report);
        return areEqual;
    }

    const CompareSettings& settings;
    DifferenceReporter& reporter;
    CompareRules rules;
    NuvXML::SkipWhitespaceTextsCompareFilter contentFilter;
    CommentsFilter commentsFilter;
};

/// What the comparison of two folders comes to.
struct Totals
{
    size_t equal = 0;
    size_t different = 0;
    size_t missing = 0;
    size_t troubled = 0;

    ExitStatus Status() const
    {
        if (troubled != 0)
            return Failure;
        return different + missing != 0 ? Findings : Success;
    }

    std::string Text() const
    {
        return std::to_string(equal) + " equal, " + std::to_string(different) + " different, " +
               std::to_string(missing) + " missing, " + std::to_string(troubled) + " in trouble";
    }
};

void CompareFile(FileComparison& comparison, const FilePair& pair, Totals& totals, Progress& progress)
try
{
    ++(comparison.AreEqual(pair.left, pair.right) ? totals.equal : totals.different);
}
catch (const Trouble& trouble)
{
    ++totals.troubled;
    progress.Clear();
    std::cerr << "nuvxml: " << trouble.what() << '\n';
}

ExitStatus CompareFolders(const CompareSettings& settings, DifferenceReporter& reporter, Output& output)
{
    const std::vector<FilePair> pairs = FilesOfFolders(settings.left, settings.right, settings.extensions);
    FileComparison comparison(settings, reporter);
    Progress progress("Compared", pairs.size());
    Totals totals;
    for (const FilePair& pair : pairs)
    {
        if (pair.presence == FilePair::OnBothSides)
            CompareFile(comparison, pair, totals, progress);
        else
        {
            const bool isMissingOnLeft = pair.presence == FilePair::OnlyOnRight;
            reporter.ReportMissing(isMissingOnLeft ? pair.right : pair.left,
                                   isMissingOnLeft ? pair.left : pair.right, isMissingOnLeft);
            ++totals.missing;
        }
        if (output.IsPending())
            progress.Clear();
        output.Flush();
        progress.Advance();
    }
    progress.Clear();
    reporter.ReportTotals(totals.Text());
    return totals.Status();
}

} // namespace

ExitStatus Compare(const CompareSettings& settings, Output& output)
{
    const std::unique_ptr<DifferenceReporter> reporter = MakeReporter(settings, output);
    if (settings.left == StandardInput && settings.right == StandardInput)
        throw Trouble("standard input can be read once only");
    const bool leftIsFolder = IsFolder(settings.left);
    if (leftIsFolder != IsFolder(settings.right))
        throw Trouble(PrintableLine(leftIsFolder ? settings.left : settings.right) +
                      ": is a folder, and the other is not");
    if (leftIsFolder)
        return CompareFolders(settings, *reporter, output);
    return FileComparison(settings, *reporter).AreEqual(settings.left, settings.right) ? Success : Findings;
}

} // namespace Tool
