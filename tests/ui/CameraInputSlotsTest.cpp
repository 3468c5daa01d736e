#include "tests/ui/PluginRig.h"

#include "tests/ui/StartReport.h"

#include <QtTest>

using rig::PluginRig;
using scripted::Host;

/// Whom the slots of the required throughput and the buffer size listen to.
class CameraInputSlotsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void boxesListenToClicks();
    void inputsOfAnUnknownCamera();
    void boxWithoutItsEdit();
    void boxOnWithoutItsEdit_data();
    void boxOnWithoutItsEdit();
    void otherSendersAreIgnored();
    void otherButtonsAreIgnored();

private:
    QCheckBox *speedBox() const { return m_rig->cellWidget<QCheckBox>(0, 8); }
    QLineEdit *speedEdit() const { return m_rig->cellWidget<QLineEdit>(0, 8); }
    QCheckBox *sizeBox() const { return m_rig->cellWidget<QCheckBox>(0, 9); }
    QLineEdit *sizeEdit() const { return m_rig->cellWidget<QLineEdit>(0, 9); }
    /// What the camera itself has, MB/s and bytes.
    void setCamera(long long speed, long long size);
    rig::StartReport started() { return rig::measure(*m_rig, m_camera); }

    Host &m_host = Host::instance();
    std::unique_ptr<PluginRig> m_rig;
    ZUCORE_HANDLE m_camera = nullptr; ///< in row 0, automatic, 380 MB/s and 67108864 bytes
};

void CameraInputSlotsTest::init()
{
    m_rig = std::make_unique<PluginRig>();
    m_rig->createForm();
    m_camera = rig::openCamera("Model", "1");
}

void CameraInputSlotsTest::cleanup()
{
    m_rig.reset();
}

void CameraInputSlotsTest::setCamera(long long speed, long long size)
{
    m_host.setValue(m_camera, "device_unit_register_value[8,4096]", speed);
    m_host.setValue(m_camera, "dp_param_value[1,5,7]", size);
}

void CameraInputSlotsTest::boxesListenToClicks()
{
    setCamera(500, 5999);
    m_host.clearCalls();
    for (QCheckBox *box : {speedBox(), sizeBox()})
        box->setChecked(false);
    QVERIFY(!speedEdit()->isEnabled() && !sizeEdit()->isEnabled());
    rig::StartReport report = started(); // still takes the camera's own
    QCOMPARE(report.requiredSpeed, "500");
    QCOMPARE(report.bufferSize, "5999");

    for (QCheckBox *box : {speedBox(), sizeBox()}) {
        box->setChecked(true);
        PluginRig::click(box);
    }
    setCamera(600, 6999);
    m_host.clearCalls();
    for (QCheckBox *box : {speedBox(), sizeBox()})
        box->setChecked(true);
    QVERIFY(m_host.cameraCalls().empty());
    QVERIFY(speedEdit()->isEnabled() && sizeEdit()->isEnabled());
    QCOMPARE(speedEdit()->text(), "380");
    QCOMPARE(sizeEdit()->text(), "67108");
    speedBox()->setChecked(false); // a start reads the speed for a box that is on
    report = started();
    QCOMPARE(report.requiredSpeed, "500");
    QCOMPARE(report.bufferSize, "5999");
}

void CameraInputSlotsTest::inputsOfAnUnknownCamera()
{
    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    const QList<QObject *> inputs = {speedBox(), speedEdit(), sizeBox(), sizeEdit()};
    for (QObject *input : inputs)
        input->setProperty("hCam", qulonglong(0x42));
    speedEdit()->setText("250");
    sizeEdit()->setText("250");
    m_host.clearCalls();
    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    QVERIFY(m_host.cameraCalls().empty());
    QVERIFY(speedEdit()->isEnabled() && sizeEdit()->isEnabled());
    const rig::StartReport report = started();
    QCOMPARE(report.requiredSpeed, "380");
    QCOMPARE(report.bufferSize, "67108864");
}

void CameraInputSlotsTest::boxWithoutItsEdit()
{
    speedEdit()->setProperty("hCam", qulonglong(0x42));
    sizeEdit()->setProperty("hCam", qulonglong(0x42));
    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    QVERIFY(!speedEdit()->isEnabled() && !sizeEdit()->isEnabled());
    setCamera(500, 5000);
    // The camera is no longer automatic all the same.
    const rig::StartReport report = started();
    QCOMPARE(report.requiredSpeed, "380");
    QCOMPARE(report.bufferSize, "67108864");
}

void CameraInputSlotsTest::boxOnWithoutItsEdit_data()
{
    QTest::addColumn<bool>("offAgain");
    QTest::addColumn<QString>("speed");
    QTest::addColumn<QString>("size");
    QTest::newRow("reads the camera") << true << "500"
                                      << "5999";
    QTest::newRow("is automatic") << false << "600"
                                  << "6999";
}

void CameraInputSlotsTest::boxOnWithoutItsEdit()
{
    QFETCH(bool, offAgain);
    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    speedEdit()->setProperty("hCam", qulonglong(0x42));
    sizeEdit()->setProperty("hCam", qulonglong(0x42));
    setCamera(500, 5999);
    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    QVERIFY(speedBox()->isChecked() && sizeBox()->isChecked());
    QVERIFY(speedEdit()->isEnabled() && sizeEdit()->isEnabled());
    QCOMPARE(speedEdit()->text(), "380");
    QCOMPARE(sizeEdit()->text(), "67108");
    setCamera(600, 6999);
    if (offAgain) {
        PluginRig::click(speedBox());
        PluginRig::click(sizeBox());
    }
    const rig::StartReport report = started();
    QTEST(report.requiredSpeed, "speed");
    QTEST(report.bufferSize, "size");
}

void CameraInputSlotsTest::otherSendersAreIgnored()
{
    // Without a sender, and from one of another class.
    QWidget *form = m_rig->form();
    m_host.clearCalls();
    for (const char *slot : {"onChkCamAutoTransport", "onChkCamAutoInternalBuffer"}) {
        QVERIFY(QMetaObject::invokeMethod(form, slot, Q_ARG(bool, false)));
        QVERIFY(QMetaObject::invokeMethod(form, slot, Q_ARG(bool, true)));
    }
    for (const char *slot : {"onEditCamTransportChanged", "onEditCamInternalBufferChanged"})
        QVERIFY(QMetaObject::invokeMethod(form, slot, Q_ARG(QString, "1")));
    m_rig->call("clearFocusAfterEditReturnPressed");
    QObject stranger;
    stranger.setProperty("hCam", qulonglong(reinterpret_cast<quintptr>(m_camera)));
    connect(&stranger, SIGNAL(objectNameChanged(QString)), form, SLOT(onEditCamTransportChanged(QString)));
    connect(&stranger, SIGNAL(objectNameChanged(QString)), form,
            SLOT(onEditCamInternalBufferChanged(QString)));
    connect(&stranger, SIGNAL(objectNameChanged(QString)), form, SLOT(clearFocusAfterEditReturnPressed()));
    stranger.setObjectName("1");
    QVERIFY(m_host.cameraCalls().empty());
    QVERIFY(!speedEdit()->isEnabled() && !sizeEdit()->isEnabled());
    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    const rig::StartReport report = started();
    QCOMPARE(report.requiredSpeed, "380");
    QCOMPARE(report.bufferSize, "67108864");
}

/// A button that can be checked and bears the camera is no check box.
void CameraInputSlotsTest::otherButtonsAreIgnored()
{
    QPushButton button;
    button.setCheckable(true);
    button.setProperty("hCam", speedBox()->property("hCam"));
    for (const char *slot : {SLOT(onChkCamAutoTransport(bool)), SLOT(onChkCamAutoInternalBuffer(bool))})
        QVERIFY(connect(&button, SIGNAL(clicked(bool)), m_rig->form(), slot));
    button.setChecked(true);
    m_host.clearCalls();
    button.click(); // off
    QVERIFY(!speedEdit()->isEnabled() && !sizeEdit()->isEnabled());
    setCamera(500, 5999);
    rig::StartReport report = started(); // still automatic
    QCOMPARE(report.requiredSpeed, "500");
    QCOMPARE(report.bufferSize, "5999");

    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    setCamera(600, 6999);
    m_host.clearCalls();
    button.click(); // on
    QVERIFY(button.isChecked());
    QVERIFY(m_host.cameraCalls().empty());
    QVERIFY(speedEdit()->isEnabled() && sizeEdit()->isEnabled());
    report = started();
    QCOMPARE(report.requiredSpeed, "500");
    QCOMPARE(report.bufferSize, "5999");
}

QTEST_MAIN(CameraInputSlotsTest)
#include "CameraInputSlotsTest.moc"
