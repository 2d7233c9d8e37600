#include "desk/platform/SerialLine.h"

#include <poll.h>
#include <sys/ioctl.h>

#include <QStringList>

namespace desk {

std::optional<PortSettings> ParsePortSettings(const QString& text) {
    const QStringList parts = text.trimmed().toUpper().split(',');
    if (parts.size() != 4) {
        return std::nullopt;
    }
    PortSettings settings;
    bool isNumber = false;
    settings.baudRate = parts[0].trimmed().toInt(&isNumber);
    const QString parity = parts[1].trimmed();
    const int dataBits = parts[2].trimmed().toInt();
    const QString stopBits = parts[3].trimmed();
    settings.parity = parity == "O"   ? QSerialPort::OddParity
                      : parity == "E" ? QSerialPort::EvenParity
                                      : QSerialPort::NoParity;
    settings.dataBits = static_cast<QSerialPort::DataBits>(dataBits);
    settings.stopBits = stopBits == "1.5" ? QSerialPort::OneAndHalfStop
                        : stopBits == "2" ? QSerialPort::TwoStop
                                          : QSerialPort::OneStop;
    const bool known = isNumber && settings.baudRate > 0 && (parity == "N" || parity == "O" || parity == "E") &&
                       dataBits >= 5 && dataBits <= 8 && (stopBits == "1" || stopBits == "1.5" || stopBits == "2");
    return known ? std::optional(settings) : std::nullopt;
}

SerialLine::SerialLine(DeviceOf deviceOf) : deviceOf_(std::move(deviceOf)) {
    QObject::connect(&port_, &QSerialPort::errorOccurred, &port_,
                     [this](QSerialPort::SerialPortError error) { Failed(error); });
    QObject::connect(&port_, &QSerialPort::readyRead, &port_, [this] { Received(); });
}

bool SerialLine::PortOpen(bool open) {
    if (port_.isOpen()) {
        port_.flush();
        port_.close();
    }
    return !open || Open();
}

bool SerialLine::Open() {
    const std::string device = deviceOf_(number_);
    if (device.empty()) {
        lastError_ = "No device is entered for port " + std::to_string(number_);
        return false;
    }
    const auto settings = ParsePortSettings(QString::fromStdString(settings_));
    if (!settings) {
        lastError_ = "Comport settings \"" + settings_ + "\" are not valid";
        return false;
    }
    // The serial ports of this platform have a setting for one stop bit and one for two; the port would open with one.
    if (settings->stopBits == QSerialPort::OneAndHalfStop) {
        lastError_ = "1.5 stop bits cannot be set on this system; choose 1 or 2";
        return false;
    }
    lastError_.clear();
    port_.setPortName(QString::fromStdString(device));
    port_.setBaudRate(settings->baudRate);
    port_.setParity(settings->parity);
    port_.setDataBits(settings->dataBits);
    port_.setStopBits(settings->stopBits);
    if (!port_.open(QIODevice::ReadWrite)) {
        lastError_ = device + ": " + port_.errorString().toStdString();
        return false;
    }
    port_.clear();
    return true;
}

void SerialLine::Failed(QSerialPort::SerialPortError error) {
    const bool isTransfer = error == QSerialPort::ReadError || error == QSerialPort::WriteError;
    // Left open, a device that is gone would wake the event loop without end.
    if (port_.isOpen() && (error == QSerialPort::ResourceError || (isTransfer && HungUp()))) {
        lastError_ = port_.portName().toStdString() + ": the device is gone";
        port_.close();
        Lost(lastError_);
    }
}

// Takes over what has arrived since the event loop last ran, without waiting for more.
void SerialLine::Gather() {
    if (port_.isOpen()) {
        port_.waitForReadyRead(0);
    }
}

std::size_t SerialLine::InBufferCount() {
    Gather();
    return port_.isOpen() ? static_cast<std::size_t>(port_.bytesAvailable()) : 0;
}

// The device is gone: a pulled plug, the far end of a pseudo-terminal. A read that merely found nothing is an error to
// the serial port too, so the system is asked.
bool SerialLine::HungUp() const {
    pollfd device{port_.handle(), 0, 0};
    return poll(&device, 1, 0) > 0;
}

std::size_t SerialLine::OutBufferCount() {
    if (!port_.isOpen()) {
        return 0;
    }
    int inDriver = 0;
    if (ioctl(port_.handle(), TIOCOUTQ, &inDriver) != 0) {
        inDriver = 0;
    }
    const std::size_t inChip = std::chrono::steady_clock::now() < sentUntil_ ? 1 : 0;
    return static_cast<std::size_t>(port_.bytesToWrite()) + static_cast<std::size_t>(inDriver) + inChip;
}

void SerialLine::ClearInBuffer() {
    if (port_.isOpen()) {
        port_.clear(QSerialPort::Input);
    }
}

void SerialLine::ClearOutBuffer() {
    if (port_.isOpen()) {
        port_.clear(QSerialPort::Output);
        sentUntil_ = {};
    }
}

void SerialLine::Output(const std::string& bytes) {
    if (port_.isOpen()) {
        port_.write(bytes.data(), static_cast<qint64>(bytes.size()));
        port_.flush();
        constexpr int bitsPerByte = 12;  // the most: start, 8 data, parity, 2 stop
        const std::chrono::duration<double> sending(static_cast<double>(bytes.size()) * bitsPerByte / port_.baudRate());
        const auto now = std::chrono::steady_clock::now();
        sentUntil_ = std::max(now, sentUntil_) + std::chrono::duration_cast<std::chrono::nanoseconds>(sending);
    }
}

std::string SerialLine::Input() {
    Gather();
    return port_.isOpen() ? port_.readAll().toStdString() : std::string();
}

}  // namespace desk
