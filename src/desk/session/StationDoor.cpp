#include "desk/session/StationDoor.h"

#include <QFormLayout>
#include <QLabel>

#include "collection/NodeOverview.h"
#include "core/Station.h"
#include "core/Text.h"
#include "desk/core/Look.h"
#include "ui_StationDoor.h"

namespace desk {

namespace {

std::string Line(const core::Station& station) {
    if (!station.ip.empty()) {
        return "IP " + station.ip;
    }
    return station.comtype + ", COM" + std::to_string(station.comport) + ", " + station.settings +
           (station.phoneno.empty() ? "" : ", " + station.phoneno);
}

std::string TodaysState(core::Database& dbconn, std::int64_t locationID) {
    for (const collection::Node& node : collection::ReadNodes(dbconn)) {
        if (node.locationId == locationID) {
            return node.sampledtoday ? "Collected" : "Not collected";
        }
    }
    return {};
}

}  // namespace

StationDoor::StationDoor(Desk& desk, std::int64_t locationID)
    : Page(desk, "Parameter List"), ui_(std::make_unique<Ui::StationDoor>()) {
    ui_->setupUi(this);
    ui_->lblconsumer->setTextFormat(Qt::PlainText);
    ui_->lblconsumer->setFont(Larger(font(), 2, true));
    ui_->lblconnection->setFont(Larger(font(), 1.5));
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    const auto station = core::ReadStation(desk_.dbconn, locationID);
    if (!station) {
        ui_->lblconsumer->setText("This station is no longer in the register");
        return;
    }
    const bool isMicro = core::SameText(station->modelno, "CW_Micro");
    Title(isMicro ? "Selection Menu" : "Parameter List");
    setWindowTitle(windowTitle() + "----(" + QString::fromStdString(station->consumer) + ")");
    ui_->lblconsumer->setText(QString::fromStdString(station->consumer));
    Fact("Today's collection", TodaysState(desk_.dbconn, locationID));
    Fact("Model", station->modelno);
    Fact("Protocol", core::Trim(station->protocol + " " + station->mode));
    Fact("Slave address", std::to_string(station->slaveaddress));
    Fact("Line", Line(*station));
}

StationDoor::~StationDoor() = default;

void StationDoor::Fact(const QString& caption, const std::string& text) {
    auto* name = new QLabel(caption);
    Mute(name);
    auto* value = new QLabel(QString::fromStdString(text));
    value->setTextFormat(Qt::PlainText);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    ui_->facts->addRow(name, value);
}

}  // namespace desk
