#include "ui/CellWidgets.h"

#include "measurement/Saturate.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVariant>

#include <limits>

namespace {

constexpr char cameraProperty[] = "hCam";
constexpr char plotNameProperty[] = "plotName";

QHBoxLayout *addLayout(QWidget *container)
{
    auto *layout = new QHBoxLayout(container);
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

QCheckBox *addCheckBox(QWidget *container, void *camera)
{
    auto *box = new QCheckBox(container);
    setCameraHandle(box, camera);
    box->setChecked(true);
    container->layout()->addWidget(box);
    return box;
}

QLineEdit *addEdit(QWidget *container, void *camera, int maximum)
{
    auto *edit = new QLineEdit(container);
    setCameraHandle(edit, camera);
    edit->setValidator(new QIntValidator(0, maximum, edit));
    edit->setAlignment(Qt::AlignCenter);
    edit->setEnabled(false);
    container->layout()->addWidget(edit);
    return edit;
}

QVariant toVariant(void *camera)
{
    return QVariant(static_cast<qulonglong>(reinterpret_cast<quintptr>(camera)));
}

void *toHandle(const QVariant &value)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a property holds numbers, a handle is a pointer by type
    return reinterpret_cast<void *>(static_cast<quintptr>(value.toULongLong()));
}

/// Makes room for the text, the frame and the cursor.
void setTextWidth(QLineEdit *edit, const QString &text)
{
    constexpr int innerMargins = 12;
    const int frame = edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
    edit->setMinimumWidth(edit->fontMetrics().size(Qt::TextSingleLine, text).width() + 2 * frame +
                          innerMargins);
}

} // namespace

void setCameraHandle(QObject *object, void *camera)
{
    if (camera)
        object->setProperty(cameraProperty, toVariant(camera));
}

void *cameraHandle(const QObject *object)
{
    return object ? toHandle(object->property(cameraProperty)) : nullptr;
}

void setCameraHandle(QTableWidgetItem *item, void *camera)
{
    item->setData(Qt::UserRole, toVariant(camera));
}

void *cameraHandle(const QTableWidgetItem *item)
{
    return item ? toHandle(item->data(Qt::UserRole)) : nullptr;
}

void setPlotName(QObject *object, const QString &name)
{
    object->setProperty(plotNameProperty, name);
}

QString plotName(const QObject *object)
{
    return object->property(plotNameProperty).toString();
}

namespace cells {

QPushButton *makeButton(void *camera, const QString &text)
{
    auto *button = new QPushButton(text);
    setCameraHandle(button, camera);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

CheckCell makeCheck(void *camera)
{
    auto *container = new QWidget;
    addLayout(container)->setAlignment(Qt::AlignCenter);
    QCheckBox *check = addCheckBox(container, camera);
    check->setMaximumWidth(check->sizeHint().width());
    return {container, check};
}

EditCell makeEdit(void *camera, int maximum)
{
    auto *container = new QWidget;
    addLayout(container);
    QCheckBox *automatic = addCheckBox(container, camera);
    QLineEdit *edit = addEdit(container, camera, maximum);
    setTextWidth(edit, QString::number(maximum));
    return {container, automatic, edit};
}

RangeCell makeRange(void *camera, int maximum)
{
    auto *container = new QWidget;
    addLayout(container);
    QCheckBox *automatic = addCheckBox(container, camera);
    QLineEdit *edits[2];
    for (QLineEdit *&edit : edits) {
        edit = addEdit(container, camera, maximum);
        edit->setText(QStringLiteral("0"));
        edit->setFixedSize(50, 23);
    }
    return {container, automatic, edits[0], edits[1]};
}

void setRowHeight(QTableWidget *table)
{
    constexpr int height = 24;
    table->verticalHeader()->setMinimumSectionSize(height);
    table->verticalHeader()->setDefaultSectionSize(height);
}

QTableWidgetItem *makeCentredItem(const QString &text)
{
    auto *item = new QTableWidgetItem(text);
    item->setTextAlignment(Qt::AlignCenter);
    return item;
}

QString wholeNumber(double value)
{
    constexpr qint64 lowest = std::numeric_limits<qint32>::min();
    constexpr qint64 highest = std::numeric_limits<qint32>::max();
    return QString::number(qBound(lowest, measurement::truncateSaturated(value), highest));
}

} // namespace cells
