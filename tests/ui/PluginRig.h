#pragma once

#include "measurement/PlotLibrary.h"
#include "tests/scriptedhost/ScriptedGui.h"
#include "tests/scriptedhost/ScriptedHost.h"
#include "zuCoreGui/CxPlugin.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPointer>
#include <QPushButton>
#include <QTableWidget>
#include <QVariantMap>

#include <functional>

namespace rig {

/// The built plug-in, loaded the way a host loads it, on the scripted host
/// libraries. Each test makes one: the host starts empty, and the window goes
/// with the rig.
class PluginRig
{
public:
    PluginRig();
    ~PluginRig();
    PluginRig(const PluginRig &) = delete;
    PluginRig &operator=(const PluginRig &) = delete;

    /// The root object; made anew for each rig.
    QObject *object() const { return m_object; }
    CxPlugin *plugin() const { return m_plugin; }

    /// init() and the docked window, shown in its designed size.
    QWidget *createForm();
    QWidget *form() const { return m_form; }
    /// Destroys the window as a closing main window does.
    void destroyForm();

    /// A child of the window by its object name; fails hard when it is missing.
    template <typename Widget> Widget *find(const char *name) const
    {
        auto *widget = m_form->findChild<Widget *>(QString::fromLatin1(name));
        if (!widget)
            qFatal("The window has no %s", name);
        return widget;
    }

    /// Calls one of the window's slots without arguments ("timerSignal").
    void call(const char *slot) const;
    /// The same for a slot that takes a camera ("updateCameraListRow").
    void call(const char *slot, ZUCORE_HANDLE camera) const;

    /// Hands the plug-in a settings file that holds just these values in the
    /// plug-in's group.
    void loadSettings(const QVariantMap &values);
    /// What the plug-in saves, by its keys without their group. Values keep the
    /// type in which they were set.
    QVariantMap savedSettings();

    QTableWidget *table() const { return find<QTableWidget>("table"); }
    QCustomPlot *plot() const { return find<QCustomPlot>("plot"); }
    /// Text of an item, an empty one where there is none.
    QString cell(int row, int column) const;
    /// The cell's widget, or its child of that class (the n-th).
    template <typename Widget> Widget *cellWidget(int row, int column, int nth = 0) const
    {
        QWidget *cell = table()->cellWidget(row, column);
        if (auto *self = qobject_cast<Widget *>(cell))
            return self;
        return cell ? cell->findChildren<Widget *>().value(nth) : nullptr;
    }
    /// Row of the camera, -1 when it has none.
    int row(ZUCORE_HANDLE camera) const;
    /// A click with the mouse onto a visible, enabled widget.
    static void click(QWidget *widget);
    QPushButton *measureButton(int row) const { return cellWidget<QPushButton>(row, 2); }

    /// The camera's axis rectangle, found by its handle; null without one.
    QCPAxisRect *axisRect(ZUCORE_HANDLE camera) const;
    /// Graph of that name in the camera's axis rectangle; null without one.
    QCPGraph *graph(ZUCORE_HANDLE camera, const QString &name) const;

private:
    QPluginLoader m_loader;
    QPointer<QObject> m_object; ///< tests may delete it
    CxPlugin *m_plugin = nullptr;
    QPointer<QWidget> m_form;
};

/// What a message box said as it was shown.
struct ShownBox
{
    QString title;
    QString text;
    Qt::TextFormat textFormat;
    bool hasParent;
    int standardButtons;
};

/// While it lives, records every modal message box and closes it with its
/// default button, and every progress box that became visible.
class BoxWatcher : public QObject
{
    Q_OBJECT

public:
    BoxWatcher();
    ~BoxWatcher() override;

    QList<ShownBox> modal;           ///< in the order of their appearance
    QList<ShownBox> progress;        ///< each time a title or text was shown
    std::function<void()> onModal{}; ///< runs before a modal box is closed

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
};

/// The handle a widget carries in "hCam".
inline ZUCORE_HANDLE handleOf(const QObject *object)
{
    return reinterpret_cast<ZUCORE_HANDLE>(static_cast<quintptr>(object->property("hCam").toULongLong()));
}

/// A camera with a user id, opened with the host's signal.
ZUCORE_HANDLE openCamera(const QString &model, const QString &serial, const QString &userId = {});

} // namespace rig
