// Writes what the user can read in the program's windows into the file that
// VELMORA_TEST_TEXTS names, a text a line, and ends the program.

#include "zuCoreGui/CxPlugin.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QTimer>

namespace {

QStringList textsOf(const QWidget &widget)
{
    QStringList texts{widget.windowTitle()};
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        texts.append(button->text());
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        texts.append(label->text());
    if (const auto *header = qobject_cast<const QHeaderView *>(&widget)) {
        for (int i = 0; i < header->count(); ++i)
            texts.append(header->model()->headerData(i, header->orientation()).toString());
    }
    if (const auto *table = qobject_cast<const QTableWidget *>(&widget)) {
        for (int cell = 0; cell < table->rowCount() * table->columnCount(); ++cell) {
            const QTableWidgetItem *item =
                table->item(cell / table->columnCount(), cell % table->columnCount());
            texts.append(item ? item->text() : QString());
        }
    }
    for (const QAction *action : widget.actions())
        texts.append(action->text());
    return texts;
}

void writeTexts()
{
    const QDialogButtonBox standard(QDialogButtonBox::Cancel);
    QFile file(QString::fromLocal8Bit(qgetenv("VELMORA_TEST_TEXTS")));
    if (file.open(QIODevice::WriteOnly)) {
        for (const QWidget *widget : QApplication::allWidgets()) {
            for (QString text : textsOf(*widget))
                file.write(text.replace('\n', "\\n").toUtf8() + '\n');
        }
    }
    file.close();
    QApplication::closeAllWindows();
}

} // namespace

class TextsPlugin : public QObject, public CxPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.korvant.Velmora.TextsPlugin")
    Q_INTERFACES(CxPlugin)

public:
    bool init() override
    {
        // In the program's event loop, when all windows are there.
        QTimer::singleShot(0, qApp, writeTexts);
        return true;
    }
    void finish() override {}
    void loadSettings(QSettings * /*settings*/) override {}
    void saveSettings(QSettings * /*settings*/) override {}
    QString name() const override { return "Texts plug-in"; }
    QString author() const override { return "Tester"; }
    QString description() const override { return "Writes what the user can read."; }
    using CxPlugin::version;
    void version(int &major, int &minor, int &build) const override { major = minor = build = 1; }
    QString website() const override { return {}; }
};

#include "TextsPlugin.moc"
