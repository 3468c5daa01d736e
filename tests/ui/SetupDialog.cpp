#include "tests/ui/SetupDialog.h"

#include <QApplication>
#include <QTimer>

namespace rig {

bool whileSetupIsOpen(const std::function<void()> &open, const SetupUse &use)
{
    bool appeared = false;
    QTimer inside; // fires in the dialog's event loop
    QObject::connect(&inside, &QTimer::timeout, &inside, [&] {
        const QPointer<QDialog> dialog(qobject_cast<QDialog *>(QApplication::activeModalWidget()));
        if (!dialog || dialog->objectName() != "CxDataGraphSetupDlg")
            return;
        inside.stop();
        appeared = true;
        use(SetupDialog(dialog));
        if (dialog && dialog->isVisible())
            dialog->reject();
    });
    inside.start(0);
    open();
    return appeared;
}

bool withSetup(const PluginRig &rig, const SetupUse &use)
{
    return whileSetupIsOpen([&rig] { PluginRig::click(rig.find<QPushButton>("btnSetup")); }, use);
}

} // namespace rig
