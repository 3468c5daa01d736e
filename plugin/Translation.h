#pragma once

#include <QTranslator>

/// The plug-in's own texts in the language of the application, whichever host
/// that is: the first of QLocale().uiLanguages() that there is a catalogue for.
/// English needs none. In effect as long as it lives.
class Translation
{
public:
    Translation();

private:
    QTranslator m_translator;
};
