#pragma once

#include "tests/ui/PluginRig.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QSpinBox>

#include <functional>

namespace rig {

/// The setup dialog while it is open.
class SetupDialog
{
public:
    explicit SetupDialog(QDialog *dialog)
        : m_dialog(dialog)
    {
    }

    QDialog *operator->() const { return m_dialog; }
    QDialog *dialog() const { return m_dialog; }

    /// A child by its object name; fails hard when it is missing.
    template <typename Object> Object *find(const char *name) const
    {
        auto *object = m_dialog->findChild<Object *>(QString::fromLatin1(name));
        if (!object)
            qFatal("The dialog has no %s", name);
        return object;
    }
    QSpinBox *samplePeriod() const { return find<QSpinBox>("spinSamplePeriod"); }
    QSpinBox *capacity() const { return find<QSpinBox>("spinCapacity"); }
    QSpinBox *refreshPeriod() const { return find<QSpinBox>("graphRefreshPeriod"); }
    QComboBox *mode() const { return find<QComboBox>("measureMode"); }
    QComboBox *origin() const { return find<QComboBox>("cbTimeStampOrigin"); }
    QCheckBox *reset() const { return find<QCheckBox>("chkResetBuffeLevel"); }

    void clickOk() const { click(QDialogButtonBox::Ok); }
    void clickCancel() const { click(QDialogButtonBox::Cancel); }

private:
    void click(QDialogButtonBox::StandardButton button) const
    {
        PluginRig::click(find<QDialogButtonBox>("buttonBox")->button(button));
    }

    QDialog *m_dialog;
};

/// What to do with the open dialog; it is cancelled if that leaves it open.
using SetupUse = std::function<void(const SetupDialog &)>;

/// Opens the dialog in some way that returns once it is closed again.
/// \return whether it appeared
bool whileSetupIsOpen(const std::function<void()> &open, const SetupUse &use);

/// The same with the window's button.
bool withSetup(const PluginRig &rig, const SetupUse &use);

} // namespace rig
