#include "app/WavArguments.h"

#include <QFileInfo>

bool hasWavSuffix(const QString& path)
{
    return QFileInfo(path).suffix().compare(QLatin1String("wav"), Qt::CaseInsensitive) == 0;
}

QList<QString> wavArguments(const QStringList& arguments)
{
    QList<QString> files;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QFileInfo file(arguments.at(i));
        if (file.exists() && hasWavSuffix(arguments.at(i)))
            files.append(file.absoluteFilePath());
    }
    return files;
}
