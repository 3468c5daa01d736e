#include "zuCoreGui/CxExportToolButton.h"

#include "host/gui/AppDelegateRegistration.h"
#include "host/gui/ImageFile.h"

#include <QActionGroup>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>

struct CxExportToolButton::Private
{
    QMenu *menu = nullptr;           ///< child of the button
    QActionGroup *targets = nullptr; ///< its actions carry their type as data
    ExExportType current = eExportNone;

    QAction *action(ExExportType type) const
    {
        for (QAction *candidate : targets->actions()) {
            if (candidate->data().toInt() == type)
                return candidate;
        }
        return nullptr;
    }

    /// Translations are looked up under the button's name, not this struct's.
    static QString text(ExExportType type)
    {
        switch (type) {
        case eExportFile:
            return CxExportToolButton::tr("To File...");
        case eExportClipboard:
            return CxExportToolButton::tr("To Clipboard");
        case eExportNone:
            break;
        }
        return {};
    }

    /// Takes a copy of the image: its owner may go while the user chooses.
    static void exportToFile(QImage image, QPointer<QWidget> parent, const QString &fileFilter);
    static void tellFailure(const QString &path, const QString &reason, QWidget *parent);
};

CxExportToolButton::CxExportToolButton(QWidget *parent)
    : QToolButton(parent)
    , d(std::make_unique<Private>())
{
    d->menu = new QMenu(this);
    d->targets = new QActionGroup(this);
    setMenu(d->menu);
    setPopupMode(QToolButton::MenuButtonPopup);

    connect(d->targets, &QActionGroup::triggered, this, [this](QAction *action) {
        d->current = static_cast<ExExportType>(action->data().toInt());
        Q_EMIT exportClicked(d->current);
    });
    connect(this, &QToolButton::clicked, this, [this] {
        if (d->current != eExportNone)
            Q_EMIT exportClicked(d->current);
    });
}

CxExportToolButton::~CxExportToolButton() = default;

void CxExportToolButton::addSupportedExportType(ExExportType type)
{
    const QString text = Private::text(type);
    if (text.isEmpty() || d->action(type))
        return;
    QAction *action = d->menu->addAction(text);
    action->setData(static_cast<int>(type));
    action->setCheckable(true);
    d->targets->addAction(action);
}

void CxExportToolButton::setExportType(ExExportType type)
{
    QAction *action = d->action(type);
    if (!action)
        return;
    action->setChecked(true);
    d->current = type;
}

CxExportToolButton::ExExportType CxExportToolButton::exportType()
{
    return d->current;
}

void CxExportToolButton::exportImage(const QImage &image, ExExportType type, QWidget *parent,
                                     const QString &fileFilter)
{
    if (type == eExportFile)
        Private::exportToFile(image, parent, fileFilter);
    else if (type == eExportClipboard)
        QGuiApplication::clipboard()->setImage(image);
}

// The windows below run event loops in which everything may go: the parent, and
// with it the window itself, and the program's delegate. Hence the copies.

// NOLINTNEXTLINE(performance-unnecessary-value-param)
void CxExportToolButton::Private::exportToFile(QImage image, QPointer<QWidget> parent,
                                               const QString &fileFilter)
{
    IxAppDelegate *app = host::appDelegate();
    const QPointer<QFileDialog> dialog = new QFileDialog(
        parent, CxExportToolButton::tr("Export Image"), app ? app->defaultSavePath() : QString(), fileFilter);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    // The dialog must know the suffix, or it asks about overwriting another file
    // than the one that is written.
    const auto followFilter = [dialog](const QString &filter) {
        dialog->setDefaultSuffix(host::filterSuffix(filter));
    };
    connect(dialog, &QFileDialog::filterSelected, dialog, followFilter);
    followFilter(dialog->selectedNameFilter());
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return;
    const QStringList files = accepted ? dialog->selectedFiles() : QStringList();
    const QString suffix = host::filterSuffix(dialog->selectedNameFilter());
    delete dialog;
    if (files.isEmpty())
        return;

    const QString &path = files.constFirst();
    app = host::appDelegate();
    if (app)
        app->setDefaultSavePath(QFileInfo(path).absolutePath());
    const QString reason = host::writeImageFile(image, path, suffix);
    if (!reason.isEmpty())
        tellFailure(path, reason, parent);
}

void CxExportToolButton::Private::tellFailure(const QString &path, const QString &reason, QWidget *parent)
{
    const QString text = CxExportToolButton::tr("The image could not be saved as %1.\n%2").arg(path, reason);
    const QPointer<QMessageBox> box = new QMessageBox(
        QMessageBox::Critical, CxExportToolButton::tr("Export Image"), text, QMessageBox::Ok, parent);
    box->exec();
    delete box;
}
