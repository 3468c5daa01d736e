#include "tests/scriptedhost/ScriptedGui.h"
#include "tests/scriptedhost/ScriptedHost.h"
#include "zuCoreGui/CxPlugin.h"

#include <QMenu>
#include <QSignalSpy>
#include <QtTest>

using scripted::Gui;
using scripted::Host;

class ScriptedGuiTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void dockedWidgets();
    void paths();
    void cameraControl();
    void levelsAndPlots();
    void exportButton();
    void exportedImages();
    void pluginDefaults();

private:
    IxAppDelegate &m_delegate = *IxAppDelegate::instance();
};

void ScriptedGuiTest::init()
{
    Host::instance().reset();
    Gui::instance().reset();
}

void ScriptedGuiTest::dockedWidgets()
{
    QPointer<QWidget> widget = new QWidget;
    m_delegate.addPluginWidget(widget, Qt::BottomDockWidgetArea,
                               Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea, 0);
    const QList<scripted::DockedWidget> docked = Gui::instance().dockedWidgets();
    QCOMPARE(docked.size(), 1);
    QCOMPARE(docked[0].widget, widget);
    QCOMPARE(docked[0].area, Qt::BottomDockWidgetArea);
    QCOMPARE(docked[0].allowedAreas, Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea);
    QCOMPARE(docked[0].flags, 0);
    Gui::instance().reset();
    QVERIFY(!widget);
}

void ScriptedGuiTest::paths()
{
    Gui::instance().setSavePath(QStringLiteral("/tmp/a"));
    QCOMPARE(m_delegate.defaultSavePath(), QStringLiteral("/tmp/a"));
    m_delegate.setDefaultSavePath(QStringLiteral("/tmp/b"));
    QCOMPARE(Gui::instance().savePath(), QStringLiteral("/tmp/b"));
    const std::vector<scripted::Call> calls = Host::instance().calls();
    QCOMPARE(calls.size(), std::size_t(2));
    QCOMPARE(calls[0].text(), std::string("defaultSavePath /tmp/a"));
    QCOMPARE(calls[1].text(), std::string("setDefaultSavePath /tmp/b"));
}

void ScriptedGuiTest::cameraControl()
{
    void *camera = Host::instance().addCamera();
    m_delegate.setCameraControlEnabled(camera, false);
    zuApi_StartAcquisition(camera);
    m_delegate.setCameraControlEnabled(camera, true);
    const std::vector<scripted::Call> calls = Host::instance().calls();
    QCOMPARE(calls.size(), std::size_t(3));
    QCOMPARE(calls[0].text(), std::string("setCameraControlEnabled 0"));
    QCOMPARE(calls[0].handle, camera);
    QCOMPARE(calls[1].text(), std::string("start"));
    QCOMPARE(calls[2].text(), std::string("setCameraControlEnabled 1"));
    QCOMPARE(Host::instance().cameraCalls().size(), std::size_t(1));
}

void ScriptedGuiTest::levelsAndPlots()
{
    QCOMPARE(m_delegate.interfaceLevel(), 3);
    Gui::instance().setInterfaceLevel(1);
    QCOMPARE(m_delegate.interfaceLevel(), 1);
    auto *plot = reinterpret_cast<QCustomPlot *>(this); // only remembered
    m_delegate.registerPlotWidget(plot);
    QCOMPARE(Gui::instance().plots(), QList<QCustomPlot *>({plot}));
}

void ScriptedGuiTest::exportButton()
{
    CxExportToolButton button(nullptr);
    QSignalSpy clicked(&button, &CxExportToolButton::exportClicked);
    button.click();
    QCOMPARE(clicked.size(), 0);
    button.addSupportedExportType(CxExportToolButton::eExportFile);
    button.addSupportedExportType(CxExportToolButton::eExportFile);
    button.addSupportedExportType(CxExportToolButton::eExportClipboard);
    QCOMPARE(button.menu()->actions().size(), 2);
    button.setExportType(CxExportToolButton::eExportNone);
    QCOMPARE(button.exportType(), CxExportToolButton::eExportNone);
    button.setExportType(CxExportToolButton::eExportFile);
    button.click();
    QCOMPARE(clicked.size(), 1);
    QCOMPARE(clicked[0][0].toInt(), 1);
    button.menu()->actions().at(1)->trigger();
    QCOMPARE(clicked.size(), 2);
    QCOMPARE(clicked[1][0].toInt(), 2);
    QCOMPARE(button.exportType(), CxExportToolButton::eExportClipboard);
}

void ScriptedGuiTest::exportedImages()
{
    QWidget parent;
    const QImage image(3, 2, QImage::Format_RGB32);
    CxExportToolButton::exportImage(image, CxExportToolButton::eExportClipboard, &parent,
                                    QStringLiteral("PNG (*.png)"));
    const QList<scripted::ExportedImage> images = Gui::instance().exportedImages();
    QCOMPARE(images.size(), 1);
    QCOMPARE(images[0].image.size(), QSize(3, 2));
    QCOMPARE(images[0].type, CxExportToolButton::eExportClipboard);
    QCOMPARE(images[0].parent, &parent);
    QCOMPARE(images[0].fileFilter, QStringLiteral("PNG (*.png)"));
}

void ScriptedGuiTest::pluginDefaults()
{
    class Versioned : public CxPlugin
    {
    public:
        using CxPlugin::version;
        void version(int &major, int &minor, int &build) const override
        {
            major = 1;
            minor = 2;
            build = 3;
        }
    };
    CxPlugin plain;
    QVERIFY(plain.init());
    plain.finish();
    plain.loadSettings(nullptr);
    plain.saveSettings(nullptr);
    QVERIFY(plain.name().isEmpty());
    QCOMPARE(plain.version(), QStringLiteral("0.0.0"));
    QCOMPARE(Versioned().version(), QStringLiteral("1.2.3"));
}

QTEST_MAIN(ScriptedGuiTest)
#include "ScriptedGuiTest.moc"
