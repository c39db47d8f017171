#include "notation/drawing.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace quillon {

namespace {

/// At most two decimals, no trailing zeros, no minus before a zero.
std::string LogNumber(double value)
{
    char buffer[350];
    std::snprintf(buffer, sizeof buffer, "%.2f", value);
    std::string text = buffer;
    for (char& c : text)
        if (c == ',')
            c = '.';  // a host program may have set a locale with a decimal comma
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string Numbers(std::initializer_list<double> values)
{
    std::string text;
    for (double value : values)
        text += ' ' + LogNumber(value);
    return text;
}

std::string Body(const Operation& op)
{
    const std::string width = " w=" + std::to_string(op.Width);
    switch (op.Kind) {
    case Shape::Line:
        return "line" + Numbers({op.X1, op.Y1, op.X2, op.Y2}) + width;
    case Shape::Box:
        return "box" + Numbers({op.X1, op.Y1, op.X2, op.Y2}) + width;
    case Shape::Circle:
        return "circle" + Numbers({op.X1, op.Y1, op.Radius}) + width +
               (op.Filled ? " fill=solid" : " fill=none");
    case Shape::Arc:
        return "arc" + Numbers({op.X1, op.Y1, op.Radius, op.Start, op.End, op.Aspect}) + width;
    case Shape::Text:
        return "text" + Numbers({op.X1, op.Y1}) + " size=" + LogNumber(op.TextFont.Size) +
               " font=" + Quoted(op.TextFont.Name) + (op.TextFont.Bold ? " bold=1 " : " bold=0 ") +
               Quoted(op.Text);
    }
    return {};
}

}  // namespace

std::string Quoted(std::string_view bytes)
{
    std::string text = "\"";
    for (char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (byte < 32 || byte > 126) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", byte);
            text += escape;
        } else {
            text += c;
        }
    }
    return text + '"';
}

void Drawing::Clear()
{
    operations.clear();
    cleared = true;
    ++revision;
}

void Drawing::Show(const Drawing& other)
{
    operations = other.operations;
    cleared = other.cleared;
    ++revision;
}

void Drawing::Add(Operation operation)
{
    ++revision;
    if (operation.Mode != PenMode::Plain) {
        const auto same = std::find(operations.rbegin(), operations.rend(), operation);
        if (same != operations.rend()) {
            operations.erase(std::next(same).base());
            return;
        }
    }
    operations.push_back(std::move(operation));
}

std::string Drawing::Log() const
{
    std::string log = cleared ? "clear\n" : "";
    for (const Operation& op : operations) {
        log += Body(op);
        if (op.Mode != PenMode::Plain)
            log += op.Mode == PenMode::Xor ? " mode=xor" : " mode=invert";
        if (op.Style == PenStyle::Dotted)
            log += " style=dotted";
        log += '\n';
    }
    return log;
}

}  // namespace quillon
