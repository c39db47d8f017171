#include "qt/settings.h"

#include "qt/text.h"

#include <QStringList>

namespace quillon {

namespace {

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

}  // namespace quillon
