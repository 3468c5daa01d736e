#pragma once

#include <QString>
#include <QTableWidget>

class QCheckBox;
class QLineEdit;
class QObject;
class QPushButton;
class QWidget;

/// Columns of the camera table in throughput mode.
namespace throughputColumn {
enum : int {
    Camera,
    Status,
    Measure,
    AvgThroughput,
    MinThroughput,
    MaxBufferLevel,
    BufferOverflowCount,
    ExportData,
    RequiredThroughput,
    CameraBufferSize,
    Graph,
    VerticalAxis,
    Count,
};
} // namespace throughputColumn

/// The same in acquisition mode.
namespace acquisitionColumn {
enum : int {
    Camera,
    Status,
    DataFormat,
    Measure,
    Transferred,
    FirstPlottedCounter, ///< of five
    ExportData = FirstPlottedCounter + 5,
    Graph,
    Count,
};
} // namespace acquisitionColumn

/// The camera that a widget or a plot area belongs to: property "hCam".
void setCameraHandle(QObject *object, void *camera);
/// Null for an object without the property, and for a null object.
void *cameraHandle(const QObject *object);
/// The same for an item of a table, under Qt::UserRole.
void setCameraHandle(QTableWidgetItem *item, void *camera);
void *cameraHandle(const QTableWidgetItem *item);

/// The plotted quantity that a check box switches: property "plotName".
void setPlotName(QObject *object, const QString &name);
QString plotName(const QObject *object);

/// What a cell of the camera table or the table beside the plot holds.
///
/// A cell with several widgets is a container whose children are its layout and
/// then the widgets in the order of their making; a slot that must find a
/// camera's widgets asks for them by that index.
namespace cells {

/// Children of a container; 0 is its layout.
enum Child : int {
    CheckBox = 1,
    FirstEdit = 2,
    SecondEdit = 3,
};

/// A container with the camera's check box in its middle.
struct CheckCell
{
    QWidget *container;
    QCheckBox *check;
};

/// A container with the camera's check box for automatic values, checked, and
/// a disabled edit behind it.
struct EditCell
{
    QWidget *container;
    QCheckBox *automatic;
    QLineEdit *edit;
};

/// The same with a second edit.
struct RangeCell
{
    QWidget *container;
    QCheckBox *automatic;
    QLineEdit *minimum;
    QLineEdit *maximum;
};

/// The widgets have no parent; a table takes them over. A null camera sets no
/// property.
QPushButton *makeButton(void *camera, const QString &text);
CheckCell makeCheck(void *camera);
/// \param maximum largest number that may be typed; the edit is wide enough for it
EditCell makeEdit(void *camera, int maximum);
RangeCell makeRange(void *camera, int maximum);

/// Gives rows their usual height, 24 pixels, even where the style's minimum is
/// larger.
void setRowHeight(QTableWidget *table);

/// An item with centred text.
QTableWidgetItem *makeCentredItem(const QString &text = QString());

/// The value without its fraction, within the limits of 32 bits; 0 for NaN.
QString wholeNumber(double value);

/// The child of the cell's container; null when there is none of that class.
template <typename Widget> Widget *child(const QTableWidget *table, int row, int column, Child index)
{
    const QWidget *container = table->cellWidget(row, column);
    return container ? qobject_cast<Widget *>(container->children().value(index)) : nullptr;
}

/// First row in which that child of the column's cells belongs to the camera,
/// -1 when there is none.
template <typename Widget> int rowOf(const QTableWidget *table, int column, Child index, void *camera)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        const Widget *widget = child<Widget>(table, row, column, index);
        if (widget && cameraHandle(widget) == camera)
            return row;
    }
    return -1;
}

} // namespace cells
