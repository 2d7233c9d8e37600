#pragma once

#include <cstdint>
#include <memory>

#include "desk/core/Page.h"

namespace Ui {
class StationDoor;
}

namespace desk {

// The door to one station: who it is, and how it stands with today's collection. No line is opened here.
class StationDoor : public Page {
    Q_OBJECT

  public:
    // Throws DatabaseError.
    StationDoor(Desk& desk, std::int64_t locationID);
    ~StationDoor() override;

  private:
    void Fact(const QString& caption, const std::string& text);

    std::unique_ptr<Ui::StationDoor> ui_;
};

}  // namespace desk
