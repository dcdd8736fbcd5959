// A small window that can be dragged out of: what leaves it are the files and folders named on the command line.
// Gives the virtual desktop something to drop on the program with a real mouse.

#include <QApplication>
#include <QDrag>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

#include <memory>
#include <utility>

namespace {

class DragSource : public QLabel {
public:
    explicit DragSource(QList<QUrl> dragged) : urls(std::move(dragged))
    {
        setWindowTitle("Drag Source");
        setAccessibleName("Drag Source");
        setText(QString("%1 to drag").arg(urls.size()));
        setAlignment(Qt::AlignCenter);
        setFixedSize(140, 60);
    }

protected:
    void mousePressEvent(QMouseEvent*) override
    {
        auto drag = std::make_unique<QDrag>(this);
        auto mime = std::make_unique<QMimeData>();
        mime->setUrls(urls);
        drag->setMimeData(mime.release()); // The drag owns its data, and Qt the drag.
        drag.release()->exec(Qt::CopyAction);
    }

private:
    QList<QUrl> urls;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QList<QUrl> urls;
    const QStringList arguments = QCoreApplication::arguments();
    for (qsizetype i = 1; i < arguments.size(); ++i)
        urls.append(QUrl::fromLocalFile(QFileInfo(arguments[i]).absoluteFilePath()));
    DragSource source(urls);
    source.show();
    return QApplication::exec();
}
