#include "tfcore/tfglobalcss.h"

#include "tfcore/tfcore.h"

#include <QFile>
#include <QSettings>

// The colours live in the skin's "skin.ini", section Colors; a skin without
// the file falls back to a light or, for "black", a dark set.
QColor TFGlobalCss::getTipsColorByIndex(int index)
{
    static const char *const keys[] = {"Colors/tips", "Colors/link", "Colors/linkVisited"};
    if (index < 0 || index > 2)
        return QColor();

    TFCore *core = TFCore::instance();
    const bool dark = core->getCurrentSkinId().compare(QLatin1String("black"), Qt::CaseInsensitive) == 0;
    static const char *const light[] = {"#fff8dc", "#0060e3", "#6a3fb5"};
    static const char *const darkSet[] = {"#2b3038", "#4da3ff", "#b18cff"};
    QColor color(dark ? darkSet[index] : light[index]);

    const QString iniPath = core->getCurrentSkinPath(QStringLiteral("skin.ini"));
    if (QFile::exists(iniPath)) {
        QSettings settings(iniPath, QSettings::IniFormat);
        const QColor configured(settings.value(QLatin1String(keys[index])).toString());
        if (configured.isValid())
            color = configured;
    }
    return color;
}
