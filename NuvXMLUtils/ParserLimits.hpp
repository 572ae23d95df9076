/// @file
/// Limits for loading documents from a source that is not trusted:
///
///     ValidatingXMLParser parser;
///     parser.SetLimits(ParserLimits::ForUntrustedInput());
#pragma once

#include <cstddef>
#include <limits>

/// Limits for ValidatingXMLParser::SetLimits and NuvXML::CreateSAX2Reader. They are independent, and all are
/// off until they are set. A document that exceeds one is not loaded: its parse ends with an error that names
/// the limit. Each document is counted for itself, also when a parser is used again.
///
/// Within the limits of ForUntrustedInput
/// - a parse reads the document and nothing else: no other file, no schema, nothing from the network;
/// - its memory is in proportion to the size of the document, plus a fixed amount for what entities and
///   defaults add;
/// - so is its time, except where names of attributes, prefixes or IDs, or the names in one content model,
/// are
///   made to share a hash in Xerces: that takes the square of their number.
///
/// The size of the document itself is not limited.
struct ParserLimits
{
    static constexpr size_t Unlimited = std::numeric_limits<size_t>::max();

    /// Limits how many references to entities are expanded, in content and attribute values, inside other
    /// entities too. Predefined entities (`&lt;`) and character references are not counted.
    /// Safe value: 10,000.
    ///
    /// Expansions inside the document type cannot be counted. While this limit is set, a document type that
    /// could cause them is refused: one that declares a parameter entity, or attributes after an entity.
    size_t maxEntityExpansions = Unlimited;

    /// Accepts these document types in spite of maxEntityExpansions. Set it only if the document types are
    /// trusted.
    bool allowExpansionInDocumentType = false;

    /// Limits how many characters entities add to the content: the length of the entity's text for each
    /// reference. Attribute values are not counted. Safe value: 1,000,000.
    size_t maxExpandedContent = Unlimited;

    /// Limits how many declarations a document type has: each entity, notation, element, list of attributes
    /// and attribute is one. Limits also how many different names its content models have together.
    /// Safe value: 500.
    ///
    /// Xerces compares each element with all attributes that are declared for it, and entities can be nested
    /// this deep.
    size_t maxDeclarations = Unlimited;

    /// Limits the length, in characters, of each text in a document type: the text of an entity, the default
    /// value and the list of values of an attribute, the content model of an element. Safe value: 1,000.
    ///
    /// So entities add at most maxEntityExpansions times this length to all attribute values, and defaults
    /// add at most maxDefaultAttributes times this length.
    ///
    /// Limits also how many states the validation of a content model may need. A name that the model has n
    /// times may need 2^n states.
    size_t maxDeclarationLength = Unlimited;

    /// Limits how many attributes with a default value the document type adds to the document.
    /// Safe value: 10,000.
    size_t maxDefaultAttributes = Unlimited;

    /// Limits how many attributes one element has, default values included. Safe value: 1,000.
    size_t maxAttributes = Unlimited;

    /// Limits how many different names the elements of the document have. A prefix is part of the name. Names
    /// that are only declared, in a document type or a schema, are not counted. Safe value: 2,000.
    ///
    /// Xerces compares a name with all names that share its hash, and anyone can compute this hash.
    size_t maxElementNames = Unlimited;

    /// Limits how deep elements are nested; the root has depth 1. Safe value: 1,000.
    size_t maxNesting = Unlimited;

    /// Refuses each document that has a document type.
    bool forbidDocumentTypes = false;

    /// Refuses a document when it needs another file or address: an external entity, parameter entity or
    /// document type. A declaration that is not used needs nothing. Hints to schemas (xsi:schemaLocation) are
    /// ignored: only schemas that the program has loaded are used.
    bool forbidExternalEntities = false;

    /// Refuses a document when it needs an address that is not a file of this machine.
    bool forbidNetwork = false;

    /// @name The safe values
    /// SafeNesting is less than a tenth of the depth at which any operation of this library overflows 8 MB of
    /// stack, in an optimised build.
    /// @{
    static constexpr size_t SafeEntityExpansions = 10'000;
    static constexpr size_t SafeExpandedContent = 1'000'000;
    static constexpr size_t SafeDeclarations = 500;
    static constexpr size_t SafeDeclarationLength = 1'000;
    static constexpr size_t SafeDefaultAttributes = 10'000;
    static constexpr size_t SafeAttributes = 1'000;
    static constexpr size_t SafeElementNames = 2'000;
    static constexpr size_t SafeNesting = 1'000;
    /// @}

    /// Limits for documents from anywhere: the safe values, and forbidExternalEntities and forbidNetwork. An
    /// internal document type is accepted, because it is harmless within these limits. If you do not need
    /// document types, set forbidDocumentTypes too.
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
