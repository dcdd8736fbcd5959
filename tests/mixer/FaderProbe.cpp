// Prints where this program finds the picture of the fader cap, whether a fader has got one, and how many pixels it
// has at a draw size of 36 x 62. Tests run copies of it in folders of their own.

#include "mixer/FaderSlider.h"

#include <QApplication>

#include <cstdio>

namespace {

class Probe : public FaderSlider {
public:
    Probe() : FaderSlider(Qt::Vertical)
    {
        setHandleDrawSize(36, 62);
        resize(40, 300);
    }
    bool hasCap() const { return !handlePixmap.isNull() && !scaledHandle.isNull(); }
    QSize capPixels() const { return scaledHandle.size(); }
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    Probe probe;
    (void)probe.grab();
    std::printf("%s\n%s\n%d x %d\n", qUtf8Printable(FaderSlider::findFaderImagePath()),
        probe.hasCap() ? "cap" : "no cap", probe.capPixels().width(), probe.capPixels().height());
    return 0;
}
