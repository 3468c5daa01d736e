#include "host/app/LogWindow.h"
#include "host/app/LogStore.h"
#include "host/app/Theme.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>
#include <QToolButton>
#include <QtTest>

using namespace host;

Q_DECLARE_METATYPE(QtMsgType)

namespace {

LogLimits limitsOf(int lines)
{
    LogLimits limits;
    limits.lines = lines;
    return limits;
}

} // namespace

class LogWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void filtersByLevel_data();
    void filtersByLevel();
    void filtersByText_data();
    void filtersByText();
    void filtersWhatComesLater();
    void followsTheNewestLine();
    void letsTheUserReadOn();
    void keepsThePlaceWhileOldLinesGo();
    void followsOnRequest();
    void followsWhileHidden();
    void copiesTheSelection();
    void copiesAllShownWithoutASelection();
    void clears();
    void tellsWhatIsLost();
    void longLinesShowBothEnds();
    void coloursAreReadable_data();
    void coloursAreReadable();

private:
    void enter(QtMsgType level, const QString &text, const QString &category = {});
    void enterMany(int count);
    QStringList shown() const;
    QString topLine() const;
    template <class Widget> Widget *child(const char *name) const
    {
        return m_window->findChild<Widget *>(name);
    }

    std::unique_ptr<LogStore> m_store;
    std::unique_ptr<LogWindow> m_window;
    QTableView *m_table = nullptr;
    QScrollBar *m_bar = nullptr;
    QCheckBox *m_follow = nullptr;
    int m_next = 0;
};

void LogWindowTest::init()
{
    m_next = 0;
    m_store = std::make_unique<LogStore>(nullptr, limitsOf(300));
    m_window = std::make_unique<LogWindow>(*m_store);
    m_window->resize(700, 300);
    m_table = child<QTableView>("logTable");
    m_bar = m_table->verticalScrollBar();
    m_follow = child<QCheckBox>("logFollow");
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void LogWindowTest::cleanup()
{
    m_window.reset();
    m_store.reset();
}

void LogWindowTest::enter(QtMsgType level, const QString &text, const QString &category)
{
    LogLine line;
    line.level = level;
    line.text = text;
    line.category = category;
    m_store->enter(line);
    m_store->deliver();
}

void LogWindowTest::enterMany(int count)
{
    for (int i = 0; i < count; ++i) {
        LogLine line;
        line.text = QString::number(m_next++);
        m_store->enter(line);
    }
    m_store->deliver();
}

QStringList LogWindowTest::shown() const
{
    QStringList list;
    for (int row = 0; row < m_table->model()->rowCount(); ++row)
        list += m_table->model()->index(row, LogStore::TextColumn).data().toString();
    return list;
}

QString LogWindowTest::topLine() const
{
    return m_table->model()->index(m_table->rowAt(0), LogStore::TextColumn).data().toString();
}

void LogWindowTest::filtersByLevel_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("all") << "All" << QStringList{"debug", "warning", "info", "fatal", "critical"};
    QTest::newRow("information") << "Information and worse"
                                 << QStringList{"warning", "info", "fatal", "critical"};
    QTest::newRow("warnings") << "Warnings and worse" << QStringList{"warning", "fatal", "critical"};
    QTest::newRow("critical") << "Critical and worse" << QStringList{"fatal", "critical"};
}

void LogWindowTest::filtersByLevel()
{
    QFETCH(QString, choice);
    enter(QtDebugMsg, "debug");
    enter(QtWarningMsg, "warning");
    enter(QtInfoMsg, "info");
    enter(QtFatalMsg, "fatal");
    enter(QtCriticalMsg, "critical");
    auto *levels = child<QComboBox>("logLevels");
    levels->setCurrentIndex(levels->count() - 1);
    levels->setCurrentText(choice);
    QTEST(shown(), "shown");
}

void LogWindowTest::filtersByText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("part") << "pen" << QStringList{"Open (1)", "spent"};
    QTest::newRow("other case") << "OPEN" << QStringList{"Open (1)"};
    QTest::newRow("no pattern") << ".*" << QStringList{};
    QTest::newRow("brackets") << "(1" << QStringList{"Open (1)"};
    QTest::newRow("category") << "qt.q" << QStringList{"closed"};
    QTest::newRow("behind a line break") << "second" << QStringList{"first↵second"};
}

void LogWindowTest::filtersByText()
{
    QFETCH(QString, text);
    enter(QtInfoMsg, "Open (1)");
    enter(QtInfoMsg, "spent");
    enter(QtInfoMsg, "closed", "qt.qpa");
    enter(QtInfoMsg, "first\nsecond");
    QTest::keyClicks(child<QLineEdit>("logSearch"), text);
    QTEST(shown(), "shown");
    child<QLineEdit>("logSearch")->clear();
    QCOMPARE(shown().size(), 4);
}

void LogWindowTest::filtersWhatComesLater()
{
    child<QComboBox>("logLevels")->setCurrentText("Warnings and worse");
    child<QLineEdit>("logSearch")->setText("camera");
    enter(QtInfoMsg, "camera opened");
    enter(QtWarningMsg, "camera lost");
    enter(QtWarningMsg, "disk full");
    QCOMPARE(shown(), QStringList{"camera lost"});
    QCOMPARE(child<QLabel>("logStatus")->text(), QString("Lines: 3, shown: 1"));
}

void LogWindowTest::followsTheNewestLine()
{
    for (int batch = 0; batch < 10; ++batch) {
        enterMany(70);
        QVERIFY(m_follow->isChecked());
        QVERIFY(m_bar->maximum() > 0);
        QCOMPARE(m_bar->value(), m_bar->maximum());
    }
    m_window->resize(700, 200);
    QCOMPARE(m_bar->value(), m_bar->maximum());
    child<QLineEdit>("logSearch")->setText("6");
    QCOMPARE(m_bar->value(), m_bar->maximum());
    QVERIFY(m_follow->isChecked());
}

void LogWindowTest::letsTheUserReadOn()
{
    enterMany(100);
    QWheelEvent wheel(QPointF(50, 50), m_table->mapToGlobal(QPoint(50, 50)), QPoint(), QPoint(0, 240),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_table->viewport(), &wheel);
    QVERIFY(!m_follow->isChecked());
    const int value = m_bar->value();
    QVERIFY(value < m_bar->maximum());
    const QString top = topLine();
    enterMany(50);
    QCOMPARE(topLine(), top);
    QCOMPARE(m_bar->value(), value);

    m_bar->setValue(m_bar->maximum());
    QVERIFY(m_follow->isChecked());
    enterMany(50);
    QCOMPARE(m_bar->value(), m_bar->maximum());
}

void LogWindowTest::keepsThePlaceWhileOldLinesGo()
{
    enterMany(300);
    m_bar->setValue(200);
    QCOMPARE(topLine(), QString("200"));
    enterMany(40);
    QCOMPARE(m_store->dropped(), 40u);
    QCOMPARE(topLine(), QString("200"));
    QVERIFY(!m_follow->isChecked());
    enterMany(300);
    QCOMPARE(m_store->dropped(), 340u);
    QCoreApplication::processEvents();
    QVERIFY(!m_follow->isChecked());
}

void LogWindowTest::followsOnRequest()
{
    enterMany(100);
    m_bar->setValue(3);
    QVERIFY(!m_follow->isChecked());
    m_follow->click();
    QCOMPARE(m_bar->value(), m_bar->maximum());
    m_follow->click();
    enterMany(100);
    QVERIFY(m_bar->value() < m_bar->maximum());
}

void LogWindowTest::followsWhileHidden()
{
    m_window->hide();
    enterMany(200);
    m_window->show();
    QCOMPARE(m_bar->value(), m_bar->maximum());
    QVERIFY(m_bar->maximum() > 100);
}

void LogWindowTest::copiesTheSelection()
{
    enterMany(5);
    enter(QtCriticalMsg, "two\nlines");
    auto *selection = m_table->selectionModel();
    selection->select(m_table->model()->index(5, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    selection->select(m_table->model()->index(1, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QGuiApplication::clipboard()->clear();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_table->setFocus();
    QTest::keyClick(m_table, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             wholeLine(m_store->line(1)) + '\n' + wholeLine(m_store->line(5)));
    QVERIFY(QGuiApplication::clipboard()->text().endsWith("\tCritical\t0x0\t\ttwo\nlines"));
}

void LogWindowTest::copiesAllShownWithoutASelection()
{
    enter(QtInfoMsg, "hidden");
    enter(QtWarningMsg, "one");
    enter(QtWarningMsg, "two");
    child<QComboBox>("logLevels")->setCurrentText("Warnings and worse");
    child<QToolButton>("btnCopyLog")->click();
    QCOMPARE(QGuiApplication::clipboard()->text(),
             wholeLine(m_store->line(1)) + '\n' + wholeLine(m_store->line(2)));
}

void LogWindowTest::clears()
{
    enterMany(100);
    child<QToolButton>("btnClearLog")->click();
    QCOMPARE(m_store->rowCount(), 0);
    QCOMPARE(shown(), QStringList());
    QCOMPARE(child<QLabel>("logStatus")->text(), QString("Lines: 0, shown: 0"));
    enterMany(100);
    QCOMPARE(m_bar->value(), m_bar->maximum());
}

void LogWindowTest::tellsWhatIsLost()
{
    const QLocale before;
    QLocale::setDefault(QLocale::c());
    enterMany(312);
    QCOMPARE(child<QLabel>("logStatus")->text(),
             QString("Lines: 300, shown: 300 (too many to keep; oldest dropped: 12)"));
    QLocale::setDefault(before);
}

/// A line begins with where it came from and ends with what went wrong.
void LogWindowTest::longLinesShowBothEnds()
{
    const QString middle(500, 'x');
    for (const QString &text : {"A" + middle + "A", "A" + middle + "B", "B" + middle + "A"})
        enter(QtInfoMsg, text);
    m_table->clearSelection();
    const auto picture = [this](int row) {
        const QModelIndex index = m_table->model()->index(row, LogStore::TextColumn);
        return m_table->viewport()->grab(m_table->visualRect(index)).toImage();
    };
    m_table->setAlternatingRowColors(false);
    QVERIFY(picture(0) != picture(1));
    QVERIFY(picture(0) != picture(2));
}

void LogWindowTest::coloursAreReadable_data()
{
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QtMsgType>("level");
    for (const auto &[name, colour] :
         {std::pair("light", QColor(Qt::white)), std::pair("dark", QColor(30, 30, 34))}) {
        for (const QtMsgType level : {QtDebugMsg, QtInfoMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg})
            QTest::addRow("%s %d", name, int(level)) << colour << level;
    }
}

void LogWindowTest::coloursAreReadable()
{
    QFETCH(QColor, ground);
    QFETCH(QtMsgType, level);
    const QPalette palette(ground);
    m_window->setPalette(palette);
    enter(level, QString(20, QChar(0x2588))); // full blocks: flat areas of the text's colour
    const QModelIndex index = m_table->model()->index(0, LogStore::TextColumn);
    const QRect cell = m_table->visualRect(index);
    const QImage picture = m_table->viewport()->grab(cell).toImage();
    const QColor base = palette.color(QPalette::Base);
    QColor text = base;
    for (int x = 0; x < picture.width(); ++x) { // past the blurred edges of the blocks
        const QColor pixel = picture.pixelColor(x, picture.height() / 2);
        if (Theme::contrast(pixel, base) > Theme::contrast(text, base))
            text = pixel;
    }
    QVERIFY2(Theme::contrast(text, base) >= 4.5, qPrintable(text.name()));
    const bool plain = text.rgb() == palette.color(QPalette::Text).rgb();
    QCOMPARE(plain, level == QtInfoMsg);
}

QTEST_MAIN(LogWindowTest)
#include "LogWindowTest.moc"
