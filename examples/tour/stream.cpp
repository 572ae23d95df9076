#include "NuvXMLUtils/SAXWriters.hpp"

#include <iostream>

// README: begin
int main()
{
    Nuv::MemoryOChannel output; // or an IO::File: nothing is kept in memory
    NuvXML::NuvSAX2Writer writer(output);
    writer.StartDocument();
    writer.StartElement(u"Storey");
    for (int number = 1; number <= 3; ++number)
    {
        Nuv::UniString name;
        name.Printf("Wall %d", number);
        writer.SimpleElement(u"Wall", name);
    }
    writer.EndElement(u"Storey");
    writer.EndDocument();
    std::cout << output.GetBytes();
}
// README: end
