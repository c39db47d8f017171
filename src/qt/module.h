// What the program loads from a module of its own when it first needs it.

#pragma once

#include <QCoreApplication>
#include <QString>

#include <dlfcn.h>
#include <memory>

namespace quillon {

/// Calls a factory function of a module; null if the module or its libraries are missing. A module
/// that is loaded stays.
template <typename Made>
std::unique_ptr<Made> MadeByModule(const QString& module, const char* maker)
{
    const QString path = QCoreApplication::applicationDirPath() + "/../lib/quillon/" + module;
    void* const library = dlopen(qPrintable(path), RTLD_NOW | RTLD_LOCAL);
    const auto make = library ? reinterpret_cast<Made* (*)()>(dlsym(library, maker)) : nullptr;
    return std::unique_ptr<Made>(make ? make() : nullptr);
}

}  // namespace quillon
