#include "desk/platform/RunFeedback.h"

namespace desk {

RunFeedback::RunFeedback(core::Logs& logs, std::function<void(const QString&)> status)
    : logs_(logs), status_(std::move(status)) {}

void RunFeedback::Status(const std::string& text) {
    status_(QString::fromStdString(text));
}

void RunFeedback::LineStatus(const std::string& line, const std::string& text) {
    if (text.empty()) {
        lines_.erase(line);
    } else {
        lines_[line] = text;
    }
    constexpr std::size_t mostShown = 3;
    std::string all;
    std::size_t shown = 0;
    for (auto at = lines_.begin(); at != lines_.end() && shown < mostShown; ++at, ++shown) {
        all += (all.empty() ? "" : "   ") + (lines_.size() > 1 ? at->first + ": " : "") + at->second;
    }
    if (lines_.size() > shown) {
        all += "   and " + std::to_string(lines_.size() - shown) + " more";
    }
    Status(all);
}

void RunFeedback::Box(const std::string& text) {
    logs_.WriteRtuErr(text);
    if (!box_) {
        box_ = new QMessageBox(QMessageBox::Warning, "Norwen", {}, QMessageBox::Ok);
        box_->setAttribute(Qt::WA_DeleteOnClose);
        box_->setModal(false);
        box_->setAttribute(Qt::WA_ShowWithoutActivating);
        box_->setTextFormat(Qt::PlainText);
    }
    box_->setText(QString::fromStdString(text));
    box_->show();
}

}  // namespace desk
