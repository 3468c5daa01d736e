#include "tests/ui/MeasuringCameras.h"

#include <QComboBox>
#include <QSlider>
#include <QtTest>

using rig::MeasuringCameras;
using rig::Mode;
using scripted::Failure;
using scripted::Function;

using Formats = QList<CxCameraParam::CxEnumItem>;
Q_DECLARE_METATYPE(CxCameraParam::CxEnumItem)

/// The box that shows and sets the format in which a camera delivers.
class DataFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entries();
    void noEntries_data();
    void noEntries();
    void presentFormat_data();
    void presentFormat();
    void formatThatCannotBeRead();
    void showingWritesNothing();
    void selectionIsWritten_data();
    void selectionIsWritten();
    void selectionOfAMeasuringCamera();
    void selectionIsOfItsCameraOnly();
    void selectionWithoutAParameter_data();
    void selectionWithoutAParameter();
    void noSelectionWritesNothing();
    void otherSendersAreIgnored();
    void hostsFormatIsShown_data();
    void hostsFormatIsShown();
    void formatsThatChaseEachOther_data();
    void formatsThatChaseEachOther();
    void hostsFormatThatIsShownAlready();
    void hostsFormatBeyondTheList_data();
    void hostsFormatBeyondTheList();
    void hostsFormatIsOfItsCameraOnly();
    void hostsSignalWithoutAParameter();
    void hostsSignalOfOtherCameras();
    void hostsSignalInThroughputMode();
};

namespace {

const Formats ordered = {{"RAW 8", 0}, {"RAW 16", 1}, {"MONO 8", 2}, {"MONO 16", 3}};
const Formats unordered = {{"Nine", 9}, {"Five", 5}, {"One", 1}, {"Seven", 7}};

QComboBox *boxOf(const MeasuringCameras &cameras, int camera = 0)
{
    return qobject_cast<QComboBox *>(cameras.rig.table()->cellWidget(cameras.row(camera), 2));
}

void setFormats(MeasuringCameras &cameras, const Formats &formats, int present)
{
    cameras.host.setEnumItems(cameras[0], "imgdataformat", formats);
    cameras.host.setValue(cameras[0], "imgdataformat", present);
    cameras.rig.call("updateCameraList");
    cameras.host.clearCalls();
}

/// What was done to parameter sets, in order: "stage Alpha imgdataformat 3",
/// "mark Alpha imgdataformat", "commit Alpha mode 1".
QStringList writesOf(const MeasuringCameras &cameras)
{
    QStringList list;
    for (const scripted::Call &call : cameras.host.calls()) {
        const QString camera = cameras.label(call.handle);
        const QString name = QString::fromStdString(call.name);
        if (call.function == Function::SetParamValue)
            list.append(QString("stage %1 %2 %3").arg(camera, name).arg(call.value));
        else if (call.function == Function::AddParamCommitToBatch)
            list.append(QString("mark %1 %2").arg(camera, name));
        else if (call.function == Function::EndCommitBatch)
            list.append(QString("commit %1 mode %2").arg(camera).arg(call.value));
        else if (call.function == Function::SetParamInt)
            list.append(QString("set %1 %2 %3").arg(camera, name).arg(call.value));
    }
    return list;
}

QStringList writeOf(int value, const QString &camera = "Alpha")
{
    return {QString("stage %1 imgdataformat %2").arg(camera).arg(value),
            QString("mark %1 imgdataformat").arg(camera), QString("commit %1 mode 1").arg(camera)};
}

} // namespace

void DataFormatTest::entries()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    setFormats(cameras, unordered, 1);
    const QComboBox *box = boxOf(cameras);
    QVERIFY(box);
    QCOMPARE(box->count(), unordered.size());
    for (int i = 0; i < unordered.size(); ++i) {
        QCOMPARE(box->itemText(i), unordered[i].name);
        QCOMPARE(int(box->itemData(i, Qt::UserRole).type()), int(QMetaType::Int));
        QCOMPARE(box->itemData(i, Qt::UserRole).toInt(), unordered[i].value);
    }
    QVERIFY(!box->isEditable());
    QVERIFY(box->isEnabled());
}

void DataFormatTest::noEntries_data()
{
    QTest::addColumn<bool>("hasParameter");
    QTest::newRow("no parameter") << false;
    QTest::newRow("a plain number") << true;
}

void DataFormatTest::noEntries()
{
    QFETCH(bool, hasParameter);
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.host.setEnumItems(cameras[0], "imgdataformat", {});
    if (!hasParameter) {
        cameras.host.setEnumItems(cameras[0], "imgdataformat", ordered);
        cameras.host.removeValue(cameras[0], "imgdataformat");
    }
    cameras.rig.call("updateCameraList");
    QVERIFY(boxOf(cameras));
    QCOMPARE(boxOf(cameras)->count(), 0);
    QCOMPARE(rig::handleOf(boxOf(cameras)), cameras[0]);
}

void DataFormatTest::presentFormat_data()
{
    QTest::addColumn<Formats>("formats");
    QTest::addColumn<int>("present");
    QTest::addColumn<int>("index");
    QTest::newRow("first") << ordered << 0 << 0;
    QTest::newRow("last") << ordered << 3 << 3;
    QTest::newRow("by its value, not its place") << unordered << 1 << 2;
    QTest::newRow("first of equal ones") << Formats({{"A", 4}, {"B", 6}, {"C", 6}}) << 6 << 1;
    QTest::newRow("none matches") << unordered << 3 << 0;
    QTest::newRow("negative") << Formats({{"A", 1}, {"B", -1}}) << -1 << 1;
}

void DataFormatTest::presentFormat()
{
    QFETCH(Formats, formats);
    QFETCH(int, present);
    MeasuringCameras cameras(1, Mode::Acquisition);
    setFormats(cameras, formats, present);
    QTEST(boxOf(cameras)->currentIndex(), "index");
}

void DataFormatTest::formatThatCannotBeRead()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.host.fail(Failure::read("imgdataformat"));
    // The value 0, if anything were made of it, is the third one's.
    setFormats(cameras, {{"A", 2}, {"B", 1}, {"C", 0}}, 1);
    QCOMPARE(boxOf(cameras)->count(), 3);
    QCOMPARE(boxOf(cameras)->currentIndex(), 0);
}

void DataFormatTest::showingWritesNothing()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.rig.call("updateCameraList");
    cameras.setMode(Mode::Throughput);
    cameras.host.clearCalls();
    cameras.setMode(Mode::Acquisition);
    QCOMPARE(writesOf(cameras), QStringList());
    QCOMPARE(cameras.host.value(cameras[0], "imgdataformat"), 2LL);
}

void DataFormatTest::selectionIsWritten_data()
{
    QTest::addColumn<Formats>("formats");
    QTest::addColumn<int>("present");
    QTest::addColumn<int>("value");
    QTest::newRow("in order") << ordered << 2 << 3;
    QTest::newRow("in another order") << unordered << 5 << 1;
    QTest::newRow("after none matched") << unordered << 3 << 5;
}

void DataFormatTest::selectionIsWritten()
{
    QFETCH(Formats, formats);
    QFETCH(int, present);
    QFETCH(int, value);
    MeasuringCameras cameras(1, Mode::Acquisition);
    setFormats(cameras, formats, present);
    QTest::keyClick(boxOf(cameras), Qt::Key_Down);
    QCOMPARE(writesOf(cameras), writeOf(value));
    QCOMPARE(cameras.host.value(cameras[0], "imgdataformat"), value);
}

void DataFormatTest::selectionOfAMeasuringCamera()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    QVERIFY(cameras.measure(0, 1));
    cameras.host.clearCalls();
    QTest::keyClick(boxOf(cameras), Qt::Key_Down);
    QCOMPARE(cameras.host.value(cameras[0], "imgdataformat"), 3);
    cameras.clickMeasure(0);
    QCOMPARE(cameras.host.value(cameras[0], "imgdataformat"), 3); // not put back
    QCOMPARE(boxOf(cameras)->currentIndex(), 3);
}

void DataFormatTest::selectionIsOfItsCameraOnly()
{
    MeasuringCameras cameras(3, Mode::Acquisition);
    QTest::keyClick(boxOf(cameras, 1), Qt::Key_Up);
    QCOMPARE(writesOf(cameras), writeOf(1, "Beta"));
    QCOMPARE(boxOf(cameras, 0)->currentIndex(), 2);
    QCOMPARE(boxOf(cameras, 2)->currentIndex(), 2);
}

void DataFormatTest::selectionWithoutAParameter_data()
{
    QTest::addColumn<bool>("hasSet");
    QTest::newRow("no parameter") << true;
    QTest::newRow("no parameter set") << false;
}

void DataFormatTest::selectionWithoutAParameter()
{
    QFETCH(bool, hasSet);
    MeasuringCameras cameras(1, Mode::Acquisition);
    if (hasSet)
        cameras.host.removeValue(cameras[0], "imgdataformat");
    else
        cameras.host.removeParameterSet(cameras[0]);
    QTest::keyClick(boxOf(cameras), Qt::Key_Down);
    QCOMPARE(boxOf(cameras)->currentIndex(), 3);
    QCOMPARE(writesOf(cameras), QStringList());
}

void DataFormatTest::noSelectionWritesNothing()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    boxOf(cameras)->setCurrentIndex(-1);
    QCOMPARE(writesOf(cameras), QStringList());
    boxOf(cameras)->setCurrentIndex(0);
    QCOMPARE(writesOf(cameras), writeOf(0));
}

void DataFormatTest::otherSendersAreIgnored()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    const char *slot = SLOT(onComboboxFormatChanged(int));
    QSlider slider;
    slider.setProperty("hCam", boxOf(cameras)->property("hCam"));
    QVERIFY(connect(&slider, SIGNAL(valueChanged(int)), cameras.rig.form(), slot));
    slider.setValue(1);
    QComboBox unknown;
    unknown.addItem("A", 0);
    unknown.addItem("B", 1);
    unknown.setProperty("hCam", qulonglong(7));
    QVERIFY(connect(&unknown, SIGNAL(currentIndexChanged(int)), cameras.rig.form(), slot));
    unknown.setCurrentIndex(1);
    QVERIFY(QMetaObject::invokeMethod(cameras.rig.form(), "onComboboxFormatChanged", Q_ARG(int, 1)));
    QVERIFY(cameras.host.calls().empty());
}

void DataFormatTest::hostsFormatIsShown_data()
{
    QTest::addColumn<Formats>("formats");
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("written");
    QTest::newRow("in order") << ordered << 2 << 3 << 3;
    QTest::newRow("to the first") << ordered << 2 << 0 << 0;
    // The value is taken for the index.
    QTest::newRow("in another order") << unordered << 9 << 2 << 1;
}

void DataFormatTest::hostsFormatIsShown()
{
    QFETCH(Formats, formats);
    QFETCH(int, before);
    QFETCH(int, format);
    QFETCH(int, written);
    MeasuringCameras cameras(1, Mode::Acquisition);
    setFormats(cameras, formats, before);
    cameras.host.setValue(cameras[0], "imgdataformat", format);
    cameras.host.emitImageFormatChanged(cameras[0]);
    QCOMPARE(boxOf(cameras)->currentIndex(), format);
    QCOMPARE(writesOf(cameras), writeOf(written));
}

void DataFormatTest::formatsThatChaseEachOther_data()
{
    QTest::addColumn<Qt::ConnectionType>("delivery");
    QTest::newRow("host tells at once") << Qt::DirectConnection;
    QTest::newRow("host tells later") << Qt::QueuedConnection;
}

/// Each format's value is the other one's place: what follows the camera's change
/// is one write, not an endless exchange.
void DataFormatTest::formatsThatChaseEachOther()
{
    QFETCH(Qt::ConnectionType, delivery);
    MeasuringCameras cameras(1, Mode::Acquisition);
    setFormats(cameras, {{"One", 1}, {"Zero", 0}}, 1);
    // As a host that has written the format.
    connect(
        boxOf(cameras), QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        [&](int index) {
            cameras.host.setValue(cameras[0], "imgdataformat", 1 - index);
            cameras.host.emitImageFormatChanged(cameras[0]);
        },
        delivery);
    cameras.host.setValue(cameras[0], "imgdataformat", 0);
    cameras.host.emitImageFormatChanged(cameras[0]); // place 0 is shown already
    QCOMPARE(writesOf(cameras), QStringList());
    cameras.host.setValue(cameras[0], "imgdataformat", 1);
    cameras.host.emitImageFormatChanged(cameras[0]);
    for (int i = 0; i < 20; ++i)
        QCoreApplication::processEvents();
    QCOMPARE(boxOf(cameras)->currentIndex(), 1);
    QCOMPARE(writesOf(cameras), writeOf(0));
}

void DataFormatTest::hostsFormatThatIsShownAlready()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.host.emitImageFormatChanged(cameras[0]);
    QCOMPARE(boxOf(cameras)->currentIndex(), 2);
    QCOMPARE(writesOf(cameras), QStringList());
}

void DataFormatTest::hostsFormatBeyondTheList_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("one behind") << 4;
    QTest::newRow("far behind") << 1000;
    QTest::newRow("negative") << -5;
}

void DataFormatTest::hostsFormatBeyondTheList()
{
    QFETCH(int, format);
    MeasuringCameras cameras(1, Mode::Acquisition);
    setFormats(cameras, ordered, 1);
    cameras.host.setValue(cameras[0], "imgdataformat", format);
    cameras.host.emitImageFormatChanged(cameras[0]);
    QCOMPARE(boxOf(cameras)->currentIndex(), -1);
    QCOMPARE(writesOf(cameras), QStringList());
    QCOMPARE(cameras.host.value(cameras[0], "imgdataformat"), format);
}

void DataFormatTest::hostsFormatIsOfItsCameraOnly()
{
    MeasuringCameras cameras(3, Mode::Acquisition);
    for (int camera = 0; camera < 3; ++camera)
        cameras.host.setValue(cameras[camera], "imgdataformat", 1);
    cameras.host.emitImageFormatChanged(cameras[1]);
    QCOMPARE(boxOf(cameras, 0)->currentIndex(), 2);
    QCOMPARE(boxOf(cameras, 1)->currentIndex(), 1);
    QCOMPARE(boxOf(cameras, 2)->currentIndex(), 2);
}

void DataFormatTest::hostsSignalWithoutAParameter()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.host.removeValue(cameras[0], "imgdataformat");
    cameras.host.removeParameterSet(cameras[1]);
    for (int camera = 0; camera < 2; ++camera) {
        cameras.host.emitImageFormatChanged(cameras[camera]);
        QCOMPARE(boxOf(cameras, camera)->currentIndex(), 2);
    }
    QCOMPARE(writesOf(cameras), QStringList());
}

void DataFormatTest::hostsSignalOfOtherCameras()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.host.setValue(cameras[0], "imgdataformat", 0);
    cameras.host.emitImageFormatChanged(reinterpret_cast<ZUCORE_HANDLE>(quintptr(0x42)));
    cameras.host.emitImageFormatChanged(nullptr);
    QVERIFY(cameras.host.calls().empty());
    QCOMPARE(boxOf(cameras)->currentIndex(), 2);
}

/// Whatever stands in the column there.
void DataFormatTest::hostsSignalInThroughputMode()
{
    MeasuringCameras cameras(1);
    auto *box = new QComboBox;
    box->addItems({"A", "B", "C"});
    box->setProperty("hCam", cameras.measureButton(0)->property("hCam"));
    cameras.rig.table()->setCellWidget(0, 2, box);
    cameras.host.emitImageFormatChanged(cameras[0]);
    QVERIFY(cameras.host.calls().empty());
    QCOMPARE(box->currentIndex(), 0);
}

QTEST_MAIN(DataFormatTest)
#include "DataFormatTest.moc"
