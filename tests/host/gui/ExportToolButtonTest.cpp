#include "tests/host/gui/TestDelegate.h"

#include "host/gui/AppDelegateRegistration.h"
#include "zuCoreGui/CxExportToolButton.h"

#include <QtTest>
#include <QtWidgets>

using Type = CxExportToolButton::ExExportType;

namespace {

const QString filters = QStringLiteral("PNG (*.png);;JPEG (*.jpg);;BMP Bitmaps (*.bmp)");

QImage sampleImage()
{
    QImage image(20, 10, QImage::Format_RGB32);
    image.fill(Qt::darkBlue);
    image.setPixelColor(3, 4, Qt::yellow);
    return image;
}

/// Answers modal windows one after the other as they come up. Closes those that
/// nobody expects, so that a failing test ends.
class User : public QObject
{
public:
    using Answer = std::function<void(QWidget *)>;

    explicit User(std::vector<Answer> answers)
        : m_answers(std::move(answers))
    {
        m_timer.callOnTimeout(this, &User::look);
        m_timer.start(0);
    }
    bool isDone() const { return m_seen == m_answers.size(); }

private:
    void look()
    {
        QWidget *window = QApplication::activeModalWidget();
        if (!window || window == m_last)
            return;
        m_last = window;
        const Answer answer = m_seen < m_answers.size() ? m_answers[m_seen] : [](QWidget *w) { w->close(); };
        ++m_seen;
        // Queued: an answer may open the next window, and a timer does not fire
        // while it is being handled.
        QMetaObject::invokeMethod(
            window, [=] { answer(window); }, Qt::QueuedConnection);
    }

    std::vector<Answer> m_answers;
    std::size_t m_seen = 0;
    QPointer<QWidget> m_last;
    QTimer m_timer;
};

void cancel(QWidget *window)
{
    auto *dialog = qobject_cast<QFileDialog *>(window);
    QVERIFY(dialog);
    dialog->reject();
}

/// Types a name into the save dialog and confirms.
User::Answer save(const QString &name, const QString &filter = QString())
{
    return [=](QWidget *window) {
        auto *dialog = qobject_cast<QFileDialog *>(window);
        QVERIFY(dialog);
        if (!filter.isEmpty()) {
            dialog->selectNameFilter(filter);
            Q_EMIT dialog->filterSelected(filter); // as a choice by hand does
        }
        dialog->findChild<QLineEdit *>()->setText(name);
        QMetaObject::invokeMethod(dialog, "accept");
    };
}

} // namespace

class ExportToolButtonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void startsWithoutTargets();
    void offersTheAddedTargets();
    void keepsToAddedTargets_data();
    void keepsToAddedTargets();
    void aClickTakesTheCurrentTarget();
    void theMenuTakesAnyTarget();

    void putsTheImageOnTheClipboard();
    void doesNothingForOtherTypes();
    void savesInTheChosenFormat_data();
    void savesInTheChosenFormat();
    void remembersTheSavePath();
    void worksWithoutAProgramsDelegate();
    void cancellingSavesNothing();
    void tellsWhyASaveFailed_data();
    void tellsWhyASaveFailed();
    void asksBeforeOverwritingWithTheAddedSuffix();
    void theParentMayGoWhileTheUserChooses();
    void theParentMayGoWhileAFailureIsShown();
    void theDelegateMayGoWhileTheUserChooses();

private:
    QTemporaryDir m_folder;
    TestDelegate m_delegate;
};

void ExportToolButtonTest::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

void ExportToolButtonTest::cleanup()
{
    host::setAppDelegate(nullptr);
    for (const QFileInfo &file : QDir(m_folder.path()).entryInfoList(QDir::Files))
        QFile::remove(file.filePath());
}

void ExportToolButtonTest::startsWithoutTargets()
{
    CxExportToolButton button(nullptr);
    QSignalSpy spy(&button, &CxExportToolButton::exportClicked);
    QVERIFY(button.menu()->isEmpty());
    QCOMPARE(int(button.exportType()), int(Type::eExportNone));
    button.click();
    QCOMPARE(spy.count(), 0);
}

void ExportToolButtonTest::offersTheAddedTargets()
{
    CxExportToolButton button(nullptr);
    button.addSupportedExportType(Type::eExportFile);
    button.addSupportedExportType(Type::eExportClipboard);
    button.addSupportedExportType(Type::eExportFile);
    button.addSupportedExportType(Type::eExportNone);
    button.addSupportedExportType(Type(3));
    QStringList texts;
    for (const QAction *action : button.menu()->actions())
        texts << action->text();
    QCOMPARE(texts, (QStringList{QStringLiteral("To File..."), QStringLiteral("To Clipboard")}));
}

void ExportToolButtonTest::keepsToAddedTargets_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("current");
    QTest::newRow("file") << 1 << 1;
    QTest::newRow("not added") << 2 << 0;
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("negative") << -1 << 0;
    QTest::newRow("from odd settings") << 1000 << 0;
}

void ExportToolButtonTest::keepsToAddedTargets()
{
    QFETCH(int, type);
    QFETCH(int, current);
    CxExportToolButton button(nullptr);
    button.addSupportedExportType(Type::eExportFile);
    button.setExportType(static_cast<Type>(type));
    QCOMPARE(int(button.exportType()), current);
    QCOMPARE(button.menu()->actions().constFirst()->isChecked(), current == 1);
}

void ExportToolButtonTest::aClickTakesTheCurrentTarget()
{
    CxExportToolButton button(nullptr);
    button.addSupportedExportType(Type::eExportFile);
    button.addSupportedExportType(Type::eExportClipboard);
    button.setExportType(Type::eExportClipboard);
    QSignalSpy spy(&button, &CxExportToolButton::exportClicked);
    button.click();
    button.setExportType(Type::eExportFile);
    QCOMPARE(spy.count(), 1);
    button.click();
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toInt(), 2);
    QCOMPARE(spy.at(1).at(0).toInt(), 1);
}

void ExportToolButtonTest::theMenuTakesAnyTarget()
{
    CxExportToolButton button(nullptr);
    button.addSupportedExportType(Type::eExportFile);
    button.addSupportedExportType(Type::eExportClipboard);
    button.setExportType(Type::eExportFile);
    QSignalSpy spy(&button, &CxExportToolButton::exportClicked);
    const QList<QAction *> actions = button.menu()->actions();
    actions[1]->trigger();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), 2);
    QCOMPARE(int(button.exportType()), 2);
    QVERIFY(actions[1]->isChecked() && !actions[0]->isChecked());
    actions[1]->trigger();
    QCOMPARE(spy.count(), 2);
}

void ExportToolButtonTest::putsTheImageOnTheClipboard()
{
    QGuiApplication::clipboard()->clear();
    CxExportToolButton::exportImage(sampleImage(), Type::eExportClipboard, nullptr, filters);
    QCOMPARE(QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32), sampleImage());
}

void ExportToolButtonTest::doesNothingForOtherTypes()
{
    QGuiApplication::clipboard()->clear();
    CxExportToolButton::exportImage(sampleImage(), Type::eExportNone, nullptr, filters);
    CxExportToolButton::exportImage(sampleImage(), Type(3), nullptr, filters);
    QVERIFY(QGuiApplication::clipboard()->image().isNull());
    QVERIFY(!QApplication::activeModalWidget());
}

void ExportToolButtonTest::savesInTheChosenFormat_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("format");
    const QString jpeg = QStringLiteral("JPEG (*.jpg)");
    const QString bmp = QStringLiteral("BMP Bitmaps (*.bmp)");
    const auto s = [](const char *text) { return QString::fromLatin1(text); };
    QTest::newRow("first filter") << s("a") << QString() << s("a.png") << QByteArray("png");
    QTest::newRow("chosen filter") << s("a") << bmp << s("a.bmp") << QByteArray("bmp");
    QTest::newRow("typed suffix") << s("a.jpg") << QString() << s("a.jpg") << QByteArray("jpeg");
    QTest::newRow("typed suffix beats the filter") << s("a.png") << jpeg << s("a.png") << QByteArray("png");
    QTest::newRow("capital suffix") << s("a.BMP") << QString() << s("a.BMP") << QByteArray("bmp");
    QTest::newRow("suffix of no image") << s("run.v2") << jpeg << s("run.v2") << QByteArray("jpeg");
}

void ExportToolButtonTest::savesInTheChosenFormat()
{
    QFETCH(QString, typed);
    QFETCH(QString, filter);
    QFETCH(QString, file);
    QFETCH(QByteArray, format);
    const User user({save(m_folder.filePath(typed), filter)});
    CxExportToolButton::exportImage(sampleImage(), Type::eExportFile, nullptr, filters);
    QVERIFY(user.isDone());
    const QImage image(m_folder.filePath(file), format.constData());
    QCOMPARE(QImageReader::imageFormat(m_folder.filePath(file)), format);
    QCOMPARE(image.size(), QSize(20, 10));
    if (format != "jpeg")
        QCOMPARE(image.convertToFormat(QImage::Format_RGB32), sampleImage());
}

void ExportToolButtonTest::remembersTheSavePath()
{
    QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("sub")));
    m_delegate.savePath = m_folder.path();
    host::setAppDelegate(&m_delegate);
    QString shown;
    const User user({[&](QWidget *window) {
        shown = qobject_cast<QFileDialog *>(window)->directory().path();
        save(m_folder.filePath(QStringLiteral("sub/a.png")))(window);
    }});
    CxExportToolButton::exportImage(sampleImage(), Type::eExportFile, nullptr, filters);
    QVERIFY(user.isDone());
    QCOMPARE(shown, m_folder.path());
    QCOMPARE(m_delegate.savePath, m_folder.filePath(QStringLiteral("sub")));
    QVERIFY(QFile::exists(m_folder.filePath(QStringLiteral("sub/a.png"))));
}

void ExportToolButtonTest::worksWithoutAProgramsDelegate()
{
    const User user({save(m_folder.filePath(QStringLiteral("a.png")))});
    CxExportToolButton::exportImage(sampleImage(), Type::eExportFile, nullptr, filters);
    QVERIFY(QFile::exists(m_folder.filePath(QStringLiteral("a.png"))));
}

void ExportToolButtonTest::cancellingSavesNothing()
{
    m_delegate.savePath = m_folder.path();
    host::setAppDelegate(&m_delegate);
    const User user({cancel});
    CxExportToolButton::exportImage(sampleImage(), Type::eExportFile, nullptr, filters);
    QVERIFY(user.isDone());
    QVERIFY(QDir(m_folder.path()).entryList(QDir::Files).isEmpty());
    QCOMPARE(m_delegate.savePath, m_folder.path());
}

void ExportToolButtonTest::tellsWhyASaveFailed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("empty");
    // Even root cannot create a file there.
    QTest::newRow("folder takes no files") << QStringLiteral("/proc/self/a.png") << false;
    QTest::newRow("empty image") << m_folder.filePath(QStringLiteral("a.png")) << true;
}

void ExportToolButtonTest::tellsWhyASaveFailed()
{
    QFETCH(QString, path);
    QFETCH(bool, empty);
    QString told;
    const User user({save(path), [&told](QWidget *window) {
                         auto *box = qobject_cast<QMessageBox *>(window);
                         QVERIFY(box);
                         told = box->text();
                         box->accept();
                     }});
    CxExportToolButton::exportImage(empty ? QImage() : sampleImage(), Type::eExportFile, nullptr, filters);
    QVERIFY(user.isDone());
    QVERIFY(told.contains(path));
    QVERIFY2(told.section(QLatin1Char('\n'), 1).size() > 5, qPrintable(told)); // the reason
    QVERIFY(!QFile::exists(path));
}

void ExportToolButtonTest::asksBeforeOverwritingWithTheAddedSuffix()
{
    const QString path = m_folder.filePath(QStringLiteral("a.png"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("old") == 3);
    file.close();
    const auto refuse = [](QWidget *window) {
        auto *box = qobject_cast<QMessageBox *>(window);
        QVERIFY(box);
        box->button(QMessageBox::No)->click();
    };
    // After the refusal the dialog is there again.
    const User user({save(m_folder.filePath(QStringLiteral("a"))), refuse, cancel});
    CxExportToolButton::exportImage(sampleImage(), Type::eExportFile, nullptr, filters);
    QVERIFY(user.isDone());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("old"));
}

void ExportToolButtonTest::theParentMayGoWhileTheUserChooses()
{
    m_delegate.savePath = m_folder.path();
    host::setAppDelegate(&m_delegate);
    auto *parent = new QWidget;
    QPointer<QWidget> dialog;
    const User user({[&](QWidget *window) {
        dialog = window;
        delete parent;
    }});
    CxExportToolButton::exportImage(sampleImage(), Type::eExportFile, parent, filters);
    QVERIFY(user.isDone());
    QVERIFY(!dialog);
    QVERIFY(QDir(m_folder.path()).entryList(QDir::Files).isEmpty());
    QCOMPARE(m_delegate.savePath, m_folder.path());
}

void ExportToolButtonTest::theParentMayGoWhileAFailureIsShown()
{
    auto *parent = new QWidget;
    QPointer<QWidget> box;
    const User user({save(QStringLiteral("/proc/self/a.png")), [&](QWidget *window) {
                         box = window;
                         delete parent;
                     }});
    CxExportToolButton::exportImage(sampleImage(), Type::eExportFile, parent, filters);
    QVERIFY(user.isDone());
    QVERIFY(!box);
}

void ExportToolButtonTest::theDelegateMayGoWhileTheUserChooses()
{
    auto leaving = std::make_unique<TestDelegate>();
    leaving->savePath = m_folder.path();
    host::setAppDelegate(leaving.get());
    const QString path = m_folder.filePath(QStringLiteral("a.png"));
    const User user({[&](QWidget *window) {
        host::setAppDelegate(&m_delegate);
        leaving.reset();
        save(path)(window);
    }});
    m_delegate.savePath.clear();
    CxExportToolButton::exportImage(sampleImage(), Type::eExportFile, nullptr, filters);
    QVERIFY(user.isDone());
    QVERIFY(QFile::exists(path));
    QCOMPARE(m_delegate.savePath, m_folder.path());
}

QTEST_MAIN(ExportToolButtonTest)
#include "ExportToolButtonTest.moc"
