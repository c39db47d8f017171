#include "store/fault.h"

#include <utility>

namespace quillon {

const char* ErrorWords(Error error)
{
    switch (error) {
    case Error::InvalidProcedureCall:
        return "invalid procedure call";
    case Error::Overflow:
        return "overflow";
    case Error::SubscriptOutOfRange:
        return "subscript out of range";
    case Error::DivisionByZero:
        return "division by zero";
    case Error::FileNotFound:
        return "file not found";
    case Error::InputPastEnd:
        return "input past end of file";
    case Error::PathFileAccess:
        return "path/file access error";
    case Error::ObjectRequired:
        return "object required";
    case Error::ControlArrayElement:
        return "control array element does not exist";
    case Error::InvalidPropertyValue:
        return "invalid property value";
    }
    return "unknown error";
}

Fault::Fault(Error error) : Fault(error, {}) {}

Fault::Fault(Error error, std::string explanation)
    : std::runtime_error("run-time error " + std::to_string(static_cast<int>(error)) + ": " +
                         ErrorWords(error)),
      number(error), words(std::move(explanation))
{
}

Fault Fault::OfFile(Error error, const std::string& path, const std::string& reason)
{
    Fault fault(error);
    fault.file = path + (reason.empty() ? "" : " (" + reason + ")");
    return fault;
}

}  // namespace quillon
