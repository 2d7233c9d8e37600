#include "desk/signals/frmCalibSignals.h"

#include <QRegularExpressionValidator>
#include <algorithm>

#include "ui_frmCalibSignals.h"

namespace desk {

namespace {

using signals::CalibrationPart;

constexpr std::array<CalibrationPart, 6> rows = {CalibrationPart::Live,   CalibrationPart::SpanValue,
                                                 CalibrationPart::Status, CalibrationPart::Zero,
                                                 CalibrationPart::Span,   CalibrationPart::Restore};

}  // namespace

frmCalibSignals::frmCalibSignals(Desk& desk)
    : Page(desk, "Calibration Signals"), ui_(std::make_unique<Ui::frmCalibSignals>()) {
    ui_->setupUi(this);
    Title("Calibration Signals");
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QAbstractButton::clicked, this, &Page::Closed);
    connect(ui_->cmdSave, &QAbstractButton::clicked, this, [this] { Guarded([this] { Save(); }); });
    CollectFields();
    Guarded([this] {
        auto names = signals::ReadCalibrationSignals(desk_.dbconn);
        for (const Field& field : fields_) {
            field.edit->setText(QString::fromStdString(names.At(field.place)));
        }
    });
}

frmCalibSignals::~frmCalibSignals() = default;

void frmCalibSignals::CollectFields() {
    // What a station's name can hold: no blank, and nothing beyond ASCII.
    auto* name = new QRegularExpressionValidator(QRegularExpression("[!-~]*"), this);
    for (const CalibrationPart part : rows) {
        for (const signals::Transmitter transmitter : signals::transmitters) {
            const auto place = signals::PlaceOf(transmitter, part);
            const QString control =
                (place.isSystemSignal ? "txtsystem_" : "txtname_") + QString::number(static_cast<int>(place.index) + 1);
            auto* edit = findChild<QLineEdit*>(control);
            if (std::none_of(fields_.begin(), fields_.end(), [edit](const Field& f) { return f.edit == edit; })) {
                edit->setValidator(name);
                fields_.push_back({edit, place});
            }
        }
    }
}

void frmCalibSignals::Save() {
    signals::CalibrationSignals names;
    for (const Field& field : fields_) {
        if (field.edit->text().isEmpty()) {
            field.edit->setFocus();
            Show("Enter value");
            return;
        }
        names.At(field.place) = field.edit->text().toStdString();
    }
    signals::SaveCalibrationSignals(desk_.dbconn, names);
    ui_->cmdClose->setFocus();
    Show("Saved", QMessageBox::Information);
}

}  // namespace desk
