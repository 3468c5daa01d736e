#include "plugin/Translation.h"

#include <QCoreApplication>
#include <QLocale>

Translation::Translation()
{
    const QStringList languages = QLocale().uiLanguages();
    for (QString language : languages) {
        // Somebody who reads English and then German gets no German.
        if (language == QLatin1String("en") || language.startsWith(QLatin1String("en-")))
            return;
        language.replace(QLatin1Char('-'), QLatin1Char('_'));
        if (m_translator.load(QStringLiteral(":/translations/mrdDataThroughputGraph_") + language)) {
            QCoreApplication::installTranslator(&m_translator);
            return;
        }
    }
}
