#pragma once

#include <QPixmap>
#include <QPoint>
#include <QSize>
#include <QSlider>
#include <QString>

/// Where the cap's top left pixel goes so that the cap's centre lies on `handleCentre`; the pixel left of and above
/// the middle where a side is even. `cap` in device-independent pixels, at least 1 × 1.
QPoint faderCapTopLeft(QPoint handleCentre, QSize cap);

/// A slider that draws the picture of a fader cap over the groove of the Fusion style. Without the picture it is a
/// slider with a groove only, since the caller's style sheet makes the standard handle invisible.
/// Thread: main only.
class FaderSlider : public QSlider {
    Q_OBJECT

public:
    /// Sets the Fusion style, if there is one, for this slider alone, and loads the picture.
    explicit FaderSlider(Qt::Orientation orientation, QWidget* parent = nullptr);
    ~FaderSlider() override;

    /// The first place near the program where "fader.png" exists, absolute. The place beside the program, as it
    /// stands, if there is none.
    static QString findFaderImagePath();

    /// Loads the picture anew and redraws. Nothing changes if it can't be loaded.
    void reloadHandlePixmap();

    /// Scales the picture to the draw size, whatever its own shape, at the screen's pixel density. The cache becomes
    /// null if there is no picture.
    void updateScaledCache();

    /// Size of the cap in device-independent pixels; values below 1 become 1.
    void setHandleDrawSize(int width, int height);

protected:
    /// A right-button press is left to the parent and moves nothing.
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    QPixmap handlePixmap; ///< The cap as loaded; null without a picture.
    QPixmap scaledHandle; ///< The cap at draw size; null until it can be made.
    int32_t handleWidth = 40; ///< Draw width in device-independent pixels, at least 1.
    int32_t handleHeight = 70; ///< Draw height in device-independent pixels, at least 1.

private:
    bool scaledCacheFits() const;
};
