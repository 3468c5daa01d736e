#include "tests/scriptedhost/ScriptedGuiPrivate.h"
#include "tests/scriptedhost/ScriptedHost.h"

#include <QAction>
#include <QMenu>

struct CxExportToolButton::Private
{
    QMenu menu;
    QList<ExExportType> types;
    ExExportType current = eExportNone;
};

CxExportToolButton::CxExportToolButton(QWidget *parent)
    : QToolButton(parent)
    , d(std::make_unique<Private>())
{
    setMenu(&d->menu);
    setPopupMode(QToolButton::MenuButtonPopup);
    connect(this, &QToolButton::clicked, this, [this] {
        if (d->current != eExportNone)
            Q_EMIT exportClicked(d->current);
    });
}

CxExportToolButton::~CxExportToolButton() = default;

void CxExportToolButton::addSupportedExportType(ExExportType type)
{
    if (d->types.contains(type))
        return;
    d->types.append(type);
    const QAction *action = d->menu.addAction(QStringLiteral("Export type %1").arg(type));
    connect(action, &QAction::triggered, this, [this, type] {
        d->current = type;
        Q_EMIT exportClicked(type);
    });
}

void CxExportToolButton::setExportType(ExExportType type)
{
    if (d->types.contains(type))
        d->current = type;
}

CxExportToolButton::ExExportType CxExportToolButton::exportType()
{
    return d->current;
}

void CxExportToolButton::exportImage(const QImage &image, ExExportType type, QWidget *parent,
                                     const QString &fileFilter)
{
    scripted::Host::instance().record(
        {scripted::Function::ExportImage, nullptr, fileFilter.toStdString(), type});
    scripted::Gui::instance().priv().images.append({image, type, parent, fileFilter});
}
