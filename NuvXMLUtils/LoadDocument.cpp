#include "NuvXMLUtils/LoadDocument.hpp"

#include <xercesc/util/XMLUni.hpp>

#include <cstddef>

namespace NuvXML
{

/// One call of LoadDocument: a friend of the parser, for texts in an encoding that they need not declare.
struct DocumentLoader
{
    /// @param parse parses with its first argument into its second one, and returns the document
    template <class Parse>
    static Loaded Load(const LoadSettings& settings, Parse parse)
    {
        Loaded loaded;
        ValidatingXMLParser parser;
        parser.SetLimits(settings.limits);
        parser.SetParsedNodes(settings.nodes);
        if (settings.schema.IsEmpty() || parser.LoadSchema(settings.schema, &loaded.place, &loaded.reason))
            loaded.document.reset(parse(parser, loaded));
        if (!loaded && parser.RanOutOfMemory())
            loaded.reason = u"Not enough memory";
        return loaded;
    }

    static Loaded LoadMemory(const void* bytes, size_t size, const XMLCh* encoding,
                             const LoadSettings& settings)
    {
        return Load(settings,
                    [&](ValidatingXMLParser& parser, Loaded& loaded)
                    {
                        return parser.ParseMemory(static_cast<const unsigned char*>(bytes), size, encoding,
                                                  settings.validation, settings.entityReferences,
                                                  settings.name, &loaded.lines, &loaded.place,
                                                  &loaded.reason);
                    });
    }
};

Loaded LoadDocument(std::string_view bytes, const LoadSettings& settings)
{
    return DocumentLoader::LoadMemory(bytes.data(), bytes.size(), nullptr, settings);
}

Loaded LoadDocument(const Nuv::UniString& text, const LoadSettings& settings)
{
    return DocumentLoader::LoadMemory(text.ToUTF16(), text.GetLength() * sizeof(Nuv::UniChar),
                                      xercesc_3_0::XMLUni::fgXMLChEncodingString, settings);
}

Loaded LoadDocument(const IO::Location& file, const LoadSettings& settings)
{
    return DocumentLoader::Load(settings,
                                [&](ValidatingXMLParser& parser, Loaded& loaded)
                                {
                                    return parser.Parse(file, settings.validation, settings.entityReferences,
                                                        &loaded.lines, &loaded.place, &loaded.reason);
                                });
}

} // namespace NuvXML
