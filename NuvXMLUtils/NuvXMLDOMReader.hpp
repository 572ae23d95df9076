/// @file
/// The input channel that reads a DOM document.
#pragma once

#include "InputOutput/Location.hpp"
#include "NuvRoot/Containers.hpp"
#include "NuvRoot/XMLChannels.hpp"
#include "NuvXMLUtils/ExceptionPattern.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace NuvXML
{

/// Thrown when a reader cannot be made because its text cannot be parsed.
class NUVXMLUTILS_API DOMReaderException : public Nuv::RunTimeErrorException
{
    NUVXML_EXCEPTION_MEMBERS(DOMReaderException, Nuv::RunTimeErrorException)
};

/// Hands the values of a document back by the names of elements and attributes.
///
/// The reader sees the tree as a stream of element starts and ends, and stands on one of them: the *actual
/// node* and its token type. Only elements count; text, comments and the like between them are passed over.
/// Names are compared exactly, prefix included.
///
/// Siblings are found in any order: the search begins behind the last element that was read and, at the end,
/// goes on with the first sibling. So reading in the order of writing costs one comparison a value, however
/// many siblings there are; looking for an element that is not there costs one comparison a sibling.
///
/// Operations that return `int` return Success or Failure, and never throw but for lack of memory. An element
/// that is not found leaves the reader where it was, so that optional elements can be probed for; an element
/// whose text has the wrong form has been passed over. Values are untouched on failure. Where the description
/// says so a failure leaves a message.
///
/// A reader without an actual node, as Create makes it, fails in every operation that reads. Its error status
/// then becomes NothingToRead, except in ReadStartElement, ReadXMLVersionAttr and the operations for CDATA
/// sections, which keep it. A reader with that error status fails until ClearErrorStatus.
///
/// A reader is used by one thread at a time. Nesting is limited by memory only.
class NUVXMLUTILS_API DOMReader : public Nuv::XMLIChannel
{
  public:
    /// Parses `size` bytes of XML text, not needed afterwards. Stands on the start of the root element.
    ///
    /// A document whose document type declares anything is validated against it, so all its elements must be
    /// declared there. External document types and entities are read.
    /// @throws DOMReaderException "Parsing XML from memory failed.", when the text is not well-formed or not
    /// valid, or what it refers to cannot be read
    /// @throws Nuv::OutOfMemoryException
    DOMReader(const unsigned char* buffer, unsigned int size);

    /// Parses a file in the same way.
    /// @throws DOMReaderException "Parsing XML file failed: " and the location, also when the file is missing
    /// @throws Nuv::OutOfMemoryException
    explicit DOMReader(const IO::Location& file);

    /// Reads the caller's tree from the start of `element`, which must outlive the reader.
    explicit DOMReader(xercesc_3_0::DOMElement* element);

    /// Copies share the document, and each would release it: copy only readers over a caller's element.
    DOMReader(const DOMReader&);
    DOMReader& operator=(const DOMReader&);

    // Errors.

    ErrorStatus GetErrorStatus() override;
    void ClearErrorStatus() override;

    ~DOMReader() override;

    /// A new reader without an actual node; the arguments are ignored. The caller deletes it.
    DOMReader* Create(const Nuv::UniString& first, const Nuv::UniString& second) override;

    /// Only stored: the first two bytes, that is, major and minor number.
    void SetXMLShemaVersion(const Nuv::ClassVersion& version) override;
    void GetXMLShemaVersion(Nuv::ClassVersion& version) override;

    /// Gives the URI of the document; false in error, or when the tree belongs to no document.
    bool GetLocation(IO::Location& location) override;

    // Tokens.

    Nuv::XMLTokenType GetTokenType() override;
    Nuv::XMLTokenType GetNextTokenType() override;

    /// Also gives the name of the actual node, untouched on failure.
    Nuv::XMLTokenType GetTokenTypeName(Nuv::UniString& name) override;

    /// Also gives the name of the node of the next token, cleared on failure.
    Nuv::XMLTokenType GetNextTokenTypeName(Nuv::UniString& name) override;

    // Structure.

    /// Goes to the start of an element `name`, of any element when `name` is null: on a start token, of a
    /// child of the actual node; on an end token, of a sibling. Leaves no message. A reader without an actual
    /// node or in error returns 2 and keeps its error status; any other failure clears it.
    int ReadStartElement(const char* name) override;

    /// Goes to the end of the innermost element `name` that the reader is in, the actual node included: on
    /// the end of a child of the same name it stays there, so objects of one name want an element between
    /// them. Fails for null.
    int ReadEndElement(const char* name) override;

    /// Moves by one token, and on until the token's bit is set in `mask` unless that is 0. The end of the
    /// root element is followed by the end of the document node; beyond that it fails, with the message "End
    /// of XML reached, token with the specified name was not found", and stays there.
    int ReadToken(unsigned int mask) override;

    // Elements: finds the element as ReadStartElement does, takes its text (the value of its first child node
    // as it stands; a CDATA section is joined as ReadXMLCDATAString does) and goes to its end. Messages:
    // "Start element for <name> tag not found"; of numbers, "Value should be number, but is not. In tag:
    // <name>". Numbers are those of Nuv::strtovalue.

    /// The status is that of Nuv::Guid::ConvertFromString.
    int ReadXML(const char* name, Nuv::Guid& value) override;

    int ReadXML(const char* name, Nuv::UniString& value) override;

    /// Stores exactly `size` bytes: the text in the local code page, then zeros; an empty text stores one
    /// zero. Fails for a text of more than `size` characters; of a text that has more bytes, the first `size`
    /// are stored.
    int ReadXML(const char* name, char* buffer, unsigned int size) override;

    int ReadXML(const char* name, double& value) override;
    int ReadXML(const char* name, float& value) override;
    int ReadXML(const char* name, unsigned long long& value) override;
    int ReadXML(const char* name, long long& value) override;
    int ReadXML(const char* name, unsigned long& value) override;
    int ReadXML(const char* name, long& value) override;
    int ReadXML(const char* name, unsigned int& value) override;
    int ReadXML(const char* name, int& value) override;
    int ReadXML(const char* name, unsigned short& value) override;
    int ReadXML(const char* name, short& value) override;

    /// "false", "0", "no" and "true", "1", "yes" in any case; anything else fails without a message.
    int ReadXML(const char* name, bool& value) override;

    /// The low 8 bits of an `int`.
    int ReadXML(const char* name, char& value) override;
    int ReadXML(const char* name, unsigned char& value) override;

    using Nuv::XMLIChannel::ReadXML;

    // CDATA sections.

    /// The text of the first CDATA section in the actual node. Does not move, leaves no message. Sections
    /// that touch are one text where the first ends with "]]" and the next begins with ">", and only there:
    /// so a text with "]]>" is divided.
    int ReadXMLCDATAString(Nuv::UniString& value) override;
    using Nuv::XMLIChannel::ReadXMLCDATAString;

    // Attributes of the actual node. They do not move the reader. Messages: "Missing Attribute: <name>"; of
    // numbers, "Attribute should be number, but is not. AttributeName: <name>". The forms work as those of
    // ReadXML do.

    /// The attributes "Mv" and "Sv" as major and minor number; the build number stays as it is.
    int ReadXMLVersionAttr(Nuv::ClassVersion& version) override;

    int ReadXMLAttr(const char* name, Nuv::Guid& value) override;
    int ReadXMLAttr(const char* name, Nuv::UniString& value) override;
    int ReadXMLAttr(const char* name, unsigned long long& value) override;
    int ReadXMLAttr(const char* name, long long& value) override;
    int ReadXMLAttr(const char* name, unsigned int& value) override;
    int ReadXMLAttr(const char* name, int& value) override;

    /// Stores exactly `size` bytes, however long the text is, also for an empty text.
    int ReadXMLAttr(const char* name, char* buffer, unsigned int size) override;

    int ReadXMLAttr(const char* name, double& value) override;
    int ReadXMLAttr(const char* name, float& value) override;
    int ReadXMLAttr(const char* name, unsigned short& value) override;
    int ReadXMLAttr(const char* name, short& value) override;
    int ReadXMLAttr(const char* name, bool& value) override;
    int ReadXMLAttr(const char* name, char& value) override;
    int ReadXMLAttr(const char* name, unsigned char& value) override;

    using Nuv::XMLIChannel::ReadXMLAttr;

    // Platform: only stored.

    Nuv::PlatformSign GetChannelPlatform() override;
    void SetChannelPlatform(Nuv::PlatformSign sign) override;

    // Messages. They accumulate for the life of the reader.

    void AddMessage(const Nuv::UniString& text) override;
    int GetNumberOfMessage() override;

    /// The code of every message is 0.
    void GetMessage(int index, Nuv::UniString& text, int& code) override;

    /// The cursor; null in a reader that Create made, and the document node behind the end of the root
    /// element, which must then be treated as a DOMNode.
    virtual xercesc_3_0::DOMElement* GetActualNode();

  private:
    class CursorScope;

    /// One of the two places that text is read from, for the forms that convert it.
    struct TextForm
    {
        int (DOMReader::*read)(const char* name, Nuv::UniString& text);
        const char16_t* notANumber;
    };
    static const TextForm ElementForm;
    static const TextForm AttributeForm;

    DOMReader() = default;

    virtual xercesc_3_0::DOMElement* GetFirstElementChild();
    virtual xercesc_3_0::DOMElement* GetNextElementSibling();

    int ReadToken();
    int ReadTokenWithName(const Nuv::UniString& name, Nuv::XMLTokenType type);
    Nuv::XMLTokenType GetNextStartTokenName(Nuv::UniString& name);

    void AdoptDocument(xercesc_3_0::DOMDocument* parsed);
    bool CanRead();
    xercesc_3_0::DOMNode* ActualNode() const;
    xercesc_3_0::DOMElement* GetNextCandidate();
    template <class T>
    int ReadNumber(const TextForm& form, const char* name, T& value);
    template <class Character>
    int ReadCharacter(const TextForm& form, const char* name, Character& value);
    int ReadBool(const TextForm& form, const char* name, bool& value);
    int ReadGuid(const TextForm& form, const char* name, Nuv::Guid& value);

    xercesc_3_0::DOMDocument* document = nullptr;
    xercesc_3_0::DOMElement* actualNode = nullptr;
    unsigned short xmlShemaVersion = 0;
    Nuv::Array<Nuv::UniString> messages;
    Nuv::PlatformSign platform = Nuv::UnknownPlatform;
    ErrorStatus errorStatus = NoError;
    Nuv::XMLTokenType tokenType = Nuv::XMLStartElement;
    bool messagesRead = false;
};

} // namespace NuvXML
