#include "app/files/WavArguments.h"

#include "app/files/WavSuffix.h"

QList<QString> wavArguments(const QStringList& arguments)
{
    QList<QString> files;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QFileInfo file(arguments.at(i));
        if (file.exists() && hasWavSuffix(file))
            files.append(file.absoluteFilePath());
    }
    return files;
}
