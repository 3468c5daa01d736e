// The viewer with the real plug-in and simulated cameras: a measurement that is
// under way when the program ends.

#include "host/app/Viewer.h"
#include "host/core/HostCore.h"
#include "host/program/SimulatedCameras.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/ZuApi.h"
#include "zuCore/ZuParameters.h"

#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <csignal>

class ViewerMeasurementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void smallWindowShowsThePluginWhole();
    void endingWhileMeasuringRestoresCameras_data();
    void endingWhileMeasuringRestoresCameras();
};

namespace {

int dataFormat(ZUCORE_HANDLE camera)
{
    int value = -1;
    zuApi_GetParamInt(camera, ZU_PRM_IMAGE_DATA_FORMAT, value, nullptr);
    return value;
}

host::ViewerOptions withThePlugin(const QTemporaryDir &folder)
{
    host::ViewerOptions options;
    options.pluginPaths = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.settingsFile = folder.filePath("settings.ini");
    options.openAll = true;
    return options;
}

std::vector<std::unique_ptr<host::CameraBackend>> twoCameras()
{
    std::vector<std::unique_ptr<host::CameraBackend>> backends;
    backends.push_back(host::simulatedCameras("2").backend);
    return backends;
}

} // namespace

void ViewerMeasurementTest::smallWindowShowsThePluginWhole()
{
    const QTemporaryDir folder;
    host::Viewer viewer(withThePlugin(folder), twoCameras());
    viewer.window().setWindowState(Qt::WindowNoState);
    viewer.window().resize(1024, 708); // 768 without the desktop's own bars
    viewer.window().show();
    QVERIFY(QTest::qWaitForWindowExposed(&viewer.window()));
    QCoreApplication::processEvents();
    const auto *form = viewer.window().findChild<QWidget *>("CxDataGraphForm");
    QVERIFY(form && form->isVisible());
    const auto *scrolled = qobject_cast<QScrollArea *>(form->parentWidget()->parentWidget());
    QVERIFY(scrolled);
    QVERIFY2(
        !scrolled->verticalScrollBar()->isVisible(),
        qPrintable(QStringLiteral("%1 of %2").arg(scrolled->height()).arg(form->minimumSizeHint().height())));
    QVERIFY(!scrolled->horizontalScrollBar()->isVisible());
    QCOMPARE(viewer.window().size(), QSize(1024, 708));
}

void ViewerMeasurementTest::endingWhileMeasuringRestoresCameras_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("window closed") << 0;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void ViewerMeasurementTest::endingWhileMeasuringRestoresCameras()
{
    QFETCH(int, signalNumber);
    const QTemporaryDir folder;
    host::Viewer viewer(withThePlugin(folder), twoCameras());

    const QList<ZUCORE_HANDLE> cameras = CxCameraManager::instance()->openedCameras();
    QCOMPARE(cameras.size(), 2);
    const int normalFormat = dataFormat(cameras[0]);
    auto *startAll = viewer.window().findChild<QPushButton *>("btnStartAll");
    QVERIFY(startAll);

    QList<int> formatsWhileMeasuring;
    QTimer::singleShot(0, &viewer.window(), [&] {
        startAll->click();
        for (ZUCORE_HANDLE camera : cameras)
            formatsWhileMeasuring.append(dataFormat(camera));
        if (signalNumber != 0)
            std::raise(signalNumber);
        else
            viewer.window().close();
    });
    QList<int> formatsAtTheEnd;
    connect(CxCameraManager::instance(), &CxCameraManager::cameraClosed, &viewer.window(),
            [] { QFAIL("a camera closed before the window went"); });
    QObject context;
    connect(
        CxCameraManager::instance(), &CxCameraManager::cameraClosed, &context,
        [&](ZUCORE_HANDLE camera) { formatsAtTheEnd.append(dataFormat(camera)); }, Qt::DirectConnection);

    QCOMPARE(viewer.run(), signalNumber == 0 ? 0 : 128 + signalNumber);
    QCOMPARE(formatsWhileMeasuring.size(), 2);
    QVERIFY(!formatsWhileMeasuring.contains(normalFormat));
    QCOMPARE(formatsAtTheEnd, QList<int>({normalFormat, normalFormat}));
}

QTEST_MAIN(ViewerMeasurementTest)
#include "ViewerMeasurementTest.moc"
