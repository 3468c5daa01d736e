#include "tests/ui/PluginRig.h"

#include "tests/measurement/LogCapture.h"
#include "tests/ui/StartReport.h"

#include <QtTest>

using rig::PluginRig;
using scripted::Host;

/// Required throughput and buffer size, typed in or taken from the camera.
class CameraEditsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void typedSpeed();
    void speedTexts_data();
    void speedTexts();
    void automaticSpeedAgain();
    void automaticSpeedUnreadable();
    void typedSize();
    void sizeTexts_data();
    void sizeTexts();
    void automaticSizeAgain();
    void automaticSizeKeepsItsBytes();
    void validators_data();
    void validators();
    void returnTakesTheFocus_data();
    void returnTakesTheFocus();
    void onlyTheCamerasOwnRow();
    void speedIsReadBeforeAStart();
    void speedIsNotReadBeforeAStart_data();
    void speedIsNotReadBeforeAStart();
    void editingDuringAMeasurement();

private:
    QCheckBox *speedBox(int row = 0) const { return m_rig->cellWidget<QCheckBox>(row, 8); }
    QLineEdit *speedEdit(int row = 0) const { return m_rig->cellWidget<QLineEdit>(row, 8); }
    QCheckBox *sizeBox(int row = 0) const { return m_rig->cellWidget<QCheckBox>(row, 9); }
    QLineEdit *sizeEdit(int row = 0) const { return m_rig->cellWidget<QLineEdit>(row, 9); }
    void setSpeed(long long value) { m_host.setValue(m_camera, "device_unit_register_value[8,4096]", value); }
    void setSize(long long value) { m_host.setValue(m_camera, "dp_param_value[1,5,7]", value); }
    rig::StartReport started() { return rig::measure(*m_rig, m_camera); }
    static void type(QLineEdit *edit, const QString &text);

    Host &m_host = Host::instance();
    std::unique_ptr<PluginRig> m_rig;
    ZUCORE_HANDLE m_camera = nullptr; ///< in row 0, automatic, 380 MB/s and 67108864 bytes
};

void CameraEditsTest::init()
{
    m_rig = std::make_unique<PluginRig>();
    m_rig->createForm();
    m_camera = rig::openCamera("Model", "1");
}

void CameraEditsTest::cleanup()
{
    m_rig.reset();
}

void CameraEditsTest::type(QLineEdit *edit, const QString &text)
{
    edit->selectAll();
    QTest::keyClicks(edit, text);
}

void CameraEditsTest::typedSpeed()
{
    PluginRig::click(speedBox());
    QVERIFY(!speedBox()->isChecked());
    QVERIFY(speedEdit()->isEnabled());
    QCOMPARE(speedEdit()->text(), "380");
    QCOMPARE(started().requiredSpeed, "380"); // unchanged as long as nothing is typed
    type(speedEdit(), "250");
    QCOMPARE(speedEdit()->text(), "250");
    QCOMPARE(started().requiredSpeed, "250");
    QTest::keyClick(speedEdit(), Qt::Key_Backspace); // every keystroke counts
    QCOMPARE(started().requiredSpeed, "25");
}

void CameraEditsTest::speedTexts_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("0") << "0";
    QTest::newRow("10000") << "10000";
    QTest::newRow("007") << "7";
    QTest::newRow("") << "0";
    QTest::newRow("abc") << "0";
    QTest::newRow("12x") << "0";
    QTest::newRow("0x10") << "0";
    QTest::newRow("1.5") << "0";
    QTest::newRow("99999999999") << "0";
    QTest::newRow("20000") << "20000"; // only typing is limited
}

void CameraEditsTest::speedTexts()
{
    QFETCH(QString, stored);
    PluginRig::click(speedBox());
    speedEdit()->setText(QTest::currentDataTag());
    QCOMPARE(started().requiredSpeed, stored);
}

void CameraEditsTest::automaticSpeedAgain()
{
    PluginRig::click(speedBox());
    type(speedEdit(), "250");
    setSpeed(412);
    m_host.clearCalls();
    PluginRig::click(speedBox());
    QVERIFY(speedBox()->isChecked());
    QVERIFY(!speedEdit()->isEnabled());
    QCOMPARE(speedEdit()->text(), "412");
    // Reading leaves the camera's selection as it was.
    QCOMPARE(m_host.value(m_camera, "device_unit_selector"), 2LL);
    QCOMPARE(m_host.value(m_camera, "device_unit_register_selector"), 77LL);
    m_host.clearCalls();
    PluginRig::click(speedBox());
    QVERIFY(m_host.cameraCalls().empty()); // switching off reads nothing
    QCOMPARE(speedEdit()->text(), "412");
    QCOMPARE(started().requiredSpeed, "412");
}

void CameraEditsTest::automaticSpeedUnreadable()
{
    PluginRig::click(speedBox());
    type(speedEdit(), "250");
    setSpeed(0);
    PluginRig::click(speedBox());
    QCOMPARE(speedEdit()->text(), "250"); // the engine keeps what it has
    QVERIFY(!speedEdit()->isEnabled());
    QCOMPARE(started().requiredSpeed, "250");
}

void CameraEditsTest::typedSize()
{
    PluginRig::click(sizeBox());
    QVERIFY(!sizeBox()->isChecked());
    QVERIFY(sizeEdit()->isEnabled());
    QCOMPARE(sizeEdit()->text(), "67108");
    QCOMPARE(started().bufferSize, "67108864");
    type(sizeEdit(), "123");
    QCOMPARE(started().bufferSize, "123000");
    QVERIFY(speedBox()->isChecked()); // the two do not depend on each other
    QVERIFY(!speedEdit()->isEnabled());
}

void CameraEditsTest::sizeTexts_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("0") << "0";
    QTest::newRow("1") << "1000";
    QTest::newRow("") << "0";
    QTest::newRow("abc") << "0";
    QTest::newRow("99999999999") << "0";
    // The product has 32 bits and a sign.
    QTest::newRow("2147483") << "2147483000";
    QTest::newRow("2147484") << "18446744071562068320";
    QTest::newRow("4294967") << "18446744073709551320";
    QTest::newRow("4294968") << "704";
    QTest::newRow("100000000") << "1215752192";
}

void CameraEditsTest::sizeTexts()
{
    QFETCH(QString, stored);
    PluginRig::click(sizeBox());
    sizeEdit()->setText(QTest::currentDataTag());
    QCOMPARE(started().bufferSize, stored);
}

void CameraEditsTest::automaticSizeAgain()
{
    PluginRig::click(sizeBox());
    type(sizeEdit(), "123");
    setSize(2999);
    PluginRig::click(sizeBox());
    QVERIFY(sizeBox()->isChecked());
    QVERIFY(!sizeEdit()->isEnabled());
    QCOMPARE(sizeEdit()->text(), "2");
    m_host.clearCalls();
    PluginRig::click(sizeBox());
    QVERIFY(m_host.cameraCalls().empty());
    QCOMPARE(started().bufferSize, "2000"); // the text that was shown came back as a value
}

void CameraEditsTest::automaticSizeKeepsItsBytes()
{
    setSize(1999);
    m_rig->call("updateCameraList");
    QCOMPARE(sizeEdit()->text(), "1");
    PluginRig::click(sizeBox());
    QCOMPARE(started().bufferSize, "1999"); // as read when the row was built
}

void CameraEditsTest::validators_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("accepted");
    // By digits: what has no more of them than the largest may still be edited.
    QTest::newRow("speed") << 8 << "999999"
                           << "99999";
    QTest::newRow("speed, the largest") << 8 << "10000"
                                        << "10000";
    QTest::newRow("speed, letters") << 8 << "1a2b"
                                    << "12";
    QTest::newRow("speed, sign") << 8 << "-5"
                                 << "5";
    QTest::newRow("size") << 9 << "9999999999"
                          << "999999999";
    QTest::newRow("size, the largest") << 9 << "100000000"
                                       << "100000000";
    QTest::newRow("size, point") << 9 << "1.5"
                                 << "15";
}

void CameraEditsTest::validators()
{
    QFETCH(int, column);
    QFETCH(QString, typed);
    QFETCH(QString, accepted);
    PluginRig::click(m_rig->cellWidget<QCheckBox>(0, column));
    type(m_rig->cellWidget<QLineEdit>(0, column), typed);
    QCOMPARE(m_rig->cellWidget<QLineEdit>(0, column)->text(), accepted);
}

void CameraEditsTest::returnTakesTheFocus_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("nth");
    QTest::addColumn<int>("key");
    QTest::newRow("speed") << 8 << 0 << int(Qt::Key_Return);
    QTest::newRow("speed, keypad") << 8 << 0 << int(Qt::Key_Enter);
    QTest::newRow("size") << 9 << 0 << int(Qt::Key_Return);
    QTest::newRow("axis minimum") << 11 << 0 << int(Qt::Key_Return);
    QTest::newRow("axis maximum") << 11 << 1 << int(Qt::Key_Return);
}

void CameraEditsTest::returnTakesTheFocus()
{
    QFETCH(int, column);
    QFETCH(int, nth);
    QFETCH(int, key);
    PluginRig::click(m_rig->cellWidget<QCheckBox>(0, column));
    auto *edit = m_rig->cellWidget<QLineEdit>(0, column, nth);
    QVERIFY(edit->isEnabled());
    m_rig->form()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_rig->form()));
    edit->setFocus();
    QVERIFY(edit->hasFocus());
    type(edit, "42");
    QVERIFY(edit->hasFocus());
    QTest::keyClick(edit, Qt::Key(key));
    QVERIFY(!edit->hasFocus());
    QCOMPARE(edit->text(), "42");
}

void CameraEditsTest::onlyTheCamerasOwnRow()
{
    ZUCORE_HANDLE second = rig::openCamera("Another", "2");
    PluginRig::click(speedBox(1));
    PluginRig::click(sizeBox(1));
    QVERIFY(!speedEdit(0)->isEnabled() && !sizeEdit(0)->isEnabled());
    QVERIFY(speedEdit(1)->isEnabled() && sizeEdit(1)->isEnabled());
    type(speedEdit(1), "99");
    type(sizeEdit(1), "88");
    m_host.setValue(second, "device_unit_register_value[8,4096]", 77);
    m_host.clearCalls();
    QCOMPARE(started().requiredSpeed, "380");
    QVERIFY(m_host.cameraCalls(second).empty());
    const rig::StartReport report = rig::measure(*m_rig, second);
    QCOMPARE(report.requiredSpeed, "99");
    QCOMPARE(report.bufferSize, "88000");
}

void CameraEditsTest::speedIsReadBeforeAStart()
{
    setSpeed(500);
    QCOMPARE(started().requiredSpeed, "500");
    QCOMPARE(speedEdit()->text(), "500");
    setSpeed(600);
    const rig::BoxWatcher boxes;
    const LogCapture log;
    PluginRig::click(m_rig->find<QPushButton>("btnStartAll"));
    QVERIFY(m_host.isStreaming(m_camera));
    QCOMPARE(speedEdit()->text(), "600");
    setSpeed(700);
    PluginRig::click(m_rig->find<QPushButton>("btnStartAll"));
    QCOMPARE(speedEdit()->text(), "600"); // not at a stop
}

void CameraEditsTest::speedIsNotReadBeforeAStart_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::newRow("box off") << false;
    QTest::newRow("box disabled") << true;
}

void CameraEditsTest::speedIsNotReadBeforeAStart()
{
    QFETCH(bool, automatic);
    if (automatic)
        speedBox()->setEnabled(false);
    else
        PluginRig::click(speedBox());
    setSpeed(500);
    const rig::StartReport report = started();
    QCOMPARE(speedEdit()->text(), "380");
    // The engine itself reads the speed of an automatic camera at its start.
    QCOMPARE(report.requiredSpeed, automatic ? "500" : "380");
}

void CameraEditsTest::editingDuringAMeasurement()
{
    const rig::BoxWatcher boxes;
    const LogCapture log;
    m_host.deliver(m_camera, 3);
    PluginRig::click(m_rig->measureButton(0));
    QVERIFY(m_host.waitUntilStarved(m_camera));
    m_rig->call("timerSignal");
    QCOMPARE(m_rig->cell(0, 5), "0 %");
    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    type(speedEdit(), "800");
    type(sizeEdit(), "10");
    m_rig->call("timerSignal"); // the model follows at once
    QCOMPARE(m_rig->cell(0, 5), "71 %");
    PluginRig::click(speedBox());
    PluginRig::click(sizeBox());
    QCOMPARE(speedEdit()->text(), "380");
    QCOMPARE(sizeEdit()->text(), "67108");
    m_rig->call("timerSignal");
    QCOMPARE(m_rig->cell(0, 5), "0 %");
}

QTEST_MAIN(CameraEditsTest)
#include "CameraEditsTest.moc"
