#include "desk/signals/frm_cali.h"

#include "core/MAIN_Module.h"
#include "desk/signals/CalibFile.h"
#include "signals/calibration/CalibrationPages.h"
#include "ui_frm_cali.h"

namespace desk {

frm_cali::frm_cali(Desk& desk, const QString& modelno)
    : Page(desk, "Calibration Help"), ui_(std::make_unique<Ui::frm_cali>()) {
    ui_->setupUi(this);
    Title("Calibration Help");
    const auto opens = [this](QAbstractButton* command, const char* page) {
        connect(command, &QAbstractButton::clicked, this, [this, page] {
            if (const QString failure = OpenCalibFile(desk_.shared.directory / "webpages", page); !failure.isEmpty()) {
                Show(failure);
            }
        });
    };
    opens(ui_->cmdDamping, "Damping.htm");
    opens(ui_->cmdDampingVerify, "Damping_Verify.htm");
    opens(ui_->cmdDifferential, "Differential.htm");
    opens(ui_->cmdDifferentialVerify, "Differential_Verify.htm");
    opens(ui_->cmdRTD, "RTD.htm");
    opens(ui_->cmdRTDVerify, "RTD_Verify.htm");
    opens(ui_->cmdStatic, "Static.htm");
    opens(ui_->cmdStaticVerify, "Static_Verify.htm");
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QAbstractButton::clicked, this, &Page::Closed);
    connect(ui_->cmb_Model, &QComboBox::currentIndexChanged, this, &frm_cali::ShowModel);
    Guarded([this] {
        for (const std::string& model : signals::CalibrationModels(desk_.dbconn)) {
            ui_->cmb_Model->addItem(QString::fromStdString(model));
        }
    });
    ui_->cmb_Model->setCurrentIndex(ui_->cmb_Model->findText(modelno, Qt::MatchFixedString));
    ShowModel();
}

frm_cali::~frm_cali() = default;

void frm_cali::ShowModel() {
    const bool isChosen = ui_->cmb_Model->currentIndex() >= 0;
    const bool hasDp = signals::MeasuresDifferentialPressure(ui_->cmb_Model->currentText().toStdString());
    for (QWidget* page : std::initializer_list<QWidget*>{ui_->cmdStatic, ui_->cmdStaticVerify, ui_->cmdRTD,
                                                         ui_->cmdRTDVerify, ui_->cmdDamping, ui_->cmdDampingVerify}) {
        page->setEnabled(isChosen);
    }
    ui_->cmdDifferential->setEnabled(isChosen && hasDp);
    ui_->cmdDifferentialVerify->setEnabled(isChosen && hasDp);
    ui_->lblnote->setText(isChosen && !hasDp ? "This model measures no differential pressure." : "");
}

}  // namespace desk
