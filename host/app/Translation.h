#pragma once

#include <QStringList>
#include <QTranslator>

namespace host {

/// The program's texts, and those of Qt's own dialogs, in the first of the
/// user's languages that there is a catalogue for. English needs none: it is
/// what the sources hold. In effect as long as it lives, within the life of a
/// QCoreApplication; windows that exist already keep their texts.
class Translation
{
public:
    /// \param languages as of QLocale::uiLanguages(), the preferred one first
    explicit Translation(const QStringList &languages);

private:
    QTranslator m_program;
    QTranslator m_toolkit;
};

} // namespace host
