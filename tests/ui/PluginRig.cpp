#include "tests/ui/PluginRig.h"

#include <QApplication>
#include <QMessageBox>
#include <QSettings>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace rig {

PluginRig::PluginRig()
    : m_loader(QStringLiteral(VELMORA_PLUGIN_FILE))
{
    scripted::Host::instance().reset();
    scripted::Gui::instance().reset();
    m_object = m_loader.instance();
    if (!m_object)
        qFatal("%s", qPrintable(m_loader.errorString()));
    m_plugin = qobject_cast<CxPlugin *>(m_object);
    if (!m_plugin)
        qFatal("The root object is no CxPlugin");
}

PluginRig::~PluginRig()
{
    destroyForm();
    delete m_object.data(); // not unloaded: sanitizers name functions of loaded libraries only
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QWidget *PluginRig::createForm()
{
    m_plugin->init();
    m_form = scripted::Gui::instance().dockedWidgets().constLast().widget;
    m_form->show();
    [[maybe_unused]] const bool exposed = QTest::qWaitForWindowExposed(m_form);
    return m_form;
}

void PluginRig::destroyForm()
{
    delete m_form.data();
}

void PluginRig::call(const char *slot) const
{
    if (!QMetaObject::invokeMethod(m_form, slot, Qt::DirectConnection))
        qFatal("The window has no slot %s()", slot);
}

void PluginRig::call(const char *slot, ZUCORE_HANDLE camera) const
{
    if (!QMetaObject::invokeMethod(m_form, slot, Qt::DirectConnection, Q_ARG(ZUCORE_HANDLE, camera)))
        qFatal("The window has no slot %s(ZUCORE_HANDLE)", slot);
}

void PluginRig::loadSettings(const QVariantMap &values)
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("host.ini"), QSettings::IniFormat);
    settings.beginGroup("DataThroughputGraphPlugin");
    for (auto value = values.begin(); value != values.end(); ++value)
        settings.setValue(value.key(), value.value());
    settings.endGroup();
    m_plugin->loadSettings(&settings);
    settings.clear(); // nobody reads the file
}

QVariantMap PluginRig::savedSettings()
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("host.ini"), QSettings::IniFormat);
    m_plugin->saveSettings(&settings);
    QVariantMap values;
    settings.beginGroup("DataThroughputGraphPlugin");
    for (const QString &key : settings.allKeys())
        values[key] = settings.value(key);
    settings.endGroup();
    settings.clear(); // nobody reads the file
    return values;
}

QString PluginRig::cell(int row, int column) const
{
    const QTableWidgetItem *item = table()->item(row, column);
    return item ? item->text() : QString();
}

int PluginRig::row(ZUCORE_HANDLE camera) const
{
    for (int row = 0; row < table()->rowCount(); ++row) {
        const QTableWidgetItem *item = table()->item(row, 0);
        if (item && item->data(Qt::UserRole).toULongLong() == reinterpret_cast<quintptr>(camera))
            return row;
    }
    return -1;
}

void PluginRig::click(QWidget *widget)
{
    QPoint place = widget->rect().center();
    if (qobject_cast<QCheckBox *>(widget)) { // what lies beside the box does not take clicks
        QStyleOptionButton option;
        option.initFrom(widget);
        place = widget->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, widget).center();
    }
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, place);
}

QCPAxisRect *PluginRig::axisRect(ZUCORE_HANDLE camera) const
{
    for (QCPAxisRect *rect : plot()->axisRects()) {
        if (handleOf(rect) == camera)
            return rect;
    }
    return nullptr;
}

QCPGraph *PluginRig::graph(ZUCORE_HANDLE camera, const QString &name) const
{
    QCPAxisRect *rect = axisRect(camera);
    if (!rect)
        return nullptr;
    for (QCPGraph *graph : rect->graphs()) {
        if (graph->name() == name)
            return graph;
    }
    return nullptr;
}

BoxWatcher::BoxWatcher()
{
    qApp->installEventFilter(this);
}

BoxWatcher::~BoxWatcher() = default;

bool BoxWatcher::eventFilter(QObject *object, QEvent *event)
{
    auto *box = qobject_cast<QMessageBox *>(object);
    if (!box || event->type() != QEvent::Show)
        return false;
    const ShownBox shown = {box->windowTitle(), box->text(), box->textFormat(),
                            box->parentWidget() != nullptr, static_cast<int>(box->standardButtons())};
    if (!box->isModal()) {
        progress.append(shown);
        return false;
    }
    modal.append(shown);
    QTimer::singleShot(0, box, [this, guard = QPointer<QMessageBox>(box)] {
        if (onModal)
            onModal();
        if (guard)
            guard->accept();
    });
    return false;
}

ZUCORE_HANDLE openCamera(const QString &model, const QString &serial, const QString &userId)
{
    return scripted::Host::instance().openCamera({model, serial, userId});
}

} // namespace rig
