/// @file
/// How `nuvxml compare` shows what it has found.
#pragma once

#include "Input.hpp"
#include "Output.hpp"
#include "Settings.hpp"

#include "NuvXMLUtils/XMLDifferences.hpp"

#include <memory>
#include <string>

namespace Tool
{

/// Shows differences as they are found.
class DifferenceReporter
{
  public:
    DifferenceReporter() = default;
    DifferenceReporter(const DifferenceReporter&) = delete;
    DifferenceReporter& operator=(const DifferenceReporter&) = delete;
    virtual ~DifferenceReporter() = default;

    virtual void Report(const NuvXML::XMLDifference& difference, Document& left, Document& right) = 0;

    /// A file that only one of two folders holds.
    /// @param present the file that is there
    /// @param missing the file that should be there
    virtual void ReportMissing(const std::string& present, const std::string& missing,
                               bool isMissingOnLeft) = 0;

    /// What the comparison of two folders comes to.
    virtual void ReportTotals(const std::string& totals) = 0;
};

/// For the format, the colors and the silence that the settings ask for.
std::unique_ptr<DifferenceReporter> MakeReporter(const CompareSettings& settings, Output& output);

} // namespace Tool
