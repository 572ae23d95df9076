// Has Xerces take its memory from the application.

#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <iostream>
#include <new>

namespace
{

using xercesc_3_0::XMLPlatformUtils;

/// Counts the blocks of Xerces.
class CountingMemory : public xercesc_3_0::MemoryManager
{
  public:
    xercesc_3_0::MemoryManager* getExceptionMemoryManager() override { return this; }

    void* allocate(XMLSize_t size) override
    {
        void* const block = ::operator new(size);
        ++inUse;
        wasUsed = true;
        return block;
    }

    void deallocate(void* block) override
    {
        inUse -= block ? 1 : 0;
        ::operator delete(block);
    }

    long inUse = 0;
    bool wasUsed = false;
};

void Start(CountingMemory& memory)
{
    XMLPlatformUtils::Initialize(xercesc_3_0::XMLUni::fgXercescDefaultLocale, nullptr, nullptr, &memory);
}

/// What the application does with the library. Nothing of it is alive when this returns.
void Work()
{
    Nuv::XMLOChannel* output = NuvXML::CreateXMLOChannel(true);
    const NuvXML::XMLOChannelGuard guard(&output);
    output->WriteStartElement("Wall");
    output->WriteXML("Height", 275);
    output->WriteEndElement();
    std::cout << NuvXML::ExportOChannelToUniString(output) << '\n';
}

void Report(const char* way, const CountingMemory& memory)
{
    std::cout << way << ": the memory was " << (memory.wasUsed ? "used" : "ignored") << ", " << memory.inUse
              << " blocks are left\n";
}

} // namespace

int main()
{
    CountingMemory ignored;
    Start(ignored); // too late: Xerces is running
    Work();
    XMLPlatformUtils::Terminate();
    Report("A pair of Initialize and Terminate", ignored);

    CountingMemory memory;
    XMLPlatformUtils::Terminate(); // what the library has started
    Start(memory);
    Work();
    XMLPlatformUtils::Terminate();
    Report("Terminate before them", memory);
}
