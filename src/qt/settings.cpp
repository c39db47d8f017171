#include "qt/settings.h"

#include "qt/text.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStringList>
#include <QWidget>

namespace quillon {

namespace {

struct PlaceStore : QSettings {
    PlaceStore() : QSettings(IniFormat, UserScope, "Quillon", "Window") {}
};

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

void RememberPlace(const QWidget& window)
{
    PlaceStore store;
    store.setValue("Maximized", window.isMaximized());
    if (window.isMaximized() || window.isFullScreen())
        return;
    store.setValue("Left", window.x());
    store.setValue("Top", window.y());
    store.setValue("Width", window.width());
    store.setValue("Height", window.height());
}

void RestorePlace(QWidget& window)
{
    const PlaceStore store;
    const auto number = [&](const char* key) { return store.value(key).toInt(); };
    const QRect place(number("Left"), number("Top"), number("Width"), number("Height"));
    if (!place.isEmpty() && QGuiApplication::screenAt(place.center())) {
        window.move(place.topLeft());
        window.resize(place.size());
    }
    if (store.value("Maximized").toBool())
        window.setWindowState(Qt::WindowMaximized);
}

}  // namespace quillon
