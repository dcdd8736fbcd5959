#pragma once

#include <QLabel>
#include <QString>
#include <QStringList>

class QFont;

/// A track's name as it fits into `width` pixels: one or two lines, broken at a blank where there is one and anywhere
/// else where there is none, the second one cut with "…". White space counts as single blanks. One empty line without
/// a name.
QStringList trackNameLines(const QString& name, const QFont& font, int width);

/// The name above a strip of the mixer, centred, in at most two lines, so that no name pushes the strip's controls out
/// of sight. `text` stays the whole name.
/// Thread: main only.
class TrackNameLabel : public QLabel {
    Q_OBJECT

public:
    explicit TrackNameLabel(const QString& name, QWidget* parent = nullptr);
    ~TrackNameLabel() override;

    /// Height in pixels of the lines that the name has at `width` pixels, in the font of the label's style sheet.
    int heightForWidth(int width) const override;
    /// A single line.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
