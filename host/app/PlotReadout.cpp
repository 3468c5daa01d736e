#include "host/app/PlotReadout.h"

#include "host/app/PlotLibrary.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr int maximumDecimals = 9;
constexpr int maximumRows = 20;
constexpr int maximumNameWidth = 240; // pixels
constexpr int margin = 6;
constexpr int pointerDistance = 14;

/// A ticker writes single values for its axis only.
struct TickerAccess : QCPAxisTicker
{
    using QCPAxisTicker::getTickLabel;
};

QString keyText(const QCPAxis &axis, double key)
{
    const QChar format = axis.numberFormat().at(0);
    const auto label = &TickerAccess::getTickLabel;
    return (axis.ticker().data()->*label)(key, axis.parentPlot()->locale(), format, axis.numberPrecision());
}

double axisPosition(const QCPAxis &axis, QPoint position)
{
    return axis.orientation() == Qt::Horizontal ? position.x() : position.y();
}

/// Axis units of the pixel at `position`; scales may be logarithmic.
double resolutionAt(const QCPAxis &axis, double value)
{
    const double pixel = axis.coordToPixel(value);
    return std::abs(axis.pixelToCoord(pixel + 1) - axis.pixelToCoord(pixel));
}

/// The point in view that is nearest to a key.
const QCPGraphData *nearestPoint(const QCPGraph &graph, double key)
{
    const auto data = graph.data();
    auto found = data->findBegin(key, false);
    if (found == data->constEnd() ||
        (found != data->constBegin() && found->key - key > key - (found - 1)->key)) {
        if (found == data->constBegin())
            return nullptr;
        --found;
    }
    return graph.keyAxis()->range().contains(found->key) ? &*found : nullptr;
}

ReadoutText::Row rowOf(const QCPGraph &graph, QPoint position)
{
    const QCPAxis &keyAxis = *graph.keyAxis();
    const double key = keyAxis.pixelToCoord(axisPosition(keyAxis, position));
    QColor color = graph.pen().color();
    color.setAlpha(255);
    const QCPGraphData *found = nearestPoint(graph, key);
    const bool hasValue = found && !std::isnan(found->value);
    return {color, graph.name(),
            hasValue ? readoutNumber(found->value, resolutionAt(*graph.valueAxis(), found->value))
                     : QStringLiteral("–")};
}

} // namespace

std::optional<ReadoutText> readoutAt(const QCustomPlot &plot, QPoint position)
{
    const auto rects = plot.axisRects();
    const auto rect = std::find_if(rects.begin(), rects.end(), [&](const QCPAxisRect *candidate) {
        return candidate->realVisibility() && candidate->rect().contains(position);
    });
    if (rect == rects.end())
        return std::nullopt;
    ReadoutText text;
    if (const QCPAxis *axis = (*rect)->axis(QCPAxis::atBottom))
        text.key = keyText(*axis, axis->pixelToCoord(position.x()));
    const auto graphs = (*rect)->graphs();
    for (const QCPGraph *graph : graphs) {
        if (graph->realVisibility() && graph->keyAxis() && graph->valueAxis() &&
            text.rows.size() < maximumRows)
            text.rows.append(rowOf(*graph, position));
    }
    return text;
}

QString readoutNumber(double value, double resolution)
{
    if (!std::isfinite(value))
        return QLocale::c().toString(value);
    const double needed = 1 - std::floor(std::log10(resolution));
    const int decimals = std::isfinite(needed) ? std::clamp(static_cast<int>(needed), 0, maximumDecimals) : 0;
    // Beyond the digits that a double has.
    if (std::abs(value) >= 1e15)
        return QString::number(value, 'g', 6);

    QString digits = QString::number(std::abs(value), 'f', decimals);
    int point = digits.indexOf(QLatin1Char('.'));
    if (point < 0) {
        point = digits.size();
    } else {
        while (digits.endsWith(QLatin1Char('0')))
            digits.chop(1);
        if (digits.endsWith(QLatin1Char('.')))
            digits.chop(1);
    }
    for (int group = point - 3; group > 0; group -= 3)
        digits.insert(group, QChar(0x202f)); // narrow, no line break
    const bool negative = value < 0 && digits != QLatin1String("0");
    return negative ? QChar(0x2212) + digits : digits;
}

PlotReadout::PlotReadout(QCustomPlot *plot)
    : QWidget(plot)
    , m_plot(plot)
{
    setObjectName(QStringLiteral("plotReadout"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    plot->installEventFilter(this);
    connect(plot, &QCustomPlot::afterReplot, this, &PlotReadout::refresh);
}

bool PlotReadout::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_plot)
        return false;
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        point(static_cast<QMouseEvent *>(event));
        break;
    case QEvent::Leave:
    case QEvent::Hide:
        leave();
        break;
    default:
        break;
    }
    return false;
}

void PlotReadout::point(const QMouseEvent *event)
{
    if (event->buttons() != Qt::NoButton) {
        leave();
        return;
    }
    m_pointer = event->pos();
    refresh();
}

void PlotReadout::leave()
{
    m_pointer.reset();
    hide();
}

void PlotReadout::refresh()
{
    if (!m_pointer)
        return;
    std::optional<ReadoutText> text = readoutAt(*m_plot, *m_pointer);
    if (!text) {
        hide();
        return;
    }
    m_text = std::move(*text);
    resize(measure());
    move(place());
    raise();
    show();
    update();
}

QSize PlotReadout::measure() const
{
    const QFontMetrics metrics = fontMetrics();
    int width = metrics.horizontalAdvance(m_text.key);
    for (const ReadoutText::Row &row : m_text.rows) {
        const int name = std::min(metrics.horizontalAdvance(row.name), maximumNameWidth);
        const int marker = metrics.ascent();
        width = std::max(width, marker + margin + name + 2 * margin + metrics.horizontalAdvance(row.value));
    }
    return {width + 2 * margin, (m_text.rows.size() + 1) * metrics.lineSpacing() + margin};
}

QPoint PlotReadout::place() const
{
    QPoint corner = *m_pointer + QPoint(pointerDistance, pointerDistance);
    if (corner.x() + width() > m_plot->width())
        corner.setX(m_pointer->x() - pointerDistance - width());
    if (corner.y() + height() > m_plot->height())
        corner.setY(m_pointer->y() - pointerDistance - height());
    return {std::max(corner.x(), 0), std::max(corner.y(), 0)};
}

void PlotReadout::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    const QFontMetrics metrics = fontMetrics();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(0xff70767e));
    painter.setBrush(QColor(20, 22, 24, 225));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);

    QRect line(margin, margin / 2, width() - 2 * margin, metrics.lineSpacing());
    painter.setPen(QColor(0xffb8bcc2));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, m_text.key);
    const int marker = metrics.ascent();
    for (const ReadoutText::Row &row : m_text.rows) {
        line.translate(0, metrics.lineSpacing());
        painter.fillRect(line.left(), line.center().y() - 1, marker - 2, 3, row.color);
        const QRect texts = line.adjusted(marker + margin, 0, 0, 0);
        painter.setPen(Qt::white);
        painter.drawText(texts, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         metrics.elidedText(row.name, Qt::ElideRight, maximumNameWidth));
        painter.drawText(texts, Qt::AlignRight | Qt::AlignVCenter, row.value);
    }
}

} // namespace host
