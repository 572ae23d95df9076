/// @file
/// How far a document from a source that is not trusted may go before its parse ends with an error.
#pragma once

#include <cstddef>
#include <limits>

/// Limits for ValidatingXMLParser::SetLimits and NuvXML::CreateSAX2Reader. Each stands on its own, and all
/// are off until they are set. A document that goes beyond one fails to parse, with a message that names the
/// limit.
///
/// A parse within the limits of ForUntrustedInput takes time and memory in proportion to the document and
/// touches no file but the document's own.
struct ParserLimits
{
    static constexpr size_t Unlimited = std::numeric_limits<size_t>::max();

    /// How many references to entities are expanded in the document's content and attribute values; the
    /// predefined entities and character references do not count.
    ///
    /// Expansions within the document type cannot be counted. With this limit set, what leads to them is
    /// refused: parameter entities, and lists of attributes that stand behind the declaration of an entity.
    size_t maxEntityExpansions = Unlimited;

    /// Accepts parameter entities and any order of declarations in spite of maxEntityExpansions. For
    /// documents whose document types are trusted.
    bool allowExpansionInDocumentType = false;

    /// How many characters of entities' texts are put into the document's content, where each may become a
    /// node. What is put into attribute values does not count.
    size_t maxExpandedContent = Unlimited;

    /// How many entities, notations, elements, attributes and lists of attributes a document type may
    /// declare. Each element is held against the attributes declared for it, and so deep can entities be
    /// nested.
    size_t maxDeclarations = Unlimited;

    /// How many characters each of these may have that a document type declares: the text of an entity, the
    /// default and the enumerated values of an attribute, the content model of an element. Times
    /// maxEntityExpansions, this is how much text entities can put into attribute values; times
    /// maxDefaultAttributes, how much defaults can.
    ///
    /// Also how many states a content model may need for its validation: up to 2^n for a name that stands in
    /// it n times.
    size_t maxDeclarationLength = Unlimited;

    /// How many attributes the document type adds to the elements of the document because they have a
    /// default.
    size_t maxDefaultAttributes = Unlimited;

    /// How many attributes an element may have, those with a default included.
    size_t maxAttributes = Unlimited;

    /// How many names of elements a document may have. Xerces looks a name up among all that share its hash,
    /// which is easy to foresee.
    size_t maxElementNames = Unlimited;

    /// How deep elements are nested; the root is at depth 1.
    size_t maxNesting = Unlimited;

    /// Refuses a document with a document type, whatever it holds.
    bool forbidDocumentTypes = false;

    /// Refuses to read anything but the document itself: external entities, parameter entities and document
    /// types. Those that are declared but not used do no harm. Hints to schemas (xsi:schemaLocation) are
    /// passed over: what counts are the schemas that the program has loaded.
    bool forbidExternalEntities = false;

    /// Refuses to read from any URL that is not a file's.
    bool forbidNetwork = false;

    /// The values of ForUntrustedInput. What walks a document by recursion, in this library and with 8 MB of
    /// stack, can go thirty times as deep.
    static constexpr size_t SafeEntityExpansions = 10'000;
    static constexpr size_t SafeExpandedContent = 1'000'000;
    static constexpr size_t SafeDeclarations = 500;
    static constexpr size_t SafeDeclarationLength = 1'000;
    static constexpr size_t SafeDefaultAttributes = 10'000;
    static constexpr size_t SafeAttributes = 1'000;
    static constexpr size_t SafeElementNames = 2'000;
    static constexpr size_t SafeNesting = 1'000;

    /// Limits for documents from anywhere. An internal document type is accepted, for within these limits it
    /// is harmless; who needs none sets forbidDocumentTypes too, which leaves less to trust.
    static constexpr ParserLimits ForUntrustedInput()
    {
        ParserLimits limits;
        limits.maxEntityExpansions = SafeEntityExpansions;
        limits.maxExpandedContent = SafeExpandedContent;
        limits.maxDeclarations = SafeDeclarations;
        limits.maxDeclarationLength = SafeDeclarationLength;
        limits.maxDefaultAttributes = SafeDefaultAttributes;
        limits.maxAttributes = SafeAttributes;
        limits.maxElementNames = SafeElementNames;
        limits.maxNesting = SafeNesting;
        limits.forbidExternalEntities = true;
        limits.forbidNetwork = true;
        return limits;
    }

    friend bool operator==(const ParserLimits&, const ParserLimits&) = default;
};
