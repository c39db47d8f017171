#include "qt/settings.h"

#include "qt/text.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStringList>
#include <QWidget>

#include <algorithm>

namespace quillon {

namespace {

constexpr int kFarPixels = 100000;  // beyond any desktop

struct PlaceStore : QSettings {
    PlaceStore() : QSettings(IniFormat, UserScope, "Quillon", "Window") {}
};

QString StoreKey(const std::string& section, const std::string& key)
{
    return ToUnicode(section) + '/' + ToUnicode(key);
}

/// A position clamped to `start` and the pixels that are free after it, if there are any.
int Held(int place, int start, int free)
{
    return std::clamp(place, start, start + std::max(free, 0));
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
    store.setValue("Frame", window.frameGeometry().size() - window.size());
}

void RestorePlace(QWidget& window)
{
    const PlaceStore store;
    const auto number = [&](const char* key) {
        return std::clamp(store.value(key).toInt(), -kFarPixels, kFarPixels);
    };
    const QRect place(number("Left"), number("Top"), number("Width"), number("Height"));
    if (!place.isEmpty()) {
        const QScreen* screen = QGuiApplication::screenAt(place.center());
        const QRect room = (screen ? screen : window.screen())->availableGeometry();
        const QSize frame = store.value("Frame").toSize().expandedTo(QSize(0, 0));
        const QSize least = window.minimumSizeHint().expandedTo(QSize(0, 0));
        const QSize size = place.size().boundedTo(room.size() - frame).expandedTo(least);
        window.move(Held(place.left(), room.left(), room.width() - size.width() - frame.width()),
                    Held(place.top(), room.top(), room.height() - size.height() - frame.height()));
        window.resize(size);
    }
    if (store.value("Maximized").toBool())
        window.setWindowState(Qt::WindowMaximized);
}

}  // namespace quillon
