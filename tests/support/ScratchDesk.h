#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "core/Database.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "fieldsim/VirtualClock.h"

namespace support {

// A directory that goes with the test.
class ScratchDirectory {
  public:
    ScratchDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "norwen-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    std::filesystem::path path;
};

struct RecordingFeedback final : core::Feedback {
    std::vector<std::string> status;
    std::vector<std::string> boxes;
    std::vector<std::string> late;  // bytes that came behind the wait for them
    void Status(const std::string& text) override { status.push_back(text); }
    void Box(const std::string& text) override { boxes.push_back(text); }
    void Lamp(const std::string& lamp, const std::string& bytes) override {
        if (lamp == "RX late") {
            late.push_back(bytes);
        }
    }
};

inline std::string FileText(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// An application directory of its own with a copy of the delivered database, and the ground of the engine on it,
// on a virtual clock.
class ScratchDesk {
    ScratchDirectory scratch_;

    const std::filesystem::path& Prepared() {
        std::filesystem::copy_file(NORWEN_DATABASE, scratch_.path / "Kolmar.mdb");
        std::filesystem::create_directory(scratch_.path / "scheduler");
        return scratch_.path;
    }

  public:
    explicit ScratchDesk(const core::DateTime& start = {2026, 3, 9, 7, 59, 30}) : clock(start) {}

    core::MAIN_Module shared{Prepared()};
    core::Database dbconn{shared.DatabasePath()};
    fieldsim::VirtualClock clock;
    core::Logs logs{dbconn, shared, clock};
    RecordingFeedback feedback;

    std::string RtuErr() const { return FileText(shared.rtuErrPath); }
};

}  // namespace support
