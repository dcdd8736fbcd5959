#pragma once

#include <QGroupBox>

#include <vector>

class QLabel;
struct TakeInfo;

/// The pane "Take Details": one row with a caption and a value for each of twelve texts of a take. A value label's
/// objectName is its field's name and "Label".
/// Thread: main only.
class TakeDetailsPane : public QGroupBox {
public:
    /// Shows no take. `parent` may be null.
    explicit TakeDetailsPane(QWidget* parent);

    void showTake(const TakeInfo& take);
    /// "--" in all rows.
    void showNoTake();

private:
    /// In the order of the rows. Not owned here but by the widget tree.
    std::vector<QLabel*> valueLabels;
};
