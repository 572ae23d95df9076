/// @file
/// The front door: makes the channels through which objects write themselves to XML and read themselves back,
/// and ends them. Callers need to know nothing of what stands behind the channels.
///
/// A channel belongs to the caller, who ends it with DisposeXMLOChannel or DisposeXMLIChannel, with a guard,
/// or with `delete`. A channel, its guard and the documents below belong to one thread at a time.
///
/// The functions that make a channel turn a failure into null or, when `throwOnError` is true, into an
/// XMLOChannelException or XMLIChannelException with one of the messages below, where "..." is
/// CreateXMLOChannel or CreateXMLIChannel. When there is no memory for that exception either, they throw
/// Nuv::OutOfMemoryException in its place.
/// - "Not enough memory in ..."
/// - "NuvXML DOMBuilderException": the document could not be made
/// - "NuvXML DOMReaderException": the file is missing, the text is not well-formed XML, it is not valid by
/// its
///   document type (if it has one), or a document type or an entity that it refers to cannot be read
/// - "Xercesc DOMException"
/// - "Unkonwn Exception in ..."
///
/// To learn more of why a text could not be read, parse it with ParseXMLDoc, which tells line and reason.
#pragma once

#include "InputOutput/Location.hpp"
#include "NuvRoot/Containers.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvRoot/XMLChannels.hpp"
#include "NuvXMLUtils/ExceptionPattern.hpp"
#include "NuvXMLUtils/Export.hpp"

namespace NuvXML
{

/// Base of the exceptions that the functions below throw; never thrown itself.
class NUVXMLUTILS_API XMLIOChannelException : public Nuv::RunTimeErrorException
{
    NUVXML_EXCEPTION_MEMBERS(XMLIOChannelException, Nuv::RunTimeErrorException)
};

/// An output channel could not be made.
class NUVXMLUTILS_API XMLOChannelException : public XMLIOChannelException
{
    NUVXML_EXCEPTION_MEMBERS(XMLOChannelException, XMLIOChannelException)
};

/// An input channel could not be made.
class NUVXMLUTILS_API XMLIChannelException : public XMLIOChannelException
{
    NUVXML_EXCEPTION_MEMBERS(XMLIChannelException, XMLIOChannelException)
};

/// @name Output
/// @{

/// A channel that builds a new document (a DOMBuilder), for ExportOChannelToUniString.
NUVXMLUTILS_API Nuv::XMLOChannel* CreateXMLOChannel(bool throwOnError);

/// A channel that builds a new document and writes it to `location`: at SaveXMLOChannel, which reports a
/// failure, or else when it is ended, silently. Either way the old file is there until the new one is
/// complete.
NUVXMLUTILS_API Nuv::XMLOChannel* CreateXMLOChannel(const IO::Location& location, bool throwOnError);

/// Keeps the text of a path from becoming `throwOnError`.
Nuv::XMLOChannel* CreateXMLOChannel(const void* path) = delete;

/// Writes the document of a channel that has a file of its own now, as it is at this moment: the whole file,
/// on the device, or nothing. After success nothing is written at the end of the channel, unless something
/// was added through the channel since. What is added to the DOM document directly does not count.
///
/// A failure leaves the old file, and the channel as it was: saving can be tried again, and the end of the
/// channel writes as before. It is a failure when the file cannot be written, when the document holds what
/// XML cannot hold, after DiscardXMLOChannel, and for channels without a file of their own: null, those that
/// CreateXMLOChannel made without a location, and those of other kinds.
/// @param reason receives the reason of a failure; may be null. Empty when there is no memory for it.
NUVXMLUTILS_API bool SaveXMLOChannel(Nuv::XMLOChannel* channel, Nuv::UniString* reason);

/// Nothing is written at the end of the channel: for an object that is written only in part, because of an
/// exception. Channels without a file of their own are left alone.
NUVXMLUTILS_API void DiscardXMLOChannel(Nuv::XMLOChannel* channel);

/// Deletes the channel; null is ignored.
NUVXMLUTILS_API void DisposeXMLOChannel(Nuv::XMLOChannel* channel);

/// The document of a channel that CreateXMLOChannel made, as text; the empty string for null and for channels
/// of other kinds.
/// @throws xercesc_3_0::DOMLSException when the document holds text that XML cannot hold
NUVXMLUTILS_API Nuv::UniString ExportOChannelToUniString(Nuv::XMLOChannel* channel);

/// Ends an output channel at the end of the scope: appends its messages to the caller's list, deletes the
/// channel and sets the caller's pointer to null. It looks at the pointer then and not before, so the caller
/// may replace the channel meanwhile. A null pointer is left alone. The end of a channel writes its file,
/// also when an exception ends the scope: see SaveXMLOChannel and DiscardXMLOChannel.
///
/// A message becomes `location (line):  text` and a line feed. Messages for which there is no memory are
/// lost; nothing is thrown.
class NUVXMLUTILS_API XMLOChannelGuard
{
  public:
    explicit XMLOChannelGuard(Nuv::XMLOChannel** guarded);

    /// @param list receives the messages; may be null
    XMLOChannelGuard(Nuv::XMLOChannel** guarded, Nuv::Array<Nuv::UniString>* list);

    XMLOChannelGuard(const XMLOChannelGuard&) = default;
    XMLOChannelGuard& operator=(const XMLOChannelGuard&) = default;
    ~XMLOChannelGuard();

  private:
    Nuv::XMLOChannel** channel;
    Nuv::Array<Nuv::UniString>* messages;
};

/// @}

/// @name Input
/// @{

/// A channel that reads the file at `location` (a DOMReader).
NUVXMLUTILS_API Nuv::XMLIChannel* CreateXMLIChannel(const IO::Location& location, bool throwOnError);

/// A channel that reads `size` bytes of XML text, which are not needed any longer when the call returns.
NUVXMLUTILS_API Nuv::XMLIChannel* CreateXMLIChannelFromMemory(const unsigned char* buffer, unsigned int size,
                                                              bool throwOnError);

/// The same with text, which must not declare another encoding than UTF-8. A zero character ends it early.
NUVXMLUTILS_API Nuv::XMLIChannel* CreateXMLIChannelFromMemory(const Nuv::UniString& text, bool throwOnError);

/// Deletes the channel; null is ignored.
NUVXMLUTILS_API void DisposeXMLIChannel(Nuv::XMLIChannel* channel);

/// Ends an input channel at the end of the scope, as XMLOChannelGuard does with an output channel.
class NUVXMLUTILS_API XMLIChannelGuard
{
  public:
    explicit XMLIChannelGuard(Nuv::XMLIChannel** guarded);

    /// @param list receives the messages; may be null
    XMLIChannelGuard(Nuv::XMLIChannel** guarded, Nuv::Array<Nuv::UniString>* list);

    XMLIChannelGuard(const XMLIChannelGuard&) = default;
    XMLIChannelGuard& operator=(const XMLIChannelGuard&) = default;
    ~XMLIChannelGuard();

  private:
    Nuv::XMLIChannel** channel;
    Nuv::Array<Nuv::UniString>* messages;
};

/// @}

/// Starts Xerces-C++ when it is made and stops it when it is destroyed. The library holds one instance, so
/// that Xerces is up while the library is loaded.
///
/// There is one flag for the whole process and no count: a further instance does nothing while Xerces is up,
/// but the first instance to be destroyed stops Xerces for everyone, and the next one made starts it again. A
/// failed start is reported by the debug assertion "XML Initialize error" and leaves Xerces down. Not
/// synchronised.
class NUVXMLUTILS_API XercescInitializer
{
  public:
    XercescInitializer();

    /// Does not start Xerces.
    XercescInitializer(const XercescInitializer& other);

    /// Does nothing.
    XercescInitializer& operator=(const XercescInitializer& other);

    virtual ~XercescInitializer();
};

} // namespace NuvXML
