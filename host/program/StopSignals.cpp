#include "host/program/StopSignals.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace host {

namespace {

constexpr std::array handledSignals{SIGINT, SIGTERM};

// A signal handler may only touch lock-free state and write to a descriptor.
std::array<int, 2> signalPipe{-1, -1};
std::array<struct sigaction, handledSignals.size()> formerActions;

extern "C" void forwardSignal(int signalNumber)
{
    const int savedErrno = errno;
    const auto byte = static_cast<unsigned char>(signalNumber);
    // A full pipe means that a stop is on its way already.
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedErrno;
}

} // namespace

StopSignals::StopSignals(QObject *parent)
    : QObject(parent)
{
    if (::pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("cannot create the signal pipe");
    m_notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &StopSignals::readSignal);

    struct sigaction action = {};
    action.sa_handler = forwardSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < handledSignals.size(); ++i)
        ::sigaction(handledSignals.at(i), &action, &formerActions.at(i));
}

StopSignals::~StopSignals()
{
    // Once a stop was asked for, the rest of the way out is not cut short either.
    struct sigaction ignored = {};
    ignored.sa_handler = SIG_IGN;
    for (std::size_t i = 0; i < handledSignals.size(); ++i)
        ::sigaction(handledSignals.at(i), m_received == 0 ? &formerActions.at(i) : &ignored, nullptr);
    m_notifier->setEnabled(false);
    for (int &descriptor : signalPipe) {
        ::close(descriptor);
        descriptor = -1;
    }
}

void StopSignals::readSignal()
{
    unsigned char byte = 0;
    while (::read(signalPipe[0], &byte, 1) == 1) {
        if (m_received == 0)
            m_received = byte;
        Q_EMIT stopRequested(byte);
    }
}

} // namespace host
