#pragma once

#include <QColor>
#include <QPoint>
#include <QString>
#include <QVector>
#include <QWidget>

#include <optional>

class QCPAxisRect;
class QCustomPlot;
class QMouseEvent;

namespace host {

/// What the read-out shows: the key under the pointer as its axis writes it, and
/// every graph's value there.
struct ReadoutText
{
    struct Row
    {
        QColor color;
        QString name;
        QString value; ///< a dash where the graph has no point in view
    };

    QString key;
    QVector<Row> rows;
};

/// Without a value where no axis rectangle is at `position` (plot widget pixels).
std::optional<ReadoutText> readoutAt(const QCustomPlot &plot, QPoint position);

/// Grouped by thousands, with the decimals that are visible at `resolution`
/// (value of one pixel) and without trailing zeros.
QString readoutNumber(double value, double resolution);

/// A label beside the pointer. It is a widget above the plot, not a part of it:
/// it costs no replot, is in no exported picture and keeps no pointer to a part
/// of the plot between two events.
class PlotReadout : public QWidget
{
    Q_OBJECT

public:
    /// \param plot becomes the parent
    explicit PlotReadout(QCustomPlot *plot);

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void point(const QMouseEvent *event);
    void leave();
    void refresh();
    QSize measure() const;
    QPoint place() const;

    QCustomPlot *m_plot;
    std::optional<QPoint> m_pointer; ///< none while outside or dragging
    ReadoutText m_text;
};

} // namespace host
