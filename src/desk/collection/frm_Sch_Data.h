#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frm_Sch_Data;
}

namespace desk {

// Opens a document with the program that is registered for it. Tells whether one was started.
bool OpenDocument(const std::filesystem::path& document);

// Picks the workbook of a station and a day, and opens it.
class frm_Sch_Data : public Page {
    Q_OBJECT

  public:
    using Opener = std::function<bool(const std::filesystem::path& document)>;

    explicit frm_Sch_Data(Desk& desk, Opener opener = OpenDocument);
    ~frm_Sch_Data() override;

    // The operator is told that there is nothing to pick once the page is in front.
    void Activated() override;

  private:
    void ShowDates();
    void cmd_open();

    std::unique_ptr<Ui::frm_Sch_Data> ui_;
    Opener opener_;
};

}  // namespace desk
