#include "host/app/Translation.h"

#include "host/app/Application.h"
#include "host/app/Viewer.h"

#include <QDialogButtonBox>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QtTest>

using host::Translation;

class TranslationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstLanguageWithACatalogue_data();
    void firstLanguageWithACatalogue();
    void endsWithItsObject();
    void standardButtons();
    void acceleratorsAreUnique_data();
    void acceleratorsAreUnique();
};

namespace {

QString warning()
{
    return QCoreApplication::translate("host::LogLine", "Warning");
}

/// Every menu that can be opened from the bar, the bar itself first.
QList<QList<QAction *>> menusOf(const QMenuBar &bar)
{
    QList<QList<QAction *>> menus{bar.actions()};
    for (int i = 0; i < menus.size(); ++i) {
        for (const QAction *action : QList<QAction *>(menus.at(i))) {
            if (action->menu())
                menus.append(action->menu()->actions());
        }
    }
    return menus;
}

} // namespace

void TranslationTest::firstLanguageWithACatalogue_data()
{
    QTest::addColumn<QStringList>("languages");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << QStringList{} << "Warning";
    QTest::newRow("C") << QStringList{"C"} << "Warning";
    QTest::newRow("German") << QStringList{"de"} << "Warnung";
    QTest::newRow("of a country") << QStringList{"de-CH"} << "Warnung";
    QTest::newRow("with a script") << QStringList{"de-Latn-DE"} << "Warnung";
    QTest::newRow("English first") << QStringList{"en-GB", "en", "de"} << "Warning";
    QTest::newRow("English of no country first") << QStringList{"en", "de"} << "Warning";
    QTest::newRow("German first") << QStringList{"de-DE", "de", "en"} << "Warnung";
    QTest::newRow("no catalogue") << QStringList{"fi-FI", "fi"} << "Warning";
    QTest::newRow("no catalogue, then German") << QStringList{"fi-FI", "fi", "de"} << "Warnung";
}

void TranslationTest::firstLanguageWithACatalogue()
{
    QFETCH(QStringList, languages);
    QFETCH(QString, expected);
    const Translation translation(languages);
    QCOMPARE(warning(), expected);
}

void TranslationTest::endsWithItsObject()
{
    {
        const Translation translation({"de"});
        QCOMPARE(warning(), QString("Warnung"));
    }
    QCOMPARE(warning(), QString("Warning"));
    const QDialogButtonBox box(QDialogButtonBox::Cancel);
    QCOMPARE(box.button(QDialogButtonBox::Cancel)->text().remove('&'), QString("Cancel"));
}

void TranslationTest::standardButtons()
{
    const Translation translation({"de-AT", "de"});
    const QDialogButtonBox box(QDialogButtonBox::Cancel);
    QCOMPARE(box.button(QDialogButtonBox::Cancel)->text().remove('&'), QString("Abbrechen"));
}

void TranslationTest::acceleratorsAreUnique_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << "en";
    QTest::newRow("German") << "de";
}

void TranslationTest::acceleratorsAreUnique()
{
    QFETCH(QString, language);
    const Translation translation({language});
    const QTemporaryDir folder;
    host::ViewerOptions options;
    options.loadPlugins = false;
    options.settingsFile = folder.filePath("settings.ini");
    host::Viewer viewer(options, {});
    const auto menus = menusOf(*viewer.window().menuBar());
    QVERIFY(menus.size() > 6);
    for (const QList<QAction *> &menu : menus) {
        QMap<QString, QString> owners;
        for (const QAction *action : menu) {
            const QString key = QKeySequence::mnemonic(action->text()).toString();
            if (key.isEmpty())
                continue;
            QVERIFY2(!owners.contains(key), qPrintable(owners[key] + " and " + action->text()));
            owners[key] = action->text();
        }
    }
}

int main(int argc, char *argv[])
{
    host::Application application(argc, argv);
    TranslationTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "TranslationTest.moc"
