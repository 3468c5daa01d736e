#pragma once

#include "measurement/CameraLineData.h"

#include <QColor>

/// A quantity that can be plotted. The name also tells its graph and its check
/// box from others, so that only its display is translated; both texts belong to
/// the context of CxDataGraphForm.
struct Quantity
{
    const char *name;
    const char *toolTip;
    QRgb color;
};

/// A counter of the camera and the column that shows it.
struct CounterQuantity
{
    ZU_COUNTER_SELECTOR selector;
    Quantity quantity;
};

namespace quantities {

constexpr Quantity minThroughput = {
    QT_TRANSLATE_NOOP("CxDataGraphForm", "Min throughput"),
    QT_TRANSLATE_NOOP("CxDataGraphForm", "Minimum data rate in whole data set"), qRgb(255, 165, 0)};
constexpr Quantity maxBufferLevel = {
    QT_TRANSLATE_NOOP("CxDataGraphForm", "Max buffer level"),
    QT_TRANSLATE_NOOP("CxDataGraphForm", "Internal camera buffer fill percentage"), qRgb(30, 144, 255)};
constexpr Quantity frameRate = {QT_TRANSLATE_NOOP("CxDataGraphForm", "FPS"),
                                QT_TRANSLATE_NOOP("CxDataGraphForm", "Frames per second"),
                                qRgb(144, 200, 255)};

/// Shown in the table only.
constexpr CounterQuantity transferred = {
    ZU_CNT_SEL_TRANSFERRED,
    {QT_TRANSLATE_NOOP("CxDataGraphForm", "Transferred"),
     QT_TRANSLATE_NOOP("CxDataGraphForm", "Number of transferred frames"), qRgb(255, 255, 255)}};

/// The counters with a graph, in the order of their columns and check boxes.
constexpr CounterQuantity plottedCounters[] = {
    {ZU_CNT_SEL_TRANSPORT_SKIP,
     {QT_TRANSLATE_NOOP("CxDataGraphForm", "Transport skip"),
      QT_TRANSLATE_NOOP("CxDataGraphForm", "Number of skipped frames on transport layer"),
      qRgb(255, 165, 0)}},
    {ZU_CNT_SEL_API_SKIP,
     {QT_TRANSLATE_NOOP("CxDataGraphForm", "API skip"),
      QT_TRANSLATE_NOOP("CxDataGraphForm", "Number of skipped frames on API layer"), qRgb(255, 0, 0)}},
    {ZU_CNT_SEL_MISSED_TRG_OVERLAP,
     {QT_TRANSLATE_NOOP("CxDataGraphForm", "Missed trg. overlap"),
      QT_TRANSLATE_NOOP("CxDataGraphForm", "Number of missed triggers due to overlap"), qRgb(255, 255, 0)}},
    {ZU_CNT_SEL_MISSED_TRG_OVERFLOW,
     {QT_TRANSLATE_NOOP("CxDataGraphForm", "Missed trg overflow"),
      QT_TRANSLATE_NOOP("CxDataGraphForm", "Number of missed triggers due to frame buffer full"),
      qRgb(0, 255, 0)}},
    {ZU_CNT_SEL_BUFFER_OVERFLOW,
     {QT_TRANSLATE_NOOP("CxDataGraphForm", "Buffer overflow"),
      QT_TRANSLATE_NOOP("CxDataGraphForm", "Frame buffer full counter"), qRgb(80, 80, 255)}},
};

} // namespace quantities
