#include "desk/platform/TcpLine.h"

#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <QNetworkProxy>
#include <QTimer>
#include <utility>

namespace desk {

namespace {

constexpr double openingMs = 10000;
constexpr qint64 mostWaiting = 65536;  // bytes; a station that sends more is held back

// An end that has gone without a word is noticed when bytes, or the probes of an idle connection, stay unacknowledged.
constexpr int idleSeconds = 10;
constexpr int probeSeconds = 5;
constexpr int unacknowledgedMs = 20000;  // puts the number of probes out of use

void SetOption(qintptr descriptor, int level, int option, int value) {
    setsockopt(static_cast<int>(descriptor), level, option, &value, sizeof value);
}

}  // namespace

TcpLine::TcpLine(core::Address address, core::Clock& clock) : address_(std::move(address)), clock_(clock) {
    socket_.setProxy(QNetworkProxy::NoProxy);
    socket_.setReadBufferSize(mostWaiting);
    QObject::connect(&socket_, &QTcpSocket::connected, &socket_, [this] { Connected(); });
    QObject::connect(&socket_, &QTcpSocket::readyRead, &socket_, [this] { Received(); });
    QObject::connect(&socket_, &QTcpSocket::errorOccurred, &socket_,
                     [this](QAbstractSocket::SocketError error) { Failed(error); });
}

bool TcpLine::PortOpen(bool open) {
    Close();
    return !open || Open();
}

void TcpLine::Close() {
    ++opening_;
    if (state_ == State::Open) {
        socket_.flush();
    }
    state_ = State::Closed;
    rest_.clear();
    socket_.abort();
    clock_.Wake();
}

bool TcpLine::Open() {
    const unsigned mine = opening_;
    if (address_.port == 0) {
        lastError_ = address_.host + ": the address has no port";
        return false;
    }
    lastError_.clear();
    state_ = State::Opening;
    socket_.connectToHost(QString::fromStdString(address_.host), static_cast<quint16>(address_.port));
    clock_.WaitMs(openingMs, [&] { return opening_ != mine || state_ != State::Opening; });
    if (opening_ != mine) {
        return false;
    }
    if (state_ == State::Opening) {
        FailOpening("no answer within 10 s");
    }
    return PortOpen();
}

void TcpLine::StopOpening() {
    if (state_ == State::Opening) {
        FailOpening("stopped while connecting");
    }
}

void TcpLine::FailOpening(const std::string& reason) {
    state_ = State::Closed;
    lastError_ = core::AddressText(address_) + ": " + reason;
    socket_.abort();
    clock_.Wake();
}

void TcpLine::Connected() {
    const qintptr descriptor = socket_.socketDescriptor();
    SetOption(descriptor, IPPROTO_TCP, TCP_NODELAY, 1);
    SetOption(descriptor, SOL_SOCKET, SO_KEEPALIVE, 1);
    SetOption(descriptor, IPPROTO_TCP, TCP_KEEPIDLE, idleSeconds);
    SetOption(descriptor, IPPROTO_TCP, TCP_KEEPINTVL, probeSeconds);
    SetOption(descriptor, IPPROTO_TCP, TCP_USER_TIMEOUT, unacknowledgedMs);
    state_ = State::Open;
    clock_.Wake();
}

void TcpLine::Failed(QAbstractSocket::SocketError error) {
    const bool opening = state_ == State::Opening;
    if (!opening && state_ != State::Open) {
        return;
    }
    lastError_ = core::AddressText(address_) + ": " + ReasonOf(error);
    rest_ = socket_.readAll().toStdString();
    state_ = opening || rest_.empty() ? State::Closed : State::Ending;
    clock_.Wake();
    if (!opening && state_ == State::Closed) {
        Lost(lastError_);
    }
}

std::string TcpLine::ReasonOf(QAbstractSocket::SocketError error) const {
    switch (error) {
        case QAbstractSocket::ConnectionRefusedError:
            return "connection refused";
        case QAbstractSocket::HostNotFoundError:
            return "name not found";
        case QAbstractSocket::RemoteHostClosedError:
            return "closed by the station";
        case QAbstractSocket::SocketTimeoutError:
            return "the station no longer answers";
        case QAbstractSocket::NetworkError:
            return state_ == State::Opening ? "unreachable" : "the connection broke";
        default:
            return socket_.errorString().toStdString();
    }
}

// Takes over what has arrived since the event loop last ran, without waiting for more.
void TcpLine::Gather() {
    pollfd arrived{static_cast<int>(socket_.socketDescriptor()), POLLIN, 0};
    if (state_ == State::Open && socket_.bytesAvailable() < mostWaiting && poll(&arrived, 1, 0) > 0) {
        socket_.waitForReadyRead(0);
    }
}

std::size_t TcpLine::InBufferCount() {
    Gather();
    return rest_.size() + (state_ == State::Open ? static_cast<std::size_t>(socket_.bytesAvailable()) : 0);
}

std::size_t TcpLine::OutBufferCount() {
    int unacknowledged = 0;
    if (state_ != State::Open || ioctl(static_cast<int>(socket_.socketDescriptor()), SIOCOUTQ, &unacknowledged) != 0) {
        return 0;
    }
    return static_cast<std::size_t>(socket_.bytesToWrite() + unacknowledged);
}

void TcpLine::Output(const std::string& bytes) {
    if (state_ == State::Open) {
        socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
        socket_.flush();
    }
}

std::string TcpLine::Input() {
    Gather();
    if (state_ == State::Ending) {
        state_ = State::Closed;
        // Behind this call, so that the conversation still has the reply that came ahead of the close.
        QTimer::singleShot(0, &socket_, [this, mine = opening_] {
            if (opening_ == mine) {
                Lost(lastError_);
            }
        });
        return std::exchange(rest_, {});
    }
    return state_ == State::Open ? socket_.readAll().toStdString() : std::string();
}

}  // namespace desk
