/// @file
/// The output channel that builds a DOM document.
#pragma once

#include "InputOutput/Location.hpp"
#include "NuvRoot/Channels.hpp"
#include "NuvRoot/Containers.hpp"
#include "NuvRoot/XMLChannels.hpp"
#include "NuvXMLUtils/ExceptionPattern.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMCDATASection.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMText.hpp>

#include <string>

namespace NuvXML
{

/// Thrown when a builder cannot be made.
class NUVXMLUTILS_API DOMBuilderException : public Nuv::RunTimeErrorException
{
    NUVXML_EXCEPTION_MEMBERS(DOMBuilderException, Nuv::RunTimeErrorException)
};

/// Builds a DOM document from the calls of the objects that write themselves, and exports it as UTF-8 text.
///
/// While it builds it lays out the text: with automatic tabs (the default) each child of an element begins a
/// new line, indented by one tab for each open element, and the end tag of an element with children has a
/// line of its own. A value element stays on one line.
///
/// Operations that return `int` return Success unless they say otherwise. Exceptions of the DOM, for instance
/// for a name that is no XML name, pass through to the caller, and so does Nuv::OutOfMemoryException; the
/// call may then be repeated, for it has added no element, and at most an empty attribute. Text that XML
/// cannot hold (control characters, half a surrogate pair) is taken, and refused by Export; a zero character
/// ends the text.
///
/// Once the root element is closed, only white space can follow it: a value or a CDATA section then gives the
/// DOM's HIERARCHY_REQUEST_ERR.
///
/// A builder is used by one thread at a time.
class NUVXMLUTILS_API DOMBuilder : public Nuv::XMLOChannel
{
  public:
    enum OwnershipType : int
    {
        LeaveDocumentToCaller = 0,
        TakeDocumentOver = 1 ///< the builder writes it to its URI, as to a location, and releases it
    };

    /// Builds a new document that belongs to no file. Its location, for messages, is an unused name in the
    /// folder for temporary files.
    /// @throws DOMBuilderException when Xerces is not running
    DOMBuilder();

    /// Builds a new document and writes it to `location` when the builder is destroyed, unless
    /// SaveXMLOChannel has done so before or DiscardXMLOChannel was called. A failure to write is silent
    /// then.
    ///
    /// The file that is there is replaced in one step, by a new file that is complete and on the device. When
    /// anything fails, the old file is as it was, and nothing else is left. A process that is killed can
    /// leave a file beside it whose name begins with "NuvXML_unfinished_". The new file has the permissions
    /// of the old one. A link is replaced, not followed.
    /// @throws DOMBuilderException "Creating document failed."
    explicit DOMBuilder(const IO::Location& location);

    /// Goes on building the caller's document.
    /// @param element the open element; null when the root element is still to come
    /// @param tabs how many elements are open, that is, how far the layout is indented
    DOMBuilder(xercesc_3_0::DOMDocument* document, xercesc_3_0::DOMElement* element, OwnershipType ownership,
               int tabs);

    DOMBuilder(const DOMBuilder&) = delete;
    DOMBuilder& operator=(const DOMBuilder&) = delete;
    ~DOMBuilder() override;

    /// A new builder over a new document; the arguments are ignored. The caller deletes it.
    DOMBuilder* Create(const Nuv::UniString& first, const Nuv::UniString& second) override;

    /// Only stored.
    void SetXMLShemaVersion(const Nuv::ClassVersion& version) override;
    void GetXMLShemaVersion(Nuv::ClassVersion& version) override;

    bool GetLocation(IO::Location& out) override;

    // Structure.

    /// Does nothing.
    int WriteStartDocument() override;

    /// With automatic tabs, ends the document with a line feed.
    int WriteEndDocument() override;

    /// Opens a child of the open element, or the root element. Failure once the root element has been closed.
    int WriteStartElement(const char* name) override;

    /// Closes the open element. Failure when none is open.
    int WriteEndElement() override;

    // Elements. The forms with a value of another type pass its text to the form with a string, through the
    // virtual table. Failure before the root element.

    int WriteXML(const char* name, const Nuv::Guid& value) override;

    /// Adds a child element with `value` as its text, and no text node for an empty value. Line ends become
    /// line feeds unless SetReplaceCR(false) was called.
    int WriteXML(const char* name, const Nuv::UniString& value) override;

    int WriteXML(const char* name, unsigned long long value) override;
    int WriteXML(const char* name, long long value) override;
    int WriteXML(const char* name, unsigned long value) override;
    int WriteXML(const char* name, long value) override;
    int WriteXML(const char* name, unsigned int value) override;
    int WriteXML(const char* name, int value) override;
    int WriteXML(const char* name, unsigned short value) override;
    int WriteXML(const char* name, short value) override;
    int WriteXML(const char* name, unsigned char value) override;

    /// Writes the signed code of the character, e.g. 65 for the letter A.
    int WriteXML(const char* name, char value) override;

    using Nuv::XMLOChannel::WriteXML;

    // Text and CDATA sections in the open element, each on a new line, with line ends as they are. Failure
    // before the root element.

    int WriteXMLTextNode(const Nuv::UniString& text) override;
    using Nuv::XMLOChannel::WriteXMLTextNode;

    /// The text becomes one section, also when it holds "]]>"; Export divides it there, and DOMReader joins
    /// it. Whoever parses the text reads every line end in it as a line feed.
    int WriteXMLCDATAString(const Nuv::UniString& text) override;
    using Nuv::XMLOChannel::WriteXMLCDATAString;

    // Attributes of the open element. The forms with a value of another type work as those of WriteXML do.
    // Failure when no element is open.

    /// Writes the major number as the attribute "Mv" and the minor number as "Sv".
    int WriteXMLVersionAttr(const Nuv::ClassVersion& version) override;

    int WriteXMLAttr(const char* name, const Nuv::Guid& value) override;

    /// Sets the attribute; a second write of the same name replaces the value. Line ends stay as they are.
    int WriteXMLAttr(const char* name, const Nuv::UniString& value) override;

    int WriteXMLAttr(const char* name, unsigned long long value) override;
    int WriteXMLAttr(const char* name, long long value) override;
    int WriteXMLAttr(const char* name, unsigned int value) override;
    int WriteXMLAttr(const char* name, int value) override;
    int WriteXMLAttr(const char* name, unsigned short value) override;
    int WriteXMLAttr(const char* name, short value) override;
    int WriteXMLAttr(const char* name, unsigned char value) override;

    /// Writes the signed code of the character.
    int WriteXMLAttr(const char* name, char value) override;

    using Nuv::XMLOChannel::WriteXMLAttr;

    // Messages. Each reports line 1: a document under construction has no source lines.

    void AddMessage(const Nuv::UniString& text) override;
    int GetNumberOfMessage() override;
    void GetMessage(int index, Nuv::UniString& text, int& line) override;

    // Errors.

    /// Always NoError.
    ErrorStatus GetErrorStatus() override;

    /// Does nothing.
    void ClearErrorStatus() override;

    // Layout.

    /// Switches automatic tabs on or off, for the nodes to come.
    virtual void SetAutoTabsHint(bool on);

    virtual void SetReplaceCR(bool on);
    virtual bool GetReplaceCR();

    // Result. The document may be exported at any time, as often as wanted, with elements still open; it
    // stays as it is. A CDATA section with "]]>" is written as several, divided between "]]" and ">". Xerces'
    // serializer calls itself for each level: more than 50,000 levels need a stack of more than 8 MB.

    /// The document as text.
    /// @throws xercesc_3_0::DOMLSException when the document holds what XML cannot hold: characters outside
    /// XML, a comment with "--" or with "-" at its end, an instruction with "?>" or with the target "xml"
    virtual Nuv::UniString Export();

    /// Writes the document to `channel` as UTF-8, in one call. Errors of the channel are for its owner to
    /// look at.
    /// @throws xercesc_3_0::DOMLSException as above; nothing is written
    virtual void Export(Nuv::OChannel& channel);

    virtual xercesc_3_0::DOMDocument* GetDOMDocument();

    /// The open element. Null before the root element; once that is closed, the document node, which must
    /// then be treated as a DOMNode.
    virtual xercesc_3_0::DOMElement* GetActualNode();

  private:
    friend bool SaveXMLOChannel(Nuv::XMLOChannel* channel, Nuv::UniString* reason);
    friend void DiscardXMLOChannel(Nuv::XMLOChannel* channel);

    virtual void WriteNewLineAndTabs(unsigned int tabs);

    struct Message
    {
        Nuv::UniString text;
        int line;
    };

    template <class Sink>
    void ExportInternal(Sink sink);

    xercesc_3_0::DOMNode* ActualNode() const;
    bool HasOpenElement() const;
    bool IsRootClosed() const;
    xercesc_3_0::DOMElement* CreateElement(const char* name);
    xercesc_3_0::DOMText* CreateText(const XMLCh* text);
    xercesc_3_0::DOMCDATASection* CreateCDATASection(const XMLCh* text);
    void Append(xercesc_3_0::DOMNode* parent, xercesc_3_0::DOMNode* child);
    void AppendToOpenElement(xercesc_3_0::DOMNode* node);
    int WriteFile();
    Nuv::UniString Save();
    void Discard();

    IO::Location location;
    xercesc_3_0::DOMDocument* document;
    xercesc_3_0::DOMElement* actualNode = nullptr;
    Nuv::ClassVersion schemaVersion;
    Nuv::Array<Message> messages;
    unsigned int messageLine = 1;
    int depth = 0;
    bool autoTabs = true;
    bool elementIsEmpty = true;
    bool ownsDocument;
    bool writeOnDestroy;
    bool replaceCR = true;
    bool isSaved = false; ///< the file has the document as it is; set back by whatever the channel adds
    bool isDiscarded = false;
};

} // namespace NuvXML
