#include "tests/host/core/FakeCamera.h"

#include "host/core/ApiError.h"
#include "host/core/HostCore.h"
#include "zuCore/CxCameraManager.h"

#include <QtTest>

#include <limits>

using host::ApiError;
using host::HostCore;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::int64_t int32Max = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t int32Min = std::numeric_limits<std::int32_t>::min();

} // namespace

class ZuApiTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void readsParameters_data();
    void readsParameters();
    void reads64Bits_data();
    void reads64Bits();
    void writes_data();
    void writes();
    void asksWhetherSettableWithoutWriting();
    void failsOnUnknownHandles_data();
    void failsOnUnknownHandles();
    void handlesAreNeverReused();

    void oneStreamAtATime();
    void aFailedStartLeavesTheCameraFree();
    void theStreamEndsEvenWhenStoppingFails();
    void aClientCannotStopTheHostsAcquisition();

    void announcesImageFormatChangesLater();
    void announcesNoImageFormat_data();
    void announcesNoImageFormat();
    void announcesNoImageFormatOfAClosedCamera();

    void tellsItsVersion();

private:
    std::shared_ptr<FakeCamera> m_camera;
    ZUCORE_HANDLE m_handle = nullptr;
};

void ZuApiTest::init()
{
    m_camera = std::make_shared<FakeCamera>("A");
    m_camera->setValue("gain", 7);
    m_camera->setValue("huge", int32Max + 1);
    m_camera->setValue("largest", int32Max);
    m_camera->setValue("smallest", int32Min);
    m_camera->setValue("too_small", int32Min - 1);
    m_camera->setValue("int64_max", std::numeric_limits<std::int64_t>::max());
    m_camera->setValue("negative", -1);
    m_camera->setValue("broken", 3);
    m_camera->failReads("broken");
    m_camera->setValue("locked", 3);
    m_camera->failWrites("locked");
    m_camera->setMaximum("gain", 48);
    m_camera->setMaximum("huge", int32Max + 2);
    m_camera->setValue(ZU_PRM_IMAGE_DATA_FORMAT, 1);
    plugIn({m_camera});
    m_handle = HostCore::instance().open("A");
    QVERIFY(m_handle);
    m_camera->clearLog();
}

void ZuApiTest::cleanup()
{
    HostCore::instance().shutDown();
    QCoreApplication::processEvents();
}

void ZuApiTest::readsParameters_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("expected"); // -99, the value before the call, where the read fails
    QTest::addColumn<int>("error");
    QTest::newRow("value") << QByteArray("gain") << 7 << 0;
    QTest::newRow("maximum") << QByteArray("gain:max") << 48 << 0;
    QTest::newRow("largest int") << QByteArray("largest") << int(int32Max) << 0;
    QTest::newRow("smallest int") << QByteArray("smallest") << int(int32Min) << 0;
    QTest::newRow("above int") << QByteArray("huge") << -99 << int(ApiError::ValueTooLarge);
    QTest::newRow("below int") << QByteArray("too_small") << -99 << int(ApiError::ValueTooLarge);
    QTest::newRow("maximum above int") << QByteArray("huge:max") << -99 << int(ApiError::ValueTooLarge);
    QTest::newRow("unknown name") << QByteArray("nothing") << -99 << int(ApiError::Refused);
    QTest::newRow("no maximum") << QByteArray("negative:max") << -99 << int(ApiError::Refused);
    QTest::newRow("unknown suffix") << QByteArray("gain:min") << -99 << int(ApiError::Refused);
    QTest::newRow("failing camera") << QByteArray("broken") << -99 << int(ApiError::Refused);
    QTest::newRow("suffix of a write")
        << QByteArray("gain:settable") << -99 << int(ApiError::InvalidArgument);
    QTest::newRow("empty name") << QByteArray("") << -99 << int(ApiError::InvalidArgument);
    QTest::newRow("suffix alone") << QByteArray(":max") << -99 << int(ApiError::InvalidArgument);
    QTest::newRow("no name") << QByteArray() << -99 << int(ApiError::InvalidArgument);
}

void ZuApiTest::readsParameters()
{
    QFETCH(QByteArray, name);
    QFETCH(int, expected);
    QFETCH(int, error);
    const char *text = name.isNull() ? nullptr : name.constData();

    int value = -99;
    int err = -1;
    QCOMPARE(zuApi_GetParamInt(m_handle, text, value, &err), error == 0);
    QCOMPARE(value, expected);
    QCOMPARE(err, error);

    value = -99;
    QCOMPARE(zuApi_GetParamInt(m_handle, text, value, nullptr), error == 0);
    QCOMPARE(value, expected);
}

void ZuApiTest::reads64Bits_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<qulonglong>("expected"); // 99 where the read fails
    QTest::addColumn<int>("error");
    QTest::newRow("small") << QByteArray("gain") << 7ULL << 0;
    QTest::newRow("above int") << QByteArray("huge") << qulonglong(int32Max + 1) << 0;
    QTest::newRow("largest") << QByteArray("int64_max") << 0x7fffffffffffffffULL << 0;
    QTest::newRow("maximum") << QByteArray("huge:max") << qulonglong(int32Max + 2) << 0;
    QTest::newRow("negative") << QByteArray("negative") << 99ULL << int(ApiError::ValueTooLarge);
    QTest::newRow("failing camera") << QByteArray("broken") << 99ULL << int(ApiError::Refused);
    QTest::newRow("no name") << QByteArray() << 99ULL << int(ApiError::InvalidArgument);
}

void ZuApiTest::reads64Bits()
{
    QFETCH(QByteArray, name);
    QFETCH(qulonglong, expected);
    QFETCH(int, error);
    unsigned long long value = 99;
    int err = -1;
    QCOMPARE(zuApi_GetParamInt64(m_handle, name.isNull() ? nullptr : name.constData(), value, &err),
             error == 0);
    QCOMPARE(qulonglong(value), expected);
    QCOMPARE(err, error);
}

void ZuApiTest::writes_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("calls"); // that reach the camera
    QTest::newRow("value") << QByteArray("gain") << 0 << 1;
    QTest::newRow("unknown name") << QByteArray("nothing") << int(ApiError::Refused) << 1;
    QTest::newRow("refused by the camera") << QByteArray("locked") << int(ApiError::Refused) << 1;
    QTest::newRow("suffix of a read") << QByteArray("gain:max") << int(ApiError::InvalidArgument) << 0;
    QTest::newRow("empty name") << QByteArray("") << int(ApiError::InvalidArgument) << 0;
    QTest::newRow("no name") << QByteArray() << int(ApiError::InvalidArgument) << 0;
}

void ZuApiTest::writes()
{
    QFETCH(QByteArray, name);
    QFETCH(int, error);
    QFETCH(int, calls);
    int err = -1;
    QCOMPARE(zuApi_SetParamInt(m_handle, name.isNull() ? nullptr : name.constData(), 12, &err), error == 0);
    QCOMPARE(err, error);
    QCOMPARE(int(m_camera->log().size()), calls);
    if (error == 0)
        QCOMPARE(m_camera->value(name.toStdString()), std::int64_t(12));
}

void ZuApiTest::asksWhetherSettableWithoutWriting()
{
    int err = -1;
    QVERIFY(zuApi_SetParamInt(m_handle, "gain:settable", 48, &err));
    QCOMPARE(err, 0);
    QVERIFY(!zuApi_SetParamInt(m_handle, "gain:settable", 49, &err));
    QCOMPARE(err, int(ApiError::Refused));
    QVERIFY(m_camera->log().empty());
    QCOMPARE(m_camera->value("gain"), std::int64_t(7));
}

void ZuApiTest::failsOnUnknownHandles_data()
{
    QTest::addColumn<quint64>("kind");
    QTest::newRow("null") << quint64(0);
    QTest::newRow("never opened") << quint64(0x7fff1234);
    QTest::newRow("closed") << quint64(1);
}

void ZuApiTest::failsOnUnknownHandles()
{
    QFETCH(quint64, kind);
    auto handle = reinterpret_cast<void *>(static_cast<std::uintptr_t>(kind));
    if (kind == 1) {
        handle = m_handle;
        QVERIFY(HostCore::instance().close(m_handle));
        m_camera->clearLog();
    }
    const int unknown = int(ApiError::UnknownHandle);
    int value = -99;
    unsigned long long wide = 99;
    int err = -1;
    QVERIFY(!zuApi_GetParamInt(handle, "gain", value, &err));
    QCOMPARE(err, unknown);
    QVERIFY(!zuApi_GetParamInt64(handle, "gain", wide, &err));
    QCOMPARE(err, unknown);
    QVERIFY(!zuApi_SetParamInt(handle, "gain", 1, &err));
    QCOMPARE(err, unknown);
    QVERIFY(!zuApi_StartAcquisition(handle));
    QVERIFY(!zuApi_StopAcquisition(handle));

    ZU_IMG image{};
    image.size = sizeof image;
    const auto start = Clock::now();
    QVERIFY(!zuApi_GetImage(handle, 5, &image, &err, true));
    QVERIFY(Clock::now() - start >= milliseconds(5));
    QCOMPARE(err, unknown);

    QCOMPARE(value, -99);
    QCOMPARE(qulonglong(wide), 99ULL);
    QVERIFY(m_camera->log().empty());
}

void ZuApiTest::handlesAreNeverReused()
{
    QSet<quintptr> seen{quintptr(m_handle)};
    for (int i = 0; i < 20; ++i) {
        QVERIFY(HostCore::instance().close(m_handle));
        m_handle = HostCore::instance().open("A");
        QVERIFY(m_handle);
        QVERIFY(!seen.contains(quintptr(m_handle)));
        seen.insert(quintptr(m_handle));
    }
}

void ZuApiTest::oneStreamAtATime()
{
    QVERIFY(!zuApi_StopAcquisition(m_handle));
    QVERIFY(zuApi_StartAcquisition(m_handle));
    QVERIFY(!zuApi_StartAcquisition(m_handle));
    QVERIFY(zuApi_StopAcquisition(m_handle));
    QVERIFY(!zuApi_StopAcquisition(m_handle));
    QVERIFY(zuApi_StartAcquisition(m_handle));
    QCOMPARE(m_camera->log(), (std::vector<std::string>{"start", "stop", "start"}));
}

void ZuApiTest::aFailedStartLeavesTheCameraFree()
{
    m_camera->failStart(true);
    QVERIFY(!zuApi_StartAcquisition(m_handle));
    QVERIFY(!zuApi_StopAcquisition(m_handle));
    m_camera->failStart(false);
    QVERIFY(zuApi_StartAcquisition(m_handle));
}

void ZuApiTest::theStreamEndsEvenWhenStoppingFails()
{
    QVERIFY(zuApi_StartAcquisition(m_handle));
    m_camera->failStop(true);
    QVERIFY(!zuApi_StopAcquisition(m_handle));
    QVERIFY(zuApi_StartAcquisition(m_handle));
}

void ZuApiTest::aClientCannotStopTheHostsAcquisition()
{
    QVERIFY(HostCore::instance().startAcquisition(m_handle));
    QVERIFY(!zuApi_StartAcquisition(m_handle));
    QVERIFY(!zuApi_StopAcquisition(m_handle));
    QVERIFY(m_camera->isStreaming());
    QVERIFY(CxCameraManager::instance()->isCameraRunning(m_handle));
}

void ZuApiTest::announcesImageFormatChangesLater()
{
    QSignalSpy spy(CxCameraManager::instance(), &CxCameraManager::imageFormatChanged);
    QVERIFY(zuApi_SetParamInt(m_handle, "imgdataformat", 7, nullptr));
    QCOMPARE(spy.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<ZUCORE_HANDLE>(), m_handle);
}

void ZuApiTest::announcesNoImageFormat_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("failing");
    QTest::newRow("same value") << QByteArray("imgdataformat") << 1 << false;
    QTest::newRow("failed write") << QByteArray("imgdataformat") << 7 << true;
    QTest::newRow("kept by the camera") << QByteArray("imgdataformat") << 9 << false;
    QTest::newRow("question only") << QByteArray("imgdataformat:settable") << 7 << false;
    QTest::newRow("other parameter") << QByteArray("gain") << 8 << false;
}

void ZuApiTest::announcesNoImageFormat()
{
    QFETCH(QByteArray, name);
    QFETCH(int, value);
    QFETCH(bool, failing);
    if (failing)
        m_camera->failWrites("imgdataformat");
    m_camera->limit("imgdataformat", 1);
    QSignalSpy spy(CxCameraManager::instance(), &CxCameraManager::imageFormatChanged);
    zuApi_SetParamInt(m_handle, name.constData(), value, nullptr);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
}

void ZuApiTest::announcesNoImageFormatOfAClosedCamera()
{
    QSignalSpy spy(CxCameraManager::instance(), &CxCameraManager::imageFormatChanged);
    QVERIFY(zuApi_SetParamInt(m_handle, "imgdataformat", 7, nullptr));
    QVERIFY(HostCore::instance().close(m_handle));
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
}

void ZuApiTest::tellsItsVersion()
{
    int major = -1;
    int minor = -1;
    int build = -1;
    zuCoreVersion(major, minor, build);
    QCOMPARE(QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(build), QStringLiteral(EXPECTED_VERSION));
}

QTEST_GUILESS_MAIN(ZuApiTest)
#include "ZuApiTest.moc"
