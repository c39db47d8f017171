#include "xml/xml_document.h"

#include <pugixml.hpp>

#include <algorithm>
#include <charconv>

namespace quillon {

namespace {

constexpr int kDeepest = 64;
constexpr std::size_t kMostElements = 400'000;  // some 100 MB

class Converter {
public:
    XmlElement Convert(const pugi::xml_node& node, int depth)
    {
        if (depth > kDeepest)
            throw XmlError("Its elements are nested too deeply for a score.");
        if (++elements > kMostElements)
            throw XmlError("It has too many elements for a score.");
        XmlElement element;
        element.Name = node.name();
        for (const pugi::xml_attribute& attribute : node.attributes())
            element.Attributes.push_back({attribute.name(), attribute.value()});
        for (const pugi::xml_node& child : node.children()) {
            if (child.type() == pugi::node_element)
                element.Children.push_back(Convert(child, depth + 1));
            else if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
                element.Text += child.value();
        }
        return element;
    }

private:
    std::size_t elements = 0;
};

}  // namespace

const XmlElement* XmlElement::Find(std::string_view name) const
{
    const auto found = std::ranges::find(Children, name, &XmlElement::Name);
    return found == Children.end() ? nullptr : &*found;
}

std::string_view XmlElement::TextOf(std::string_view name) const
{
    const XmlElement* child = Find(name);
    return child ? std::string_view(child->Text) : std::string_view();
}

int XmlElement::NumberOf(std::string_view name, int otherwise) const
{
    std::string_view text = TextOf(name);
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    int number = otherwise;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string_view XmlElement::Attribute(std::string_view name) const
{
    const auto found = std::ranges::find(Attributes, name, &XmlAttribute::Name);
    return found == Attributes.end() ? std::string_view() : std::string_view(found->Value);
}

XmlElement ParseXml(std::string_view bytes)
{
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(bytes.data(), bytes.size());
    if (!result) {
        const auto at = static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0));
        const auto before = bytes.substr(0, at);
        throw XmlError("Line " + std::to_string(1 + std::ranges::count(before, '\n')) +
                       ": it is no XML from here on (" + result.description() + ").");
    }
    return Converter().Convert(document.document_element(), 0);
}

}  // namespace quillon
