// An XML document as a value.
//
// The library behind it neither fetches anything nor expands entities; what is too large or too
// deep for a score is refused.

#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

struct XmlAttribute {
    std::string Name;
    std::string Value;
};

struct XmlElement {
    std::string Name;
    std::string Text;  // all that stands directly in it, in UTF-8
    std::vector<XmlAttribute> Attributes;
    std::vector<XmlElement> Children;

    /// The first child of that name; null if there is none.
    const XmlElement* Find(std::string_view name) const;

    /// The text of the first child of that name; "" without one.
    std::string_view TextOf(std::string_view name) const;

    /// The number that the text of such a child begins with; `otherwise` without one.
    int NumberOf(std::string_view name, int otherwise) const;

    /// The attribute's value; "" without one.
    std::string_view Attribute(std::string_view name) const;
};

/// what() says where, and what is wrong.
class XmlError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The root of a document. Bytes that are none are an XmlError.
XmlElement ParseXml(std::string_view bytes);

}  // namespace quillon
