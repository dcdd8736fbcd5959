#pragma once

#include <QDialog>
#include <QList>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

class FaderSlider;
class MeterWidget;
class QLabel;
class QLayout;
class QPushButton;
class QScrollArea;
class QTimer;
class QVBoxLayout;
class TagwellAudioPlayer;
class WaveformWidget;
struct BwfMetadata;

/// The non-modal tool window that plays one file: transport, waveform, timecode and one strip for each track.
///
/// It deletes itself when it is closed, by whatever means, and playback ends with it; nothing is asked and nothing is
/// kept. Deleting it returns only after the player's threads have ended. The player never calls back: a timer polls it
/// every 50 ms for as long as the dialog lives.
/// Thread: main only.
class FilePlaybackMixerDialog : public QDialog {
    Q_OBJECT

public:
    /// Opens the file at `path` and builds the window, which is not shown yet. `trackNames` may be shorter or longer
    /// than the file has channels. `metadata` is only read during the call. If the file can't be played a warning box
    /// is shown and waited for, and the dialog is left as a display, with a strip for each name up to 512.
    FilePlaybackMixerDialog(
        const QString& path, const QList<QString>& trackNames, const BwfMetadata& metadata, QWidget* parent);
    ~FilePlaybackMixerDialog() override;

    /// "MM:SS" of a time in seconds, rounded; minutes run on past 59. "00:00" if it is negative or not finite.
    static QString formatTime(double seconds);
    /// The gain of a fader value in tenths of a decibel as a text: "6.0 dB", "-20.0 dB", and "-∞ dB" from -590 down.
    static QString sliderToDbText(int sliderValue);
    /// The linear gain of a fader value in tenths of a decibel: 1.0 at 0, and 0.0 from -590 down.
    static float sliderToLinear(int sliderValue);

    /// Path of the file, as it was given.
    const QString filePath;

private slots:
    void onPlayPause();
    void onStop();
    void onWaveformSeek(double ratio);
    void onUiTick();

    // NOLINTNEXTLINE(readability-redundant-access-specifiers): ends the slots.
private:
    /// The widgets of one track. None is owned; all are descendants of the dialog.
    struct ChannelStrip {
        QWidget* stripWidget = nullptr;
        QLabel* nameLabel = nullptr;
        FaderSlider* fader = nullptr;
        QLabel* dbLabel = nullptr;
        QPushButton* muteButton = nullptr;
        QPushButton* soloButton = nullptr;
        MeterWidget* meter = nullptr;
    };

    void setupUi(const QList<QString>& trackNames);
    void updateTimecodeDisplay(double seconds);
    void applyFader(int track, int sliderValue);
    void updateTransportUi();

    void openPlayer();
    void addHeader(QVBoxLayout* rows);
    void addTransportRow(QVBoxLayout* rows);
    void addTimecodeRow(QVBoxLayout* rows);
    void addWaveform(QVBoxLayout* rows);
    void addStrips(QVBoxLayout* rows, const QList<QString>& trackNames);
    void showPlayable();
    void warnUnplayable();
    void startTimer();

    int stripCount(const QList<QString>& trackNames) const;
    ChannelStrip makeStrip(int track, const QString& name, QWidget* parent);
    /// Gives all names the height of the tallest, so that meters and faders of all strips stand in line.
    void alignNames();
    QLayout* makeButtonRow(ChannelStrip& strip, int track, const QString& name);
    void connectStrip(int track);
    QString infoText() const;
    void showPosition(double seconds, double durationSeconds);

    const double frameRate; // Timecode frames per second; 0.0 or less means that there is no timecode.
    const bool dropFrame;
    const uint64_t timeReference; // Samples since midnight, in timestampSampleRate.
    const uint32_t timestampSampleRate; // Per second; 0 means unknown.
    std::unique_ptr<TagwellAudioPlayer> player; // Null if the file could not be opened.
    QLabel* titleLabel = nullptr;
    QLabel* infoLabel = nullptr;
    QPushButton* playPauseButton = nullptr;
    QPushButton* stopButton = nullptr;
    WaveformWidget* waveform = nullptr;
    QLabel* timeLabel = nullptr;
    QLabel* timecodeLabel = nullptr;
    QLabel* frameRateBadge = nullptr;
    QScrollArea* stripScroll = nullptr;
    QTimer* uiTimer = nullptr;
    std::vector<ChannelStrip> strips; // One for each track, in channel order.
};
