#include "Differences.hpp"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <utility>

using namespace NuvXML;
using xercesc_3_0::DOMNode;

namespace Tool
{
namespace
{

std::string Joined(std::initializer_list<std::string_view> parts)
{
    std::string result;
    for (const std::string_view part : parts)
        result += part;
    return result;
}

/// One side of a difference, ready to be shown.
struct Place
{
    std::string file;
    unsigned int line;
    Nuv::UniString path;
    Nuv::UniString source;
};

Place PlaceOf(Document& document, const DOMNode* node, const DOMNode* otherNode)
{
    const unsigned int line = document.Places().LineOfDifference(node, otherNode);
    return {document.Name(), line, document.Places().PathOf(node), document.SourceLine(line)};
}

std::pair<Place, Place> PlacesOf(const XMLDifference& difference, Document& left, Document& right)
{
    return {PlaceOf(left, difference.left, difference.right),
            PlaceOf(right, difference.right, difference.left)};
}

class SilentReporter : public DifferenceReporter
{
  public:
    void Report(const XMLDifference&, Document&, Document&) override {}
    void ReportMissing(const std::string&, const std::string&, bool) override {}
    void ReportTotals(const std::string&) override {}
};

class TextReporter : public DifferenceReporter
{
  public:
    TextReporter(Output& target, bool usesColors)
        : output(target)
        , colored(usesColors)
    {
    }

    void Report(const XMLDifference& difference, Document& left, Document& right) override
    {
        const auto [leftPlace, rightPlace] = PlacesOf(difference, left, right);
        output.Write(Printable(difference.exception.GetText()) + "\n");
        Write(leftPlace, Red);
        Write(rightPlace, Green);
    }

    void ReportMissing(const std::string& present, const std::string& missing, bool) override
    {
        output.Write(Joined({"Missing file: ", PrintableLine(missing), "\n"}));
        output.Write(Joined({Colored(PrintableLine(present), Bold), ": has no counterpart\n"}));
    }

    void ReportTotals(const std::string& totals) override { output.Write(totals + "\n"); }

  private:
    static constexpr const char* Red = "31";
    static constexpr const char* Green = "32";
    static constexpr const char* Bold = "1";

    std::string Colored(const std::string& text, const char* color) const
    {
        return colored ? Joined({"\x1B[", color, "m", text, "\x1B[0m"}) : text;
    }

    void Write(const Place& place, const char* color)
    {
        std::string where = PrintableLine(place.file);
        if (place.line != 0)
            where.append(":").append(std::to_string(place.line));
        output.Write(Joined({Colored(where, Bold), ": ", Printable(place.path), "\n"}));
        if (!place.source.IsEmpty())
            output.Write(Joined({"    ", Colored(Printable(place.source), color), "\n"}));
    }

    Output& output;
    bool colored;
};

using JSON = nlohmann::ordered_json;

class JSONReporter : public DifferenceReporter
{
  public:
    explicit JSONReporter(Output& target)
        : output(target)
    {
    }

    void Report(const XMLDifference& difference, Document& left, Document& right) override
    {
        const auto [leftPlace, rightPlace] = PlacesOf(difference, left, right);
        JSON object;
        object["kind"] = KindOf(difference.exception);
        object["report"] = difference.exception.GetText().ToUTF8();
        object["left"] = SideOf(leftPlace, difference.left);
        object["right"] = SideOf(rightPlace, difference.right);
        Write(object);
    }

    void ReportMissing(const std::string& present, const std::string& missing, bool isMissingOnLeft) override
    {
        JSON object;
        object["kind"] = "missing-file";
        object["report"] = "Missing file: " + missing;
        object["left"] = isMissingOnLeft ? JSON() : JSON{{"file", present}};
        object["right"] = isMissingOnLeft ? JSON{{"file", present}} : JSON();
        Write(object);
    }

    void ReportTotals(const std::string&) override {
    } // there is an object for each difference, and nothing else

  private:
    static const char* KindOf(const XMLCompareException& exception)
    {
        if (dynamic_cast<const AttributeMissingException*>(&exception))
            return "missing-attribute";
        if (dynamic_cast<const AttributesDontMatchException*>(&exception))
            return "attribute-value";
        if (dynamic_cast<const NodeNamesDontMatchException*>(&exception))
            return "name";
        if (dynamic_cast<const TextNodeValuesDontMatchException*>(&exception))
            return "text";
        if (dynamic_cast<const OneNodeHasMoreChildrenThanTheOtherException*>(&exception))
            return "more-children";
        if (dynamic_cast<const NodeTypesDontMatchException*>(&exception))
            return "node-type";
        return "other";
    }

    static JSON SideOf(const Place& place, const DOMNode* node)
    {
        JSON side;
        side["file"] = place.file;
        side["line"] = place.line != 0 ? JSON(place.line) : JSON();
        side["path"] = place.path.ToUTF8();
        side["source"] = place.source.ToUTF8();
        if (node && node->getNodeValue())
            side["value"] = Nuv::UniString(node->getNodeValue()).ToUTF8();
        return side;
    }

    void Write(const JSON& object)
    {
        // A file name may be no UTF-8.
        output.Write(object.dump(-1, ' ', false, JSON::error_handler_t::replace) + "\n");
    }

    Output& output;
};

std::string_view Environment(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing here changes it
    return value ? value : "";
}

bool UsesColors(ColorChoice choice, const Output& output)
{
    if (choice != ColorChoice::Auto)
        return choice == ColorChoice::Always;
    const std::string_view terminal = Environment("TERM");
    return Environment("NO_COLOR").empty() && !terminal.empty() && terminal != "dumb" && output.IsTerminal();
}

} // namespace

std::unique_ptr<DifferenceReporter> MakeReporter(const CompareSettings& settings, Output& output)
{
    if (settings.quiet)
        return std::make_unique<SilentReporter>();
    if (settings.format == OutputFormat::JSON)
        return std::make_unique<JSONReporter>(output);
    return std::make_unique<TextReporter>(output, UsesColors(settings.color, output));
}

} // namespace Tool
