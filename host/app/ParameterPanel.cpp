#include "host/app/ParameterPanel.h"

#include "host/app/CameraControl.h"
#include "host/app/ParameterDelegate.h"
#include "host/app/ParameterModel.h"
#include "host/core/HostCore.h"
#include "zuCore/CxCameraManager.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QStyle>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace host {

namespace {

/// So wide that the values remain in sight; the user may drag it.
constexpr int nameColumnChars = 25;

} // namespace

ParameterPanel::ParameterPanel(CameraControl &control, QWidget *parent)
    : QWidget(parent)
    , m_control(control)
    , m_model(new ParameterModel(this))
{
    buildWidgets();
    connectSources();
    showState();
}

void ParameterPanel::buildWidgets()
{
    m_tree = new QTreeView;
    m_tree->setObjectName(QStringLiteral("parameterTree"));
    m_tree->setModel(m_model);
    m_tree->setItemDelegate(new ParameterDelegate(m_tree));
    m_tree->setUniformRowHeights(true);
    m_tree->setAlternatingRowColors(true);
    m_tree->setIndentation(m_tree->indentation() * 2 / 3);
    m_tree->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                            QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    QHeaderView *header = m_tree->header();
    header->setStretchLastSection(false);
    header->resizeSection(ParameterModel::Name, nameColumnChars * fontMetrics().averageCharWidth());
    header->setSectionResizeMode(ParameterModel::Value, QHeaderView::Stretch);
    header->setSectionResizeMode(ParameterModel::Unit, QHeaderView::ResizeToContents);

    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("parameterStatus"));
    m_status->setWordWrap(true);
    m_read = new QToolButton;
    m_read->setObjectName(QStringLiteral("btnReadParameters"));
    m_read->setText(tr("Read again"));
    m_read->setIcon(style()->standardIcon(QStyle::SP_BrowserReload));
    m_read->setToolTip(tr("Read all values from the camera again"));
    m_read->setAutoRaise(true);

    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_status, 1);
    bottom->addWidget(m_read);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_tree);
    layout->addLayout(bottom);
}

void ParameterPanel::connectSources()
{
    CxCameraManager *manager = CxCameraManager::instance();
    connect(manager, &CxCameraManager::cameraClosed, this, &ParameterPanel::forget);
    connect(manager, &CxCameraManager::imageFormatChanged, this, &ParameterPanel::refresh);
    connect(&HostCore::instance(), &HostCore::parametersChanged, this, &ParameterPanel::refresh);
    connect(&m_control, &CameraControl::enabledChanged, this, [this](ZUCORE_HANDLE hCam) {
        showState();
        refresh(hCam);
    });
    connect(m_read, &QToolButton::clicked, this, [this] { refresh(m_camera); });
    connect(m_model, &ParameterModel::written, this, [this](const QString &problem) {
        m_problem = problem;
        showState();
    });
    connect(m_model, &ParameterModel::modelReset, this, [this] { openGroups(0, m_model->rowCount() - 1); });
    connect(m_model, &ParameterModel::rowsInserted, this,
            [this](const QModelIndex &parent, int first, int last) {
                if (!parent.isValid())
                    openGroups(first, last);
            });
}

void ParameterPanel::openGroups(int first, int last)
{
    for (int row = first; row <= last; ++row) {
        m_tree->setFirstColumnSpanned(row, {}, true);
        m_tree->expand(m_model->index(row, 0));
    }
}

void ParameterPanel::setCamera(ZUCORE_HANDLE hCam)
{
    if (m_camera == hCam)
        return;
    m_camera = hCam;
    m_problem.clear();
    m_model->setCamera(hCam);
    showState();
}

void ParameterPanel::refresh(ZUCORE_HANDLE hCam)
{
    // The plug-in's settings are its own; nor shall anyone wait for the camera.
    if (hCam == m_camera && m_control.isEnabled(hCam))
        m_model->refresh();
}

void ParameterPanel::forget(ZUCORE_HANDLE hCam)
{
    if (hCam == m_camera)
        setCamera(nullptr);
}

void ParameterPanel::showState()
{
    const bool isFree = m_camera && m_control.isEnabled(m_camera);
    m_model->setEditable(isFree);
    m_tree->setEnabled(isFree);
    m_read->setEnabled(isFree);
    if (!m_camera)
        m_status->setText(tr("No open camera is selected."));
    else if (!isFree)
        m_status->setText(tr("A plug-in measures with this camera: nothing can be changed now."));
    else
        m_status->setText(m_problem);
}

QSize ParameterPanel::sizeHint() const
{
    return {300, 240};
}

} // namespace host
