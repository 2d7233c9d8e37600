#include "desk/shell/NodeButton.h"

#include <QPainter>
#include <array>

#include "desk/kit/Look.h"

namespace desk {

namespace {

// The operators know the states by these colours.
const QColor noStationColour(255, 192, 192);
const QColor collectedColour(0, 255, 0);
const QColor notCollectedColour(192, 192, 255);
const QColor collectingColour(255, 221, 87);

constexpr double smallest = 0.7;  // of a font's size, before a text is cut
// Of the height of a button with two lines.
constexpr double nameSize = 0.42;
constexpr double lineSize = 0.3;

struct Sign {
    const char16_t* sign;
    const char* word;
};

// In the order of DayState.
constexpr std::array<Sign, 7> signs = {{{u"\u2013", "No schedule"},
                                        {u"\u25CB", "Not yet due"},
                                        {u"\u2026", "Waiting for its turn"},
                                        {u"\u25B6", "Collecting now"},
                                        {u"\u2713", "Collected today"},
                                        {u"\u25D0", "Partly collected today"},
                                        {u"\u2717", "Not collected today"}}};

Sign SignOf(std::optional<collection::DayState> state) {
    return state ? signs[static_cast<std::size_t>(*state)] : Sign{u"", "No station"};
}

QFont Fitting(const QFont& font, const QString& text, double width) {
    const double needed = QFontMetricsF(font).horizontalAdvance(text);
    QFont fitting = font;
    if (needed > width) {
        fitting.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * std::max(smallest, width / needed))));
    }
    return fitting;
}

QFont OfHeight(const QFont& font, double pixels, bool bold) {
    QFont sized = font;
    sized.setPixelSize(std::max(1, static_cast<int>(pixels)));
    sized.setBold(bold);
    return sized;
}

void DrawLine(QPainter& painter, const QFont& font, const QRectF& place, const QString& text) {
    painter.setFont(Fitting(font, text, place.width()));
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, static_cast<int>(place.width())));
}

}  // namespace

NodeButton::NodeButton(QWidget* parent) : QPushButton(parent) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
}

void NodeButton::ShowNode(const QString& consumer, const Face& face) {
    face_ = face;
    // An ampersand in a name is a letter of it.
    setText(QString(consumer).replace('&', "&&"));
    QStringList words{SignOf(face.state).word};
    for (const QString& more : {face.line, face.reason}) {
        if (!more.isEmpty()) {
            words.append(more);
        }
    }
    setToolTip("<b>" + consumer.toHtmlEscaped() + "</b><br>" + words.join('\n').toHtmlEscaped().replace('\n', "<br>"));
    setAccessibleName(consumer + ", " + words.join(", "));
    update();
}

QColor NodeButton::Colour() const {
    if (!face_.state) {
        return noStationColour;
    }
    return face_.state == collection::DayState::Collecting ? collectingColour
           : face_.sampled                                 ? collectedColour
                                                           : notCollectedColour;
}

QSize NodeButton::sizeHint() const {
    return {160, fontMetrics().height() + 10};
}

QSize NodeButton::minimumSizeHint() const {
    return {60, fontMetrics().height() + 4};
}

void NodeButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF face = QRectF(rect()).adjusted(2, 2, -2, -2);
    painter.setBrush(isDown() ? Colour().darker(115) : underMouse() ? Colour().lighter(106) : Colour());
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 3) : QPen(Colour().darker(160), 1));
    painter.drawRoundedRect(face, 5, 5);
    painter.setPen(Qt::black);
    PaintLines(painter, face.adjusted(6, 1, -6, -1));
}

void NodeButton::PaintLines(QPainter& painter, const QRectF& place) const {
    const bool two = !face_.line.isEmpty();
    const QFont name = OfHeight(font(), two ? place.height() * nameSize : QFontInfo(font()).pixelSize(), font().bold());
    const double sign = QFontMetricsF(name).height();
    painter.setFont(name);
    painter.drawText(QRectF(place.left(), place.top(), sign, place.height()), Qt::AlignCenter,
                     QString::fromUtf16(SignOf(face_.state).sign));
    QRectF text = place.adjusted(sign + 6, 0, 0, 0);
    const QString consumer = QString(this->text()).replace("&&", "&");
    if (!two) {
        DrawLine(painter, name, text, consumer);
        return;
    }
    const QFont line = OfHeight(font(), place.height() * lineSize, false);
    const double gap = std::max(0.0, (place.height() - sign - QFontMetricsF(line).height()) / 2);
    text.setHeight(gap + sign);
    DrawLine(painter, name, text.adjusted(0, gap, 0, 0), consumer);
    text.moveTop(text.bottom());
    text.setBottom(place.bottom() - gap);
    DrawLine(painter, line, text, face_.line);
}

}  // namespace desk
