#include "qt/settings.h"

#include "qt/text.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStringList>
#include <QWidget>

namespace quillon {

namespace {

constexpr const char* kWindow = "Window";  // section

QString StoreKey(const std::string& section, const std::string& key)
{
    return ToUnicode(section) + '/' + ToUnicode(key);
}

}  // namespace

std::string QtSettings::Get(const std::string& section, const std::string& key,
                            const std::string& byDefault) const
{
    const QVariant value = store.value(StoreKey(section, key));
    if (!value.isValid())
        return byDefault;
    // A text with a comma that was written by hand, without quotes, is read as a list.
    return FromUnicode(value.toStringList().join(','));
}

void QtSettings::Set(const std::string& section, const std::string& key, const std::string& value)
{
    store.setValue(StoreKey(section, key), ToUnicode(value));
    store.sync();
}

void RememberPlace(const QWidget& window, Settings& settings)
{
    const auto set = [&](const char* key, int number) {
        settings.Set(kWindow, key, std::to_string(number));
    };
    settings.Set(kWindow, "Maximized", window.isMaximized() ? "True" : "False");
    if (window.isMaximized() || window.isFullScreen())
        return;
    set("Left", window.x());
    set("Top", window.y());
    set("Width", window.width());
    set("Height", window.height());
}

void RestorePlace(QWidget& window, const Settings& settings)
{
    const auto number = [&](const char* key) {
        return ToUnicode(settings.Get(kWindow, key, "0")).toInt();
    };
    const QRect place(number("Left"), number("Top"), number("Width"), number("Height"));
    if (!place.isEmpty() && QGuiApplication::screenAt(place.center())) {
        window.move(place.topLeft());
        window.resize(place.size());
    }
    if (settings.Get(kWindow, "Maximized", "False") == "True")
        window.setWindowState(Qt::WindowMaximized);
}

}  // namespace quillon
