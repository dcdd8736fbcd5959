#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The absolute paths of those command line arguments that exist and have the suffix "wav" in any case, in their
/// order. The first argument is the program and is passed over; so is all else, without a word.
/// A folder with such a name counts as well.
QList<QString> wavArguments(const QStringList& arguments);
