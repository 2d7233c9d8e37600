#pragma once

#include <QWidget>
#include <array>

namespace session {
class ParameterSet;
}

namespace desk {

// The P&I of a district regulating station: inlet, filter, two streams with a slam-shut valve and a regulator each,
// odoriser, outlet, and the door of its cabinet. Lines in the palette's colours, as large as the window; what is open
// or shut is told by a word and by the shape.
class FrmPNI : public QWidget {
    Q_OBJECT

  public:
    explicit FrmPNI(QWidget* parent = nullptr);

    // Draws the values of a set. What the model lacks, or what was not yet read, is "N/A". What is drawn is also in
    // words in accessibleDescription.
    void Show(const session::ParameterSet& set, bool isCW);

    QSize sizeHint() const override { return {900, 440}; }
    QSize minimumSizeHint() const override { return {450, 220}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    enum Part {
        InletPressure,
        InletLowLimit,
        FilterDP,
        Shut1,
        Shut2,
        Regulator1,
        Regulator2,
        OdorantLevel,
        OdorantRate,
        GasTemperature,
        OutletPressure,
        Door,
        parts
    };
    static const std::array<const char*, parts> names;

    void Pipes(QPainter& painter) const;
    void Filter(QPainter& painter) const;
    void Stream(QPainter& painter, double y, Part shut, Part regulator, const QString& number) const;
    void Odoriser(QPainter& painter) const;
    void Cabinet(QPainter& painter) const;
    void Write(QPainter& painter, double x, double y, const QString& caption, Part part) const;

    std::array<QString, parts> texts_;  // number and unit, or a word
    double level_ = 0;                  // of the odorant, from 0 to 1
};

}  // namespace desk
