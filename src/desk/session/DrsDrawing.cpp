#include "desk/session/DrsDrawing.h"

#include <QPainter>
#include <algorithm>

#include "core/Text.h"
#include "session/ParameterSet.h"

namespace desk {

namespace {

const QString notAvailable = "N/A";
const QString openWord = "OPEN";
const QString shutWord = "CLOSE";

// The drawing's own measure; the painter scales it to the window.
constexpr QSizeF sheet(900, 440);
constexpr double stream1 = 110;
constexpr double stream2 = 290;
constexpr double middle = 200;  // the pipe before and behind them
constexpr double split = 295;
constexpr double join = 640;
constexpr double tank = 705;
constexpr double valveHalf = 22;
constexpr int textPixels = 16;

QString TextOf(const session::ParameterRow& row, bool isCW) {
    if (row.kind == core::ValueKind::Logical) {
        const std::string word = session::ValueCell(row, isCW);
        return word.empty() ? notAvailable : QString::fromStdString(word);
    }
    return QString::fromStdString(core::FixedText(row.lastvalue, 2) + " " + row.unit).trimmed();
}

// Two triangles, point to point.
QPolygonF Valve(double x, double y) {
    return QPolygonF({{x - valveHalf, y - valveHalf},
                      {x + valveHalf, y + valveHalf},
                      {x + valveHalf, y - valveHalf},
                      {x - valveHalf, y + valveHalf},
                      {x - valveHalf, y - valveHalf}});
}

void Arrow(QPainter& painter, double x, double y) {
    painter.setBrush(painter.pen().color());
    painter.drawPolygon(QPolygonF({{x - 14, y - 8}, {x, y}, {x - 14, y + 8}}));
    painter.setBrush(Qt::NoBrush);
}

}  // namespace

const std::array<const char*, FrmPNI::parts> FrmPNI::names = {"DRS Inlet Pressure",
                                                              "DRS Inlet Low Limit",
                                                              "DRS Filter DP",
                                                              "SSV Stream1",
                                                              "SSV Stream2",
                                                              "DRS Stream1 Regulator Opening",
                                                              "DRS Stream2 Regulator Opening",
                                                              "DRS Odorant Level",
                                                              "DRS Odorant Rate",
                                                              "DRS Gas Temperature",
                                                              "DRS Outlet Pressure",
                                                              "Door Position"};

FrmPNI::FrmPNI(QWidget* parent) : QWidget(parent) {
    setAccessibleName("P&I");
    texts_.fill(notAvailable);
}

void FrmPNI::Show(const session::ParameterSet& set, bool isCW) {
    QStringList words;
    level_ = 0;
    for (std::size_t part = 0; part < parts; ++part) {
        const auto place = set.Find("DRS", names[part]);
        const bool known = place && set.At(*place).read && session::HasFigure(set.At(*place));
        texts_[part] = known ? TextOf(set.At(*place), isCW) : notAvailable;
        words << QString(names[part]) + ": " + texts_[part];
        if (known && part == OdorantLevel) {
            level_ = std::clamp(set.At(*place).lastvalue / 100, 0.0, 1.0);
        }
    }
    setAccessibleDescription(words.join("\n"));
    update();
}

void FrmPNI::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = std::min(width() / sheet.width(), height() / sheet.height());
    painter.translate((width() - scale * sheet.width()) / 2, (height() - scale * sheet.height()) / 2);
    painter.scale(scale, scale);
    QFont font = painter.font();
    font.setPixelSize(textPixels);
    painter.setFont(font);
    painter.setPen(QPen(palette().color(QPalette::WindowText), 3));
    Pipes(painter);
    Filter(painter);
    Stream(painter, stream1, Shut1, Regulator1, "1");
    Stream(painter, stream2, Shut2, Regulator2, "2");
    Odoriser(painter);
    Cabinet(painter);
}

// A caption in the muted shade, and below it what it stands for; centred on a place.
void FrmPNI::Write(QPainter& painter, double x, double y, const QString& caption, Part part) const {
    constexpr double wide = 170;
    constexpr double line = 20;
    painter.save();
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(QRectF(x - wide / 2, y, wide, line), Qt::AlignCenter, caption);
    painter.setPen(palette().color(QPalette::WindowText));
    QFont font = painter.font();
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRectF(x - wide / 2, y + line, wide, line), Qt::AlignCenter, texts_[part]);
    painter.restore();
}

void FrmPNI::Pipes(QPainter& painter) const {
    painter.drawLine(QLineF(20, middle, split, middle));
    painter.drawPolyline(
        QPolygonF({{join, stream1}, {split, stream1}, {split, stream2}, {join, stream2}, {join, stream1}}));
    painter.drawLine(QLineF(join, middle, 880, middle));
    Arrow(painter, 100, middle);
    Arrow(painter, 880, middle);
    Write(painter, 80, middle - 56, "Inlet", InletPressure);
    Write(painter, 80, middle + 12, "Low limit", InletLowLimit);
    Write(painter, 812, middle - 56, "Outlet", OutletPressure);
    Write(painter, 812, middle + 12, "Gas temperature", GasTemperature);
}

// A square on its corner with the screen across.
void FrmPNI::Filter(QPainter& painter) const {
    constexpr double x = 218;
    constexpr double half = 30;
    painter.save();
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawPolygon(QPolygonF({{x - half, middle}, {x, middle - half}, {x + half, middle}, {x, middle + half}}));
    painter.setPen(QPen(painter.pen().color(), 2, Qt::DashLine));
    painter.drawLine(QLineF(x, middle - half, x, middle + half));
    painter.restore();
    Write(painter, x - 8, middle + 46, "Filter DP", FilterDP);
}

// An open valve is empty, a shut one is filled and has a bar across the pipe, of one that is not known there is a
// dashed outline.
void FrmPNI::Stream(QPainter& painter, double y, Part shut, Part regulator, const QString& number) const {
    constexpr double shutAt = 365;
    constexpr double regulatorAt = 530;
    const QColor ink = painter.pen().color();
    const bool isShut = texts_[shut] == shutWord;
    const bool known = isShut || texts_[shut] == openWord;
    painter.save();
    painter.setBrush(isShut ? ink : palette().color(QPalette::Window));
    painter.setPen(QPen(ink, 3, known ? Qt::SolidLine : Qt::DotLine));
    painter.drawPolygon(Valve(shutAt, y));
    if (isShut) {
        painter.setPen(QPen(ink, 6));
        painter.drawLine(QLineF(shutAt, y - valveHalf - 8, shutAt, y + valveHalf + 8));
    }
    painter.restore();
    Write(painter, shutAt, y + 34, "Slam shut " + number, shut);

    painter.save();
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawPolygon(Valve(regulatorAt, y));
    painter.drawLine(QLineF(regulatorAt, y, regulatorAt, y - 34));
    painter.drawChord(QRectF(regulatorAt - 22, y - 56, 44, 44), 0, 180 * 16);
    painter.restore();
    Write(painter, regulatorAt, y + 34, "Regulator " + number, regulator);
}

// A tank under the outlet, filled as it is, that feeds the pipe.
void FrmPNI::Odoriser(QPainter& painter) const {
    const QRectF body(tank - 30, 300, 60, 80);
    painter.drawLine(QLineF(tank, body.top(), tank, middle));
    painter.drawRoundedRect(body, 10, 10);
    if (level_ > 0) {
        const QRectF inner = body.adjusted(5, 5, -5, -5);
        painter.fillRect(inner.adjusted(0, inner.height() * (1 - level_), 0, 0), palette().color(QPalette::Highlight));
    }
    Write(painter, tank + 120, 296, "Odorant level", OdorantLevel);
    Write(painter, tank + 120, 344, "Odorant rate", OdorantRate);
}

// The cabinet; its door leaf stands off when it is open.
void FrmPNI::Cabinet(QPainter& painter) const {
    const QRectF body(30, 330, 70, 80);
    painter.drawRect(body);
    painter.save();
    if (texts_[Door] == openWord) {
        painter.drawPolygon(QPolygonF({body.topRight(), {130, 350}, {130, 430}, body.bottomRight()}));
    } else if (texts_[Door] == shutWord) {
        painter.drawRect(body.adjusted(9, 9, -9, -9));
        painter.drawLine(QLineF(82, 365, 82, 378));
    } else {
        painter.setPen(QPen(painter.pen().color(), 2, Qt::DotLine));
        painter.drawRect(body.adjusted(9, 9, -9, -9));
    }
    painter.restore();
    Write(painter, 190, 370, "Cabinet door", Door);
}

}  // namespace desk
