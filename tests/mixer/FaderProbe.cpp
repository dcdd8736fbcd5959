// Prints where this program finds the picture of the fader cap, and whether a fader has got one. Tests run copies of
// it in folders of their own.

#include "mixer/FaderSlider.h"

#include <QApplication>

#include <cstdio>

namespace {

class Probe : public FaderSlider {
public:
    Probe() : FaderSlider(Qt::Vertical) { resize(40, 300); }
    bool hasCap() const { return !handlePixmap.isNull() && !scaledHandle.isNull(); }
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    Probe probe;
    (void)probe.grab();
    std::printf("%s\n%s\n", qUtf8Printable(FaderSlider::findFaderImagePath()), probe.hasCap() ? "cap" : "no cap");
    return 0;
}
