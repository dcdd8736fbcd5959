#pragma once

#include "core/BwfMetadata.h"
#include "window/FilledTexts.h"

#include <QList>
#include <QSplitter>
#include <QString>

#include <cstdint>
#include <span>

class QCheckBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;
class QTextEdit;
class QVBoxLayout;

/// The three panes side by side that show the metadata of what is selected, and the editors in them. They know neither
/// files nor the selection: records come in, and what the editors want written goes out.
///
/// 1. `showRecords` drops a start time that was typed and not saved.
/// 2. How many records it was given last decides whether "—" in an editor is a text or the mark of values that differ.
/// 3. Signals are not blocked while the panes are filled: `touched` means that an editor changed by whatever hand.
///
/// Thread: main only.
class DetailPanes : public QSplitter {
    Q_OBJECT

public:
    /// Builds all controls, with nothing in them.
    explicit DetailPanes(QWidget* parent = nullptr);

    /// Shows nothing, one record in full, or what several share. `records` and what they point to have to stay as they
    /// are until this returns, whatever `touched` leads to.
    void showRecords(std::span<const BwfMetadata* const> records);
    /// Forgets a start time that was typed; what the panes show stays.
    void dropTypedStart() { pendingTimeReference = 0; }
    /// Lets the take be edited, which it can't be while several records are shown. It stays so until the next
    /// several.
    void offerTake();

    /// What the editors want written into the file of `record`, which is the one shown or one of several.
    /// Where an editor or a cell is as it was filled, these are the record's own bytes, elsewhere the text as UTF-8.
    /// A text that is left empty keeps what the file has; the two flags know no such state and always go along.
    BwfMetadata wanted(const BwfMetadata& record) const;

    /// Keeps a typed start time for the save and shows it. `samples` since midnight, not 0.
    void setTypedStart(const QString& text, uint64_t samples);
    /// The start timecode that is shown, typed or not; "—" if there is none.
    QString startText() const;

    /// The controls in the order in which Tab walks through them.
    QList<QWidget*> tabOrder() const;

signals:
    /// Some editor changed, by a hand or by being filled.
    void touched();
    /// The button with the start timecode was pressed.
    void timecodeClicked();

private:
    void buildGeneralPane();
    void buildRecordingPane();
    void buildTrackPane();
    void showNone();
    void showOne(const BwfMetadata& record);
    void showSeveral(std::span<const BwfMetadata* const> records);
    void showStart(const QString& text);

    // All widgets are children, owned through Qt's parent tree.
    QGroupBox* generalGroup = nullptr;
    QFormLayout* generalForm = nullptr;
    QLabel* currentFileLabel = nullptr;
    QLabel* channelsLabel = nullptr;
    QLineEdit* sceneEdit = nullptr;
    QLineEdit* takeEdit = nullptr;
    QCheckBox* circledCheck = nullptr;
    QCheckBox* wildTrackCheck = nullptr;
    QLineEdit* projectEdit = nullptr;
    QLineEdit* tapeIdEdit = nullptr;
    QTextEdit* notesEdit = nullptr;
    QGroupBox* recordingGroup = nullptr;
    QFormLayout* recordingForm = nullptr;
    QLabel* sampleRateLabel = nullptr;
    QLabel* tcSampleRateLabel = nullptr;
    QLabel* frameRateLabel = nullptr;
    QPushButton* timecodeButton = nullptr; ///< Shows the start timecode; a click edits it.
    QLabel* lengthLabel = nullptr;
    QLabel* samplesSinceMidnightLabel = nullptr;
    QLabel* userBitsLabel = nullptr;
    QLabel* bitDepthLabel = nullptr;
    uint64_t pendingTimeReference = 0; ///< Samples since midnight of a start time typed but not saved; 0 for none.
    QGroupBox* trackGroup = nullptr;
    QVBoxLayout* trackLayout = nullptr;
    QTableWidget* trackTable = nullptr;

    FilledTexts texts; ///< What the line edits and the notes were filled with.
    bool showsSeveral = false; ///< Of the last `showRecords`.
};
