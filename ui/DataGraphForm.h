#pragma once

#include "measurement/CameraLineData.h"
#include "measurement/PlotLibrary.h"

#include <QList>
#include <QMap>
#include <QMutex>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>

namespace Ui {
class CxDataGraphForm;
}

class QCheckBox;
class QLineEdit;
class QMessageBox;
class QSettings;
struct CxCameraInfo;

/// The tool window: a row of the table and a plot area for every camera that
/// the host has open, and the controls common to all.
///
/// GUI thread only. It owns one engine per camera; the engine's own mutex is
/// taken after `m_mutex`, never before it. Widgets that belong to a camera carry
/// its handle in the dynamic property "hCam" and are found through it.
///
/// Starting and stopping a measurement, and every message box, let the event
/// loop run: a camera may close meanwhile, so that a slot must look its engine
/// up again afterwards.
class CxDataGraphForm : public QWidget
{
    Q_OBJECT
    friend class CxDataGraphSetupDlg; ///< edits the settings below

public:
    explicit CxDataGraphForm(QWidget *parent = nullptr);
    /// Stops every measurement, which puts the cameras' settings back.
    ~CxDataGraphForm() override;

    void loadSettings(QSettings *settings);
    void saveSettings(QSettings *settings);

    /// The visible time window in microseconds of the day, rounded outwards.
    /// \return the origin of the time axis, microseconds of the day
    qint64 GetTimeAxisRange(qint64 *from, qint64 *to);

    // The camera table ----------------------------------------------------

    void AddTableItemsThrougput();
    void AddTableItemsAcquisition();
    /// Header of a column; without a tool tip where that is empty.
    void AddTableItem(int col, const QString &header, const QString &toolTip);
    /// A quantity's check box and name in the table beside the plot.
    void AddPlotTableItem(int row, const QString &name, const QString &toolTip, const QColor &color);
    /// Enables or disables the cell's widget if it belongs to the camera.
    void DisableTableWidget(int row, int col, void *hCam, bool disable);

    // Measurement ---------------------------------------------------------

    void UpdateMeasureButtonText(void *hCam, const QString &text);
    /// Keeps a measuring camera's export button, and the setup while any camera
    /// measures, out of reach.
    void DisableUiForMeasurement(void *hCam, bool disable);
    void setDefaultCameraSettings(CxCameraLineData *line);
    /// Reads the camera's default speed again where its row asks for that.
    void UpdateCameraAutoTransport(void *hCam);

    // Plots ---------------------------------------------------------------

    /// The camera's plot area, or null.
    QCPAxisRect *GetCameraPlot(void *hCam);
    /// Adds a title at `layoutRow` of the plot's grid and the axes below it.
    bool AddCameraPlotThroughput(void *hCam, unsigned int layoutRow, const QString &title);
    bool AddCameraPlotAcquisition(void *hCam, unsigned int layoutRow, const QString &title);
    void ConfigurePlotAxis(QCPAxisRect *rect, QCPAxis::AxisType type, double lower, double upper,
                           const QString &label);
    /// A new graph "Min throughput" or "Max buffer level"; null for other names.
    QCPGraph *AddThrougputPlot(void *hCam, const QString &name, QColor colour);
    /// A new graph on the camera's right axis.
    QCPGraph *AddAcqPlotToRight(void *hCam, const QString &name, const QColor &colour);
    /// A new graph of a counter on the left axis; null for a counter that the
    /// camera does not have.
    QCPGraph *AddStandardAcqPlot(void *hCam, const QString &name, ZU_COUNTER_SELECTOR selector,
                                 const QColor &colour);
    bool IsPlotEnabled(const QString &name);
    /// Fits the left axis to its graphs and shows its bounds in the row, unless
    /// the user sets them by hand.
    void UpdateVertAxisInformation(void *hCam, QCPAxisRect *rect);

    /// Statistics and rows of the measuring cameras, without graphs.
    void updateStats();

public Q_SLOTS:
    void updateCameraList();
    void updateCameraListRow(ZUCORE_HANDLE hCam);
    void removeCameraListRow(ZUCORE_HANDLE hCam);
    void updateTableItem(int row, int col, const QString &val);
    /// Shows a counter's value in the cell, or that the camera does not have it.
    void updateTableCounterItem(ZUCORE_HANDLE hCam, int row, int col, ZU_COUNTER_SELECTOR sel);
    void updateGraph();
    void timerSignal();
    void updateColumnNames();
    void onComboboxFormatChanged(int newSel);
    void onComboboxFormatChangedExt(ZUCORE_HANDLE hCam);
    void onBtnMeasure();
    void onBtnCamExportData();
    void onChkCamPlotData(bool state);
    void onChkCamAutoTransport(bool state);
    void onEditCamTransportChanged(const QString &text);
    void onChkCamAutoInternalBuffer(bool state);
    void onEditCamInternalBufferChanged(const QString &text);
    void clearFocusAfterEditReturnPressed();
    void onChkCamAutoVertAxis(bool state);
    void onEditVertScaleMinChanged(const QString &text);
    void onEditVertScaleMaxChanged(const QString &text);
    void onBtnExport(int iExportType);
    void on_btnSetup_clicked();
    void on_btnResetZoom_clicked();
    void on_resetPan_clicked();
    void on_refreshGraph_clicked();
    void on_btnStartAll_clicked();
    void on_plotChangeZoom(QCPRange range);

private:
    /// Makes the rows of the cameras that the host has open, and their plot areas.
    /// \param makeRow fills a row with the cells of the present mode
    void addCameraRows(const std::function<void(int row, CxCameraLineData &line)> &makeRow);
    void updateThroughputCells(int row, const CxCameraLineData &line);
    void updateCounterCells(ZUCORE_HANDLE hCam, int row);

    /// A new engine with the window's settings, entered in m_cameraLines.
    CxCameraLineData *addCameraLine(ZUCORE_HANDLE hCam, const CxCameraInfo &info);
    /// Stops and deletes a known camera's engine.
    void removeCameraLine(void *hCam);

    /// Starts or stops the camera.
    void switchMeasurement(void *camera);
    /// With the window's settings, whatever the engine holds.
    bool startLine(CxCameraLineData *line);
    /// The next three pass over cameras in the wanted state already. The first
    /// two let events run: the window may be gone when they return.
    void stopCameras(const QList<ZUCORE_HANDLE> &cameras);
    /// \return false when one failed, after stopping all of them
    bool startCameras(const QList<ZUCORE_HANDLE> &cameras);
    void rollBackStart(const QList<ZUCORE_HANDLE> &cameras);

    /// Column of a row's Measure button; -1 in an unknown mode.
    int measureCellColumn() const;
    /// Column of a row's plot check box; -1 in an unknown mode.
    int plotCellColumn() const;
    /// Adds a plot area of the present mode.
    bool addCameraPlot(void *hCam, unsigned int layoutRow, const QString &title);
    /// A title and axes; the time axis is ready, the others are the caller's.
    QCPAxisRect *addPlotArea(void *hCam, unsigned int layoutRow, const QString &title);
    /// Takes all titles, axes and graphs out of the plot.
    void clearPlotAreas();
    void showPlotWhenUsed();
    /// Left axis of the camera whose edit sent the signal; null without one.
    QCPAxis *axisOfSendingEdit();

    bool isAnyCameraMeasuring() const;
    /// Whether one of the cameras that the host has open measures.
    bool isOpenCameraMeasuring() const;
    /// Puts the time axis' origin at the present while a camera measures.
    void followTime();
    /// Makes the view (seconds) that of all plots and redraws them.
    void showTimeRange(double lower, double upper);
    /// Gives the view to the plots.
    void setTimeAxes();

    enum class Refresh { Statistics, Graphs };
    /// Whether a refresh of the cameras can be completed without a delay. Does a
    /// piece of the work that it needs first; where some is left, the refresh is
    /// called again when the events are done.
    bool isPrepared(const QList<void *> &cameras, Refresh refresh);
    void continueRefresh(Refresh refresh);
    QList<void *> plottedCameras();

    /// The visible axes of a camera that is to be plotted, or null.
    QCPAxisRect *plottedArea(void *hCam);
    double millisecondsPerPixel(const QCPRange &range) const;
    void updateAcquisitionGraphs();
    void updateAcquisitionGraphs(void *hCam);
    void updateThroughputGraphs();
    /// \return whether the camera has data to draw
    bool updateThroughputGraphs(void *hCam);

    void exportRecords(void *camera);

    Ui::CxDataGraphForm *ui;
    QMap<void *, CxCameraLineData *> m_cameraLines; ///< owned
    QList<QCheckBox *> m_plotCheckBoxes;            ///< one per plotted quantity, see "plotName"
    MeasureMode m_measureMode = MeasureModeThroughput;
    int m_samplePeriod = 1024; ///< bytes
    qint64 m_maxSamples = 10000000;
    bool m_resetBufferLevel = true;
    ExTimestampOrigin m_timestampOrigin = TimestampOriginCamera;
    QTimer m_timer;
    double m_timeRangeLower = -20.0; ///< seconds from m_timeOrigin
    double m_timeRangeUpper = 0.0;
    qint64 m_timeOrigin = 0;                 ///< microseconds of the day; stands still while nothing measures
    quint64 m_preparedWork = 0;              ///< done so far of what a refresh needs, in samples
    std::optional<Refresh> m_pendingRefresh; ///< to be called again when the events are done
    QMutex m_mutex;                          ///< held for a whole refresh and a change of the plotted cameras
};
