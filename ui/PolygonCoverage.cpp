#include "ui/PolygonCoverage.h"

#include <QRgba64>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace polygoncoverage {

namespace {

constexpr int one = 256; ///< a pixel

/// Columns whose sums are kept at a time: few enough for them to stay in the cache.
constexpr int bandWidth = 64;

/// The painter's polygons have coordinates of 1/64 pixel.
int fixedPoint(double coordinate)
{
    return qRound(coordinate * 64.0) * (one / 64);
}

int pixelOf(int coordinate)
{
    return coordinate >> 8;
}

/// Hands out `total` in `steps` whole portions without losing a remainder; the
/// first portion may be another.
class Portions
{
public:
    Portions(int first, int steps)
        : m_steps(steps)
        , m_portion(first / steps)
        , m_rest(first % steps)
    {
        if (m_rest < 0) {
            --m_portion;
            m_rest += steps;
        }
    }

    int first() const { return m_portion; }

    void continueWith(int total)
    {
        const Portions next(total, m_steps);
        m_portion = next.m_portion;
        m_increase = next.m_rest;
        m_rest -= m_steps;
    }

    int next()
    {
        m_rest += m_increase;
        if (m_rest < 0)
            return m_portion;
        m_rest -= m_steps;
        return m_portion + 1;
    }

private:
    int m_steps;
    int m_portion;
    int m_rest;
    int m_increase = 0;
};

/// Premultiplied colours by coverage, rounded as the painter does.
std::array<quint32, one> shadesOf(const QColor &colour)
{
    const quint32 full = colour.rgba64().premultiplied().toArgb32();
    std::array<quint32, one> shades{};
    for (quint32 coverage = 0; coverage < one; ++coverage) {
        const auto scaled = [coverage](quint32 channels) {
            const quint32 product = channels * coverage;
            return product + ((product >> 8) & 0xff00ff) + 0x800080;
        };
        shades[coverage] =
            ((scaled(full & 0xff00ff) >> 8) & 0xff00ff) | (scaled((full >> 8) & 0xff00ff) & 0xff00ff00);
    }
    shades[one - 1] = full;
    return shades;
}

/// Columns of pixels next to one another, and what edges do in them. The bands of
/// a view are used from left to right, each with all edges.
class Band
{
public:
    explicit Band(const QRect &view)
        : m_view(view)
        , m_columns(view.left(), view.top(), 0, view.height())
        , m_cells(static_cast<std::size_t>(bandWidth) * static_cast<std::size_t>(view.height()))
        , m_heights(static_cast<std::size_t>(view.height()))
    {
    }

    /// \return false when there is none
    bool goToNext();
    void addEdge(const QPoint &from, const QPoint &to);
    void paint(QImage &picture, const std::array<quint32, one> &shades);

private:
    bool isFirst() const { return m_columns.left() == m_view.left(); }

    /// Sums over the edges in one pixel, in steps of 1/256 pixel: how far they go
    /// down, and twice the area between them and the pixel's left side.
    struct Cell
    {
        int height = 0;
        int area = 0;
    };

    void addRow(int row, int fromX, int fromY, int toX, int toY);
    void addToCell(int column, int row, int height, int area);

    const QRect m_view;
    QRect m_columns;
    std::vector<Cell> m_cells;  ///< column by column
    std::vector<int> m_heights; ///< of all edges to the left, by rows
};

bool Band::goToNext()
{
    const int left = m_columns.right() + 1;
    if (left > m_view.right())
        return false;
    m_columns.setLeft(left);
    m_columns.setRight(std::min(left + bandWidth - 1, m_view.right()));
    std::fill(m_cells.begin(), m_cells.end(), Cell());
    return true;
}

void Band::addEdge(const QPoint &from, const QPoint &to)
{
    int x = from.x();
    const int y = from.y();
    const int toX = to.x();
    const int toY = to.y();
    int row = pixelOf(y);
    const int lastRow = pixelOf(toY);
    const bool isLeft = pixelOf(std::max(x, toX)) < m_columns.left();
    if (std::max(row, lastRow) < m_view.top() || std::min(row, lastRow) > m_view.bottom() ||
        pixelOf(std::min(x, toX)) > m_columns.right() || (isLeft && !isFirst()))
        return;
    const int fromInside = y - row * one;
    const int toInside = toY - lastRow * one;
    if (row == lastRow) {
        addRow(row, x, fromInside, toX, toInside);
        return;
    }

    const bool down = toY > y;
    const int step = down ? 1 : -1;
    const int leave = down ? one : 0;
    const int enter = one - leave;
    Portions portions((down ? one - fromInside : fromInside) * (toX - x), std::abs(toY - y));
    int nextX = x + portions.first();
    addRow(row, x, fromInside, nextX, leave);
    portions.continueWith(one * (toX - x));
    for (row += step, x = nextX; row != lastRow; row += step, x = nextX) {
        nextX = x + portions.next();
        addRow(row, x, enter, nextX, leave);
    }
    addRow(row, x, enter, toX, toInside);
}

/// The part of an edge that lies in one row of pixels.
/// \param fromY, toY from the row's top
void Band::addRow(int row, int fromX, int fromY, int toX, int toY)
{
    if (fromY == toY || row < m_view.top() || row > m_view.bottom())
        return;
    int column = pixelOf(fromX);
    const int lastColumn = pixelOf(toX);
    const int fromInside = fromX - column * one;
    const int toInside = toX - lastColumn * one;
    if (column == lastColumn) {
        addToCell(column, row, toY - fromY, (fromInside + toInside) * (toY - fromY));
        return;
    }

    const bool right = toX > fromX;
    const int step = right ? 1 : -1;
    const int leave = right ? one : 0;
    Portions portions((right ? one - fromInside : fromInside) * (toY - fromY), std::abs(toX - fromX));
    int y = fromY + portions.first();
    addToCell(column, row, portions.first(), (fromInside + leave) * portions.first());
    portions.continueWith(one * (toY - fromY));
    for (column += step; column != lastColumn; column += step) {
        const int height = portions.next();
        addToCell(column, row, height, one * height);
        y += height;
    }
    addToCell(column, row, toY - y, (toInside + one - leave) * (toY - y));
}

void Band::addToCell(int column, int row, int height, int area)
{
    const auto line = static_cast<std::size_t>(row - m_view.top());
    if (column < m_columns.left()) {
        // Bands further left have seen it, except for what no band holds.
        if (isFirst())
            m_heights[line] += height;
        return;
    }
    if (column > m_columns.right())
        return;
    Cell &cell = m_cells[static_cast<std::size_t>(column - m_columns.left()) *
                             static_cast<std::size_t>(m_view.height()) +
                         line];
    cell.height += height;
    cell.area += area;
}

void Band::paint(QImage &picture, const std::array<quint32, one> &shades)
{
    const int stride = picture.bytesPerLine() / 4;
    auto *const pixels = reinterpret_cast<quint32 *>(picture.bits()) + (m_columns.left() - m_view.left());
    const Cell *cell = m_cells.data();
    for (int column = 0; column < m_columns.width(); ++column) {
        quint32 *pixel = pixels + column;
        for (int &height : m_heights) {
            height += cell->height;
            // 512ths of a pixel's area are 256ths of its coverage.
            int coverage = std::abs((height * 2 * one - cell->area) >> 9) & (2 * one - 1);
            if (coverage > one)
                coverage = 2 * one - coverage;
            *pixel = shades[static_cast<std::size_t>(std::min(coverage, one - 1))];
            ++cell;
            pixel += stride;
        }
    }
}

} // namespace

QImage paint(const QPolygonF &polygon, const QRect &view, const QColor &colour)
{
    QImage picture(view.size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<QPoint> corners;
    corners.reserve(static_cast<std::size_t>(polygon.size()) + 1);
    for (const QPointF &corner : polygon)
        corners.emplace_back(fixedPoint(corner.x()), fixedPoint(corner.y()));
    if (!corners.empty())
        corners.push_back(corners.front());

    const std::array<quint32, one> shades = shadesOf(colour);
    Band band(view);
    while (band.goToNext()) {
        for (std::size_t i = 1; i < corners.size(); ++i)
            band.addEdge(corners[i - 1], corners[i]);
        band.paint(picture, shades);
    }
    return picture;
}

} // namespace polygoncoverage
