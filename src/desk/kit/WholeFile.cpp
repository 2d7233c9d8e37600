#include "desk/kit/WholeFile.h"

#include <QFileDialog>
#include <QSaveFile>

#include "desk/kit/Boxes.h"

namespace desk {

void AskForFile(QWidget* over, const FileWish& wish, std::function<void(const QString& file)> write) {
    auto* dialog = new QFileDialog(over, wish.title, {}, wish.kinds);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    dialog->setDefaultSuffix(wish.suffix);
    dialog->selectFile(wish.name);
    QObject::connect(dialog, &QFileDialog::fileSelected, over,
                     [over, title = wish.title, write = std::move(write)](const QString& file) {
                         if (QFile::exists(file)) {
                             AskBox(over, file + " exists. Replace it?", title, [write, file] { write(file); });
                         } else {
                             write(file);
                         }
                     });
    dialog->open();
}

QString WriteWhole(const QString& file, const QByteArray& bytes) {
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        return file + ": " + out.errorString();
    }
    return {};
}

}  // namespace desk
