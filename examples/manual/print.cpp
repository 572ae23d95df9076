// Prints a document in several encodings and to a channel that fails.

#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"

#include <cstdio>
#include <string>

namespace
{

/// Shows what is not plain ASCII as \x and two digits.
void Show(const std::string& bytes)
{
    for (const char byte : bytes)
        if (byte >= ' ' || byte == '\n')
            std::putchar(byte);
        else
            std::printf("\\x%02X", static_cast<unsigned char>(byte));
}

void Print(const xercesc_3_0::DOMNode* node, const char16_t* encoding, bool preferGivenEncoding)
{
    Nuv::MemoryOChannel output;
    const bool isWritten = FormatXMLDoc(node, &output, encoding, preferGivenEncoding);
    std::printf("%s: %s\n", Nuv::UniString(encoding).ToUTF8().c_str(), isWritten ? "printed" : "refused");
    Show(output.GetBytes());
}

/// A disk with no room left.
class FullDisk : public Nuv::OChannel
{
  public:
    int Write(const void*, size_t) override { return -1; }
};

} // namespace

int main()
{
    const auto document = NuvXML::LoadDocument("<?xml version='1.0' encoding='windows-1252'?>"
                                               "<Price unit='\x80'>12 \xA3</Price>")
                              .document;
    Print(document.get(), u"UTF-8", true);
    Print(document.get(), u"ISO-8859-1", true);
    Print(document.get(), u"ISO-8859-1", false); // the document's own encoding goes first
    Print(document.get(), u"ISO-2022-JP", true);

    FullDisk disk;
    std::printf("A full disk: %s\n",
                FormatXMLDoc(document.get(), &disk, nullptr, false) ? "printed" : "failed");
}
