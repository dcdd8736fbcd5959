#include "window/MetadataManagerWindow.h"

#include "app/look/Named.h"
#include "window/DetailPanes.h"
#include "window/FileTable.h"
#include "window/MetadataTexts.h"
#include "window/TimecodeEntry.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <optional>

namespace {

constexpr char kTitle[] = "Set New TC Start";
constexpr int kDialogWidth = 280;
constexpr int kDialogHeight = 120;
constexpr double kFallbackFrameRate = 24.0;

/// Leaves only digits and the colons between their pairs in the edit. Runs at every change of its text.
void formatDigits(QLineEdit* edit)
{
    const QString text = edit->text();
    const QString formatted = formatTimecodeDigits(text);
    if (formatted == text)
        return;
    const int cursor = cursorInFormattedDigits(text, edit->cursorPosition(), formatted);
    edit->blockSignals(true);
    edit->setText(formatted);
    edit->setCursorPosition(cursor);
    edit->blockSignals(false);
}

QLayout* buildButtons(QDialog* dialog)
{
    auto* okButton = named("okButton", new QPushButton("OK"));
    auto* cancelButton = named("cancelButton", new QPushButton("Cancel"));
    QObject::connect(okButton, &QPushButton::clicked, dialog, &QDialog::accept);
    QObject::connect(cancelButton, &QPushButton::clicked, dialog, &QDialog::reject);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(okButton);
    row->addWidget(cancelButton);
    return row;
}

/// What the user typed, perhaps not a timecode; nothing if he cancelled. `shown` is offered for change.
std::optional<QString> askForTimecode(QWidget* parent, const QString& shown)
{
    QDialog dialog(parent);
    named("timecodeDialog", &dialog);
    dialog.setWindowTitle(kTitle);
    dialog.setFixedSize(kDialogWidth, kDialogHeight);

    auto* label = new QLabel("Enter timecode (HHMMSSFF):");
    auto* edit = named("timecodeEdit", new QLineEdit);
    label->setBuddy(edit);
    edit->setPlaceholderText("00:00:00:00");
    edit->setMaxLength(kTimecodeEntryLength);
    edit->setText(shown);
    // Only from here on, so that what the file says is offered as it stands.
    QObject::connect(
        edit, &QLineEdit::textChanged, edit, [edit] { formatDigits(edit); }, Qt::DirectConnection);

    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(edit);
    layout->addLayout(buildButtons(&dialog));

    edit->setFocus();
    edit->selectAll(); // Typing replaces the text.
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return edit->text();
}

} // namespace

void MetadataManagerWindow::onTimecodeClicked()
{
    const QList<int> rows = fileTable->selectedRows();
    if (rows.isEmpty()) {
        QMessageBox::information(this, kTitle, "Please select a file first.");
        return;
    }
    if (rows.size() != 1) {
        QMessageBox::information(this, kTitle, "Please select exactly one file to edit timecode.");
        return;
    }
    if (!files.contains(rows.first()))
        return;

    const BwfMetadata& record = files.record(rows.first());
    const uint32_t rate = timecodeRate(record);
    const double frameRate = record.frameRate > 0.0 ? record.frameRate : kFallbackFrameRate;
    const QString shown = detailSplitter->startText();
    if (const auto typed = askForTimecode(this, shown == noValueMark() ? QString() : shown))
        takeTypedTimecode(*typed, rate, frameRate);
}

void MetadataManagerWindow::takeTypedTimecode(const QString& text, uint32_t rate, double frameRate)
{
    if (text.isEmpty())
        return;
    if (text.size() != kTimecodeEntryLength) {
        QMessageBox::warning(this, "Invalid Timecode", "Please enter a complete timecode (HH:MM:SS:FF).");
        return;
    }
    // A complete entry that is out of range, and midnight too, is dropped without a word: 0 means that nothing is
    // pending.
    const uint64_t samples = parseTimecodeToSamples(text, rate, frameRate);
    if (samples != 0)
        detailSplitter->setTypedStart(text, samples);
}
