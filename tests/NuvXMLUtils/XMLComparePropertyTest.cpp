/// @file
/// Comparisons of generated documents, judged by an oracle that knows nothing of DOM, walkers or options: it
/// works on plain trees and decides with the standard library only.
#include "CompareSupport.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace
{

using namespace CompareTests;
using namespace NuvXML;

enum class Kind
{
    Element,
    Text,
    Comment
};

struct Tree
{
    Kind kind = Kind::Element;
    std::string text; ///< the element's name, or the text
    std::map<std::string, std::string> attributes;
    std::vector<Tree> children;
};

std::string Joined(std::initializer_list<std::string_view> parts)
{
    std::string result;
    for (const std::string_view part : parts)
        result += part;
    return result;
}

// Writing.

/// The order of attributes is of no meaning; `random` shuffles it.
std::string Written(const Tree& tree, std::mt19937& random)
{
    if (tree.kind == Kind::Text)
        return tree.text;
    if (tree.kind == Kind::Comment)
        return Joined({"<!--", tree.text, "-->"});
    std::vector<std::string> attributes;
    for (const auto& [name, value] : tree.attributes)
        attributes.push_back(Joined({" ", name, "='", value, "'"}));
    std::shuffle(attributes.begin(), attributes.end(), random);
    std::string result = Joined({"<", tree.text});
    for (const std::string& attribute : attributes)
        result += attribute;
    result += ">";
    for (const Tree& child : tree.children)
        result += Written(child, random);
    return result + Joined({"</", tree.text, ">"});
}

// The oracle.

constexpr double Epsilon = 1e-05;

std::string TrimmedLower(const std::string& text)
{
    const size_t first = text.find_first_not_of(" \t\n");
    if (first == std::string::npos)
        return {};
    std::string result = text.substr(first, text.find_last_not_of(" \t\n") + 1 - first);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char letter) { return static_cast<char>(std::tolower(letter)); });
    return result;
}

/// The generated texts are plain decimal numbers or have letters; nothing in between.
bool IsNumber(const std::string& text, double& value)
{
    const std::string trimmed = TrimmedLower(text);
    char* end = nullptr;
    value = std::strtod(trimmed.c_str(), &end);
    return !trimmed.empty() && *end == '\0';
}

bool AreValuesEqual(const std::string& left, const std::string& right)
{
    double leftNumber = 0;
    double rightNumber = 0;
    if (IsNumber(left, leftNumber) && IsNumber(right, rightNumber))
        return std::fabs(leftNumber - rightNumber) < Epsilon;
    return TrimmedLower(left) == TrimmedLower(right);
}

using Difference = const std::type_info*;

Difference FirstDifference(const Tree& left, const Tree& right);

Difference DifferenceOfAttributes(const Tree& left, const Tree& right)
{
    for (const auto& [name, value] : left.attributes)
    {
        const auto other = right.attributes.find(name);
        if (other == right.attributes.end())
            return &typeid(AttributeMissingException);
        if (!AreValuesEqual(value, other->second))
            return &typeid(AttributesDontMatchException);
    }
    return left.attributes.size() < right.attributes.size() ? &typeid(AttributeMissingException) : nullptr;
}

Difference DifferenceOfElements(const Tree& left, const Tree& right)
{
    if (TrimmedLower(left.text) != TrimmedLower(right.text))
        return &typeid(NodeNamesDontMatchException);
    if (const Difference difference = DifferenceOfAttributes(left, right))
        return difference;
    for (size_t i = 0; i < std::min(left.children.size(), right.children.size()); ++i)
        if (const Difference difference = FirstDifference(left.children[i], right.children[i]))
            return difference;
    return left.children.size() == right.children.size()
               ? nullptr
               : &typeid(OneNodeHasMoreChildrenThanTheOtherException);
}

/// The class of the exception for the first difference, or null.
Difference FirstDifference(const Tree& left, const Tree& right)
{
    if (left.kind != right.kind)
        return left.kind == Kind::Comment || right.kind == Kind::Comment
                   ? &typeid(NodeTypesDontMatchException)
                   : &typeid(OneNodeIsElementOneIsTextException);
    switch (left.kind)
    {
    case Kind::Element:
        return DifferenceOfElements(left, right);
    case Kind::Text:
        return AreValuesEqual(left.text, right.text) ? nullptr : &typeid(TextNodeValuesDontMatchException);
    default:
        return &typeid(NotSupportedNodeTypesException);
    }
}

// Generating.

class Generator
{
  public:
    explicit Generator(unsigned int seed)
        : random(seed)
    {
    }

    std::mt19937& Random() { return random; }

    size_t Below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random); }

    Tree Element(int depth)
    {
        Tree tree;
        tree.text = Name();
        for (size_t count = Below(4); count != 0; --count)
            tree.attributes[Joined({"k", std::to_string(Below(30))})] = Value();
        // Two texts in a row would be one when they are parsed.
        bool textMayFollow = true;
        for (size_t count = depth == 0 ? 0 : Below(6); count != 0; --count)
        {
            const bool isText = textMayFollow && Below(2) == 0;
            tree.children.push_back(isText ? Tree{Kind::Text, Value(), {}, {}} : Element(depth - 1));
            textMayFollow = !isText;
        }
        return tree;
    }

    /// Writes names and values in another way that means the same.
    Tree Rewritten(Tree tree)
    {
        if (tree.kind == Kind::Text)
            tree.text = SameValue(tree.text);
        else if (Below(4) == 0)
            std::transform(tree.text.begin(), tree.text.end(), tree.text.begin(),
                           [](char letter) { return static_cast<char>(std::toupper(letter)); });
        for (auto& [name, value] : tree.attributes)
            value = SameValue(value);
        for (Tree& child : tree.children)
            child = Rewritten(std::move(child));
        return tree;
    }

    /// Puts one difference into a node of the tree; gives its class, or null where the node allows none of
    /// the kind that was drawn.
    Difference Seed(Tree& root)
    {
        std::vector<Tree*> elements;
        CollectElements(root, elements);
        Tree& tree = *elements[Below(elements.size())];
        switch (Below(7))
        {
        case 0:
            tree.text += "x";
            return &typeid(NodeNamesDontMatchException);
        case 1:
            tree.attributes["extra"] = Value();
            return &typeid(AttributeMissingException);
        case 2:
            if (tree.attributes.empty())
                return nullptr;
            tree.attributes.begin()->second += "9x";
            return &typeid(AttributesDontMatchException);
        case 3:
            tree.children.push_back(Tree{Kind::Element, "added", {}, {}});
            return &typeid(OneNodeHasMoreChildrenThanTheOtherException);
        case 4:
            return SeedIntoText(
                tree, [](Tree& text) { text.text += "9x"; }, &typeid(TextNodeValuesDontMatchException));
        case 5:
            return SeedIntoText(
                tree,
                [](Tree& text) {
                    text = Tree{Kind::Element, "instead", {}, {}};
                },
                &typeid(OneNodeIsElementOneIsTextException));
        default:
            return SeedIntoText(
                tree,
                [](Tree& text) {
                    text = Tree{Kind::Comment, "instead", {}, {}};
                },
                &typeid(NodeTypesDontMatchException));
        }
    }

  private:
    std::string Name() { return std::string(1, static_cast<char>('a' + Below(5))); }

    std::string Value()
    {
        if (Below(2) == 0)
            return Joined({"word ", Name()});
        return Joined({std::to_string(Below(1000)), ".", std::to_string(Below(1000))});
    }

    std::string SameValue(const std::string& value)
    {
        double number = 0;
        const bool isNumber = IsNumber(value, number);
        switch (Below(4))
        {
        case 0:
            return isNumber ? Joined({value, "0000009"}) : value;
        case 1:
            return Joined({" ", value, "\n"});
        case 2:
            return isNumber ? Joined({"+", value, "e0"}) : Joined({"W", value.substr(1)});
        default:
            return value;
        }
    }

    template <class Change>
    static Difference SeedIntoText(Tree& tree, Change change, Difference difference)
    {
        const auto text = std::find_if(tree.children.begin(), tree.children.end(),
                                       [](const Tree& child) { return child.kind == Kind::Text; });
        if (text == tree.children.end())
            return nullptr;
        change(*text);
        return difference;
    }

    static void CollectElements(Tree& tree, std::vector<Tree*>& elements)
    {
        elements.push_back(&tree);
        for (Tree& child : tree.children)
            if (child.kind == Kind::Element)
                CollectElements(child, elements);
    }

    std::mt19937 random;
};

/// What the engine says about two trees: the class of the exception, or null.
Difference Compared(const Tree& left, const Tree& right, std::mt19937& random)
{
    try
    {
        Compare(Written(left, random), Written(right, random));
    }
    catch (const XMLCompareException& difference)
    {
        return &typeid(difference);
    }
    return nullptr;
}

const char* NameOf(Difference difference) { return difference ? difference->name() : "no difference"; }

class GeneratedDocuments : public testing::TestWithParam<unsigned int>
{
};

constexpr int PairsForASeed = 500;

TEST_P(GeneratedDocuments, AreEqualWhenTheyAreWrittenInAnotherWay)
{
    Generator generator(GetParam());
    for (int i = 0; i < PairsForASeed; ++i)
    {
        const Tree left = generator.Element(4);
        const Tree right = generator.Rewritten(left);
        ASSERT_STREQ(NameOf(FirstDifference(left, right)), "no difference");
        ASSERT_STREQ(NameOf(Compared(left, right, generator.Random())), "no difference")
            << Written(left, generator.Random()) << "\n"
            << Written(right, generator.Random());
    }
}

TEST_P(GeneratedDocuments, DifferAsSeededOnEitherSide)
{
    Generator generator(GetParam());
    int seeded = 0;
    for (int i = 0; i < PairsForASeed; ++i)
    {
        const Tree left = generator.Element(4);
        Tree right = generator.Rewritten(left);
        const Difference seed = generator.Seed(right);
        seeded += seed != nullptr;
        for (const auto& [one, other] : {std::pair(left, right), std::pair(right, left)})
        {
            ASSERT_STREQ(NameOf(FirstDifference(one, other)), NameOf(seed));
            ASSERT_STREQ(NameOf(Compared(one, other, generator.Random())), NameOf(seed))
                << Written(one, generator.Random()) << "\n"
                << Written(other, generator.Random());
        }
    }
    EXPECT_GT(seeded, PairsForASeed / 3);
}

TEST_P(GeneratedDocuments, WithSeveralDifferencesAreToldApartByTheFirst)
{
    Generator generator(GetParam());
    for (int i = 0; i < PairsForASeed; ++i)
    {
        const Tree left = generator.Element(4);
        Tree right = generator.Rewritten(left);
        for (int seeds = 0; seeds < 3; ++seeds)
            generator.Seed(right);
        ASSERT_STREQ(NameOf(Compared(left, right, generator.Random())), NameOf(FirstDifference(left, right)))
            << Written(left, generator.Random()) << "\n"
            << Written(right, generator.Random());
    }
}

/// Pairs children in document order by the walkers alone, at every level.
class PlainOrder : public XMLNodeComparator
{
    void WalkThrough() override
    {
        const DOMNode* left = LeftWalker()->firstChild();
        const DOMNode* right = RightWalker()->firstChild();
        for (; left && right; left = LeftWalker()->nextSibling(), right = RightWalker()->nextSibling())
            ControlNodeComparison();
        if (left || right)
            throw OneNodeHasMoreChildrenThanTheOtherException(
                LeftNode(), RightNode(), left ? CompareTests::Left : CompareTests::Right);
    }
};

class PlainOrderOptions : public StrictOrderAutoValueCompareOptions
{
    PlainOrderOptions* Clone() const override { return new PlainOrderOptions(*this); }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement*, const DOMElement*) override
    {
        return new PlainOrder;
    }
};

/// Decides by the first letter of a name, and notes every node that it is asked about.
class LetterFilter : public DOMNodeFilter
{
  public:
    explicit LetterFilter(size_t letter)
        : skipped(static_cast<XMLCh>(u'a' + letter))
        , rejected(static_cast<XMLCh>(skipped + 1))
    {
    }

    FilterAction acceptNode(const DOMNode* node) const override
    {
        asked.push_back(node);
        const XMLCh letter = node->getNodeName()[0];
        if (letter == rejected)
            return FILTER_REJECT;
        return letter == skipped ? FILTER_SKIP : FILTER_ACCEPT;
    }

    mutable std::vector<const DOMNode*> asked;

  private:
    XMLCh skipped;
    XMLCh rejected;
};

/// The report of the difference, or nothing.
Nuv::UniString ReportOf(const Document& left, const Document& right, XMLNodeComparator&& comparator,
                        DOMNodeFilter* filter, const IXMLCompareOptions& options)
{
    try
    {
        DoXMLCompare(left.get(), right.get(), &comparator, filter, options);
    }
    catch (const XMLCompareException& difference)
    {
        return difference.GetText();
    }
    return {};
}

TEST_P(GeneratedDocuments, AreWalkedThroughAsByTheWalkersAlone)
{
    Generator generator(GetParam());
    for (int i = 0; i < PairsForASeed; ++i)
    {
        const Tree tree = generator.Element(4);
        Tree changed = generator.Rewritten(tree);
        generator.Seed(changed);
        const Document left = Parse(Written(tree, generator.Random()));
        const Document right = Parse(Written(changed, generator.Random()));
        const auto expectSame = [&](DOMNodeFilter* filter, DOMNodeFilter* filterOfPlain)
        {
            EXPECT_EQ(
                ReportOf(left, right, XMLCompareStrictOrder(), filter, StrictOrderAutoValueCompareOptions()),
                ReportOf(left, right, PlainOrder(), filterOfPlain, PlainOrderOptions()));
        };
        SkipWhitespaceTextsCompareFilter withoutBlanks;
        expectSame(nullptr, nullptr);
        expectSame(&withoutBlanks, &withoutBlanks);
        const size_t letter = generator.Below(5);
        LetterFilter byLetter(letter);
        LetterFilter byLetterOfPlain(letter);
        expectSame(&byLetter, &byLetterOfPlain);
        EXPECT_EQ(byLetter.asked, byLetterOfPlain.asked);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, GeneratedDocuments, testing::Values(1u, 2u, 3u, 4u));

} // namespace
