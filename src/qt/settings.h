// The user's settings, in an INI file.

#pragma once

#include "platform/settings.h"

#include <QSettings>

class QWidget;

namespace quillon {

/// A store that cannot be read gives the defaults; one that cannot be written keeps what was set
/// until the end of the run.
class QtSettings : public Settings {
public:
    std::string Get(const std::string& section, const std::string& key,
                    const std::string& byDefault) const override;
    void Set(const std::string& section, const std::string& key, const std::string& value) override;

private:
    QSettings store{QSettings::IniFormat, QSettings::UserScope, "Quillon"};
};

/// The position and size of the main window, in a store of its own. It comes back as large as fits
/// on the screen, and in full view, also when it was left on a larger screen or on one that is
/// gone. Of a window that fills the screen, the place before is remembered too.
void RememberPlace(const QWidget& window);
void RestorePlace(QWidget& window);

}  // namespace quillon
