#pragma once

#include "zuCoreGui/ZuCoreGuiGlobal.h"

#include <QToolButton>

#include <memory>

class QImage;

/// A tool button that offers targets to export to: a plain click takes the
/// current one, the menu any. GUI thread only.
class ZUCOREGUI_EXPORT CxExportToolButton : public QToolButton
{
    Q_OBJECT

public:
    enum ExExportType : int {
        eExportNone = 0,
        eExportFile = 1,      ///< a file that the user is asked for
        eExportClipboard = 2, ///< the system's clipboard
    };

    explicit CxExportToolButton(QWidget *parent);
    ~CxExportToolButton() override;

    /// Adds a target to the button's menu; adding one twice changes nothing.
    void addSupportedExportType(ExExportType type);

    /// The target of a plain click; a target chosen from the menu becomes it,
    /// too. A type that was not added is ignored.
    void setExportType(ExExportType type);
    ExExportType exportType();

    /// Exports a rendered image. Towards a file it asks the user for a name with
    /// `fileFilter`, a file dialog's filter list; the name's suffix, or else the
    /// chosen filter, decides the format. A save that fails is told to the user
    /// with its reason. Other types do nothing.
    static void exportImage(const QImage &image, ExExportType type, QWidget *parent,
                            const QString &fileFilter);

    /// Host side only.
    struct Private;

Q_SIGNALS:
    /// The user chose a target, by the button or its menu.
    void exportClicked(int type);

private:
    std::unique_ptr<Private> d;
};
