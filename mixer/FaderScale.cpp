#include "mixer/FaderScale.h"

#include <cmath>

namespace FaderScale {

QString text(int tenths)
{
    if (tenths < kLowestAudible)
        return QStringLiteral(u"-\u221e dB");
    return QStringLiteral("%1 dB").arg(QString::number(tenths / kTenthsPerDecibel, 'f', 1));
}

float gain(int tenths)
{
    if (tenths < kLowestAudible)
        return 0.0f;
    return std::pow(10.0f, static_cast<float>(tenths) / 10.0f / 20.0f);
}

} // namespace FaderScale
