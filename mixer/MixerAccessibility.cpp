#include "mixer/MixerAccessibility.h"

#include "mixer/FaderScale.h"
#include "mixer/FaderSlider.h"
#include "mixer/MeterBallistics.h"
#include "mixer/MeterWidget.h"
#include "mixer/WaveformWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kLowestLevel = -60.0; // Decibel of full scale; what is below counts as silence.

/// A widget with a value. `Widget` is the class behind it.
template <typename Widget> class ValueAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    ValueAccessible(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) { }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text which) const override
    {
        if (which == QAccessible::Value || which == QAccessible::Description)
            return valueText();
        return QAccessibleWidget::text(which);
    }

protected:
    virtual QString valueText() const = 0;
    Widget& shown() const { return *static_cast<Widget*>(widget()); }
};

class FaderAccessible : public ValueAccessible<FaderSlider> {
public:
    explicit FaderAccessible(QWidget* fader) : ValueAccessible(fader, QAccessible::Slider) { }

    QVariant currentValue() const override { return shown().value() / FaderScale::kTenthsPerDecibel; }
    QVariant minimumValue() const override { return shown().minimum() / FaderScale::kTenthsPerDecibel; }
    QVariant maximumValue() const override { return shown().maximum() / FaderScale::kTenthsPerDecibel; }
    QVariant minimumStepSize() const override { return shown().singleStep() / FaderScale::kTenthsPerDecibel; }
    void setCurrentValue(const QVariant& decibels) override
    {
        shown().setValue(static_cast<int>(
            std::lround(std::clamp(decibels.toDouble(), minimumValue().toDouble(), maximumValue().toDouble())
                * FaderScale::kTenthsPerDecibel)));
    }

protected:
    QString valueText() const override { return FaderScale::text(shown().value()); }
};

class MeterAccessible : public ValueAccessible<MeterWidget> {
public:
    explicit MeterAccessible(QWidget* meter) : ValueAccessible(meter, QAccessible::ProgressBar) { }

    QVariant currentValue() const override
    {
        const double part = static_cast<double>(shown().reading()) / MeterBallistics::kFullScale;
        return part > 0.0 ? std::max(20.0 * std::log10(part), kLowestLevel) : kLowestLevel;
    }
    QVariant minimumValue() const override { return kLowestLevel; }
    QVariant maximumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 0.0; }
    void setCurrentValue(const QVariant&) override { } // It only shows.

protected:
    QString valueText() const override
    {
        const double level = currentValue().toDouble();
        const QString number = level > kLowestLevel ? QString::number(level, 'f', 1) : QString::fromUtf8("-\u221e");
        return number + QLatin1String(shown().isClipped() ? " dB, clipped" : " dB, not clipped");
    }
};

class WaveformAccessible : public ValueAccessible<WaveformWidget> {
public:
    explicit WaveformAccessible(QWidget* waveform) : ValueAccessible(waveform, QAccessible::Slider) { }

    QVariant currentValue() const override { return shown().positionSeconds(); }
    QVariant minimumValue() const override { return 0.0; }
    QVariant maximumValue() const override { return shown().durationSeconds(); }
    QVariant minimumStepSize() const override { return WaveformWidget::kStepSeconds; }
    void setCurrentValue(const QVariant& seconds) override
    {
        const double duration = shown().durationSeconds();
        if (duration > 0.0)
            emit shown().seekRequested(std::clamp(seconds.toDouble() / duration, 0.0, 1.0));
    }

protected:
    QString valueText() const override
    {
        return QStringLiteral("%1 s of %2 s")
            .arg(
                QString::number(shown().positionSeconds(), 'f', 1), QString::number(shown().durationSeconds(), 'f', 1));
    }
};

QAccessibleInterface* mixerAccessible(const QString& className, QObject* object)
{
    auto* const widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr)
        return nullptr;
    if (className == QLatin1String("FaderSlider"))
        return new FaderAccessible(widget);
    if (className == QLatin1String("MeterWidget"))
        return new MeterAccessible(widget);
    if (className == QLatin1String("WaveformWidget"))
        return new WaveformAccessible(widget);
    return nullptr;
}

} // namespace

void installMixerAccessibility()
{
    QAccessible::installFactory(mixerAccessible);
}
