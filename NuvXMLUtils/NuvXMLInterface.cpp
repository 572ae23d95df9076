#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include "NuvRoot/Debug.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLDOMReader.hpp"
#include "NuvXMLUtils/OutOfMemory.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMLSException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace NuvXML
{
namespace
{

constexpr char SourceFile[] = "NuvXMLInterface";

bool xercesInitialized = false;

const XercescInitializer keepXercesUp;

/// What the factories of one direction say and throw. Of two kinds of exceptions, FirstKind is told when an
/// exception is both.
struct OutputFactory
{
    using Channel = Nuv::XMLOChannel;
    using ChannelException = XMLOChannelException;
    using FirstKind = xercesc_3_0::DOMException;
    using SecondKind = DOMBuilderException;
    static constexpr char NotEnoughMemory[] = "Not enough memory in CreateXMLOChannel";
    static constexpr char First[] = "Xercesc DOMException";
    static constexpr char Second[] = "NuvXML DOMBuilderException";
    static constexpr char Unknown[] = "Unkonwn Exception in CreateXMLOChannel";
};

struct InputFactory
{
    using Channel = Nuv::XMLIChannel;
    using ChannelException = XMLIChannelException;
    using FirstKind = DOMReaderException;
    using SecondKind = xercesc_3_0::DOMException;
    static constexpr char NotEnoughMemory[] = "Not enough memory in CreateXMLIChannel";
    static constexpr char First[] = "NuvXML DOMReaderException";
    static constexpr char Second[] = "Xercesc DOMException";
    static constexpr char Unknown[] = "Unkonwn Exception in CreateXMLIChannel";
};

/// The message for the exception that is being handled.
template <class Factory>
const char* MessageOfFailure()
{
    if (IsOutOfMemory())
        return Factory::NotEnoughMemory;
    try
    {
        throw;
    }
    catch (const typename Factory::FirstKind&)
    {
        return Factory::First;
    }
    catch (const typename Factory::SecondKind&)
    {
        return Factory::Second;
    }
    catch (...)
    {
        return Factory::Unknown;
    }
}

template <class Factory, class Create>
typename Factory::Channel* CreateChannel(Create create, bool throwOnError)
{
    const char* message = nullptr;
    try
    {
        return create();
    }
    catch (...)
    {
        message = MessageOfFailure<Factory>();
    }
    if (throwOnError)
        throw typename Factory::ChannelException(message, SourceFile, __LINE__);
    return nullptr;
}

/// The reason for the exception that is being handled; empty when there is no memory for it.
Nuv::UniString ReasonOfSaveFailure()
try
{
    if (IsOutOfMemory())
        return u"Not enough memory in SaveXMLOChannel";
    try
    {
        throw;
    }
    catch (const xercesc_3_0::DOMLSException&)
    {
        return u"The document holds what XML cannot hold.";
    }
    catch (...)
    {
        return u"Unknown exception in SaveXMLOChannel";
    }
}
catch (const std::bad_alloc&)
{
    return {};
}

/// @param makePrefix makes "location (line):  " of the location's text and the line
template <class Channel, class MakePrefix>
void HarvestMessages(Channel& channel, Nuv::Array<Nuv::UniString>& messages, MakePrefix makePrefix)
{
    const int count = channel.GetNumberOfMessage();
    if (count < 1)
        return;
    IO::Location location;
    channel.GetLocation(location);
    for (int i = 0; i < count; ++i)
    {
        Nuv::UniString text;
        int line = 0;
        channel.GetMessage(i, text, line);
        Nuv::UniString entry = makePrefix(location.ToLogText(), line);
        entry += text;
        entry += u'\n';
        messages.push_back(entry);
    }
}

template <class Channel, class MakePrefix>
void EndGuardedChannel(Channel** channel, Nuv::Array<Nuv::UniString>* messages, MakePrefix makePrefix)
{
    if (!channel || !*channel)
        return;
    try
    {
        if (messages)
            HarvestMessages(**channel, *messages, makePrefix);
    }
    catch (...)
    {
        // There was no memory for a message, and a guard has nobody to tell.
    }
    delete *channel;
    *channel = nullptr;
}

} // namespace

NUVXML_DEFINE_EXCEPTION(XMLIOChannelException)
NUVXML_DEFINE_EXCEPTION(XMLOChannelException)
NUVXML_DEFINE_EXCEPTION(XMLIChannelException)

Nuv::XMLOChannel* CreateXMLOChannel(bool throwOnError)
{
    return CreateChannel<OutputFactory>([] { return new DOMBuilder; }, throwOnError);
}

Nuv::XMLOChannel* CreateXMLOChannel(const IO::Location& location, bool throwOnError)
{
    return CreateChannel<OutputFactory>([&] { return new DOMBuilder(location); }, throwOnError);
}

bool SaveXMLOChannel(Nuv::XMLOChannel* channel, Nuv::UniString* reason)
{
    Nuv::UniString failure;
    try
    {
        auto* builder = dynamic_cast<DOMBuilder*>(channel);
        failure = !channel   ? u"There is no channel."
                  : !builder ? u"The channel is of another kind."
                             : builder->Save();
        if (failure.IsEmpty())
            return true;
    }
    catch (...)
    {
        failure = ReasonOfSaveFailure();
    }
    if (reason)
        *reason = std::move(failure);
    return false;
}

void DiscardXMLOChannel(Nuv::XMLOChannel* channel)
{
    if (auto* builder = dynamic_cast<DOMBuilder*>(channel))
        builder->Discard();
}

void DisposeXMLOChannel(Nuv::XMLOChannel* channel) { delete channel; }

Nuv::UniString ExportOChannelToUniString(Nuv::XMLOChannel* channel)
{
    auto* builder = dynamic_cast<DOMBuilder*>(channel);
    return builder ? builder->Export() : Nuv::UniString();
}

XMLOChannelGuard::XMLOChannelGuard(Nuv::XMLOChannel** guarded)
    : XMLOChannelGuard(guarded, nullptr)
{
}

XMLOChannelGuard::XMLOChannelGuard(Nuv::XMLOChannel** guarded, Nuv::Array<Nuv::UniString>* list)
    : channel(guarded)
    , messages(list)
{
}

XMLOChannelGuard::~XMLOChannelGuard()
{
    EndGuardedChannel(channel, messages,
                      [](const Nuv::UniString& location, int line)
                      {
                          Nuv::UniString prefix;
                          prefix.Printf("%s (%d):  ", location.ToString(), line);
                          return prefix;
                      });
}

Nuv::XMLIChannel* CreateXMLIChannel(const IO::Location& location, bool throwOnError)
{
    return CreateChannel<InputFactory>([&] { return new DOMReader(location); }, throwOnError);
}

Nuv::XMLIChannel* CreateXMLIChannelFromMemory(const unsigned char* buffer, unsigned int size,
                                              bool throwOnError)
{
    return CreateChannel<InputFactory>([&] { return new DOMReader(buffer, size); }, throwOnError);
}

Nuv::XMLIChannel* CreateXMLIChannelFromMemory(const Nuv::UniString& text, bool throwOnError)
{
    return CreateChannel<InputFactory>(
        [&]
        {
            const std::unique_ptr<char[]> bytes(text.CopyUTF8());
            return new DOMReader(reinterpret_cast<const unsigned char*>(bytes.get()),
                                 static_cast<unsigned int>(std::strlen(bytes.get())));
        },
        throwOnError);
}

void DisposeXMLIChannel(Nuv::XMLIChannel* channel) { delete channel; }

XMLIChannelGuard::XMLIChannelGuard(Nuv::XMLIChannel** guarded)
    : XMLIChannelGuard(guarded, nullptr)
{
}

XMLIChannelGuard::XMLIChannelGuard(Nuv::XMLIChannel** guarded, Nuv::Array<Nuv::UniString>* list)
    : channel(guarded)
    , messages(list)
{
}

XMLIChannelGuard::~XMLIChannelGuard()
{
    EndGuardedChannel(channel, messages,
                      [](const Nuv::UniString& location, int line)
                      {
                          Nuv::UniString prefix;
                          prefix.Printf("%S (%d):  ", location, line);
                          return prefix;
                      });
}

XercescInitializer::XercescInitializer()
{
    if (xercesInitialized)
        return;
    try
    {
        xercesc_3_0::XMLPlatformUtils::Initialize(xercesc_3_0::XMLUni::fgXercescDefaultLocale, nullptr,
                                                  nullptr, nullptr);
        xercesInitialized = true;
    }
    catch (...)
    {
        DBBreak(SourceFile, __LINE__, "XML Initialize error",
                "NuvXML::XercescInitializer::XercescInitializer");
    }
}

XercescInitializer::XercescInitializer(const XercescInitializer&) {}

XercescInitializer& XercescInitializer::operator=(const XercescInitializer&) { return *this; }

XercescInitializer::~XercescInitializer()
{
    if (!xercesInitialized)
        return;
    xercesc_3_0::XMLPlatformUtils::Terminate();
    xercesInitialized = false;
}

} // namespace NuvXML
