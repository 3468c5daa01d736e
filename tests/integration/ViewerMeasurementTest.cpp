// The viewer with the real plug-in and simulated cameras: a measurement that is
// under way when the program ends.

#include "host/app/Viewer.h"
#include "host/core/HostCore.h"
#include "host/program/SimulatedCameras.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/ZuApi.h"
#include "zuCore/ZuParameters.h"

#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <csignal>

class ViewerMeasurementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

} // namespace

void ViewerMeasurementTest::endingWhileMeasuringRestoresCameras_data()
{
    QTest::addColumn<bool>("bySignal");
    QTest::newRow("window closed") << false;
    QTest::newRow("SIGTERM") << true;
}

void ViewerMeasurementTest::endingWhileMeasuringRestoresCameras()
{
    QFETCH(bool, bySignal);
    QTemporaryDir folder;
    host::ViewerOptions options;
    options.pluginPaths = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.settingsFile = folder.filePath("settings.ini");
    options.openAll = true;
    std::vector<std::unique_ptr<host::CameraBackend>> backends;
    backends.push_back(host::simulatedCameras("2").backend);
    host::Viewer viewer(options, std::move(backends));

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
        if (bySignal)
            std::raise(SIGTERM);
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

    QCOMPARE(viewer.run(), bySignal ? 128 + SIGTERM : 0);
    QCOMPARE(formatsWhileMeasuring.size(), 2);
    QVERIFY(!formatsWhileMeasuring.contains(normalFormat));
    QCOMPARE(formatsAtTheEnd, QList<int>({normalFormat, normalFormat}));
}

QTEST_MAIN(ViewerMeasurementTest)
#include "ViewerMeasurementTest.moc"
