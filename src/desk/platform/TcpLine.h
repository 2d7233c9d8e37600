#pragma once

#include <QTcpSocket>
#include <string>

#include "core/Address.h"
#include "core/Clock.h"
#include "protocols/line/Line.h"

namespace desk {

// A line to an address on the network: the stream of bytes as terminal servers, cellular modems and Modbus TCP have it.
// It has no port number and no settings. An opening waits through the clock, for ten seconds at most; the line must
// outlive it.
class TcpLine final : public protocols::Line {
  public:
    // An address with port 0 cannot be opened.
    TcpLine(core::Address address, core::Clock& clock);

    // What came ahead of the station's close still belongs to an open port: it is closed once that has been read.
    bool PortOpen() const override { return state_ == State::Open || state_ == State::Ending; }
    bool PortOpen(bool open) override;
    std::string LastError() const override { return lastError_; }
    void CommPort(int) override {}
    void Settings(const std::string&) override {}
    std::size_t InBufferCount() override;
    // Bytes that the other end has not acknowledged yet.
    std::size_t OutBufferCount() override;
    void ClearInBuffer() override { Input(); }
    // What was sent cannot be taken back from a stream.
    void ClearOutBuffer() override {}
    void Output(const std::string& bytes) override;
    std::string Input() override;
    void StopOpening() override;

  private:
    enum class State { Closed, Opening, Open, Ending };

    bool Open();
    void Close();
    void Connected();
    void Failed(QAbstractSocket::SocketError error);
    void FailOpening(const std::string& reason);
    void Gather();
    std::string ReasonOf(QAbstractSocket::SocketError error) const;

    core::Address address_;
    core::Clock& clock_;
    State state_ = State::Closed;
    unsigned opening_ = 0;  // counts openings and closes, so that each wait and call back knows its own
    std::string rest_;      // came ahead of the station's close, unread
    std::string lastError_;
    QTcpSocket socket_;
};

}  // namespace desk
