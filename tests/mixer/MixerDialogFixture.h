#pragma once

#include "mixer/FilePlaybackMixerDialog.h"

#include "app/look/Theme.h"
#include "core/BwfMetadata.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QTextDocument>
#include <QTimer>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <functional>
#include <thread>

// 8 seconds in four quarters, each half as loud as the one before.
inline constexpr size_t kQuarterFrames = 96000;
inline constexpr std::array kQuarterLevels{ 0.5f, 0.25f, 0.125f, 0.0625f };

// Bounds of the waits for the engine's threads, in tries of at least a millisecond. They only decide when a test fails.
inline constexpr int kTries = 20000;
inline constexpr uint32_t kPullFrames = 64;

inline std::string sample16(float level)
{
    return le16(static_cast<uint16_t>(static_cast<int16_t>(level * 32768.0f)));
}

inline std::string quarters()
{
    std::string bytes;
    for (const float level : kQuarterLevels) {
        for (size_t frame = 0; frame < kQuarterFrames; ++frame)
            bytes += sample16(level);
    }
    return bytes;
}

/// Interleaved frames in which each channel holds its level.
inline std::string steady(const std::vector<float>& levels, size_t frames)
{
    std::string frame;
    for (const float level : levels)
        frame += sample16(level);
    std::string bytes;
    bytes.reserve(frame.size() * frames);
    for (size_t i = 0; i < frames; ++i)
        bytes += frame;
    return bytes;
}

inline void shortSleep()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

/// A mixer on a file of the test's own, played by the driven output: the test is the device.
class MixerDialog : public testing::Test {
protected:
    void SetUp() override { DrivenOutput::reset(); }
    void TearDown() override
    {
        delete dialog;
        EXPECT_EQ(DrivenOutput::unitsAlive(), 0) << "the player let go of the device";
    }

    std::string write(const std::string& name, const WavBuilder& builder)
    {
        builder.write(folder.file(name));
        return folder.file(name);
    }

    void open(const std::string& path, const QList<QString>& names = {}, const BwfMetadata& metadata = {})
    {
        dialog = new FilePlaybackMixerDialog(QString::fromStdString(path), names, metadata, nullptr);
        dialog->show();
    }

    void openQuarters(const BwfMetadata& metadata = {})
    {
        open(write("take.wav", WavBuilder().fmt(48000, 1, 16).data(quarters())), { QStringLiteral("Boom") }, metadata);
    }

    void openSteady(const std::vector<float>& levels, size_t frames, const QList<QString>& names = {})
    {
        const auto channels = static_cast<uint16_t>(levels.size());
        open(write("take.wav", WavBuilder().fmt(48000, channels, 16).data(steady(levels, frames))), names);
    }

    /// Opens and answers the warning box with `answer`, which sees it.
    void openUnplayable(
        const std::string& path, const QList<QString>& names,
        const std::function<void(QMessageBox&)>& answer = [](QMessageBox&) {})
    {
        int boxes = 0;
        QTimer::singleShot(0, qApp, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            ++boxes;
            answer(*box);
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        });
        open(path, names);
        EXPECT_EQ(boxes, 1);
    }

    template <typename Widget = QWidget> Widget* find(const QString& name) const
    {
        auto* found = dialog->findChild<Widget*>(name);
        if (!found)
            ADD_FAILURE() << "no " << name.toStdString();
        return found;
    }

    QString text(const char* label) const { return find<QLabel>(QLatin1String(label))->text(); }
    QString playText() const { return find<QPushButton>("playPauseButton")->text(); }
    void click(const char* button) { QTest::mouseClick(find<QWidget>(QLatin1String(button)), Qt::LeftButton); }
    void tick() { ASSERT_TRUE(QMetaObject::invokeMethod(dialog, "onUiTick", Qt::DirectConnection)); }

    void clickWaveform(double ratio)
    {
        auto* waveform = find("waveform");
        const int x = static_cast<int>(ratio * waveform->width());
        QTest::mouseClick(waveform, Qt::LeftButton, {}, QPoint(x, waveform->height() / 2));
    }

    /// Pulls what the device would until a whole piece has this level. False if it never comes.
    bool hear(float level)
    {
        for (int attempt = 0; attempt < kTries; ++attempt) {
            const std::vector<float> heard = DrivenOutput::pullStereo(kPullFrames);
            const auto off = [level](float sample) { return std::fabs(sample - level) > 1e-4f; };
            if (!heard.empty() && std::none_of(heard.begin(), heard.end(), off))
                return true;
            shortSleep();
        }
        return false;
    }

    /// The first sample that isn't silence; 0.0 if none comes.
    float firstHeard()
    {
        for (int attempt = 0; attempt < kTries; ++attempt) {
            for (const float sample : DrivenOutput::pullStereo(kPullFrames)) {
                if (sample != 0.0f)
                    return sample;
            }
            shortSleep();
        }
        return 0.0f;
    }

    /// Plays on until the button has gone back to " Play". False if it never does.
    bool playToTheEnd()
    {
        for (int attempt = 0; attempt < kTries && playText() != QLatin1String(" Play"); ++attempt) {
            (void)DrivenOutput::pullStereo(1024);
            shortSleep();
            tick();
        }
        return playText() == QLatin1String(" Play");
    }

    /// The column of the playhead in the waveform; -1 without one.
    int playhead() const
    {
        const QImage picture = find("waveform")->grab().toImage();
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, 5) == QColor(0, 255, 100))
                return x;
        }
        return -1;
    }

    /// As above, in parts of the waveform's width.
    double playheadPart() const { return static_cast<double>(playhead()) / find("waveform")->width(); }

    QImage meterPicture(int track) const { return find(QStringLiteral("meter%1").arg(track))->grab().toImage(); }

    /// Pixels from the left that are lit by the bar or by the peak line at its end.
    int bar(int track) const
    {
        const QImage picture = meterPicture(track);
        int length = 0;
        while (length + 1 < picture.width() - 1 && picture.pixelColor(length + 1, 6).value() > 100)
            ++length;
        return length;
    }

    TempFolder folder;
    QPointer<FilePlaybackMixerDialog> dialog;
};

/// Starts at 01:00:00:00 and 25 frames per second.
inline BwfMetadata atOneOClock()
{
    BwfMetadata metadata;
    metadata.frameRate = 25.0;
    metadata.sampleRate = 48000;
    metadata.timeReference = uint64_t{ 3600 } * 48000;
    return metadata;
}
