#pragma once

#include "tests/support/Recording.h"
#include "tests/support/TempFolder.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

class QFileDialog;
class SoundReportDialog;

/// A temporary folder, empty settings of the report, and a person's hands on the dialogs.
class ReportFixture : public testing::Test {
protected:
    void SetUp() override;

    /// Writes the recording, without its audio, into the folder and returns its absolute path.
    QString addTake(const std::string& name, const Recording& recording);
    QString path(const std::string& name) const { return QString::fromStdString(folder.file(name)); }

    /// Runs `act` with an empty folder that it may read but not write into, and a file in it of the same kind.
    void withReadOnlyTargets(const std::function<void(const QString& inFolder, const QString& file)>& act);

    TempFolder folder;
};

void setSetting(const std::string& key, const std::string& value);
std::string getSetting(const std::string& key);

/// The child of `parent` called `name`; fails the test and throws when there is none.
template <typename T> T& childOf(const QWidget& parent, const char* name)
{
    T* child = parent.findChild<T*>(QLatin1String(name));
    if (!child)
        throw std::runtime_error(std::string("no child called ") + name);
    return *child;
}

/// Runs `act` once, as soon as a modal widget of type T has come up from within another call. Fails the test and closes
/// whatever is modal if none comes within half a minute.
template <typename T> void whenModal(std::function<void(T&)> act)
{
    auto* timer = new QTimer(qApp);
    QElapsedTimer clock;
    clock.start();
    QObject::connect(timer, &QTimer::timeout, timer, [timer, clock, act] {
        QWidget* modal = QApplication::activeModalWidget();
        T* wanted = qobject_cast<T*>(modal);
        if (wanted && wanted->isVisible()) {
            timer->stop();
            timer->deleteLater();
            act(*wanted);
        } else if (clock.elapsed() > 30000) {
            timer->stop();
            timer->deleteLater();
            ADD_FAILURE() << "the awaited dialog never came up";
            if (modal)
                modal->close();
        }
    });
    timer->start(1);
}

/// Clicks the push button called `name`.
void click(const QWidget& parent, const char* name);
/// Replaces the text of the line edit called `name` with real keys. ASCII only.
void typeInto(const QWidget& parent, const char* name, const QString& text);

/// What a file dialog offers as the file's name.
QString proposedName(const QFileDialog& chooser);
/// Types `path` into the file dialog's name field and presses its accepting button.
void pickPath(QFileDialog& chooser, const QString& path);
/// Presses the file dialog's "Cancel".
void cancelChooser(QFileDialog& chooser);

/// Texts of a row of the take table.
QStringList rowTexts(const SoundReportDialog& dialog, int row);
int rowCount(const SoundReportDialog& dialog);
QString labelText(const SoundReportDialog& dialog, const char* name);

struct CommandResult {
    int exitCode = -1;
    QString out;
    QString err;
};
/// Runs a program to its end. The exit code is -1 if it can't be started.
CommandResult runCommand(const QString& program, const QStringList& arguments);

/// Takes root's rights away from the process while it lives; nothing happens for an ordinary user.
class OrdinaryUser {
public:
    OrdinaryUser();
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
};
