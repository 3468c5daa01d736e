#include "host/app/CameraControl.h"

#include "host/core/HostCore.h"
#include "tests/host/core/FakeCamera.h"

#include <QSignalSpy>
#include <QtTest>

using host::CameraControl;
using host::HostCore;

class CameraControlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { HostCore::instance().shutDown(); }

    void everyCameraIsFreeAtFirst();
    void remembersEachCameraByItself();
    void tellsChangesOnly();
    void forgetsAClosedCamera();
};

namespace {

ZUCORE_HANDLE handle(quintptr number)
{
    return reinterpret_cast<ZUCORE_HANDLE>(number);
}

} // namespace

void CameraControlTest::everyCameraIsFreeAtFirst()
{
    const CameraControl control;
    QVERIFY(control.isEnabled(handle(7)));
    QVERIFY(control.isEnabled(nullptr));
}

void CameraControlTest::remembersEachCameraByItself()
{
    CameraControl control;
    control.setEnabled(handle(1), false);
    control.setEnabled(handle(2), false);
    control.setEnabled(handle(1), true);
    QVERIFY(control.isEnabled(handle(1)));
    QVERIFY(!control.isEnabled(handle(2)));
    control.setEnabled(nullptr, false);
    QVERIFY(control.isEnabled(nullptr));
}

void CameraControlTest::tellsChangesOnly()
{
    CameraControl control;
    QSignalSpy spy(&control, &CameraControl::enabledChanged);
    control.setEnabled(handle(1), true);
    control.setEnabled(nullptr, false);
    QCOMPARE(spy.size(), 0);
    control.setEnabled(handle(1), false);
    control.setEnabled(handle(1), false);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy[0][0].value<ZUCORE_HANDLE>(), handle(1));
    QCOMPARE(spy[0][1].toBool(), false);
    control.setEnabled(handle(1), true);
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy[1][1].toBool(), true);
}

void CameraControlTest::forgetsAClosedCamera()
{
    CameraControl control;
    plugIn({std::make_shared<FakeCamera>("A"), std::make_shared<FakeCamera>("B")});
    const ZUCORE_HANDLE a = HostCore::instance().open("A");
    const ZUCORE_HANDLE b = HostCore::instance().open("B");
    control.setEnabled(a, false);
    control.setEnabled(b, false);
    HostCore::instance().close(a);
    QVERIFY(control.isEnabled(a));
    QVERIFY(!control.isEnabled(b));
}

QTEST_GUILESS_MAIN(CameraControlTest)
#include "CameraControlTest.moc"
