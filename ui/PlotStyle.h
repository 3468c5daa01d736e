#pragma once

#include "measurement/PlotLibrary.h"

/// How a plot area looks apart from its axes' ranges and texts; for a dark
/// background, and readable while several areas share a low window.
namespace plotstyle {

/// Of the plot's grid: the title and the axes below it.
constexpr unsigned int rowsPerArea = 2;

/// For an area's name.
QFont titleFont();

/// A solid line, one pixel wide.
QPen linePen(const QColor &colour);

/// White lines and texts.
void styleAxis(QCPAxis *axis);

/// Aligns a new area with the plot's others. From then on it has fewer ticks and
/// smaller labels wherever the plot is too small for all of them.
void fitIntoPlot(QCPAxisRect *rect);

} // namespace plotstyle
