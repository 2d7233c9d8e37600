#pragma once

#include <modbus.h>
#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace support {

// What a LibmodbusSlave holds. Numbers are those of the line: register 1 of a station goes over it as 0.
struct SlaveMap {
    int slave = 1;
    int firstRegister = 0;
    int registers = 125;
    int firstCoil = 0;
    int coils = 64;
    bool floatInOneRegister = false;  // function 3 answers 4 bytes a register, function 16 takes 4 bytes for one
};

// An archive that is shown through a window: a record's number is written as a float into the index, and the window at
// the data then holds that record and up to three before it, the oldest first. Numbers are those of the line.
struct SlaveArchive {
    int pointer;
    int index;
    int data;
    int floats;  // of a record
    int newest;
    std::function<float(int record, int offset)> value;  // both counted from 1
};

// A slave of another make, a libmodbus server, at the far end of a pseudo-terminal and in a thread of its own. What it
// holds may be set and read at any time. A request for another address makes it take the next one for that slave's
// answer, as on a shared line.
class LibmodbusSlave {
  public:
    explicit LibmodbusSlave(const SlaveMap& map = {})
        : map_(map),
          mapping_(modbus_mapping_new_start_address(
              static_cast<unsigned>(map.firstCoil), static_cast<unsigned>(map.coils), 0, 0,
              static_cast<unsigned>(map.firstRegister), static_cast<unsigned>(map.registers), 0, 0)),
          wide_(static_cast<std::size_t>(map.registers)),
          context_(modbus_new_rtu("/dev/null", 9600, 'N', 8, 1)) {
        std::array<char, 128> name{};
        termios raw{};
        cfmakeraw(&raw);
        if (openpty(&far_, &near_, name.data(), &raw, nullptr) != 0 || !mapping_ || !context_) {
            throw std::runtime_error("no slave on a pseudo-terminal");
        }
        path_ = name.data();
        modbus_set_slave(context_.get(), map_.slave);
        modbus_set_socket(context_.get(), far_);
        modbus_set_indication_timeout(context_.get(), 0, 20000);  // how soon it notices that it is to stop
        modbus_set_error_recovery(context_.get(), MODBUS_ERROR_RECOVERY_PROTOCOL);
        thread_ = std::thread([this] { Serve(); });
    }
    ~LibmodbusSlave() {
        stopped_ = true;
        thread_.join();
        close(near_);  // it was kept open, so that the terminal outlives the openings of the master
        close(far_);
    }
    LibmodbusSlave(const LibmodbusSlave&) = delete;
    LibmodbusSlave& operator=(const LibmodbusSlave&) = delete;

    // The device that a master opens.
    const std::string& Path() const { return path_; }

    // A number outside the map is std::out_of_range. These two are of a map with 16-bit registers.
    std::uint16_t Register(int number) const {
        const std::lock_guard lock(mutex_);
        return mapping_->tab_registers[Index(number, map_.firstRegister, map_.registers)];
    }
    void SetRegister(int number, std::uint16_t value) {
        const std::lock_guard lock(mutex_);
        mapping_->tab_registers[Index(number, map_.firstRegister, map_.registers)] = value;
    }
    // A float at its one register, or at two of them, high word first.
    float Float(int number) const {
        const std::lock_guard lock(mutex_);
        const std::size_t at = FloatIndex(number);
        return map_.floatInOneRegister ? std::bit_cast<float>(wide_[at]) : HeldFloat(at);
    }
    void SetFloat(int number, float value) {
        const std::lock_guard lock(mutex_);
        const std::size_t at = FloatIndex(number);
        if (map_.floatInOneRegister) {
            wide_[at] = std::bit_cast<std::uint32_t>(value);
        } else {
            HoldFloat(at, value);
        }
    }
    bool Coil(int number) const {
        const std::lock_guard lock(mutex_);
        return mapping_->tab_bits[Index(number, map_.firstCoil, map_.coils)] != 0;
    }
    void SetCoil(int number, bool on) {
        const std::lock_guard lock(mutex_);
        mapping_->tab_bits[Index(number, map_.firstCoil, map_.coils)] = on ? 1 : 0;
    }

    // Shows an archive from now on. It is one of a map with 16-bit registers.
    void Show(SlaveArchive archive) {
        SetFloat(archive.pointer, static_cast<float>(archive.newest));
        const std::lock_guard lock(mutex_);
        archives_.push_back(std::move(archive));
    }

  private:
    struct Free {
        void operator()(modbus_mapping_t* mapping) const { modbus_mapping_free(mapping); }
        void operator()(modbus_t* context) const { modbus_free(context); }
    };

    static std::size_t Index(int number, int first, int count) {
        if (number < first || number >= first + count) {
            throw std::out_of_range("the slave does not hold " + std::to_string(number));
        }
        return static_cast<std::size_t>(number - first);
    }

    std::size_t FloatIndex(int number) const {
        return Index(number, map_.firstRegister, map_.registers - (map_.floatInOneRegister ? 0 : 1));
    }

    void Serve() {
        std::array<std::uint8_t, MODBUS_RTU_MAX_ADU_LENGTH> request{};
        while (!stopped_) {
            const int length = modbus_receive(context_.get(), request.data());
            if (length <= 0) {
                continue;
            }
            const std::lock_guard lock(mutex_);
            if (!(map_.floatInOneRegister && AnswerWide(request))) {
                modbus_reply(context_.get(), request.data(), length, mapping_.get());
                for (const SlaveArchive& archive : archives_) {
                    Fill(archive);
                }
            }
        }
    }

    float HeldFloat(std::size_t at) const {
        const std::uint16_t* words = mapping_->tab_registers + at;
        return std::bit_cast<float>(words[0] * 65536U + words[1]);
    }

    void HoldFloat(std::size_t at, float value) {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        mapping_->tab_registers[at] = static_cast<std::uint16_t>(bits >> 16U);
        mapping_->tab_registers[at + 1] = static_cast<std::uint16_t>(bits);
    }

    void Fill(const SlaveArchive& archive) {
        const auto last = static_cast<int>(HeldFloat(FloatIndex(archive.index)));
        const int first = std::max(1, last - 3);
        for (int record = first; record <= std::min(last, archive.newest); ++record) {
            for (int offset = 1; offset <= archive.floats; ++offset) {
                const int place = (record - first) * archive.floats + offset - 1;
                HoldFloat(FloatIndex(archive.data + 2 * place), archive.value(record, offset));
            }
        }
    }

    // Answers a request for registers that hold a whole float each, which the library does not know. False: it is none.
    bool AnswerWide(const std::array<std::uint8_t, MODBUS_RTU_MAX_ADU_LENGTH>& request) {
        const int function = request[1];
        if (function != MODBUS_FC_READ_HOLDING_REGISTERS && function != MODBUS_FC_WRITE_SINGLE_REGISTER &&
            function != MODBUS_FC_WRITE_MULTIPLE_REGISTERS) {
            return false;
        }
        const bool read = function == MODBUS_FC_READ_HOLDING_REGISTERS;
        const int first = request[2] * 256 + request[3] - map_.firstRegister;
        const int count = request[4] * 256 + request[5];
        if (function == MODBUS_FC_WRITE_SINGLE_REGISTER || count < 1 || count > 61 ||
            (!read && request[6] != count * 4)) {
            modbus_reply_exception(context_.get(), request.data(), MODBUS_EXCEPTION_ILLEGAL_DATA_VALUE);
            return true;
        }
        if (first < 0 || first + count > map_.registers) {
            modbus_reply_exception(context_.get(), request.data(), MODBUS_EXCEPTION_ILLEGAL_DATA_ADDRESS);
            return true;
        }
        std::vector<std::uint8_t> reply(request.begin(), request.begin() + (read ? 2 : 6));
        if (read) {
            reply.push_back(static_cast<std::uint8_t>(count * 4));
        }
        for (int i = 0; i < count; ++i) {
            std::uint32_t& bits = wide_[static_cast<std::size_t>(first + i)];
            for (int byte = 0; byte < 4; ++byte) {
                if (read) {
                    reply.push_back(static_cast<std::uint8_t>(bits >> (24 - 8 * byte)));
                } else {
                    bits = bits << 8U | request[static_cast<std::size_t>(7 + i * 4 + byte)];
                }
            }
        }
        modbus_send_raw_request(context_.get(), reply.data(), static_cast<int>(reply.size()));
        return true;
    }

    SlaveMap map_;
    std::unique_ptr<modbus_mapping_t, Free> mapping_;
    std::vector<std::uint32_t> wide_;
    std::unique_ptr<modbus_t, Free> context_;
    int far_ = -1;
    int near_ = -1;
    std::string path_;
    mutable std::mutex mutex_;
    std::vector<SlaveArchive> archives_;
    std::atomic<bool> stopped_ = false;
    std::thread thread_;
};

}  // namespace support
