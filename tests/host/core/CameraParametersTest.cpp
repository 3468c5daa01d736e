#include "tests/host/core/FakeCamera.h"

#include "host/core/HostCore.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParam.h"
#include "zuCore/CxCameraParameters.h"

#include <QtTest>

#include <limits>

using host::HostCore;

/// The parameter set through which the user's edits reach a camera.
class CameraParametersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void tellsWhoTheCameraIs();
    void findsDescribedParameters_data();
    void findsDescribedParameters();
    void listsChoicesInTheCamerasOrder();
    void showsTheCamerasValue_data();
    void showsTheCamerasValue();
    void writesOnCommitOnly();
    void commitsInTheOrderOfAdding();
    void commitsNothing_data();
    void commitsNothing();
    void aBatchIsForgottenOnceCommitted();
    void aRefusedValueIsDropped();
    void tellsTheHostsViews_data();
    void tellsTheHostsViews();
    void announcesTheImageFormat();

private:
    std::shared_ptr<FakeCamera> m_camera;
    ZUCORE_HANDLE m_handle = nullptr;
    CxCameraParameters *m_set = nullptr;
};

namespace {

const QString gain = QStringLiteral("gain");
const QString offset = QStringLiteral("offset");
const QString format = QStringLiteral("imgdataformat");

} // namespace

void CameraParametersTest::init()
{
    m_camera = std::make_shared<FakeCamera>("A");
    for (const char *name : {"offset", "gain"}) {
        host::ParameterDescription number;
        number.name = name;
        m_camera->describe(number);
        m_camera->setValue(name, 10);
    }
    host::ParameterDescription formats;
    formats.name = "imgdataformat";
    formats.choices = {{"RAW 8", 4}, {"RAW 16", 0}, {"Größer", 2}, {"Beyond", std::int64_t(1) << 40}};
    m_camera->describe(formats);
    m_camera->setValue("imgdataformat", 4);
    m_camera->setValue("hidden", 3);
    m_camera->setInfo({"A", "Model X", "4711", "links"});
    plugIn({m_camera});
    m_handle = HostCore::instance().open("A");
    m_set = CxCameraManager::instance()->cameraParameters(m_handle);
    QVERIFY(m_set);
    m_camera->clearLog();
}

void CameraParametersTest::cleanup()
{
    HostCore::instance().shutDown();
}

void CameraParametersTest::tellsWhoTheCameraIs()
{
    const CxCameraInfo info = m_set->cameraInfo();
    QCOMPARE(info.modelName, QStringLiteral("Model X"));
    QCOMPARE(info.serialNumber, QStringLiteral("4711"));
    QCOMPARE(info.userId, QStringLiteral("links"));
}

void CameraParametersTest::findsDescribedParameters_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("found");
    QTest::newRow("number") << gain << true;
    QTest::newRow("choice") << format << true;
    QTest::newRow("not for users") << QStringLiteral("hidden") << false;
    QTest::newRow("unknown") << QStringLiteral("nothing") << false;
    QTest::newRow("other case") << QStringLiteral("Gain") << false;
    QTest::newRow("empty") << QString() << false;
}

void CameraParametersTest::findsDescribedParameters()
{
    QFETCH(QString, name);
    QFETCH(bool, found);
    QCOMPARE(m_set->findParam(name, false) != nullptr, found);
    QCOMPARE(m_set->findParam(name, true), m_set->findParam(name, false));
}

void CameraParametersTest::listsChoicesInTheCamerasOrder()
{
    const auto items = m_set->findParam(format, false)->enumItems();
    // The value beyond an item's range cannot be offered.
    QCOMPARE(items.size(), 3);
    QCOMPARE(items[0].name, QStringLiteral("RAW 8"));
    QCOMPARE(items[0].value, 4);
    QCOMPARE(items[1].name, QStringLiteral("RAW 16"));
    QCOMPARE(items[1].value, 0);
    QCOMPARE(items[2].name, QString::fromUtf8("Größer"));
    QCOMPARE(items[2].value, 2);
    QVERIFY(m_set->findParam(gain, false)->enumItems().isEmpty());
}

void CameraParametersTest::showsTheCamerasValue_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<bool>("fails");
    QTest::addColumn<int>("shown");
    QTest::newRow("as it is now") << qint64(-5) << false << -5;
    QTest::newRow("unreadable") << qint64(-5) << true << 0;
    QTest::newRow("largest") << qint64(std::numeric_limits<int>::max()) << false
                             << std::numeric_limits<int>::max();
    QTest::newRow("no int") << (qint64(1) << 40) + 7 << false << 0;
}

void CameraParametersTest::showsTheCamerasValue()
{
    QFETCH(qint64, value);
    QFETCH(bool, fails);
    QFETCH(int, shown);
    CxCameraParam *param = m_set->findParam(gain, false);
    QCOMPARE(param->paramValue().toInt(), 10);
    m_camera->setValue("gain", value);
    if (fails)
        m_camera->failReads("gain");
    QCOMPARE(param->paramValue().toInt(), shown);
}

void CameraParametersTest::writesOnCommitOnly()
{
    CxCameraParam *param = m_set->findParam(gain, false);
    param->setParamValue(CxValue(21));
    param->setParamValue(CxValue(22));
    QCOMPARE(param->paramValue().toInt(), 10);
    m_set->addParamCommitToBatch(gain);
    QVERIFY(m_camera->log().empty());
    m_set->endCommitBatch(CxCameraParameters::eCommitRefreshNone);
    QCOMPARE(m_camera->log(), (std::vector<std::string>{"write gain=22"}));
    QCOMPARE(param->paramValue().toInt(), 22);
}

void CameraParametersTest::commitsInTheOrderOfAdding()
{
    m_set->findParam(gain, false)->setParamValue(CxValue(1));
    m_set->findParam(offset, false)->setParamValue(CxValue(2));
    m_set->addParamCommitToBatch(offset);
    m_set->addParamCommitToBatch(gain);
    m_set->addParamCommitToBatch(offset);
    m_set->endCommitBatch(CxCameraParameters::eCommitRefreshNone);
    QCOMPARE(m_camera->log(), (std::vector<std::string>{"write offset=2", "write gain=1"}));
}

void CameraParametersTest::commitsNothing_data()
{
    QTest::addColumn<bool>("staged");
    QTest::addColumn<QString>("added");
    QTest::newRow("staged, not added") << true << QString();
    QTest::newRow("added, not staged") << false << gain;
    QTest::newRow("unknown added") << true << QStringLiteral("nothing");
}

void CameraParametersTest::commitsNothing()
{
    QFETCH(bool, staged);
    QFETCH(QString, added);
    if (staged)
        m_set->findParam(gain, false)->setParamValue(CxValue(1));
    if (!added.isNull())
        m_set->addParamCommitToBatch(added);
    QSignalSpy spy(&HostCore::instance(), &HostCore::parametersChanged);
    m_set->endCommitBatch(CxCameraParameters::eCommitRefreshChanged);
    QVERIFY(m_camera->log().empty());
    QCOMPARE(spy.count(), 0);
}

void CameraParametersTest::aBatchIsForgottenOnceCommitted()
{
    m_set->findParam(gain, false)->setParamValue(CxValue(1));
    m_set->addParamCommitToBatch(gain);
    m_set->endCommitBatch(CxCameraParameters::eCommitRefreshNone);
    m_set->findParam(gain, false)->setParamValue(CxValue(2));
    m_set->endCommitBatch(CxCameraParameters::eCommitRefreshNone);
    QCOMPARE(m_camera->log(), (std::vector<std::string>{"write gain=1"}));
}

void CameraParametersTest::aRefusedValueIsDropped()
{
    m_camera->failWrites("gain");
    m_set->findParam(gain, false)->setParamValue(CxValue(1));
    m_set->findParam(offset, false)->setParamValue(CxValue(2));
    m_set->addParamCommitToBatch(gain);
    m_set->addParamCommitToBatch(offset);
    QSignalSpy spy(&HostCore::instance(), &HostCore::parametersChanged);
    QTest::ignoreMessage(QtWarningMsg, "Camera A refused gain = 1");
    m_set->endCommitBatch(CxCameraParameters::eCommitRefreshChanged);
    QCOMPARE(m_camera->value("offset"), std::int64_t(2));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(1).toStringList(), QStringList{offset});

    m_camera->clearLog();
    m_set->addParamCommitToBatch(gain);
    m_set->endCommitBatch(CxCameraParameters::eCommitRefreshChanged);
    QVERIFY(m_camera->log().empty());
}

void CameraParametersTest::tellsTheHostsViews_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("told");
    QTest::newRow("not asked for") << int(CxCameraParameters::eCommitRefreshNone) << 0;
    QTest::newRow("asked for") << int(CxCameraParameters::eCommitRefreshChanged) << 1;
}

void CameraParametersTest::tellsTheHostsViews()
{
    QFETCH(int, mode);
    QFETCH(int, told);
    QSignalSpy spy(&HostCore::instance(), &HostCore::parametersChanged);
    m_set->findParam(gain, false)->setParamValue(CxValue(1));
    m_set->findParam(offset, false)->setParamValue(CxValue(2));
    m_set->addParamCommitToBatch(gain);
    m_set->addParamCommitToBatch(offset);
    m_set->endCommitBatch(static_cast<CxCameraParameters::ExCommitRefreshGuiMode>(mode));
    QCOMPARE(spy.count(), told);
    if (told != 0) {
        QCOMPARE(spy.at(0).at(0).value<ZUCORE_HANDLE>(), m_handle);
        QCOMPARE(spy.at(0).at(1).toStringList(), (QStringList{gain, offset}));
    }
}

void CameraParametersTest::announcesTheImageFormat()
{
    QSignalSpy spy(CxCameraManager::instance(), &CxCameraManager::imageFormatChanged);
    for (int value : {2, 2}) {
        m_set->findParam(format, false)->setParamValue(CxValue(value));
        m_set->addParamCommitToBatch(format);
        m_set->endCommitBatch(CxCameraParameters::eCommitRefreshChanged);
    }
    QCOMPARE(spy.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(m_camera->value("imgdataformat"), std::int64_t(2));
}

QTEST_GUILESS_MAIN(CameraParametersTest)
#include "CameraParametersTest.moc"
