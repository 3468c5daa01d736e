#include "tests/ui/MeasuringCameras.h"

#include <QApplication>

#include <algorithm>

namespace rig {

namespace {

const QStringList labels = {"Alpha", "Beta", "Gamma"};
const QStringList identifiers = {"A-1", "B-2", "C-3"};

QString textsOf(const QMessageBox *box)
{
    return box ? box->windowTitle() + " | " + box->text() : QString(" | ");
}

} // namespace

bool PacedFrames::operator()(ZU_IMG &image)
{
    constexpr std::size_t wordsPerStamp = 1024 / 8;
    const unsigned int distance = ticks[std::min(m_frame, ticks.size() - 1)];
    m_words.assign(wordsPerStamp * stampsPerFrame, 0);
    for (std::size_t i = 0; i < stampsPerFrame; ++i)
        m_words[i * wordsPerStamp] = 1000 + i * distance;

    const quint64 microseconds = firstMicroseconds + m_frame * microsecondsPerFrame;
    ++m_frame;
    image.filledSize = quint32(m_words.size() * 8);
    image.data = m_words.data();
    image.width = 64;
    image.height = quint32(m_words.size() * 4 / 64);
    image.frameNumber = quint32(m_frame);
    image.timestampSeconds = quint32(microseconds / 1000000);
    image.timestampMicroseconds = quint32(microseconds % 1000000);
    return true;
}

bool CountedFrames::operator()(ZU_IMG &image)
{
    const Counters &now = counters[std::min(m_frame, counters.size() - 1)];
    for (std::size_t selector = 0; selector < now.size(); ++selector)
        scripted::Host::instance().setValue(m_camera, "counter_value[" + std::to_string(selector) + "]",
                                            now[selector]);

    const std::size_t last = microseconds.size() - 1;
    const quint64 time =
        m_frame <= last ? microseconds[m_frame] : microseconds[last] + 10000 * (m_frame - last);
    ++m_frame;
    image.filledSize = sizeof m_word;
    image.data = &m_word;
    image.width = 4;
    image.height = 1;
    image.frameNumber = quint32(m_frame);
    image.timestampSeconds = quint32(time / 1000000);
    image.timestampMicroseconds = quint32(time % 1000000);
    return true;
}

MeasuringCameras::MeasuringCameras(int count, Mode mode)
    : host(scripted::Host::instance())
{
    for (int camera = 0; camera < count; ++camera) {
        m_handles.append(host.addCamera({labels[camera], identifiers[camera], {}}));
        setFrames(camera, PacedFrames());
    }
    rig.createForm();
    if (mode != m_mode)
        setMode(mode);
    host.clearCalls();
}

QString MeasuringCameras::name(int camera)
{
    return QString("%1 (%2)").arg(labels[camera], identifiers[camera]);
}

QString MeasuringCameras::label(ZUCORE_HANDLE camera) const
{
    return labels.value(m_handles.indexOf(camera), "?");
}

void MeasuringCameras::setMode(Mode mode)
{
    rig.loadSettings({{"DTGTMeasMode", static_cast<int>(mode)}});
    m_mode = mode;
}

void MeasuringCameras::setFrames(int camera, const PacedFrames &frames)
{
    host.setImageSource(m_handles[camera], frames);
}

void MeasuringCameras::setFrames(int camera, const CountedFrames &frames)
{
    host.setImageSource(m_handles[camera], frames);
}

void MeasuringCameras::setCounters(int camera, const std::vector<CountedFrames::Counters> &counters)
{
    CountedFrames frames(m_handles[camera]);
    frames.counters = counters;
    setFrames(camera, frames);
}

QCheckBox *MeasuringCameras::quantityBox(int row) const
{
    return rig.find<QTableWidget>("tablePlotCheck")->cellWidget(row, 0)->findChild<QCheckBox *>();
}

bool MeasuringCameras::deliver(int camera, int frames)
{
    host.deliver(m_handles[camera], frames);
    return host.waitUntilStarved(m_handles[camera]);
}

bool MeasuringCameras::measure(int camera, int frames)
{
    clickMeasure(camera);
    return isMeasuring(camera) && deliver(camera, frames);
}

bool MeasuringCameras::measureAndStop(int camera, int frames)
{
    if (!measure(camera, frames))
        return false;
    tick();
    clickMeasure(camera);
    return !isMeasuring(camera);
}

QString MeasuringCameras::state(int camera) const
{
    return cell(camera, 1) + " " + measureButton(camera)->text();
}

std::vector<QCPGraphData> MeasuringCameras::points(int camera, const QString &name) const
{
    const QCPGraph *graph = rig.graph(m_handles[camera], name);
    if (!graph)
        return {};
    return {graph->data()->constBegin(), graph->data()->constEnd()};
}

QCPAxis *MeasuringCameras::timeAxis(int camera) const
{
    return rig.axisRect(m_handles[camera])->axis(QCPAxis::atBottom);
}

QStringList MeasuringCameras::sequence() const
{
    QStringList list;
    for (const scripted::Call &call : host.calls()) {
        QString verb;
        if (call.function == scripted::Function::StartAcquisition)
            verb = "start";
        else if (call.function == scripted::Function::StopAcquisition)
            verb = "stop";
        else if (call.function == scripted::Function::SetCameraControlEnabled)
            verb = call.value ? "release" : "take";
        else
            continue;
        list.append(verb + " " + label(call.handle) + (call.result ? "" : " failed"));
    }
    return list;
}

QStringList MeasuringCameras::settings(int camera) const
{
    static const std::vector<std::string> names = {
        "imgdataformat",
        "output_bit_depth",
        "output_bit_packing",
        "buffer_policy",
        "column_fpn_correction",
        "row_fpn_correction",
        "LUTEnable",
        "test_pattern_generator_selector",
        "test_pattern",
        "dp_param_value[1,5,6]",
        "dp_param_value[1,5,7]",
        "device_unit_register_value[1,55]",
        "recent_frame",
        "buffers_queue_size",
        "device_unit_register_value[8,4096]",
    };
    QStringList list;
    for (const std::string &name : names)
        list.append(
            QString("%1 %2").arg(QString::fromStdString(name)).arg(host.value(m_handles[camera], name)));
    return list;
}

QMessageBox *progressBox()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        if (box && box->isVisible() && !box->isModal())
            return box;
    }
    return nullptr;
}

Meanwhile::Meanwhile(const QString &text, std::function<void()> action)
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, text, action = std::move(action)] {
        const QMessageBox *box = progressBox();
        if (!box || !box->text().contains(text))
            return;
        m_timer.stop();
        m_hasRun = true;
        action();
    });
    m_timer.start(0);
}

ProgressNotes::ProgressNotes(const MeasuringCameras &cameras)
    : m_cameras(cameras)
{
    qApp->installEventFilter(this);
    cameras.host.observe([this, gui = std::this_thread::get_id()](const scripted::Call &call) {
        if (call.thread == gui)
            note(call);
    });
}

ProgressNotes::~ProgressNotes()
{
    m_cameras.host.observe([](const scripted::Call &) {});
}

bool ProgressNotes::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Paint && object->isWidgetType()) {
        const auto *box = qobject_cast<QMessageBox *>(static_cast<QWidget *>(object)->window());
        if (box)
            m_painted = textsOf(box);
    }
    return false;
}

void ProgressNotes::note(const scripted::Call &call)
{
    const QMessageBox *box = progressBox();
    const QString texts = textsOf(box);
    QString text = m_cameras.label(call.handle) + ": " + texts;
    if (box && m_painted != texts)
        text += " (unpainted)";
    if (notes.isEmpty() || notes.last() != text)
        notes.append(text);
}

} // namespace rig
