#include "host/app/Translation.h"

#include <QCoreApplication>
#include <QDebug>
#include <QLibraryInfo>

// Outside of any namespace, which the macro asks for.
static void makeCataloguesKnown()
{
    Q_INIT_RESOURCE(velmora);
}

namespace host {

Translation::Translation(const QStringList &languages)
{
    makeCataloguesKnown();
    for (QString language : languages) {
        // Somebody who reads English and then German gets no German.
        if (language == QLatin1String("en") || language.startsWith(QLatin1String("en-")))
            return;
        language.replace(QLatin1Char('-'), QLatin1Char('_'));
        if (!m_program.load(QStringLiteral(":/translations/velmora_") + language))
            continue;
        QCoreApplication::installTranslator(&m_program);
        const QString folder = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
        if (m_toolkit.load(QStringLiteral("qtbase_") + language, folder))
            QCoreApplication::installTranslator(&m_toolkit);
        else
            qInfo().noquote() << "Qt's own texts stay English: no qtbase catalogue in" << folder;
        return;
    }
}

} // namespace host
