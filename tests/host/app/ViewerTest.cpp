#include "host/app/Viewer.h"

#include "host/app/CameraPanel.h"
#include "host/core/HostCore.h"
#include "host/gui/AppDelegateRegistration.h"
#include "host/program/SimulatedCameras.h"
#include "tests/host/app/PluginFiles.h"

#include <QDockWidget>
#include <QMessageBox>
#include <QTimer>
#include <QtTest>

#include <csignal>

using host::Viewer;
using host::ViewerOptions;

class ViewerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void endsInOrder();
    void camerasOpenAgain();
    void pluginSettingsReturn();
    void closingTheWindowEndsTheRun();
    void signalEndsTheRun_data();
    void signalEndsTheRun();
    void signalDuringADialog();
    void noPlugins();
    void levelForThisRun();
    void damagedSettingsAreLogged();

private:
    ViewerOptions options() const;
    QStringList traced() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

std::vector<std::unique_ptr<host::CameraBackend>> simulated(int count)
{
    std::vector<std::unique_ptr<host::CameraBackend>> backends;
    backends.push_back(host::simulatedCameras(std::to_string(count)).backend);
    return backends;
}

std::size_t openCount()
{
    std::size_t open = 0;
    for (const host::HostCore::Camera &camera : host::HostCore::instance().cameras())
        open += camera.handle != nullptr;
    return open;
}

} // namespace

void ViewerTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("VELMORA_TEST_TRACE", QFile::encodeName(m_folder->filePath("trace")));
}

ViewerOptions ViewerTest::options() const
{
    ViewerOptions options;
    options.pluginPaths = QStringList{QStringLiteral(PLUGIN_FIXTURES)};
    options.settingsFile = m_folder->filePath("settings.ini");
    return options;
}

QStringList ViewerTest::traced() const
{
    return QString::fromUtf8(files::contents(m_folder->filePath("trace"))).split('\n', Qt::SkipEmptyParts);
}

void ViewerTest::endsInOrder()
{
    ViewerOptions all = options();
    all.openAll = true;
    Viewer viewer(all, simulated(2));
    viewer.window().show();
    QCOMPARE(openCount(), std::size_t(2));
    viewer.shutDown();
    QCOMPARE(traced(), QStringList({"init", "loadSettings 0", "saveSettings", "finish",
                                    "widget destroyed, 2 cameras open"}));
    QVERIFY(host::HostCore::instance().cameras().empty());
    viewer.shutDown(); // nothing more
    QCOMPARE(traced().size(), 5);
}

void ViewerTest::camerasOpenAgain()
{
    ViewerOptions all = options();
    all.openAll = true;
    Viewer(all, simulated(2)).window().show();
    {
        const Viewer viewer(options(), simulated(3));
        QCOMPARE(openCount(), std::size_t(2)); // not the third, which is new
    }
    {
        Viewer viewer(options(), {}); // they are not there: nothing to open, nothing breaks
        QCOMPARE(openCount(), std::size_t(0));
    }
}

void ViewerTest::pluginSettingsReturn()
{
    Viewer(options(), {}).shutDown();
    Viewer(options(), {}).shutDown();
    QCOMPARE(traced().filter("loadSettings"), QStringList({"loadSettings 0", "loadSettings 1"}));
}

void ViewerTest::closingTheWindowEndsTheRun()
{
    Viewer viewer(options(), simulated(1));
    QTimer::singleShot(0, &viewer.window(), &QWidget::close);
    QCOMPARE(viewer.run(), 0);
    QVERIFY(files::contents(m_folder->filePath("settings.ini")).contains("Geometry="));
}

void ViewerTest::signalEndsTheRun_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void ViewerTest::signalEndsTheRun()
{
    QFETCH(int, signalNumber);
    Viewer viewer(options(), simulated(1));
    QTimer::singleShot(0, &viewer.window(), [signalNumber] {
        std::raise(signalNumber);
        std::raise(signalNumber); // twice: the way out is under way already
    });
    QCOMPARE(viewer.run(), 128 + signalNumber);
    QVERIFY(traced().contains("finish"));
}

void ViewerTest::signalDuringADialog()
{
    Viewer viewer(options(), {});
    QTimer::singleShot(0, &viewer.window(), [&viewer] {
        QTimer::singleShot(0, [] { std::raise(SIGTERM); });
        QMessageBox box(QMessageBox::Critical, "Failed", "text", QMessageBox::Ok, &viewer.window());
        box.exec();
    });
    QCOMPARE(viewer.run(), 128 + SIGTERM);
}

void ViewerTest::noPlugins()
{
    ViewerOptions none = options();
    none.loadPlugins = false;
    Viewer viewer(none, {});
    QVERIFY(!QFile::exists(m_folder->filePath("trace")));
    QVERIFY(!viewer.window().findChild<QDockWidget *>("plugin.tracingWidget"));
}

void ViewerTest::levelForThisRun()
{
    ViewerOptions basic = options();
    basic.interfaceLevel = 1;
    Viewer(basic, {}).shutDown();
    const Viewer viewer(options(), {});
    QCOMPARE(host::appDelegate()->interfaceLevel(), 3);
}

void ViewerTest::damagedSettingsAreLogged()
{
    files::write(m_folder->filePath("settings.ini"), "a mess\n");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("settings.ini is damaged"));
    const Viewer viewer(options(), {});
}

QTEST_MAIN(ViewerTest)
#include "ViewerTest.moc"
