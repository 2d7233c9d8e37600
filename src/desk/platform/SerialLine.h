#pragma once

#include <QSerialPort>
#include <chrono>
#include <functional>
#include <optional>

#include "protocols/line/Line.h"

namespace desk {

// The settings text of a station, "9600,N,8,1": baud rate, parity N, O or E, data bits 5 to 8, stop bits 1, 1.5 or 2.
struct PortSettings {
    qint32 baudRate = 9600;
    QSerialPort::Parity parity = QSerialPort::NoParity;
    QSerialPort::DataBits dataBits = QSerialPort::Data8;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;
};

// Nothing for a text that is no settings.
std::optional<PortSettings> ParsePortSettings(const QString& text);

// The real line: a serial port of the machine. The driver raises DTR and RTS at the opening and, once the last byte is
// out, drops them at the close, so that a modem hangs up.
class SerialLine final : public protocols::Line {
  public:
    // The device of a port number; empty when there is none.
    using DeviceOf = std::function<std::string(int port)>;

    explicit SerialLine(DeviceOf deviceOf);

    bool PortOpen() const override { return port_.isOpen(); }
    bool PortOpen(bool open) override;
    std::string LastError() const override { return lastError_; }
    void CommPort(int number) override { number_ = number; }
    void Settings(const std::string& settings) override { settings_ = settings; }
    std::size_t InBufferCount() override;
    std::size_t OutBufferCount() override;
    void ClearInBuffer() override;
    void ClearOutBuffer() override;
    void Output(const std::string& bytes) override;
    std::string Input() override;

  private:
    bool Open();
    void Gather();
    void Failed(QSerialPort::SerialPortError error);
    bool HungUp() const;

    DeviceOf deviceOf_;
    QSerialPort port_;
    int number_ = 1;
    std::string settings_ = "9600,N,8,1";
    std::string lastError_;
    // When the last byte sent will have left the chip, which has a buffer that few drivers count.
    std::chrono::steady_clock::time_point sentUntil_;
};

}  // namespace desk
