#include "measurement/ExportGate.h"
#include "tests/scriptedhost/ScriptedGui.h"
#include "tests/scriptedhost/ScriptedHost.h"
#include "tests/ui/SetupDialog.h"
#include "ui/DataGraphForm.h"
#include "ui/DataGraphSetupDlg.h"

#include <QTest>

using rig::SetupDialog;

/// The setup dialog where the loaded plug-in does not let a test reach, on a
/// window of the linked library.
class SetupGateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void waitsForTheEndOfAnExport();
    void goneWindowDoesNotAskLater();
    void outlivesItsWindow();
    void modeSlotTakesAnyIndex();

private:
    std::unique_ptr<CxDataGraphForm> m_form;
};

namespace {

void ignore(const SetupDialog & /*setup*/) {}

} // namespace

void SetupGateTest::init()
{
    scripted::Host::instance().reset();
    scripted::Gui::instance().reset();
    m_form = std::make_unique<CxDataGraphForm>();
}

void SetupGateTest::cleanup()
{
    m_form.reset();
}

void SetupGateTest::waitsForTheEndOfAnExport()
{
    {
        const CxExportGate::Closer exporting;
        QVERIFY(!rig::whileSetupIsOpen([this] { m_form->on_btnSetup_clicked(); }, ignore));
        QVERIFY(!rig::whileSetupIsOpen([] { QCoreApplication::processEvents(); }, ignore));
    }
    int accepted = 0;
    const bool appeared = rig::whileSetupIsOpen([] { QCoreApplication::processEvents(); },
                                                [&](const SetupDialog &setup) {
                                                    setup.samplePeriod()->setValue(5120);
                                                    setup.clickOk();
                                                    accepted = setup->result();
                                                });
    QVERIFY(appeared);
    QCOMPARE(accepted, int(QDialog::Accepted));
    QVERIFY(!rig::whileSetupIsOpen([] { QCoreApplication::processEvents(); }, ignore)); // once
}

void SetupGateTest::goneWindowDoesNotAskLater()
{
    {
        const CxExportGate::Closer exporting;
        m_form->on_btnSetup_clicked();
        m_form.reset();
    }
    QVERIFY(!rig::whileSetupIsOpen([] { QCoreApplication::processEvents(); }, ignore));
}

void SetupGateTest::outlivesItsWindow()
{
    CxDataGraphSetupDlg dialog(m_form.get(), nullptr);
    dialog.show();
    m_form.reset();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void SetupGateTest::modeSlotTakesAnyIndex()
{
    CxDataGraphSetupDlg dialog(m_form.get(), nullptr);
    const auto *box = dialog.findChild<QSpinBox *>("spinSamplePeriod");
    for (int index : {1, 0, -1, 0, 2}) {
        QVERIFY(QMetaObject::invokeMethod(&dialog, "onComboboxCurrentModeChanged", Q_ARG(int, index)));
        QCOMPARE(box->isEnabled(), index == 0);
    }
}

QTEST_MAIN(SetupGateTest)
#include "SetupGateTest.moc"
