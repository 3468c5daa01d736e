#pragma once

#include <QDialog>

class QMenuBar;

namespace host {

/// The keyboard shortcuts of all entries of a menu bar, as they are now.
class ShortcutsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ShortcutsDialog(const QMenuBar &menus, QWidget *parent = nullptr);
};

} // namespace host
