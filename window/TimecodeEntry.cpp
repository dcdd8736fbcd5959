#include "window/TimecodeEntry.h"

#include <QList>
#include <QStringList>

#include <algorithm>
#include <optional>

namespace {

constexpr qsizetype kMostDigits = 8;
constexpr double kTwoToThe64 = 18446744073709551616.0;

struct Field {
    int value = 0;
    bool valid = false;
};

Field fieldUpTo(const QString& text, std::optional<int> highest)
{
    Field field;
    field.value = text.toInt(&field.valid);
    field.valid = field.valid && field.value >= 0 && (!highest || field.value <= *highest);
    return field;
}

bool isDigit(QChar character)
{
    return (character >= u'0' && character <= u'9') || character.category() == QChar::Number_DecimalDigit;
}

int colonsInFirst(const QString& text, int count)
{
    return static_cast<int>(text.left(std::max(count, 0)).count(u':'));
}

} // namespace

QString formatTimecodeDigits(const QString& text)
{
    QString digits;
    std::ranges::copy_if(text, std::back_inserter(digits), isDigit);
    digits.truncate(kMostDigits);

    QString formatted;
    for (qsizetype i = 0; i < digits.size(); ++i) {
        formatted += digits[i];
        const bool closesPair = i == 1 || i == 3 || i == 5;
        if (closesPair && i + 1 < digits.size())
            formatted += u':';
    }
    return formatted;
}

int cursorInFormattedDigits(const QString& text, int cursor, const QString& formatted)
{
    const int oldColons = colonsInFirst(text, cursor);
    const int allColons = static_cast<int>(formatted.count(u':'));
    const int roughCursor = cursor + allColons - oldColons;
    const int newColons = colonsInFirst(formatted, roughCursor);
    return std::min(static_cast<int>(formatted.size()), cursor - oldColons + newColons);
}

uint64_t parseTimecodeToSamples(const QString& text, unsigned int sampleRate, double frameRate)
{
    if (!(frameRate > 0.0) || sampleRate == 0)
        return 0;
    const QStringList parts = text.split(u':');
    if (parts.size() != 4)
        return 0;
    const Field hours = fieldUpTo(parts[0], 23);
    const Field minutes = fieldUpTo(parts[1], 59);
    const Field seconds = fieldUpTo(parts[2], 59);
    const Field frames = fieldUpTo(parts[3], std::nullopt);
    if (!hours.valid || !minutes.valid || !seconds.valid || !frames.valid)
        return 0;

    // The length of a frame is not rounded: at 23.976 fps it is 2002.002 samples of 48000 Hz, and only the sum is cut.
    const int wholeSeconds = hours.value * 3600 + minutes.value * 60 + seconds.value;
    const double rate = sampleRate;
    const double samples = wholeSeconds * rate + frames.value * (rate / frameRate);
    return samples < kTwoToThe64 ? static_cast<uint64_t>(samples) : 0;
}
