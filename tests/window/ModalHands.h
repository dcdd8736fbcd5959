#pragma once

#include <QApplication>
#include <QDialog>
#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QTimer>

#include <functional>
#include <utility>

/// A message box as the user saw it.
struct SeenBox {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString title;
    QString text;
    QStringList buttons;
};

/// Answers whatever modal windows come up while it lives: notes each message box and presses its "OK", and hands any
/// other dialog to `onDialog`, which has to close it; a dialog that it leaves open is cancelled.
/// Thread: main only. One at a time.
class ModalHands {
public:
    explicit ModalHands(std::function<void(QDialog*)> dialogHandler = {}) : onDialog(std::move(dialogHandler))
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { look(); });
        timer.start(0);
    }
    ModalHands(const ModalHands&) = delete;
    ModalHands& operator=(const ModalHands&) = delete;

    /// The message boxes so far, in order.
    QList<SeenBox> boxes;
    /// How many other dialogs came up.
    int dialogs = 0;

private:
    void look()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* box = qobject_cast<QMessageBox*>(modal))
            press(box);
        else if (auto* dialog = qobject_cast<QDialog*>(modal))
            handle(dialog);
    }

    void press(QMessageBox* box)
    {
        SeenBox seen{ box->icon(), box->windowTitle(), box->text(), {} };
        for (const QAbstractButton* button : box->buttons())
            seen.buttons += button->text().remove(u'&');
        boxes.append(seen);
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    }

    void handle(QDialog* dialog)
    {
        ++dialogs;
        if (onDialog)
            onDialog(dialog);
        if (dialog->isVisible())
            dialog->reject();
    }

    std::function<void(QDialog*)> onDialog;
    QTimer timer;
};
