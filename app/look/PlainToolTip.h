#pragma once

#include <QString>
#include <QTextDocument>

/// A tool tip that shows `text` as it is. One that looks like markup would be rendered, pictures off the disk included;
/// in any other the escapes would be seen.
inline QString plainToolTip(const QString& text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}
